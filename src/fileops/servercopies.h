#pragma once

#include "fileops/editwatch.h"

#include <QHash>

/// Which files of the temporary folder are as they came from a server or went to it. Kept in the
/// folder itself, which outlives the program: what somebody wrote into one of its files meanwhile
/// must not be taken for a copy that can be fetched again.
class ServerCopies {
public:
    /// @param folder  the temporary folder, ends in the separator
    explicit ServerCopies(const QString &folder);

    /// Whether the file stands as it was noted.
    [[nodiscard]] bool holds(const QString &path) const;
    /// Notes the file as it stands. Files that are gone are forgotten.
    void note(const QString &path);

private:
    QString m_folder;
    QHash<QString, FileStamp> m_stamps; ///< by path
};
