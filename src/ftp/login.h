#pragma once

#include "ftp/dialogue.h"
#include "ftp/proxy.h"

#include <string>

namespace ftp {

struct Credentials {
    std::string user, password;
    std::string account; ///< sent only when the server asks for it
};

/// Waits for the greeting (RFC 959, section 5.4: 120 may come before 220).
Awaitable<Result<Reply>> readGreeting(Dialogue &dialogue);

/// Asks what comes first on a connection. Some proxies let a command through and pass the server's
/// greeting (220) on behind it, which is not its answer.
Awaitable<Result<Reply>> askPastGreeting(Dialogue &dialogue, std::string command);

/// USER, PASS, ACCT as far as the server asks for them (RFC 959, section 5.4).
/// @param user  what USER says; may hold more than the name when a proxy is asked
Awaitable<Status> loginAs(Dialogue &dialogue, std::string user, Credentials credentials);

/// The part of a login that speaks to an FTP proxy until the server itself can be talked to.
/// Kinds 4 and 5 name the server in USER, so that there is nothing left to do but loginAs with
/// proxyUserName; the others end with the server's greeting.
Awaitable<Status> reachServer(Dialogue &dialogue, const Proxy &proxy, std::string host,
                              std::uint16_t port);

/// What USER has to say behind the proxy: "user" or "user@host[:port]".
[[nodiscard]] std::string proxyUserName(const Proxy &proxy, const std::string &user,
                                        const std::string &host, std::uint16_t port);

/// Tells a refused login from a full server and from one that wants encryption.
[[nodiscard]] Error loginError(Error error, bool encrypted);

} // namespace ftp
