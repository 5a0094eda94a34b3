#pragma once

#include "ftp/client.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ftp {

/// Whole folders at once. The work is spread over several sessions, up to the client's limit; the
/// first one starts alone and others join while the server lets them in. Progress counts the bytes
/// of the whole tree; replies are reported only when something was refused.

/// Fetches what is in a remote folder into a local one, which is made when missing. Links to files
/// are fetched, links to folders are left out, unsafe names are refused with a note each.
Awaitable<Status> getTree(Client &client, std::string remoteFolder, std::string localFolder,
                          Type type);

/// Stores what is in a local folder in a remote one, which is made when missing. Links to folders,
/// pipes, sockets and devices are left out.
Awaitable<Status> putTree(Client &client, std::string localFolder, std::string remoteFolder,
                          Type type);

/// Removes a remote folder and everything in it. Links inside are left alone; then the folder that
/// holds them cannot be removed and the call fails.
Awaitable<Status> removeTree(Client &client, std::string folder);

/// Hears what became of the file of that index.
using FileDone = std::function<void(std::size_t index, Status done)>;
/// Deletes single files, many in one round trip.
/// @param done  called for every file that was tried, in their order but for names that no command
///              may carry, which are told at once; when the line breaks, also for those whose fate
///              is unknown
Awaitable<Status> removeFiles(Client &client, std::vector<std::string> paths, FileDone done);

/// What stands inside folders; links count as files.
struct FolderContent {
    std::int64_t files = 0;
    std::int64_t folders = 0;
    bool complete = true; ///< false when the counting was stopped or a folder could not be read
};
/// Counts what stands inside remote folders. Links are not followed.
/// @param stop  ends the counting before its next folder when it becomes true
Awaitable<Result<FolderContent>> countInside(Client &client, std::vector<std::string> folders,
                                             std::shared_ptr<const std::atomic_bool> stop);

/// Modes as octal digits written as a decimal number (755).
struct InsideModes {
    int files = 644;
    int folders = 755;
};
/// Sets the permissions of everything inside a remote folder. Links are neither followed nor
/// changed; the folder itself is left as it is.
/// @return the first refusal; the others stand in the log
Awaitable<Status> changeModesInside(Client &client, std::string folder, InsideModes modes);

} // namespace ftp
