// Configurations of the test servers, one function for each.
#pragma once

#include "servers/account.h"
#include "servers/servers.h"

namespace servers {

/// What a configuration is made of.
struct Launch {
    Options options;
    std::uint16_t port = 0;
    std::filesystem::path work; ///< folder for configurations and logs
    std::filesystem::path root; ///< folder that the user sees as "/"
    std::filesystem::path certificate; ///< PEM, certificate and key
    Account account;

    [[nodiscard]] std::filesystem::path protocol() const { return work / "protocol.log"; }
};

/// A program of the packages that setup.sh unpacks. @param path  below its folder of the cache
/// @throws std::runtime_error when it is not there
std::string unpackedProgram(const std::string &path);

/// Writes the server's configuration into the work folder.
/// @return the command that starts it in the foreground
/// @throws std::runtime_error when the server is not there
std::vector<std::string> prepare(Kind kind, const Launch &launch);

} // namespace servers
