#pragma once

#include "ftp/proxy.h"
#include "ftp/stream.h"

#include <vector>

namespace ftp {

/// All addresses of a name, in the resolver's order. The look-up runs beside the engine's thread
/// and is left behind when the stream that it is for is aborted.
Awaitable<Result<std::vector<asio::ip::tcp::endpoint>>>
lookUp(Stream &stream, std::string host, std::uint16_t port, Milliseconds limit);

/// A TCP connection to host and port, directly or through a SOCKS proxy; the addresses of a name
/// are tried one after the other and only the last failure counts.
Awaitable<Status> connectTo(Stream &stream, std::string host, std::uint16_t port,
                            const Proxy &proxy, Milliseconds limit);

} // namespace ftp
