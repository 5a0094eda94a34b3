#include "fileops/servercopies.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

// No file of a server can take this place: its name would have to hold a separator.
const QString place = QStringLiteral(".fetched/stamps");
constexpr qsizetype fieldCount = 5;

} // namespace

ServerCopies::ServerCopies(const QString &folder)
    : m_folder(folder)
{
    QFile file(folder + place);
    if (!file.open(QIODevice::ReadOnly)) {
        return; // then nothing is known to be a copy, and everything is kept
    }
    for (const QByteArray &line : file.readAll().split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() == fieldCount) {
            m_stamps.insert(QUrl::fromPercentEncoding(fields.at(4)),
                            { static_cast<quint64>(fields.at(0).toLongLong()),
                              fields.at(1).toLongLong(), fields.at(2).toLongLong(),
                              fields.at(3).toLongLong() });
        }
    }
}

bool ServerCopies::holds(const QString &path) const
{
    const auto noted = m_stamps.constFind(path);
    return noted != m_stamps.constEnd() && *noted == FileStamp::of(path);
}

void ServerCopies::note(const QString &path)
{
    m_stamps.insert(path, FileStamp::of(path));
    QDir().mkpath(QFileInfo(m_folder + place).path());
    QSaveFile file(m_folder + place);
    if (!file.open(QIODevice::WriteOnly)) {
        return; // the worst that follows is a copy too many
    }
    for (auto each = m_stamps.constBegin(); each != m_stamps.constEnd(); ++each) {
        if (FileStamp::of(each.key()).size >= 0) {
            for (const qint64 number :
                 { static_cast<qint64>(each->inode), each->size, each->changed, each->modified }) {
                file.write(QByteArray::number(number) + ' ');
            }
            file.write(QUrl::toPercentEncoding(each.key()) + '\n');
        }
    }
    (void)file.commit(); // as above
}
