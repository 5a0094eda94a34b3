// Ports and first contact, for servers that tests start.
#pragma once

#include <cstdint>
#include <string>

namespace servers {

/// A port of that address on which nobody listens, and which the system gives to nobody else for
/// about a minute. The caller must listen with SO_REUSEADDR, as every server does.
/// @throws std::runtime_error
std::uint16_t freePort(const std::string &address);

/// Whether somebody listens on that port. Does not connect: a server that counts its connections
/// must not see ours.
bool isListening(std::uint16_t port);

} // namespace servers
