#include "ftp/stream.h"

#include <asio/redirect_error.hpp>
#include <asio/use_awaitable.hpp>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <openssl/err.h>
#include <sys/socket.h>

namespace ftp {
namespace {

/// An error of the system as the program describes it.
Error systemError(int code)
{
    switch (code) {
    case ECONNREFUSED:
        return { ErrorKind::ConnectRefused, 0, "Connection refused" };
    case ETIMEDOUT:
        return { ErrorKind::Timeout, 0, "Connection timed out" };
    case ECONNRESET:
    case ENOTCONN:
    case EPIPE:
        return { ErrorKind::ConnectionClosed, 0, "Connection closed by server" };
    default:
        return { ErrorKind::Unreachable, 0, std::strerror(code) };
    }
}

/// The line ended without close_notify.
bool endedUnannounced(int why)
{
    return why == SSL_ERROR_SSL
        && ERR_GET_REASON(ERR_peek_last_error()) == SSL_R_UNEXPECTED_EOF_WHILE_READING;
}

} // namespace

Deadline::Deadline(const asio::any_io_executor &executor, asio::ip::tcp::socket &socket)
    : m_state(std::make_shared<State>(executor))
{
    m_state->socket = &socket;
}

Deadline::~Deadline()
{
    m_state->socket = nullptr;
    m_state->timer.cancel();
}

void Deadline::wait(const std::shared_ptr<State> &state)
{
    state->running = true;
    state->timer.expires_at(state->until);
    state->timer.async_wait([state](const std::error_code &) {
        state->running = false;
        if (!state->armed || state->socket == nullptr) {
            return;
        }
        if (std::chrono::steady_clock::now() < state->until) {
            wait(state); // moved meanwhile
            return;
        }
        state->expired = true;
        std::error_code ignored; // a socket that cannot be cancelled has nobody waiting
        state->socket->cancel(ignored);
    });
}

void Deadline::arm(Milliseconds limit)
{
    const auto until = std::chrono::steady_clock::now() + limit;
    const bool earlier = until < m_state->until;
    m_state->until = until;
    m_state->armed = true;
    m_state->expired = false;
    if (!m_state->running) {
        wait(m_state);
    } else if (earlier) {
        m_state->timer.cancel(); // the handler sets it anew
    }
}

void Deadline::disarm() { m_state->armed = false; }

void Deadline::stop()
{
    m_state->armed = false;
    m_state->timer.cancel();
}

Stream::Stream(const asio::any_io_executor &executor)
    : m_executor(executor)
    , m_socket(executor)
    , m_readLimit(executor, m_socket)
    , m_writeLimit(executor, m_socket)
{
    // Broken lines are reported by the calls themselves; OpenSSL knows no other
    // way to be quiet about it.
    [[maybe_unused]] static const auto before = std::signal(SIGPIPE, SIG_IGN);
}

Stream::~Stream() = default;

tl::unexpected<Error> Stream::socketError(int code) const
{
    if (m_aborted) {
        return fail(ErrorKind::Aborted, "Aborted");
    }
    return tl::unexpected<Error>(systemError(code));
}

Awaitable<Status> Stream::wait(Readiness wanted, Deadline &deadline, Milliseconds limit)
{
    std::error_code error;
    deadline.arm(limit);
    co_await m_socket.async_wait(wanted, asio::redirect_error(asio::use_awaitable, error));
    deadline.disarm();
    if (deadline.expired()) {
        co_return fail(ErrorKind::Timeout, "Connection timed out");
    }
    if (error) {
        co_return socketError(error == asio::error::operation_aborted ? ECONNRESET : error.value());
    }
    co_return Status {};
}

Awaitable<Status> Stream::connect(asio::ip::tcp::endpoint endpoint, Milliseconds limit)
{
    Status begun = beginConnect(endpoint);
    if (!begun) {
        co_return begun;
    }
    co_return co_await finishConnect(limit);
}

Status Stream::beginConnect(const asio::ip::tcp::endpoint &endpoint)
{
    std::error_code error;
    if (m_aborted) {
        return socketError(ECONNRESET);
    }
    m_socket.open(endpoint.protocol(), error);
    if (!error) {
        m_socket.native_non_blocking(true, error);
    }
    if (error) {
        return socketError(error.value());
    }
    if (::connect(m_socket.native_handle(), endpoint.data(),
                  static_cast<socklen_t>(endpoint.size()))
            != 0
        && errno != EINPROGRESS) {
        return socketError(errno);
    }
    return {};
}

Awaitable<Status> Stream::finishConnect(Milliseconds limit)
{
    Status ready = co_await waitWritable(limit);
    if (!ready) {
        co_return ready;
    }
    int code = 0;
    socklen_t size = sizeof code;
    ::getsockopt(m_socket.native_handle(), SOL_SOCKET, SO_ERROR, &code, &size);
    co_return code == 0 ? Status {} : Status(socketError(code));
}

Status Stream::adopt(asio::ip::tcp::socket socket)
{
    std::error_code error;
    m_socket = std::move(socket);
    m_socket.native_non_blocking(true, error);
    return error ? Status(socketError(error.value())) : Status {};
}

Awaitable<Result<std::size_t>> Stream::readSome(char *buffer, std::size_t size, Milliseconds limit)
{
    return m_ssl ? readTls(buffer, size, limit) : readPlain(buffer, size, limit);
}

Awaitable<Result<std::size_t>> Stream::readPlain(char *buffer, std::size_t size, Milliseconds limit)
{
    while (usable()) {
        const ssize_t count = ::recv(m_socket.native_handle(), buffer, size, MSG_DONTWAIT);
        if (count >= 0) {
            co_return static_cast<std::size_t>(count);
        }
        if (errno != EAGAIN && errno != EINTR) {
            co_return socketError(errno);
        }
        Status ready = co_await waitReadable(limit);
        if (!ready) {
            co_return tl::unexpected(ready.error());
        }
    }
    co_return socketError(ECONNRESET);
}

Awaitable<Result<std::size_t>> Stream::readTls(char *buffer, std::size_t size, Milliseconds limit)
{
    while (usable()) {
        ERR_clear_error();
        std::size_t count = 0;
        const int result = SSL_read_ex(m_ssl.get(), buffer, size, &count);
        if (result == 1) {
            co_return count;
        }
        const int why = SSL_get_error(m_ssl.get(), result);
        if (why == SSL_ERROR_ZERO_RETURN) {
            m_closeNotify = true;
        }
        // What an end without notice means the caller decides.
        if (why == SSL_ERROR_ZERO_RETURN || endedUnannounced(why)) {
            co_return std::size_t { 0 };
        }
        Status ready = co_await waitForTls(result, limit);
        if (!ready) {
            co_return tl::unexpected(ready.error());
        }
    }
    co_return socketError(ECONNRESET);
}

Awaitable<Status> Stream::write(std::string_view bytes, Milliseconds limit)
{
    return m_ssl ? writeTls(bytes, limit) : writePlain(bytes, limit);
}

Awaitable<Status> Stream::writePlain(std::string_view bytes, Milliseconds limit)
{
    while (!bytes.empty()) {
        if (!usable()) {
            co_return socketError(ECONNRESET);
        }
        const ssize_t count = ::send(m_socket.native_handle(), bytes.data(), bytes.size(),
                                     MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
            continue;
        }
        if (errno != EAGAIN && errno != EINTR) {
            co_return socketError(errno);
        }
        Status ready = co_await waitWritable(limit);
        if (!ready) {
            co_return ready;
        }
    }
    co_return Status {};
}

Awaitable<Status> Stream::writeTls(std::string_view bytes, Milliseconds limit)
{
    while (!bytes.empty()) {
        if (!usable()) {
            co_return socketError(ECONNRESET);
        }
        ERR_clear_error();
        std::size_t count = 0;
        const int result = SSL_write_ex(m_ssl.get(), bytes.data(), bytes.size(), &count);
        if (result == 1) {
            bytes.remove_prefix(count);
            continue;
        }
        Status ready = co_await waitForTls(result, limit);
        if (!ready) {
            co_return ready;
        }
    }
    co_return Status {};
}

Awaitable<Status> Stream::waitForTls(int result, Milliseconds limit)
{
    const int why = SSL_get_error(m_ssl.get(), result);
    if (why == SSL_ERROR_WANT_READ) {
        return waitReadable(limit);
    }
    if (why == SSL_ERROR_WANT_WRITE) {
        return waitWritable(limit);
    }
    return [](Stream &self, int code, int number) -> Awaitable<Status> {
        if (code == SSL_ERROR_SYSCALL) {
            co_return self.socketError(number == 0 ? ECONNRESET : number);
        }
        co_return self.m_aborted ? Status(fail(ErrorKind::Aborted, "Aborted"))
                                 : Status(tlsFailure());
    }(*this, why, errno);
}

Awaitable<Status> Stream::startTls(TlsContext &context, std::string host, TlsRole role,
                                   Milliseconds limit)
{
    m_ssl = context.newConnection(m_socket.native_handle(), host,
                                  role == TlsRole::Data ? context.session() : nullptr);
    if (!m_ssl) {
        co_return tlsFailure();
    }
    if (role == TlsRole::Control) {
        context.keepSessionOf(m_ssl.get());
    }
    for (;;) {
        ERR_clear_error();
        const int result = SSL_do_handshake(m_ssl.get());
        if (result == 1) {
            co_return Status {};
        }
        Status ready = co_await waitForTls(result, limit);
        if (!ready) {
            co_return ready;
        }
    }
}

bool Stream::holdsBytes()
{
    char byte = 0;
    if (!m_ssl) {
        return ::recv(m_socket.native_handle(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) > 0;
    }
    // Not SSL_pending or SSL_has_pending: the one knows only the record that was begun, the other
    // counts tickets, too.
    ERR_clear_error();
    std::size_t count = 0;
    const bool holds = SSL_peek_ex(m_ssl.get(), &byte, 1, &count) == 1;
    ERR_clear_error();
    return holds;
}

Awaitable<Status> Stream::finishSending(Milliseconds limit)
{
    while (m_ssl && !m_aborted) {
        ERR_clear_error();
        const int result = SSL_shutdown(m_ssl.get());
        if (result >= 0) {
            break; // sent; the peer's own is seen by the next read
        }
        Status ready = co_await waitForTls(result, limit);
        if (!ready) {
            co_return ready;
        }
    }
    std::error_code error;
    m_socket.shutdown(asio::ip::tcp::socket::shutdown_send, error);
    co_return error ? Status(socketError(error.value())) : Status {};
}

void Stream::close()
{
    m_readLimit.stop();
    m_writeLimit.stop();
    std::error_code ignored; // the descriptor is gone either way
    m_socket.close(ignored);
}

void Stream::abort()
{
    m_aborted = true;
    close();
}

} // namespace ftp
