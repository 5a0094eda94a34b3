#include "servers/socket.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace servers {

namespace {

struct Address {
    sockaddr_storage storage {};
    socklen_t size = sizeof(storage);
    sockaddr *pointer() { return reinterpret_cast<sockaddr *>(&storage); }
};

Address numericAddress(const std::string &address, std::uint16_t port)
{
    addrinfo hints {};
    hints.ai_flags = AI_NUMERICHOST;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *found = nullptr;
    if (getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found) != 0) {
        throw std::runtime_error("not an address: " + address);
    }
    Address result;
    std::memcpy(&result.storage, found->ai_addr, found->ai_addrlen);
    result.size = found->ai_addrlen;
    freeaddrinfo(found);
    return result;
}

void check(bool good, const char *what)
{
    if (!good) {
        throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
    }
}

/// OpenSSL writes to its socket without MSG_NOSIGNAL. The signal is held back only while it
/// does so: a process under test has to deal with its own.
class TlsCall {
public:
    TlsCall()
    {
        sigemptyset(&m_signal);
        sigaddset(&m_signal, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &m_signal, &m_before);
        ERR_clear_error();
    }
    ~TlsCall()
    {
        const timespec now {};
        sigtimedwait(&m_signal, nullptr, &now);
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }
    TlsCall(const TlsCall &) = delete;
    TlsCall &operator=(const TlsCall &) = delete;

private:
    sigset_t m_signal {};
    sigset_t m_before {};
};

} // namespace

Handle &Handle::operator=(Handle &&other) noexcept
{
    reset();
    m_handle = other.release();
    return *this;
}

int Handle::release() { return std::exchange(m_handle, -1); }

void Handle::reset()
{
    if (m_handle >= 0) {
        close(release());
    }
}

