#pragma once

#include <string>
#include <tl/expected.hpp>
#include <utility>

namespace ftp {

/// What kind of failure an operation ended with. Texts explain, kinds decide.
enum class ErrorKind {
    Refused, ///< the server answered 4xx or 5xx; replyCode and text hold its reply
    LoginRefused, ///< the server did not accept user, password or account
    TooManyConnections, ///< the server does not take another connection (421, 530 "too many")
    TlsRequired, ///< the server wants encryption that was not used
    TlsFailed, ///< handshake or record layer failed, or TLS wanted and not offered
    CertificateRejected, ///< the certificate is not trusted and the user declined it
    UnknownHost, ///< name look-up failed
    ConnectRefused, ///< nobody listens at that port
    Unreachable, ///< no route, network down
    ConnectionClosed, ///< the control connection ended
    DataConnection, ///< the data connection could not be made
    Timeout, ///< nothing happened for the time-out's length
    Protocol, ///< a reply that does not fit
    Proxy, ///< the proxy refused
    BadArgument, ///< a command argument with CR, LF or NUL, or too long
    UnsafeName, ///< a name from the server that must not become a local file
    LocalFile, ///< a local file or folder could not be read or written
    LocalDiskFull, ///< the local disk is full
    Truncated, ///< the transfer ended with fewer or more bytes than it should have
    TooDeep, ///< folders are nested more deeply than this program goes
    RemoteLonger, ///< what is to be continued on the server is longer than the local file
    Aborted, ///< the user aborted
    Busy, ///< another operation runs
    NotConnected, ///< no session stands
};

/// Why an operation failed.
struct Error {
    ErrorKind kind = ErrorKind::Protocol;
    int replyCode = 0; ///< the server's reply code, 0 when no reply is involved
    /// The server's reply lines (joined by CR LF) or a text of our own, never empty.
    std::string text;
};

/// The server refuses whenever it is asked (5xx).
[[nodiscard]] inline bool isFinalRefusal(const Error &error)
{
    return error.kind == ErrorKind::Refused && error.replyCode / 100 == 5;
}
/// The server cannot just now (4xx), and not because its disk is full.
[[nodiscard]] inline bool isPassingRefusal(const Error &error)
{
    return error.kind == ErrorKind::Refused && error.replyCode / 100 == 4 && error.replyCode != 451
        && error.replyCode != 452;
}
/// The bytes stopped in the middle while the control connection stood: worth another try.
[[nodiscard]] inline bool brokeInTheMiddle(const Error &error)
{
    return error.kind == ErrorKind::Truncated || error.replyCode == 426;
}

/// A value or the reason why there is none; must be looked at.
template <class T> struct [[nodiscard]] Result : tl::expected<T, Error> {
    using tl::expected<T, Error>::expected;
};
using Status = Result<void>;

[[nodiscard]] inline tl::unexpected<Error> fail(ErrorKind kind, std::string text, int replyCode = 0)
{
    return tl::unexpected<Error>(Error { kind, replyCode, std::move(text) });
}

/// Drops a result on purpose; the reason is for the reader.
template <class T> void ignoreError(const Result<T> &, const char * /*reason*/) { }

} // namespace ftp
