#pragma once

#include "ftp/dialogue.h"
#include "ftp/feat.h"
#include "ftp/login.h"
#include "ftp/proxy.h"
#include "ftp/quirks.h"
#include "ftp/truststore.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ftp {

/// Whether the control connection is encrypted: when offered, always, or never.
enum class Encryption { Automatic, Always, Never };

/// Where and how to log in.
struct LoginData {
    std::string host;
    std::uint16_t port = 21;
    Credentials credentials;
    Proxy proxy;
    Encryption encryption = Encryption::Automatic;
    Milliseconds timeout { 30000 }; ///< of inactivity, for each wait
    /// A session that waits for work says something after so long: servers end those that are
    /// silent for some minutes.
    Milliseconds keepAlive { 45000 };
    bool passive = true;
};

/// Question about a certificate that could not be verified.
struct CertificateQuestion {
    std::string host;
    Certificate certificate;
    CertificateProblem problem = CertificateProblem::Other;
    bool changed = false; ///< another certificate was trusted by hand before
};
enum class Trust { Reject, Once, Always };

/// Who hears of a session's work. Every member may be empty.
struct Hooks {
    std::function<void(const Reply &)> reply; ///< every complete reply
    std::function<void(const std::string &)> note; ///< a line of our own for the log, without end
    std::function<void(std::int64_t bytes, std::int64_t total)> progress; ///< total 0 = unknown
    std::function<Awaitable<Trust>(CertificateQuestion)> certificate;
};

/// What all connections to one server share: learned once, used by all.
struct ServerKnowledge {
    explicit ServerKnowledge(std::string trustFile)
        : trust(std::move(trustFile))
    {
    }
    TrustStore trust;
    std::string trustedOnce; ///< fingerprint accepted for this run of the session
    bool noPipelining = false; ///< stumbled over several commands at a time, or is known to
    /// No command may be sent ahead of a transfer's end: the server carries them out or refuses
    /// them meanwhile, or a transfer broke while one was on its way.
    bool noLookAhead = false;
    bool keepsOrder = false; ///< is known to carry out commands in order, also during transfers
    bool noExtendedPassive = false, noPassive = false;
    bool noSize = false, noModificationTime = false, noSetTime = false;
    bool plainListOnly = false; ///< "LIST -a" was refused where "LIST" was not
    /// Encrypted listings end with close_notify; nothing as long as none has shown either.
    std::optional<bool> endsProperly;
    bool noLastLineEnd = false; ///< listings do not end with a line end
    std::uint64_t packets = 0; ///< packets of commands sent, over all sessions
    std::optional<bool> restart; ///< transfers can be restarted at an offset
    /// Seconds that the server's listing clock is ahead of UTC.
    std::optional<std::int64_t> zoneOffset;
};

/// Transfer types as the wire names them (RFC 959, section 3.1.1).
enum class Type : char { Unknown = 0, Ascii = 'A', Binary = 'I', Ebcdic = 'E' };

class DataConnection;

/// One control connection that is logged in, and what its server is known to do.
class Session {
public:
    Session(const asio::any_io_executor &executor, LoginData login, Hooks hooks,
            std::shared_ptr<ServerKnowledge> knowledge);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    /// Connects, encrypts, logs in and asks what the server can do. A server that stumbles over
    /// pipelined commands is connected to once more and served one command at a time.
    Awaitable<Status> open();
    /// Ends the session politely and closes it.
    Awaitable<Status> quit();
    /// Ends everything at once; pending operations fail with ErrorKind::Aborted.
    void abort();
    [[nodiscard]] bool usable() const { return m_usable && !m_aborted; }
    /// After a failure that leaves the control connection out of step.
    void markBroken() { m_usable = false; }

    /// The folder that the server said we are in; raw bytes.
    [[nodiscard]] const std::string &folder() const { return m_folder; }
    Awaitable<Status> changeFolder(std::string folder);
    Awaitable<Status> changeToParent();
    /// Whether a folder can be entered; afterwards we stand where we stood.
    Awaitable<Result<bool>> folderExists(std::string folder);
    /// Asks PWD and keeps the answer.
    Awaitable<Status> readFolder();

