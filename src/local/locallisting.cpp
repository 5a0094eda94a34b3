#include "local/locallisting.h"

#include "common/mo_standard.h"
#include "remote/itemkind.h"

#include <QDateTime>
#include <QFile>
#include <QLocale>

#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace {

using Directory = std::unique_ptr<DIR, decltype([](DIR *directory) { closedir(directory); })>;

bool isFolder(const QString &path)
{
    struct stat status { };
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// One entry as the rows need it.
struct Entry {
    struct stat status { };
    bool system = false; ///< broken link, socket, device or pipe
};

Entry inspect(int folder, const char *name)
{
    Entry entry;
    if (fstatat(folder, name, &entry.status, 0) != 0) {
        entry.system = true;
        if (fstatat(folder, name, &entry.status, AT_SYMLINK_NOFOLLOW) != 0) {
            entry.status = {};
        }
    } else {
        entry.system = !S_ISDIR(entry.status.st_mode) && !S_ISREG(entry.status.st_mode);
    }
    return entry;
}

PaneRow rowOf(const Entry &entry, const QString &name, const QString &folder, LocalDates &dates)
{
    PaneRow row;
    row.name = name;
    row.tag = folder + name;
    row.date = dates.text(entry.status.st_mtim.tv_sec);
    if (S_ISDIR(entry.status.st_mode)) {
        row.kind = ItemKind::FolderClose; // the length of a folder means nothing to a user
    } else {
        row.kind = ItemKind::byExtension(name);
        row.size = QString::number(static_cast<qint64>(entry.status.st_size));
    }
    return row;
}

} // namespace

LocalDates::LocalDates()
    : m_dateFormat(m_locale.dateFormat(QLocale::ShortFormat))
    , m_timeFormat(m_locale.timeFormat(QLocale::ShortFormat))
{
    if (!m_dateFormat.contains(u"yyyy")) {
        m_dateFormat.replace(QStringLiteral("yy"), QStringLiteral("yyyy"));
    }
    if (!m_timeFormat.contains(u"ss")) {
        m_timeFormat.replace(QStringLiteral("mm"), QStringLiteral("mm:ss"));
    }
}

QString LocalDates::text(qint64 secondsSinceEpoch)
{
    const QDateTime when = QDateTime::fromSecsSinceEpoch(secondsSinceEpoch);
    // Files of one folder often share their day, and making the text of a date is dear.
    if (const qint64 day = when.date().toJulianDay(); day != m_day) {
        m_day = day;
        m_dayText = m_locale.toString(when.date(), m_dateFormat) + u' ';
    }
    return m_dayText + m_locale.toString(when.time(), m_timeFormat);
}

QString localFolderOf(const LocalRequest &request)
{
    const QString literal = withSeparator(request.path, LocalSeparator);
    if (request.source == FolderSource::Derived || isFolder(literal)) {
        return literal;
    }
    QString path = request.path;
    return NormalizeFolderPath(path, LocalSeparator);
}

LocalListing readLocalFolder(const LocalRequest &request, const std::atomic_bool &stop)
{
    LocalListing listing;
    listing.folder = localFolderOf(request);
    QList<PaneRow> rows;
    const Directory directory(opendir(QFile::encodeName(listing.folder).constData()));
    listing.readable = directory != nullptr;
    LocalDates dates;
    while (directory && !stop) {
        const dirent *found = readdir(directory.get());
        if (found == nullptr) {
            break;
        }
        const QString name = QFile::decodeName(found->d_name);
        if (name == u"." || name == u".." || (!request.hiddenFile && name.startsWith(u'.'))) {
            continue;
        }
        const Entry entry = inspect(dirfd(directory.get()), found->d_name);
        if (request.hiddenFile || !entry.system) {
            rows.append(rowOf(entry, name, listing.folder, dates));
        }
    }
    listing.rows = RegroupRows(sortRows(std::move(rows), ColumnName, Qt::AscendingOrder));
    return listing;
}
