#pragma once

#include "common/globals.h"

#include <QList>
#include <QString>

/// Where the folders of a run come from; tests put their own.
struct FolderSources {
    QString executableFolder; ///< holds the program
    QString dataFolder; ///< of this user and program, in place of a read-only executable folder
    QString temporary; ///< TEMP, else the system's
    QString desktop; ///< the desktop folder as told, may be empty or missing
    QString home; ///< the user's home folder

    [[nodiscard]] static FolderSources ofThisUser();
};

/// The folders of this run; creates nothing.
[[nodiscard]] WorkingFolders workingFolders(const FolderSources &sources);

/// Makes the profile folder (with what is missing above it), for its owner alone.
void makeProfileFolder(const WorkingFolders &folders);
/// Makes the temporary folder, for its owner alone. A name that somebody else holds, or a link, is
/// not used, nor is one that another process works in, whose fetched files would be replaced: the
/// user's number is added to it, then a count. The folder is this process's own until it ends or
/// makes another one. @return the folder to be used, ending in the separator
[[nodiscard]] QString makeTemporaryFolder(const QString &folder);

/// One entry of the drive lists.
struct Drive {
    QString path; ///< folder without a separator at the end, except "/"
    QString label; ///< volume label for display, empty for none

    /// "/media/anna/STICK [STICK]"; the bracketed label is for display only.
    [[nodiscard]] QString display() const;
};

/// The home folder, "/", and the volumes that the user has plugged in.
[[nodiscard]] QList<Drive> drives();
/// The same from the text of a mount table (proc(5), /proc/pid/mountinfo).
[[nodiscard]] QList<Drive> drives(const QString &home, const QByteArray &mountInfo);
