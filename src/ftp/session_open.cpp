// How a session is opened: connection, encryption, login, and what the server can do.
#include "ftp/connect.h"
#include "ftp/path.h"
#include "ftp/session.h"

#include <algorithm>

namespace ftp {
namespace {

/// How long a pipelined answer may take before the server is suspected of having lost commands.
constexpr Milliseconds pipelinePatience { 8000 };

} // namespace

Awaitable<Status> Session::open()
{
    Status opened = co_await openOnce();
    const bool stumbled
        = !opened && opened.error().kind == ErrorKind::Timeout && m_usable && pipelining();
    if (stumbled && !m_aborted) {
        m_knowledge->noPipelining = true;
        opened = co_await openOnce();
    }
    m_usable = opened.has_value();
    if (!opened && m_line) {
        m_line->stream().close();
    }
    co_return opened;
}

Awaitable<Status> Session::openOnce()
{
    m_usable = false;
    m_encrypted = false;
    m_type = Type::Unknown;
    dataProven = factsChosen = false;
    auto stream = std::make_unique<Stream>(m_executor);
    Stream &connection = *stream;
    m_line = std::make_unique<TcpControlLine>(std::move(stream), m_login.timeout,
                                              m_knowledge->packets);
    m_dialogue = std::make_unique<Dialogue>(*m_line, m_login.timeout, m_hooks.reply);
    Status connected = co_await connectTo(connection, m_login.host, m_login.port, m_login.proxy,
                                          m_login.timeout);
    if (!connected) {
        co_return connected;
    }
    if (m_aborted) {
        co_return fail(ErrorKind::Aborted, "Aborted");
    }
    std::error_code ignored; // without keep-alive probes idle lines only die earlier
    // Commands go out at once; on data connections it would cut what the kernel sends from files
    // into uneven packets.
    connection.socket().set_option(asio::ip::tcp::no_delay(true), ignored);
    connection.socket().set_option(asio::socket_base::keep_alive(true), ignored);
    auto greeting = co_await readGreeting(*m_dialogue);
    if (!greeting) {
        co_return tl::unexpected(loginError(greeting.error(), false));
    }
    takeGreeting(*greeting);
    Status login = co_await logIn();
    if (!login) {
        co_return tl::unexpected(loginError(login.error(), m_encrypted));
    }
    m_usable = true;
    co_return co_await setUp();
}

/// What the greeting tells about the server at the other end.
void Session::takeGreeting(const Reply &greeting)
{
    m_quirks = quirksOf(greeting.text());
    // A proxy that speaks FTP answers some commands itself, before the server has answered earlier
    // ones.
    const bool overtakes = m_login.proxy.application() && m_login.proxy.kind != ProxyKind::Pipe;
    ServerKnowledge &server = *m_knowledge;
    server.noPipelining = server.noPipelining || overtakes || m_quirks.losesPipelined;
    server.noLookAhead = server.noLookAhead || m_quirks.noLookAhead;
    server.keepsOrder = m_quirks.keepsOrder && !overtakes;
    m_line->setDoubleTelnetIac(!m_quirks.singleTelnetIac);
}

Awaitable<Status> Session::logIn()
{
    const Proxy &proxy = m_login.proxy;
    const bool named = proxy.kind == ProxyKind::UserLogin || proxy.kind == ProxyKind::UserNoLogin;
    if (proxy.application()) {
        Status reached = co_await reachServer(*m_dialogue, proxy, m_login.host, m_login.port);
        if (!reached) {
            co_return reached;
        }
    }
    if (named) {
        // The server is named in USER, so there is no moment at which AUTH could reach it first.
        const bool wanted = m_login.encryption == Encryption::Always
            || (m_login.encryption == Encryption::Automatic
                && m_knowledge->trust.seen(m_login.host, m_login.port));
        if (wanted) {
            co_return fail(ErrorKind::TlsFailed, "This kind of proxy does not allow encryption");
        }
        if (m_login.encryption == Encryption::Automatic) {
            note("Über diesen Proxy ist keine Verschlüsselung möglich; die Verbindung ist "
                 "unverschlüsselt.");
        }
    } else {
        Status encryption = co_await encrypt();
        if (!encryption) {
            co_return encryption;
        }
    }
    const std::string user
        = proxyUserName(proxy, m_login.credentials.user, m_login.host, m_login.port);
    Credentials credentials = m_login.credentials;
    if (proxy.application() && credentials.account.empty()) {
        credentials.account = proxy.password; // who asks for it is the proxy, most likely
    }
    co_return co_await loginAs(*m_dialogue, user, credentials);
}

Awaitable<Status> Session::encrypt()
{
    if (m_login.encryption == Encryption::Never) {
        co_return Status {};
    }
    const auto muted = m_dialogue->muted(); // a refusal is told by the note below
    auto answer = co_await askPastGreeting(*m_dialogue, "AUTH TLS");
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    // Any other reply, however good it sounds, does not begin a handshake (RFC 2228, section 5).
    if (answer->code != 234 && answer->code != 334) {
        if (m_login.encryption == Encryption::Always) {
            // Without the reply in the text: its "530" would be taken for a wrong password.
            if (m_hooks.reply) {
                m_hooks.reply(*answer);
            }
            co_return fail(ErrorKind::TlsFailed, "The server does not offer encryption");
        }
        if (m_knowledge->trust.seen(m_login.host, m_login.port)) {
            co_return fail(
                ErrorKind::TlsFailed,
                "The server offered encryption before and does not any more; nothing was sent");
        }
        note("Der Server bietet keine Verschlüsselung an; die Verbindung ist unverschlüsselt.");
        co_return Status {};
    }
    Status handshake = co_await m_line->startTls(m_tls, m_login.host, m_login.timeout);
    if (!handshake) {
        Error error = handshake.error();
        if (error.kind == ErrorKind::ConnectionClosed) {
            error = { ErrorKind::TlsFailed, 0, "TLS failed: the server closed the connection" };
        }
        co_return tl::unexpected(error);
    }
    m_encrypted = true;
    co_return co_await checkCertificate();
}

Awaitable<Status> Session::checkCertificate()
{
    SSL *ssl = m_line->stream().ssl();
    const CertificateProblem problem = certificateProblem(ssl);
    const std::string fingerprint = fingerprintOf(ssl);
    TrustStore &trust = m_knowledge->trust;
    const std::string known = trust.fingerprint(m_login.host, m_login.port);
    if (problem == CertificateProblem::None) {
        ignoreError(trust.remember(m_login.host, m_login.port),
                    "without the note the next login only asks again");
        co_return Status {};
    }
    if (!fingerprint.empty() && (fingerprint == known || fingerprint == m_knowledge->trustedOnce)) {
        co_return Status {};
    }
    Trust answer = Trust::Reject;
    if (m_hooks.certificate) {
        const CertificatePointer certificate(SSL_get1_peer_certificate(ssl));
        CertificateQuestion question { m_login.host, {}, problem, !known.empty() };
        if (certificate) {
            question.certificate = describeCertificate(certificate.get());
        }
        answer = co_await m_hooks.certificate(question);
    }
    if (answer == Trust::Reject || m_aborted) {
        co_return fail(ErrorKind::CertificateRejected, "The server's certificate is not trusted");
    }
    m_knowledge->trustedOnce = fingerprint;
    const Status kept = answer == Trust::Always
        ? trust.trust(m_login.host, m_login.port, fingerprint)
        : trust.remember(m_login.host, m_login.port);
    if (!kept) {
        note(kept.error().text);
    }
    co_return Status {};
}

std::vector<std::string> Session::setUpCommands() const
{
    std::vector<std::string> commands;
    if (m_encrypted) {
        commands.insert(commands.end(), { "PBSZ 0", "PROT P" });
    }
    if (!m_quirks.diesOfUnknown) {
        commands.emplace_back("FEAT");
        commands.emplace_back("OPTS UTF8 ON");
    }
    commands.insert(commands.end(), { "TYPE I", "PWD" });
    return commands;
}

Status Session::takeSetUpReply(std::string_view command, const Reply &reply)
{
    if (command == "PROT P" && !reply.done()) {
        return fail(ErrorKind::TlsFailed, "The server does not encrypt data connections");
    }
    if (command == "FEAT" && reply.done()) {
        m_features = parseFeat(reply);
    }
    if (command == "TYPE I" && reply.done()) {
        m_type = Type::Binary;
    }
    if (command == "PWD" && reply.code == 257) {
        m_folder = parsePwd(reply.lines.back()).value_or("/");
    }
    return {};
}

Awaitable<Status> Session::setUp()
{
    const std::vector<std::string> commands = setUpCommands();
    if (!pipelining()) {
        co_return co_await setUpOneByOne();
    }
    Status sent = co_await sendTogether(commands);
    if (!sent) {
        co_return sent;
    }
    Status result;
    const auto muted = m_dialogue->muted();
    for (const std::string &command : commands) {
        auto answer = co_await m_dialogue->reply(std::min(m_login.timeout, pipelinePatience));
        if (!answer) {
            co_return tl::unexpected(answer.error());
        }
        Status taken = takeSetUpReply(command, *answer);
        if (!taken) {
            result = taken;
        }
        if (m_hooks.reply && answer->done()) {
            m_hooks.reply(*answer); // refusals of what was only tried are no news
        }
    }
    co_return result;
}

Awaitable<Status> Session::setUpOneByOne()
{
    for (const std::string &command : setUpCommands()) {
        if (command == "OPTS UTF8 ON" && !m_features.utf8) {
            continue;
        }
        auto answer = co_await m_dialogue->ask(command);
        if (!answer) {
            co_return tl::unexpected(answer.error());
        }
        Status taken = takeSetUpReply(command, *answer);
        if (!taken) {
            co_return taken;
        }
    }
    co_return Status {};
}

} // namespace ftp
