#include "fileops/editwatch.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr int quietTime = 400;

} // namespace

QByteArray contentHash(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file)) {
        return {};
    }
    return hash.result();
}

EditWatch::EditWatch(QObject *parent)
    : QObject(parent)
{
    m_quiet.setSingleShot(true);
    m_quiet.setInterval(quietTime);
    const auto touched = [this] { m_quiet.start(); };
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, touched);
    // Many editors write another file and rename it; the folder tells of that.
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, touched);
    connect(&m_quiet, &QTimer::timeout, this, &EditWatch::look);
}

void EditWatch::watch(const QString &path)
{
    m_known.insert(path, contentHash(path));
    m_watcher.addPaths({ path, QFileInfo(path).path() });
}

void EditWatch::forget(const QString &path)
{
    m_known.remove(path);
    m_watcher.removePath(path);
}

void EditWatch::look()
{
    const QStringList paths = m_known.keys();
    for (const QString &path : paths) {
        const QByteArray now = contentHash(path);
        if (now.isEmpty()) {
            continue; // gone for the moment, or for good
        }
        m_watcher.addPath(path); // a new file has taken the place of the watched one
        if (std::exchange(m_known[path], now) != now) {
            Q_EMIT saved(path);
        }
    }
}
