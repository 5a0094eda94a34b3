#pragma once

#include "ftp/event.h"
#include "ftp/session.h"

#include <asio/ip/tcp.hpp>
#include <memory>
#include <string>

namespace ftp {

/// The second connection, which carries listings and files (RFC 959, section 3.2; RFC 2428).
///
/// Order of use: command() is sent, begin() takes its reply, the transfer command follows, and
/// establish() waits until the connection stands. Who sends waits for permission() as well.
class DataConnection {
public:
    explicit DataConnection(Session &session);
    ~DataConnection();
    DataConnection(const DataConnection &) = delete;
    DataConnection &operator=(const DataConnection &) = delete;

    /// PASV, EPSV, PORT or EPRT; in active mode a socket listens from here on.
    Result<std::string> command();
    /// Takes the reply to command(). In passive mode the connection is under way afterwards; the
    /// first one of a session is waited for, so that a blocked data path costs no file.
    Awaitable<Status> begin(Reply reply);
    /// Sends command() and begins, with the other kind of passive mode when one is refused.
    Awaitable<Status> open();
    /// begin(), or open() when the reply is a refusal.
    Awaitable<Status> beginOrOpen(Reply reply);
    /// Waits until the connection stands and is encrypted if the session is.
    Awaitable<Status> establish();

    /// Waits until the server may be sent bytes. Some take bytes, or the end of an empty file, that
    /// come before they have read the transfer command for a lost connection; they are sent nothing
    /// before permit(). Servers known to keep the order of things need not be waited for.
    Awaitable<void> permission() { return m_permitted.wait(); }
    /// The preliminary reply has come.
    void permit() { m_permitted.set(); }

    /// Active mode: the server connects to us.
    [[nodiscard]] bool listens() const { return m_acceptor != nullptr; }
    [[nodiscard]] Stream &stream() { return *m_stream; }
    /// Ends waits on this connection with ErrorKind::Aborted.
    void abort();
    /// Reads what the server still said (TLS tickets) so that closing does not reset the line.
    void drainAndClose();

private:
    Awaitable<Status> beginPassive(Reply reply);
    Awaitable<Status> accept();
    Status listen();
    [[nodiscard]] bool useExtended() const;

    Session &m_session;
    std::unique_ptr<Stream> m_stream;
    std::unique_ptr<asio::ip::tcp::acceptor> m_acceptor;
    bool m_connecting = false;
    Event m_permitted;
};

} // namespace ftp
