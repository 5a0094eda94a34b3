#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "servers/socket.h"

/// A proxy on a free port of 127.0.0.1 that leads to one FTP server on this machine. Works in
/// threads of its own.
class TestProxy {
public:
    enum class Kind {
        Socks4,
        Socks5, ///< wants user "proxyuser" and password "proxypass"
        Gateway, ///< speaks FTP: logs proxyuser in, then SITE, OPEN or USER user@host lead on
        Pipe, ///< hands every byte on
    };

    /// @param target  port of the server; every address asked for leads there
    TestProxy(Kind kind, std::uint16_t target);
    ~TestProxy();
    TestProxy(const TestProxy &) = delete;
    TestProxy &operator=(const TestProxy &) = delete;

    [[nodiscard]] std::uint16_t port() const { return m_port; }
    /// What clients asked for: "CONNECT address:port" of SOCKS, or the lines said to the gateway.
    [[nodiscard]] std::vector<std::string> requests() const;

private:
    using Bytes = std::string;
    void listen();
    void serve(servers::Handle client);
    bool socks4(servers::Stream &client, std::uint16_t &port);
    bool socks5(servers::Stream &client, std::uint16_t &port);
    /// @return what is to be said to the server first; nothing when the client gave up
    bool gateway(servers::Stream &client, std::string &opening);
    bool take(servers::Stream &client, std::size_t size, Bytes &bytes) const;
    void note(const std::string &request);

    Kind m_kind;
    std::uint16_t m_target;
    servers::Handle m_listener;
    std::uint16_t m_port;
    std::atomic<bool> m_ending { false };
    mutable std::mutex m_mutex;
    std::vector<std::string> m_requests;
    std::vector<std::thread> m_workers;
    std::thread m_thread;
};
