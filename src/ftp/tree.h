#pragma once

#include "ftp/client.h"

#include <string>

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

} // namespace ftp
