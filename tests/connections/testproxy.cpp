#include "connections/testproxy.h"

#include <array>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using servers::Handle;
using servers::Stream;

namespace {

constexpr int patience = 10000; ///< milliseconds for one step of a dialogue
constexpr int glance = 50; ///< milliseconds between two looks at whether the test is over

/// Copies bytes both ways until one side ends.
void relay(int left, int right, const std::atomic<bool> &ending)
{
    std::array<char, 65536> buffer {};
    while (!ending) {
        std::array<pollfd, 2> ends { { { left, POLLIN, 0 }, { right, POLLIN, 0 } } };
        if (::poll(ends.data(), ends.size(), glance) <= 0) {
            continue;
        }
        for (std::size_t at = 0; at < ends.size(); ++at) {
            if (ends.at(at).revents == 0) {
                continue;
            }
            const ssize_t got = ::read(ends.at(at).fd, buffer.data(), buffer.size());
            if (got <= 0) {
                return;
            }
            for (ssize_t sent = 0; sent < got;) {
                const ssize_t now = ::send(ends.at(1 - at).fd, buffer.data() + sent,
                                           static_cast<std::size_t>(got - sent), MSG_NOSIGNAL);
                if (now <= 0) {
                    return;
                }
                sent += now;
            }
        }
    }
}

int byteAt(const std::string &bytes, std::size_t at)
{
    return static_cast<unsigned char>(bytes.at(at));
}

std::uint16_t portAt(const std::string &bytes, std::size_t at)
{
    return static_cast<std::uint16_t>(byteAt(bytes, at) * 256 + byteAt(bytes, at + 1));
}

std::string dotted(const std::string &bytes)
{
    std::string text;
    for (std::size_t at = 0; at < 4; ++at) {
        text += (at == 0 ? "" : ".") + std::to_string(byteAt(bytes, at));
    }
    return text;
}

} // namespace

TestProxy::TestProxy(Kind kind, std::uint16_t target)
    : m_kind(kind)
    , m_target(target)
    , m_listener(servers::listenOn("127.0.0.1"))
    , m_port(servers::localPort(m_listener))
    , m_thread([this] { listen(); })
{
}

TestProxy::~TestProxy()
{
    m_ending = true;
    m_thread.join();
    for (std::thread &worker : m_workers) {
        worker.join();
    }
}

std::vector<std::string> TestProxy::requests() const
{
    const std::scoped_lock lock(m_mutex);
    return m_requests;
}

void TestProxy::note(const std::string &request)
{
    const std::scoped_lock lock(m_mutex);
    m_requests.push_back(request);
}

void TestProxy::listen()
{
    while (!m_ending) {
        Handle client = servers::acceptFrom(m_listener, glance);
        if (client) {
            m_workers.emplace_back([this, handle = std::make_shared<Handle>(std::move(client))] {
                serve(std::move(*handle));
            });
        }
    }
}

void TestProxy::serve(Handle handle)
{
    Stream client(std::move(handle));
    std::uint16_t port = m_target;
    std::string opening;
    const bool on = m_kind == Kind::Socks4 ? socks4(client, port)
        : m_kind == Kind::Socks5           ? socks5(client, port)
        : m_kind == Kind::Gateway          ? gateway(client, opening)
                                           : true;
    if (!on) {
        return;
    }
    Stream server(servers::connectTo("127.0.0.1", port));
    if (!opening.empty()) {
        std::string greeting; // "USER user@host": the server's greeting is for the proxy
        if (opening != "\r\n") {
            server.read(greeting, 4096, patience);
            server.write(opening);
        }
    }
    relay(client.handle(), server.handle(), m_ending);
}

bool TestProxy::take(Stream &client, std::size_t size, Bytes &bytes) const
{
    bytes.clear();
    while (bytes.size() < size) {
        if (client.read(bytes, size - bytes.size(), patience) <= 0) {
            return false;
        }
    }
    return true;
}

bool TestProxy::socks4(Stream &client, std::uint16_t &port)
{
    Bytes head, user, byte;
    if (!take(client, 8, head)) {
        return false;
    }
    while (take(client, 1, byte) && byte.at(0) != '\0') {
        user += byte;
    }
    port = portAt(head, 2);
    note("CONNECT " + dotted(head.substr(4)) + ":" + std::to_string(port) + " " + user);
    return client.write(std::string("\0\x5A\0\0\0\0\0\0", 8));
}

bool TestProxy::socks5(Stream &client, std::uint16_t &port)
{
    Bytes bytes, user, password, length;
    if (!take(client, 2, bytes) || !take(client, static_cast<std::size_t>(byteAt(bytes, 1)), bytes)
        || bytes.find('\x02') == Bytes::npos || !client.write(std::string("\x05\x02", 2))
        || !take(client, 2, bytes)
        || !take(client, static_cast<std::size_t>(byteAt(bytes, 1)), user)
        || !take(client, 1, length)
        || !take(client, static_cast<std::size_t>(byteAt(length, 0)), password)) {
        return false;
    }
    if (user != "proxyuser" || password != "proxypass") {
        client.write(std::string("\x01\x01", 2));
        return false;
    }
    if (!client.write(std::string("\x01\x00", 2)) || !take(client, 4, bytes)) {
        return false;
    }
    std::string address;
    if (byteAt(bytes, 3) == 1) {
        if (!take(client, 4, bytes)) {
            return false;
        }
        address = dotted(bytes);
    } else if (!take(client, 1, length)
               || !take(client, static_cast<std::size_t>(byteAt(length, 0)), address)) {
        return false;
    }
    if (!take(client, 2, bytes)) {
        return false;
    }
    port = portAt(bytes, 0);
    note("CONNECT " + address + ":" + std::to_string(port));
    return client.write(std::string("\x05\0\0\x01\x7F\0\0\x01\0\0", 10));
}

bool TestProxy::gateway(Stream &client, std::string &opening)
{
    client.write("220 proxy ready\r\n");
    std::string buffer;
    while (true) {
        std::size_t end = buffer.find("\r\n");
        while (end == std::string::npos) {
            if (client.read(buffer, 4096, patience) <= 0) {
                return false;
            }
            end = buffer.find("\r\n");
        }
        const std::string line = buffer.substr(0, end);
        buffer.erase(0, end + 2);
        note(line);
        const std::size_t at = line.rfind('@');
        if (line.rfind("SITE ", 0) == 0 || line.rfind("OPEN ", 0) == 0) {
            opening = "\r\n"; // the server's greeting is the answer
            return true;
        }
        if (line.rfind("USER ", 0) == 0 && at != std::string::npos) {
            opening = line.substr(0, at) + "\r\n";
            return true;
        }
        if (line == "USER proxyuser") {
            client.write("331 password\r\n");
        } else if (line == "PASS proxypass") {
            client.write("230 at the proxy\r\n");
        } else {
            client.write("530 not here\r\n");
        }
    }
}
