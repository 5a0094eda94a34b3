#include "fileops/editwatch.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

#include <utility>

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

FileStamp FileStamp::of(const QString &path)
{
    struct stat found { };
    if (::stat(QFile::encodeName(path).constData(), &found) != 0) {
        return {};
    }
    const auto nanoseconds
        = [](const timespec &time) { return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec; };
    return { found.st_ino, found.st_size, nanoseconds(found.st_ctim), nanoseconds(found.st_mtim) };
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
    const FileStamp stamp = FileStamp::of(path); // before the reading, or a change would be missed
    m_known.insert(path, { stamp, contentHash(path) });
    m_watcher.addPaths({ path, QFileInfo(path).path() });
}

void EditWatch::forget(const QString &path)
{
    m_known.remove(path);
    m_watcher.removePath(path);
}

void EditWatch::reportNextSaving(const QString &path)
{
    if (const auto known = m_known.find(path); known != m_known.end()) {
        known->hash.clear();
    }
}

void EditWatch::look()
{
    const QStringList paths = m_known.keys();
    for (const QString &path : paths) {
        const FileStamp stamp = FileStamp::of(path);
        Known &known = m_known[path];
        if (stamp == known.stamp) {
            continue; // reading every file anew at each look would be felt
        }
        const QByteArray now = contentHash(path);
        if (now.isEmpty()) {
            continue; // gone for the moment, or for good
        }
        m_watcher.addPath(path); // a new file has taken the place of the watched one
        known.stamp = stamp;
        if (std::exchange(known.hash, now) != now) {
            Q_EMIT saved(path);
        }
    }
}
