#include "ftp/tls.h"

#include <arpa/inet.h>
#include <array>
#include <ctime>
#include <openssl/err.h>
#include <openssl/x509v3.h>

namespace ftp {
namespace {

/// One record is 16 KiB; reading several in one call saves system calls.
constexpr std::size_t readAhead = 256 * 1024;

bool isAddress(const std::string &host)
{
    std::array<unsigned char, 16> bytes {};
    return inet_pton(AF_INET, host.c_str(), bytes.data()) == 1
        || inet_pton(AF_INET6, host.c_str(), bytes.data()) == 1;
}

std::string oneLine(const X509_NAME *name)
{
    const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), BIO_free);
    X509_NAME_print_ex(memory.get(), name, 0, XN_FLAG_ONELINE & ~ASN1_STRFLGS_ESC_MSB);
    char *text = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &text);
    return { text, static_cast<std::size_t>(size > 0 ? size : 0) };
}

std::string day(const ASN1_TIME *time)
{
    std::tm parts {};
    if (ASN1_TIME_to_tm(time, &parts) != 1) {
        return {};
    }
    std::array<char, 16> text {};
    std::strftime(text.data(), text.size(), "%Y-%m-%d", &parts);
    return text.data();
}

std::string fingerprint(X509 *certificate)
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> bytes {};
    unsigned int size = 0;
    if (certificate == nullptr
        || X509_digest(certificate, EVP_sha256(), bytes.data(), &size) != 1) {
        return {};
    }
    static constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (unsigned int i = 0; i < size; ++i) {
        text += text.empty() ? "" : ":";
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
    }
    return text;
}

/// The system's certificates, read once: that takes longer than several logins.
X509_STORE *systemStore()
{
    static const std::unique_ptr<X509_STORE, decltype(&X509_STORE_free)> store = [] {
        std::unique_ptr<X509_STORE, decltype(&X509_STORE_free)> made(X509_STORE_new(),
                                                                     X509_STORE_free);
        if (made && X509_STORE_set_default_paths(made.get()) != 1) {
            ERR_clear_error(); // without the system's certificates the user is asked for each
        }
        return made;
    }();
    return store.get();
}

/// Has the certificate checked for this host, and names the host to the server. When that fails the
/// connection is of no use: the certificate of any other host would be good enough for it.
bool expectHost(SSL *ssl, const std::string &host)
{
    X509_VERIFY_PARAM *parameters = SSL_get0_param(ssl);
    if (isAddress(host)) {
        return X509_VERIFY_PARAM_set1_ip_asc(parameters, host.c_str()) == 1;
    }
    // SSL_set_tlsext_host_name is a macro with casts of its own
    return X509_VERIFY_PARAM_set1_host(parameters, host.c_str(), host.size()) == 1
        && SSL_ctrl(ssl, SSL_CTRL_SET_TLSEXT_HOSTNAME, TLSEXT_NAMETYPE_host_name,
                    const_cast<char *>(host.c_str()))
        == 1;
}

} // namespace

tl::unexpected<Error> tlsFailure()
{
    const unsigned long code = ERR_peek_last_error();
    const char *reason = code == 0 ? nullptr : ERR_reason_error_string(code);
    ERR_clear_error();
    return fail(ErrorKind::TlsFailed,
                std::string("TLS failed: ") + (reason == nullptr ? "unknown reason" : reason));
}

void TlsContext::create()
{
    m_context.reset(SSL_CTX_new(TLS_client_method()));
    SSL_CTX *context = m_context.get();
    if (context == nullptr || SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION) != 1
        || SSL_CTX_set_ex_data(context, 0, this) != 1) {
        m_context.reset();
        return;
    }
    SSL_CTX_set1_cert_store(context, systemStore());
    // The answer is asked after the handshake, since the user may trust a certificate by hand.
    SSL_CTX_set_verify(context, SSL_VERIFY_NONE, nullptr);
    SSL_CTX_set_mode(context,
                     SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER
                         | SSL_MODE_RELEASE_BUFFERS);
    SSL_CTX_set_read_ahead(context, 1);
    SSL_CTX_set_default_read_buffer_len(context, readAhead);
    SSL_CTX_set_session_cache_mode(context, SSL_SESS_CACHE_CLIENT | SSL_SESS_CACHE_NO_INTERNAL);
    SSL_CTX_sess_set_new_cb(context, &TlsContext::newSession);
}

int TlsContext::newSession(SSL *ssl, SSL_SESSION *session)
{
    auto *self = static_cast<TlsContext *>(SSL_CTX_get_ex_data(SSL_get_SSL_CTX(ssl), 0));
    // Servers bind data connections to the control connection's session, so tickets that a data
    // connection got are useless to the next one.
    if (ssl != self->m_control) {
        return 0;
    }
    self->m_session.reset(session);
    return 1;
}

void TlsContext::keepSessionOf(const SSL *control)
{
    m_control = control;
    m_session.reset();
}

SslPointer TlsContext::newConnection(int socket, const std::string &host, SSL_SESSION *reuse)
{
    if (!m_context) {
        create();
    }
    SslPointer ssl(m_context ? SSL_new(m_context.get()) : nullptr);
    if (!ssl || SSL_set_fd(ssl.get(), socket) != 1 || !expectHost(ssl.get(), host)) {
        return nullptr;
    }
    SSL_set_connect_state(ssl.get());
    if (reuse != nullptr) {
        // A copy: a connection that ends badly spoils the session that it used.
        const SslSessionPointer copy(SSL_SESSION_dup(reuse));
        if (SSL_set_session(ssl.get(), copy.get()) != 1) {
            ERR_clear_error(); // then the handshake is a full one
        }
    }
    return ssl;
}

Certificate describeCertificate(X509 *certificate)
{
    return { oneLine(X509_get_subject_name(certificate)),
             oneLine(X509_get_issuer_name(certificate)), day(X509_get0_notBefore(certificate)),
             day(X509_get0_notAfter(certificate)), fingerprint(certificate) };
}

CertificateProblem certificateProblem(SSL *ssl)
{
    switch (SSL_get_verify_result(ssl)) {
    case X509_V_OK:
        return CertificateProblem::None;
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
        return CertificateProblem::SelfSigned;
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
        return CertificateProblem::UnknownIssuer;
    case X509_V_ERR_HOSTNAME_MISMATCH:
    case X509_V_ERR_IP_ADDRESS_MISMATCH:
        return CertificateProblem::WrongHost;
    case X509_V_ERR_CERT_HAS_EXPIRED:
        return CertificateProblem::Expired;
    case X509_V_ERR_CERT_NOT_YET_VALID:
        return CertificateProblem::NotYetValid;
    default:
        return CertificateProblem::Other;
    }
}

std::string fingerprintOf(SSL *ssl)
{
    const CertificatePointer certificate(SSL_get1_peer_certificate(ssl));
    return fingerprint(certificate.get());
}

} // namespace ftp
