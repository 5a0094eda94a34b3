#pragma once

#include "ftp/ftptypes.h"

#include <QString>
#include <atomic>
#include <optional>

/// Removes a local folder and everything in it, depth first. Symbolic links are removed as links
/// and never followed, at every level, also when the tree changes meanwhile. Write permission is
/// given back only to real folders inside the tree. A path that ends in the separator is emptied
/// but not removed. Blocking; does not need the event loop.
/// @param stop  ends the walk before its next step when it becomes true
/// @return nothing on success, else why the first thing that was left standing was left
[[nodiscard]] std::optional<QString> RemoveLocalTree(const QString &path,
                                                     const std::atomic_bool &stop);

/// Deletes one local file or link, also a read-only one. @return as RemoveLocalTree
[[nodiscard]] std::optional<QString> removeLocalFile(const QString &path);

/// Whether a path, without a separator at its end, is a symbolic link, whatever it leads to.
[[nodiscard]] bool isLocalLink(const QString &path);

/// Counts everything below a folder; links count as files and are not followed.
/// @param stop  ends the counting when it becomes true; the count is incomplete then
[[nodiscard]] FtpFolderContent countLocalTree(const QString &path, const std::atomic_bool &stop);
