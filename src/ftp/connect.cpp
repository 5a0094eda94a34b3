#include "ftp/connect.h"

#include <asio/post.hpp>
#include <asio/redirect_error.hpp>
#include <asio/use_awaitable.hpp>
#include <cstring>
#include <netdb.h>
#include <thread>

namespace ftp {
namespace {

/// Looking a name up cannot be interrupted, but nobody has to wait for it.
constexpr Milliseconds abortSeenWithin { 200 };

using Endpoints = std::vector<asio::ip::tcp::endpoint>;

/// Outcome of a look-up, shared with the thread that does it.
struct LookUp {
    int code = 0;
    Endpoints endpoints;
};

void resolve(LookUp &result, const std::string &host, std::uint16_t port)
{
    addrinfo hints {};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_ADDRCONFIG;
    addrinfo *list = nullptr;
    result.code = ::getaddrinfo(host.c_str(), nullptr, &hints, &list);
    if (result.code != 0) {
        return;
    }
    for (const addrinfo *one = list; one != nullptr; one = one->ai_next) {
        asio::ip::tcp::endpoint endpoint;
        if (one->ai_addrlen <= endpoint.capacity()) {
            std::memcpy(endpoint.data(), one->ai_addr, one->ai_addrlen);
            endpoint.resize(one->ai_addrlen);
            endpoint.port(port);
            result.endpoints.push_back(endpoint);
        }
    }
    ::freeaddrinfo(list);
}

/// A failed look-up as the program describes it. @param code  of getaddrinfo
Error lookUpError(int code, const std::string &host)
{
    const bool unknown = code == EAI_NONAME || code == EAI_NODATA || code == EAI_ADDRFAMILY
        || code == EAI_AGAIN || code == EAI_FAIL;
    if (!unknown) {
        return { ErrorKind::UnknownHost, 0,
                 std::string("Name resolution failed: ") + ::gai_strerror(code) };
    }
    std::string text = "No such host is known";
    if (code == EAI_AGAIN || code == EAI_FAIL) {
        text += std::string(" (") + ::gai_strerror(code) + ")";
    }
    // A name with these digits would look like the reply to a refused login.
    if (!host.empty() && host.find("530") == std::string::npos) {
        text += ": " + host;
    }
    return { ErrorKind::UnknownHost, 0, text };
}

/// A look-up on its way; it outlives who waits for it.
struct Wait {
    explicit Wait(const asio::any_io_executor &on)
        : timer(on)
    {
    }
    ~Wait()
    {
        if (thread.joinable()) {
            thread.detach(); // nobody waited to the end
        }
    }
    asio::steady_timer timer;
    std::thread thread;
    LookUp result;
    bool done = false;
};

/// getaddrinfo cannot be interrupted: its thread owns what it touches and may outlive us.
std::shared_ptr<Wait> begin(const asio::any_io_executor &executor, const std::string &host,
                            std::uint16_t port)
{
    auto wait = std::make_shared<Wait>(executor);
    auto keepsContextBusy = asio::prefer(executor, asio::execution::outstanding_work.tracked);
    wait->thread = std::thread([wait, host, port, keepsContextBusy]() mutable {
        LookUp result;
        resolve(result, host, port);
        asio::post(keepsContextBusy, [wait, result = std::move(result)]() mutable {
            wait->result = std::move(result);
            wait->done = true;
            wait->timer.cancel();
        });
    });
    return wait;
}

} // namespace

Awaitable<Result<Endpoints>> lookUp(Stream &stream, std::string host, std::uint16_t port,
                                    Milliseconds limit)
{
    std::error_code notLiteral;
    const auto literal = asio::ip::make_address(host, notLiteral);
    if (!notLiteral) {
        co_return Endpoints { asio::ip::tcp::endpoint(literal, port) };
    }
    if (host.empty()) {
        co_return tl::unexpected(lookUpError(EAI_NONAME, host));
    }
    const auto wait = begin(stream.executor(), host, port);
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!wait->done && !stream.aborted() && std::chrono::steady_clock::now() < end) {
        wait->timer.expires_at(std::min(std::chrono::steady_clock::now() + abortSeenWithin, end));
        std::error_code cancelled; // the timer's end is told apart by the flag
        co_await wait->timer.async_wait(asio::redirect_error(asio::use_awaitable, cancelled));
    }
    if (wait->done) {
        wait->thread.join(); // it is on its way out, and must not touch the executor any more
    }
    if (stream.aborted()) {
        co_return fail(ErrorKind::Aborted, "Aborted");
    }
    if (!wait->done) {
        co_return fail(ErrorKind::Timeout, "Name resolution timed out");
    }
    if (wait->result.code != 0 || wait->result.endpoints.empty()) {
        co_return tl::unexpected(
            lookUpError(wait->result.code != 0 ? wait->result.code : EAI_NONAME, host));
    }
    co_return std::move(wait->result.endpoints);
}

Awaitable<Status> connectTo(Stream &stream, std::string host, std::uint16_t port,
                            const Proxy &proxy, Milliseconds limit)
{
    const bool through = proxy.kind != ProxyKind::None;
    const std::string &name = through ? proxy.host : host;
    auto endpoints = co_await lookUp(stream, name, through ? proxy.port : port, limit);
    if (!endpoints) {
        co_return tl::unexpected(endpoints.error());
    }
    Status connected = fail(ErrorKind::Unreachable, "No address");
    // A dead address may take its share of the time, but not that of the others.
    const Milliseconds share
        = limit / static_cast<int>(std::max<std::size_t>(endpoints->size(), 1));
    for (const auto &endpoint : *endpoints) {
        connected = co_await stream.connect(endpoint, share);
        if (connected || connected.error().kind == ErrorKind::Aborted) {
            break;
        }
        stream.close();
    }
    if (connected && proxy.socks()) {
        connected = co_await socksConnect(stream, proxy, host, port, limit);
    }
    co_return connected;
}

} // namespace ftp