Handle connectTo(const std::string &address, std::uint16_t port)
{
    Address remote = numericAddress(address, port);
    Handle result(socket(remote.storage.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    check(connect(result.get(), remote.pointer(), remote.size) == 0, "connect");
    return result;
}

Handle listenOn(const std::string &address, std::uint16_t port)
{
    Address local = numericAddress(address, port);
    Handle result(socket(local.storage.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int on = 1;
    setsockopt(result.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    check(bind(result.get(), local.pointer(), local.size) == 0, "bind");
    check(listen(result.get(), 128) == 0, "listen");
    return result;
}

std::uint16_t localPort(const Handle &handle)
{
    Address local;
    check(getsockname(handle.get(), local.pointer(), &local.size) == 0, "getsockname");
    return ntohs(local.storage.ss_family == AF_INET6
                     ? reinterpret_cast<sockaddr_in6 *>(&local.storage)->sin6_port
                     : reinterpret_cast<sockaddr_in *>(&local.storage)->sin_port);
}

Handle acceptFrom(const Handle &listener, int milliseconds, int cancel)
{
    pollfd handles[] = { { listener.get(), POLLIN, 0 }, { cancel, POLLIN, 0 } };
    if (poll(handles, 2, milliseconds) <= 0 || handles[1].revents != 0) {
        return Handle();
    }
    return Handle(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
}

Stream::Stream(Handle handle, int cancel)
    : m_handle(std::move(handle))
    , m_cancel(cancel)
{
    const int on = 1;
    setsockopt(m_handle.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    fcntl(m_handle.get(), F_SETFL, O_NONBLOCK);
}

Stream::~Stream() { close(); }

bool Stream::wait(short events, int milliseconds) const
{
    pollfd handles[] = { { m_handle.get(), events, 0 }, { m_cancel, POLLIN, 0 } };
    return poll(handles, 2, milliseconds) > 0 && handles[1].revents == 0;
}

long Stream::read(std::string &buffer, std::size_t size, int milliseconds)
{
    const std::size_t before = buffer.size();
    buffer.resize(before + size);
    long got = -1;
    for (;;) {
        short events = POLLIN;
        if (m_ssl == nullptr) {
            got = recv(m_handle.get(), buffer.data() + before, size, 0);
            if (got >= 0 || (errno != EAGAIN && errno != EINTR)) {
                break;
            }
        } else {
            const TlsCall guard;
            got = SSL_read(m_ssl, buffer.data() + before,
                           static_cast<int>(std::min<std::size_t>(size, 1 << 20)));
            const int error = SSL_get_error(m_ssl, static_cast<int>(got));
            if (error != SSL_ERROR_WANT_READ && error != SSL_ERROR_WANT_WRITE) {
                got = error == SSL_ERROR_ZERO_RETURN ? 0 : got > 0 ? got : -1;
                break;
            }
            events = error == SSL_ERROR_WANT_WRITE ? POLLOUT : POLLIN;
        }
        if (!wait(events, milliseconds)) {
            got = -1;
            break;
        }
    }
    buffer.resize(before + static_cast<std::size_t>(std::max(got, 0L)));
    return got;
}

bool Stream::write(std::string_view bytes)
{
    while (!bytes.empty()) {
        short events = POLLOUT;
        long put = 0;
        if (m_ssl == nullptr) {
            put = ::send(m_handle.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (put < 0 && errno != EAGAIN && errno != EINTR) {
                return false;
            }
        } else {
            const TlsCall guard;
            put = SSL_write(m_ssl, bytes.data(),
                            static_cast<int>(std::min<std::size_t>(bytes.size(), 1 << 20)));
            const int error = SSL_get_error(m_ssl, static_cast<int>(put));
            if (put <= 0 && error != SSL_ERROR_WANT_READ && error != SSL_ERROR_WANT_WRITE) {
                return false;
            }
            events = error == SSL_ERROR_WANT_READ ? POLLIN : POLLOUT;
        }
        if (put > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(put));
        } else if (!wait(events, 60000)) {
            return false;
        }
    }
    return true;
}

bool Stream::handshake(int (*step)(SSL *))
{
    const TlsCall guard;
    for (;;) {
        const int done = step(m_ssl);
        if (done == 1) {
            return true;
        }
        const int error = SSL_get_error(m_ssl, done);
        if (error != SSL_ERROR_WANT_READ && error != SSL_ERROR_WANT_WRITE) {
            return false;
        }
        if (!wait(error == SSL_ERROR_WANT_READ ? POLLIN : POLLOUT, 10000)) {
            return false;
        }
    }
}

bool Stream::startTlsAsClient(const std::filesystem::path &trusted, SSL_SESSION *session)
{
    SSL_CTX *context = SSL_CTX_new(TLS_client_method());
    if (!trusted.empty()) {
        SSL_CTX_load_verify_file(context, trusted.c_str());
        SSL_CTX_set_verify(context, SSL_VERIFY_PEER, nullptr);
    }
    m_ssl = SSL_new(context);
    SSL_CTX_free(context); // kept by the connection
    SSL_set_fd(m_ssl, m_handle.get());
    if (session != nullptr) {
        SSL_set_session(m_ssl, session);
    }
    return handshake(SSL_connect);
}

bool Stream::startTlsAsServer(SSL_CTX *context)
{
    m_ssl = SSL_new(context);
    SSL_set_fd(m_ssl, m_handle.get());
    return handshake(SSL_accept);
}

bool Stream::sessionReused() const { return m_ssl != nullptr && SSL_session_reused(m_ssl) == 1; }

SSL_SESSION *Stream::session() const { return m_ssl != nullptr ? SSL_get_session(m_ssl) : nullptr; }

void Stream::close()
{
    if (m_ssl != nullptr) {
        if (m_handle) {
            const TlsCall guard;
            SSL_shutdown(m_ssl);
        }
        SSL_free(std::exchange(m_ssl, nullptr));
    }
    m_handle.reset();
}

void Stream::finish()
{
    if (m_ssl != nullptr) {
        const TlsCall guard;
        SSL_shutdown(m_ssl);
    }
    shutdown(m_handle.get(), SHUT_WR);
    std::string rest;
    while (read(rest, 65536, 10000) > 0) {
        rest.clear();
    }
    close();
}

void Stream::closeWithoutNotice()
{
    SSL_free(std::exchange(m_ssl, nullptr));
    m_handle.reset();
}

void Stream::drop()
{
    SSL_free(std::exchange(m_ssl, nullptr));
    const linger reset { 1, 0 };
    setsockopt(m_handle.get(), SOL_SOCKET, SO_LINGER, &reset, sizeof(reset));
    m_handle.reset();
}

} // namespace servers
