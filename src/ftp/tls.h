#pragma once

#include "ftp/error.h"

#include <memory>
#include <openssl/ssl.h>
#include <string>

namespace ftp {

struct SslDeleter {
    void operator()(SSL *ssl) const { SSL_free(ssl); }
    void operator()(SSL_CTX *context) const { SSL_CTX_free(context); }
    void operator()(SSL_SESSION *session) const { SSL_SESSION_free(session); }
    void operator()(X509 *certificate) const { X509_free(certificate); }
};
using SslPointer = std::unique_ptr<SSL, SslDeleter>;
using SslSessionPointer = std::unique_ptr<SSL_SESSION, SslDeleter>;
using CertificatePointer = std::unique_ptr<X509, SslDeleter>;

/// What OpenSSL says went wrong, as an error of kind TlsFailed.
[[nodiscard]] tl::unexpected<Error> tlsFailure();

/// Settings of all encrypted connections to one server (RFC 4217): TLS 1.2 and 1.3, the system's
/// certificate store, and the session of the control connection, which data connections resume.
/// Costs nothing before the first connection.
class TlsContext {
public:
    TlsContext() = default;
    TlsContext(const TlsContext &) = delete;
    TlsContext &operator=(const TlsContext &) = delete;
    ~TlsContext() = default;

    /// A client connection over a socket, ready for the handshake. Verification does not stop the
    /// handshake; the result is asked afterwards.
    /// @return null when there is none, or none whose certificate would be checked for that host
    [[nodiscard]] SslPointer newConnection(int socket, const std::string &host, SSL_SESSION *reuse);

    /// The control connection whose session is to be kept; tickets of TLS 1.3 arrive later.
    void keepSessionOf(const SSL *control);
    /// Session for data connections, null before the first ticket.
    [[nodiscard]] SSL_SESSION *session() const { return m_session.get(); }

private:
    static int newSession(SSL *ssl, SSL_SESSION *session);
    void create();

    std::unique_ptr<SSL_CTX, SslDeleter> m_context;
    const SSL *m_control = nullptr;
    SslSessionPointer m_session;
};

/// A server certificate as shown to the user.
struct Certificate {
    std::string subject, issuer; ///< readable names, UTF-8
    std::string validFrom, validUntil; ///< yyyy-MM-dd
    std::string fingerprint; ///< SHA-256, upper-case hex pairs joined by ":"
};

/// Why a certificate is not trusted; None: it is.
enum class CertificateProblem {
    None,
    SelfSigned,
    UnknownIssuer,
    WrongHost,
    Expired,
    NotYetValid,
    Other
};

[[nodiscard]] Certificate describeCertificate(X509 *certificate);
/// The verification's result of a finished handshake; host names and addresses are checked too.
[[nodiscard]] CertificateProblem certificateProblem(SSL *ssl);
[[nodiscard]] std::string fingerprintOf(SSL *ssl);

} // namespace ftp