    Awaitable<Status> setType(Type type);
    [[nodiscard]] Type type() const { return m_type; }
    void rememberType(Type type) { m_type = type; }
    /// REST STREAM in FEAT, else REST 1 is tried (RFC 3659, section 5.3).
    Awaitable<Result<bool>> supportsRestart();

    Awaitable<Result<Reply>> ask(std::string command);
    Awaitable<Status> expectDone(std::string command);
    /// Final replies of several commands, in order; sent in one packet unless the server stumbles
    /// over that. Only for commands none of which decides about a later one.
    Awaitable<Result<std::vector<Reply>>> askAll(std::vector<std::string> commands);

    [[nodiscard]] Dialogue &dialogue() { return *m_dialogue; }
    [[nodiscard]] TcpControlLine &line() { return *m_line; }
    [[nodiscard]] const LoginData &loginData() const { return m_login; }
    [[nodiscard]] const Features &features() const { return m_features; }
    [[nodiscard]] ServerKnowledge &knowledge() { return *m_knowledge; }
    [[nodiscard]] const std::shared_ptr<ServerKnowledge> &sharedKnowledge() const
    {
        return m_knowledge;
    }
    [[nodiscard]] const Hooks &hooks() const { return m_hooks; }
    /// A line of our own for the log, if anybody hears it.
    void note(const std::string &text) const;
    [[nodiscard]] const asio::any_io_executor &executor() const { return m_executor; }
    [[nodiscard]] bool encrypted() const { return m_encrypted; }
    [[nodiscard]] TlsContext &tls() { return m_tls; }
    [[nodiscard]] bool pipelining() const { return !m_knowledge->noPipelining; }
    /// Whether commands for the next transfer may follow a transfer command at once.
    /// In active mode only with servers known to bear it: one that does not is found out by a
    /// connection that never comes, and that takes the whole time-out.
    [[nodiscard]] bool lookAhead() const
    {
        return pipelining() && !m_knowledge->noLookAhead
            && (m_login.passive || m_knowledge->keepsOrder);
    }
    [[nodiscard]] Milliseconds timeout() const { return m_login.timeout; }
    /// A passive data connection stood once, so that the next may be trusted to.
    bool dataProven = false;
    /// The facts of machine listings were chosen.
    bool factsChosen = false;

    /// Data connections register while they live, so that abort reaches them.
    void addDataConnection(DataConnection *data) { m_data.push_back(data); }
    void removeDataConnection(DataConnection *data) { std::erase(m_data, data); }

private:
    Awaitable<Status> openOnce();
    void takeGreeting(const Reply &greeting);
    Awaitable<Status> sendTogether(std::span<const std::string> commands);
    Awaitable<Status> askPacket(std::span<const std::string> commands, std::vector<Reply> &replies);
    Awaitable<Status> encrypt();
    Awaitable<Status> checkCertificate();
    Awaitable<Status> logIn();
    Awaitable<Status> setUp();
    Awaitable<Status> setUpOneByOne();
    Status takeSetUpReply(std::string_view command, const Reply &reply);
    [[nodiscard]] std::vector<std::string> setUpCommands() const;

    asio::any_io_executor m_executor;
    LoginData m_login;
    Hooks m_hooks;
    std::shared_ptr<ServerKnowledge> m_knowledge;
    TlsContext m_tls;
    std::unique_ptr<TcpControlLine> m_line;
    std::unique_ptr<Dialogue> m_dialogue;
    Features m_features;
    Quirks m_quirks;
    std::string m_folder = "/";
    Type m_type = Type::Unknown;
    std::vector<DataConnection *> m_data;
    bool m_encrypted = false;
    bool m_usable = false;
    bool m_aborted = false;
};

/// The server's host name as typed by people: without blanks, "ftp://" or "ftpes://", trailing
/// slashes and the brackets around an IPv6 address.
[[nodiscard]] std::string cleanHost(std::string host);

} // namespace ftp
