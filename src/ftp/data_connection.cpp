#include "ftp/data_connection.h"

#include "ftp/address.h"
#include "ftp/connect.h"

#include <array>
#include <asio/redirect_error.hpp>
#include <asio/use_awaitable.hpp>

namespace ftp {
namespace {

/// Failures on the way to the data connection are one kind for the user, except those that end all.
Status asDataError(Status status)
{
    if (!status && status.error().kind != ErrorKind::Aborted
        && status.error().kind != ErrorKind::TlsFailed) {
        return fail(ErrorKind::DataConnection, "No data connection: " + status.error().text);
    }
    return status;
}

} // namespace

DataConnection::DataConnection(Session &session)
    : m_session(session)
    , m_stream(std::make_unique<Stream>(session.executor()))
    , m_permitted(session.executor())
{
    if (session.knowledge().keepsOrder) {
        permit();
    }
    m_session.addDataConnection(this);
}

DataConnection::~DataConnection() { m_session.removeDataConnection(this); }

bool DataConnection::useExtended() const
{
    std::error_code error;
    const auto peer = m_session.line().stream().socket().remote_endpoint(error);
    const ServerKnowledge &server = m_session.knowledge();
    return (!error && peer.address().is_v6()) || (server.noPassive && !server.noExtendedPassive);
}

Result<std::string> DataConnection::command()
{
    if (m_session.loginData().passive || m_session.loginData().proxy.socks()) {
        return std::string(useExtended() ? "EPSV" : "PASV");
    }
    Status listening = listen();
    if (!listening) {
        return tl::unexpected(listening.error());
    }
    std::error_code error;
    const auto own = m_session.line().stream().socket().local_endpoint(error);
    const std::uint16_t port = m_acceptor->local_endpoint(error).port();
    const std::string address = own.address().to_string();
    return own.address().is_v6() ? "EPRT " + formatEprt(address, port)
                                 : "PORT " + formatPort(address, port);
}

Status DataConnection::listen()
{
    std::error_code error;
    const auto own = m_session.line().stream().socket().local_endpoint(error);
    if (!error) {
        m_acceptor = std::make_unique<asio::ip::tcp::acceptor>(m_session.executor());
        m_acceptor->open(own.protocol(), error);
    }
    if (!error) {
        m_acceptor->bind(asio::ip::tcp::endpoint(own.address(), 0), error);
    }
    if (!error) {
        m_acceptor->listen(1, error);
    }
    return error ? Status(fail(ErrorKind::DataConnection, "No data connection: " + error.message()))
                 : Status {};
}

Awaitable<Status> DataConnection::begin(Reply reply)
{
    if (!reply.done()) {
        co_return refusal(reply);
    }
    if (m_acceptor) {
        co_return Status {};
    }
    Status begun = co_await beginPassive(std::move(reply));
    co_return asDataError(begun);
}

Awaitable<Status> DataConnection::beginPassive(Reply reply)
{
    const std::string text = reply.text();
    std::uint16_t port = 0;
    if (reply.code == 229) {
        port = parseEpsv(text).value_or(0);
    } else if (const auto address = parsePasv(text)) {
        // The host told is ignored: it is wrong behind address translation, and a hostile server
        // could send us to a third machine with it (RFC 2577, section 3).
        port = address->port;
    }
    if (port == 0) {
        co_return fail(ErrorKind::Protocol, "The server told no port (" + text + ")");
    }
    const Milliseconds limit = m_session.timeout();
    const LoginData &login = m_session.loginData();
    if (login.proxy.socks()) {
        co_return co_await connectTo(*m_stream, login.host, port, login.proxy, limit);
    }
    std::error_code error;
    auto peer = m_session.line().stream().socket().remote_endpoint(error);
    if (error) {
        co_return fail(ErrorKind::ConnectionClosed, "Connection closed by server");
    }
    peer.port(port);
    Status begun = m_stream->beginConnect(peer);
    m_connecting = begun.has_value();
    if (begun && !m_session.dataProven) {
        m_connecting = false;
        begun = co_await m_stream->finishConnect(limit);
        m_session.dataProven = begun.has_value();
    }
    co_return begun;
}

Awaitable<Status> DataConnection::open()
{
    for (;;) {
        auto wanted = command();
        if (!wanted) {
            co_return tl::unexpected(wanted.error());
        }
        auto reply = co_await m_session.ask(*wanted);
        if (!reply) {
            co_return tl::unexpected(reply.error());
        }
        ServerKnowledge &server = m_session.knowledge();
        bool &refused = *wanted == "EPSV" ? server.noExtendedPassive : server.noPassive;
        if (!m_acceptor && reply->code / 100 == 5 && !refused) {
            refused = true;
            if (!(server.noPassive && server.noExtendedPassive)) {
                continue; // the other kind
            }
        }
        co_return co_await begin(*reply);
    }
}

Awaitable<Status> DataConnection::beginOrOpen(Reply reply)
{
    // No conditional expression: g++ 12 mixes up temporaries around co_await in one.
    if (reply.done()) {
        co_return co_await begin(std::move(reply));
    }
    co_return co_await open();
}

Awaitable<Status> DataConnection::accept()
{
    const Milliseconds limit = m_session.timeout();
    std::error_code error;
    const auto control = m_session.line().stream().socket().remote_endpoint(error);
    asio::steady_timer timer(m_session.executor(), limit);
    // The handler may run after the wait is over.
    struct Wait {
        bool over = false, expired = false;
    };
    const auto wait = std::make_shared<Wait>();
    timer.async_wait([this, wait](const std::error_code &cancelled) {
        if (!cancelled && !wait->over) {
            wait->expired = true;
            std::error_code ignored; // an acceptor that cannot be cancelled has nobody waiting
            m_acceptor->cancel(ignored);
        }
    });
    const auto over = [wait](Status status) {
        wait->over = true;
        return status;
    };
    for (;;) {
        asio::ip::tcp::endpoint peer;
        auto socket = co_await m_acceptor->async_accept(
            peer, asio::redirect_error(asio::use_awaitable, error));
        if (wait->expired) {
            co_return over(fail(ErrorKind::Timeout, "Connection timed out"));
        }
        if (error == asio::error::operation_aborted || error == asio::error::bad_descriptor) {
            co_return over(fail(ErrorKind::Aborted, "Aborted"));
        }
        if (error) {
            co_return over(fail(ErrorKind::DataConnection, error.message()));
        }
        if (peer.address() == control.address()) { // nobody else may deliver the file
            co_return over(m_stream->adopt(std::move(socket)));
        }
    }
}

Awaitable<Status> DataConnection::establish()
{
    Status stands;
    if (m_acceptor) {
        stands = co_await accept();
    } else if (m_connecting) {
        stands = co_await m_stream->finishConnect(m_session.timeout());
    }
    if (stands && m_session.encrypted()) {
        stands = co_await m_stream->startTls(m_session.tls(), m_session.loginData().host,
                                             Stream::TlsRole::Data, m_session.timeout());
        SSL *control = m_session.line().stream().ssl();
        if (stands && SSL_session_reused(m_stream->ssl()) == 0
            && fingerprintOf(m_stream->ssl()) != fingerprintOf(control)) {
            stands = fail(ErrorKind::TlsFailed, "The data connection shows another certificate");
        }
    }
    co_return asDataError(stands);
}

void DataConnection::abort()
{
    permit(); // nobody waits any more; what is sent now fails
    if (m_acceptor) {
        std::error_code ignored; // closing is all that is wanted
        m_acceptor->close(ignored);
    }
    m_stream->abort();
}

void DataConnection::drainAndClose()
{
    std::array<char, 16384> rest {};
    const auto handle = m_stream->socket().native_handle();
    int most = 64; // the peer has said that nothing comes any more
    while (most-- > 0 && m_stream->encrypted() && m_stream->socket().is_open()
           && ::recv(handle, rest.data(), rest.size(), MSG_DONTWAIT) > 0) { }
    m_stream->close();
}

} // namespace ftp
