#pragma once

#include "ftp/stream.h"

#include <cstdint>
#include <string>

namespace ftp {

/// Kinds of proxies and firewalls, as the settings number them.
enum class ProxyKind {
    None = 0,
    Socks4 = 1,
    Socks5 = 2,
    Site = 3,
    UserLogin = 4,
    UserNoLogin = 5,
    Open = 6,
    Pipe = 7
};

struct Proxy {
    ProxyKind kind = ProxyKind::None;
    std::string host;
    std::uint16_t port = 0;
    std::string user, password;

    [[nodiscard]] bool socks() const
    {
        return kind == ProxyKind::Socks4 || kind == ProxyKind::Socks5;
    }
    /// The proxy speaks FTP with us (kinds 3 to 7).
    [[nodiscard]] bool application() const { return kind != ProxyKind::None && !socks(); }
};

/// Asks a SOCKS proxy at the other end of the stream for a connection to host and port.
/// SOCKS4: memos of Y.-D. Lee; SOCKS5: RFC 1928, RFC 1929.
Awaitable<Status> socksConnect(Stream &stream, const Proxy &proxy, std::string host,
                               std::uint16_t port, Milliseconds limit);

/// "host" or "host:port" when the port is not 21, as application proxies want it.
[[nodiscard]] std::string hostAndPort(const std::string &host, std::uint16_t port);

} // namespace ftp
