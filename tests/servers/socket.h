// Sockets with time limits and TLS, for the test clients and servers.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <openssl/ssl.h>
#include <string>

namespace servers {

/// A socket's handle; closed at the end.
class Handle {
public:
    explicit Handle(int handle = -1)
        : m_handle(handle)
    {
    }
    Handle(Handle &&other) noexcept
        : m_handle(other.release())
    {
    }
    Handle &operator=(Handle &&other) noexcept;
    ~Handle() { reset(); }
    [[nodiscard]] int get() const { return m_handle; }
    int release();
    void reset();
    explicit operator bool() const { return m_handle >= 0; }

private:
    int m_handle;
};

/// Connects to a numeric address. @throws std::runtime_error
Handle connectTo(const std::string &address, std::uint16_t port);
/// Listens on a port of a numeric address; 0 = any free one. @throws std::runtime_error
Handle listenOn(const std::string &address, std::uint16_t port = 0);
std::uint16_t localPort(const Handle &handle);
/// Accepts one connection; an empty handle when none came in time.
/// @param cancel  a handle that becomes readable when waiting is to end; -1 = none
Handle acceptFrom(const Handle &listener, int milliseconds, int cancel = -1);

/// A connection, in clear or through TLS.
class Stream {
public:
    explicit Stream(Handle handle, int cancel = -1);
    ~Stream();
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;

    /// Appends what is there, at most size bytes, after waiting at most so long (-1 = for ever).
    /// @return the number of bytes; 0 = end of the connection, -1 = error, time-out or cancelled
    long read(std::string &buffer, std::size_t size, int milliseconds);
    bool write(std::string_view bytes); ///< all of them; false when that failed
    /// @param trusted  the certificate that the server must have; empty = any
    /// @param session  an earlier session to take up again; may be null
    bool startTlsAsClient(const std::filesystem::path &trusted, SSL_SESSION *session);
    bool startTlsAsServer(SSL_CTX *context);
    [[nodiscard]] bool encrypted() const { return m_ssl != nullptr; }
    [[nodiscard]] bool sessionReused() const;
    /// The TLS session, for another connection; null in clear or when the server gave none.
    [[nodiscard]] SSL_SESSION *session() const;
    void close(); ///< politely: close_notify first
    /// Politely after an upload: what the other side has sent is read first, since closing over
    /// unread bytes resets the connection and may destroy ours.
    void finish();
    void closeWithoutNotice(); ///< TLS: without close_notify
    void drop(); ///< without close_notify, with a reset
    [[nodiscard]] int handle() const { return m_handle.get(); }

private:
    bool wait(short events, int milliseconds) const;
    bool handshake(int (*step)(SSL *));
    Handle m_handle;
    int m_cancel;
    SSL *m_ssl = nullptr;
};

} // namespace servers
