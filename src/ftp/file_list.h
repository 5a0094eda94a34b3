#pragma once

#include "ftp/client.h"

#include <functional>
#include <string>
#include <vector>

namespace ftp {

/// One file of a list.
struct FilePair {
    std::string remotePath; ///< UTF-8, absolute
    std::string localPath;
};

/// What becomes of the files of a list. All of it is told in the list's order, whichever session
/// was the faster one: the replies about a file, then its outcome, then the next file's.
struct FileReports {
    std::function<void(const Reply &)> reply;
    /// Bytes so far of the first file whose outcome is still open.
    std::function<void(std::size_t file, std::int64_t bytes)> progress;
    /// Not called for a file that was never begun.
    std::function<void(std::size_t file, const Status &outcome)> done;
};

/// Moves files from their beginning over several sessions, as a folder's are; existing ones are
/// replaced. A file that fails leaves the others alone; a lost connection, a full local disk and an
/// abort end the list.
Awaitable<void> getFiles(Client &client, std::vector<FilePair> files, Type type,
                         FileReports reports);
Awaitable<void> putFiles(Client &client, std::vector<FilePair> files, Type type,
                         FileReports reports);

} // namespace ftp
