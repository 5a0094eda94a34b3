#include "local/locallisting.h"

#include "common/mo_standard.h"
#include "ftp/ftplocalnames.h"
#include "remote/itemkind.h"
#include "remote/roworder.h"

#include <QDateTime>
#include <QDir>

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace {

constexpr QChar secondsPlace(0xe000); ///< of private use: no locale writes it into a time

using Directory = std::unique_ptr<DIR, decltype([](DIR *directory) { closedir(directory); })>;

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
    ::tzset();
    if (!m_dateFormat.contains(u"yyyy")) {
        m_dateFormat.replace(QStringLiteral("yy"), QStringLiteral("yyyy"));
    }
    const QString seconds = QStringLiteral("'%1'").arg(secondsPlace);
    if (m_timeFormat.contains(u"ss")) {
        m_timeFormat.replace(QStringLiteral("ss"), seconds);
    } else {
        // The sign that the locale has before the minutes.
        const qsizetype minutes = m_timeFormat.indexOf(u"mm");
        const QString sign = minutes > 0 ? m_timeFormat.mid(minutes - 1, 1) : QStringLiteral(":");
        m_timeFormat.replace(QStringLiteral("mm"), QStringLiteral("mm") + sign + seconds);
    }
    for (int second = 0; QString & text : m_seconds) {
        text = m_locale.toString(QTime(0, 0, std::min(second++, 59)), QStringLiteral("ss"));
    }
}

const QString &LocalDates::dayText(const std::tm &parts)
{
    QString &text = m_days[parts.tm_year * 366 + parts.tm_yday];
    if (text.isEmpty()) {
        const QDate day(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday);
        text = m_locale.toString(day, m_dateFormat) + u' ';
    }
    return text;
}

const QString &LocalDates::minuteText(const std::tm &parts)
{
    QString &text = m_minutes.at(static_cast<std::size_t>(parts.tm_hour * 60 + parts.tm_min));
    if (text.isEmpty()) {
        text = m_locale.toString(QTime(parts.tm_hour, parts.tm_min), m_timeFormat);
    }
    return text;
}

QString LocalDates::text(qint64 secondsSinceEpoch)
{
    const std::time_t when = secondsSinceEpoch;
    std::tm parts {};
    if (::localtime_r(&when, &parts) == nullptr) {
        return {}; // a year that no calendar holds
    }
    QString time = minuteText(parts);
    time.replace(secondsPlace, m_seconds.at(static_cast<std::size_t>(parts.tm_sec)));
    return dayText(parts) + time;
}

QString absoluteFolder(const QString &text)
{
    const QString plain = trimBlanks(text);
    if (plain.isEmpty() || plain.startsWith(LocalSeparator)) {
        return text;
    }
    if (plain == u"~" || plain.startsWith(u"~/")) {
        return QDir::homePath() + plain.mid(1);
    }
    return joinPath(QDir::homePath(), plain);
}

QString localFolderOf(const LocalRequest &request)
{
    const QString literal = withSeparator(request.path, LocalSeparator);
    if (request.source == FolderSource::Derived || localEntry(literal).isFolder) {
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
    const Directory directory(opendir(bytesOfName(listing.folder).constData()));
    listing.readable = directory != nullptr;
    LocalDates dates;
    while (directory && !stop) {
        const dirent *found = readdir(directory.get());
        if (found == nullptr) {
            break;
        }
        const QString name = textOfName(found->d_name);
        if (name == u"." || name == u".." || (!request.hiddenFile && name.startsWith(u'.'))) {
            continue;
        }
        const Entry entry = inspect(dirfd(directory.get()), found->d_name);
        if (request.hiddenFile || !entry.system) {
            rows.append(rowOf(entry, name, listing.folder, dates));
        }
    }
    if (stop) {
        return listing; // nobody waits; at the end of the program not even locales are left to sort
                        // by
    }
    listing.rows = RegroupRows(sortRows(std::move(rows), ColumnName, Qt::AscendingOrder));
    return listing;
}
