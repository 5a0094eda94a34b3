#pragma once

#include "ftp/error.h"
#include "ftp/tls.h"

#include <asio/awaitable.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace ftp {

using Milliseconds = std::chrono::milliseconds;
template <class T> using Awaitable = asio::awaitable<T>;

/// A limit of inactivity for one direction of a socket. Moving it costs nothing; a timer runs only
/// while somebody waits.
class Deadline {
public:
    Deadline(const asio::any_io_executor &executor, asio::ip::tcp::socket &socket);
    void arm(Milliseconds limit);
    void disarm();
    void stop(); ///< for good: the timer goes too
    [[nodiscard]] bool expired() const { return m_state->expired; }

private:
    struct State {
        explicit State(const asio::any_io_executor &executor)
            : timer(executor)
        {
        }
        asio::steady_timer timer;
        asio::ip::tcp::socket *socket = nullptr;
        std::chrono::steady_clock::time_point until {};
        bool armed = false, running = false, expired = false;
    };
    static void wait(const std::shared_ptr<State> &state);

    std::shared_ptr<State> m_state;

public:
    ~Deadline();
    Deadline(const Deadline &) = delete;
    Deadline &operator=(const Deadline &) = delete;
};

/// A TCP connection, encrypted from startTls on. One reader and one writer may wait at a time.
class Stream {
public:
    explicit Stream(const asio::any_io_executor &executor);
    ~Stream();
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;

    [[nodiscard]] asio::ip::tcp::socket &socket() { return m_socket; }
    [[nodiscard]] const asio::any_io_executor &executor() { return m_executor; }
    [[nodiscard]] bool encrypted() const { return m_ssl != nullptr; }
    [[nodiscard]] SSL *ssl() const { return m_ssl.get(); }
    /// Whether decrypted bytes can be read without waiting.
    [[nodiscard]] bool holdsBytes();
    [[nodiscard]] bool closeNotifyReceived() const { return m_closeNotify; }

    Awaitable<Status> connect(asio::ip::tcp::endpoint endpoint, Milliseconds limit);
    /// Starts connecting and returns at once; finishConnect waits for the outcome.
    Status beginConnect(const asio::ip::tcp::endpoint &endpoint);
    Awaitable<Status> finishConnect(Milliseconds limit);
    /// Takes over an accepted connection.
    Status adopt(asio::ip::tcp::socket socket);
    /// Client handshake.
    /// @param role  a control connection leaves its session in the context, a data connection
    ///              resumes it
    enum class TlsRole { Control, Data };
    Awaitable<Status> startTls(TlsContext &context, std::string host, TlsRole role,
                               Milliseconds limit);

    /// Reads what is there, at least one byte; 0 means the peer ended the stream.
    Awaitable<Result<std::size_t>> readSome(char *buffer, std::size_t size, Milliseconds limit);
    Awaitable<Status> write(std::string_view bytes, Milliseconds limit);
    /// Tells the peer that nothing more comes: close_notify when encrypted, then a half-close.
    Awaitable<Status> finishSending(Milliseconds limit);
    /// Closes the socket; what still waits for it ends.
    void close();
    /// Ends pending waits with ErrorKind::Aborted.
    void abort();
    [[nodiscard]] bool aborted() const { return m_aborted; }

private:
    [[nodiscard]] bool usable() const { return !m_aborted && m_socket.is_open(); }
    using Readiness = asio::ip::tcp::socket::wait_type;
    Awaitable<Status> wait(Readiness wanted, Deadline &deadline, Milliseconds limit);
    Awaitable<Status> waitReadable(Milliseconds limit)
    {
        return wait(Readiness::wait_read, m_readLimit, limit);
    }
    Awaitable<Status> waitWritable(Milliseconds limit)
    {
        return wait(Readiness::wait_write, m_writeLimit, limit);
    }
    Awaitable<Result<std::size_t>> readPlain(char *buffer, std::size_t size, Milliseconds limit);
    Awaitable<Result<std::size_t>> readTls(char *buffer, std::size_t size, Milliseconds limit);
    Awaitable<Status> writePlain(std::string_view bytes, Milliseconds limit);
    Awaitable<Status> writeTls(std::string_view bytes, Milliseconds limit);
    /// Waits for what OpenSSL asked for. @param result  what the OpenSSL call returned
    Awaitable<Status> waitForTls(int result, Milliseconds limit);
    [[nodiscard]] tl::unexpected<Error> socketError(int code) const;

    asio::any_io_executor m_executor;
    asio::ip::tcp::socket m_socket;
    Deadline m_readLimit, m_writeLimit;
    SslPointer m_ssl;
    bool m_aborted = false;
    bool m_closeNotify = false;
};

} // namespace ftp
