#pragma once

#include "remote/filepane.h"
#include "remote/panemodel.h"

#include <QHash>
#include <QLocale>

#include <array>
#include <atomic>
#include <ctime>

/// What is to be listed.
struct LocalRequest {
    QString path; ///< as the box or the program gives it
    FolderSource source = FolderSource::Box;
    bool hiddenFile = false; ///< hidden and system entries too
};

/// One local folder, ready to be shown.
struct LocalListing {
    QString folder; ///< folder that was listed; ends in the separator
    bool readable = false;
    QList<PaneRow> rows; ///< up row, folders, files; each group by name
};

/// What a text in a folder box means: "~" is the home folder, and names without a separator in
/// front count from there, never from where the program happened to be started.
[[nodiscard]] QString absoluteFolder(const QString &text);

/// The folder that a request means: a folder that exists under the very text of the box is taken
/// as it stands, everything else from a box is normalised. Asks the disk.
[[nodiscard]] QString localFolderOf(const LocalRequest &request);

/// Reads a folder. May take long and may hang on a dead mount, so it runs beside the window; it
/// touches nothing but the disk. Errors are passed over step by step.
/// @param stop  ends the reading early; the result is then of no use
[[nodiscard]] LocalListing readLocalFolder(const LocalRequest &request,
                                           const std::atomic_bool &stop);

/// Date and time of a file in the user's locale: short date with four-digit year, and seconds.
class LocalDates {
public:
    LocalDates();
    [[nodiscard]] QString text(qint64 secondsSinceEpoch);

private:
    [[nodiscard]] const QString &dayText(const std::tm &parts);
    [[nodiscard]] const QString &minuteText(const std::tm &parts);

    // What a locale says about a time is dear; a folder asks for few days, minutes and seconds.
    QLocale m_locale;
    QString m_dateFormat, m_timeFormat; ///< the time's seconds are a placeholder
    QHash<int, QString> m_days;
    std::array<QString, 24 * 60> m_minutes;
    std::array<QString, 61> m_seconds; ///< with a leap second
};
