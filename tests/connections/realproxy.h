#pragma once

#include "servers/process.h"

#include <QTemporaryDir>
#include <cstdint>

/// A real proxy program on a free port of 127.0.0.1.
class RealProxy {
public:
    enum class Kind {
        Microsocks, ///< SOCKS5
        MicrosocksLogin, ///< SOCKS5 with user "proxyuser" and password "proxypass"
        Dante, ///< SOCKS4 and SOCKS5
        FtpProxy, ///< log in as user@host:port
    };
    /// @throws std::runtime_error when the program is not there or does not come up
    explicit RealProxy(Kind kind);

    [[nodiscard]] std::uint16_t port() const { return m_port; }
    /// Whether this user may run it. @param why  receives the reason of a "no"
    [[nodiscard]] static bool canRun(Kind kind, std::string *why);

private:
    [[nodiscard]] std::vector<std::string> command(Kind kind);
    [[nodiscard]] std::string write(const QString &name, const QString &text);

    QTemporaryDir m_folder;
    std::uint16_t m_port;
    servers::Process m_process;
};
