#include "ftp/proxy.h"

#include "ftp/connect.h"

#include <array>
#include <vector>

namespace ftp {
namespace {

Awaitable<Status> readExactly(Stream &stream, unsigned char *buffer, std::size_t size,
                              Milliseconds limit)
{
    std::size_t have = 0;
    while (have < size) {
        auto count
            = co_await stream.readSome(reinterpret_cast<char *>(buffer) + have, size - have, limit);
        if (!count) {
            co_return tl::unexpected(count.error());
        }
        if (*count == 0) {
            co_return fail(ErrorKind::Proxy, "SOCKS proxy: connection closed");
        }
        have += *count;
    }
    co_return Status {};
}

/// Sends a request and reads the part of the answer that always has the same length.
template <std::size_t Size>
Awaitable<Result<std::array<unsigned char, Size>>> exchange(Stream &stream, std::string request,
                                                            Milliseconds limit)
{
    Status step = co_await stream.write(request, limit);
    std::array<unsigned char, Size> answer {};
    if (step) {
        step = co_await readExactly(stream, answer.data(), answer.size(), limit);
    }
    if (!step) {
        co_return tl::unexpected(step.error());
    }
    co_return answer;
}

std::string portBytes(std::uint16_t port)
{
    return { static_cast<char>(port >> 8), static_cast<char>(port & 0xFF) };
}

tl::unexpected<Error> rejected(int code)
{
    return fail(ErrorKind::Proxy, "SOCKS proxy: request rejected (" + std::to_string(code) + ")");
}

/// SOCKS4; a name that we cannot resolve goes as SOCKS4a.
Awaitable<Status> socks4(Stream &stream, const Proxy &proxy, std::string host, std::uint16_t port,
                         Milliseconds limit)
{
    std::string request = std::string("\x04\x01", 2) + portBytes(port);
    auto endpoints = co_await lookUp(stream, host, port, limit);
    std::string name;
    bool resolved = false;
    if (endpoints) {
        for (const auto &endpoint : *endpoints) {
            if (endpoint.address().is_v4() && !resolved) {
                const auto bytes = endpoint.address().to_v4().to_bytes();
                request.append(bytes.begin(), bytes.end());
                resolved = true;
            }
        }
    }
    if (!resolved) {
        request += std::string("\0\0\0\x01", 4);
        name = host + '\0';
    }
    request += proxy.user + '\0' + name;
    auto answer = co_await exchange<8>(stream, std::move(request), limit);
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    const int code = (*answer)[1];
    co_return code == 0x5A ? Status {} : Status(rejected(code));
}

Awaitable<Status> socks5Login(Stream &stream, const Proxy &proxy, Milliseconds limit)
{
    std::string login = "\x01";
    login += static_cast<char>(proxy.user.size());
    login += proxy.user;
    login += static_cast<char>(proxy.password.size());
    login += proxy.password;
    auto answer = co_await exchange<2>(stream, std::move(login), limit);
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    co_return (*answer)[1] == 0
        ? Status {}
        : Status(fail(ErrorKind::Proxy, "SOCKS proxy: user or password refused"));
}

/// The rest of a SOCKS5 answer: the address bound by the proxy, which nobody needs.
Awaitable<Status> skipAddress(Stream &stream, unsigned char kind, Milliseconds limit)
{
    std::size_t size = kind == 1 ? 4 : 16;
    if (kind == 3) {
        unsigned char length = 0;
        Status read = co_await readExactly(stream, &length, 1, limit);
        if (!read) {
            co_return read;
        }
        size = length;
    }
    std::vector<unsigned char> rest(size + 2);
    co_return co_await readExactly(stream, rest.data(), rest.size(), limit);
}

/// A host as a SOCKS5 request names it: kind and bytes.
std::string socks5Address(const std::string &host)
{
    std::error_code notLiteral;
    const auto literal = asio::ip::make_address(host, notLiteral);
    if (notLiteral) {
        return std::string("\x03") + static_cast<char>(host.size()) + host;
    }
    std::string address(1, literal.is_v4() ? '\x01' : '\x04');
    if (literal.is_v4()) {
        const auto bytes = literal.to_v4().to_bytes();
        address.append(bytes.begin(), bytes.end());
    } else {
        const auto bytes = literal.to_v6().to_bytes();
        address.append(bytes.begin(), bytes.end());
    }
    return address;
}

Awaitable<Status> socks5(Stream &stream, const Proxy &proxy, std::string host, std::uint16_t port,
                         Milliseconds limit)
{
    if (host.size() > 255 || proxy.user.size() > 255 || proxy.password.size() > 255) {
        co_return fail(ErrorKind::BadArgument, "SOCKS proxy: name too long");
    }
    std::string greeting
        = proxy.user.empty() ? std::string("\x05\x01\x00", 3) : std::string("\x05\x02\x00\x02", 4);
    auto method = co_await exchange<2>(stream, std::move(greeting), limit);
    if (!method) {
        co_return tl::unexpected(method.error());
    }
    const auto [version, way] = *method;
    if (version != 5 || (way != 0 && way != 2)) {
        co_return fail(ErrorKind::Proxy, "SOCKS proxy: no acceptable login method");
    }
    if (way == 2) {
        Status login = co_await socks5Login(stream, proxy, limit);
        if (!login) {
            co_return login;
        }
    }
    std::string request = std::string("\x05\x01\x00", 3) + socks5Address(host) + portBytes(port);
    auto answer = co_await exchange<4>(stream, std::move(request), limit);
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    if ((*answer)[1] != 0) {
        co_return rejected((*answer)[1]);
    }
    co_return co_await skipAddress(stream, (*answer)[3], limit);
}

} // namespace

Awaitable<Status> socksConnect(Stream &stream, const Proxy &proxy, std::string host,
                               std::uint16_t port, Milliseconds limit)
{
    if (proxy.kind == ProxyKind::Socks4) {
        return socks4(stream, proxy, std::move(host), port, limit);
    }
    return socks5(stream, proxy, std::move(host), port, limit);
}

std::string hostAndPort(const std::string &host, std::uint16_t port)
{
    return port == 21 ? host : host + ":" + std::to_string(port);
}

} // namespace ftp
