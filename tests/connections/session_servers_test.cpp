#include "connections/session.h"

#include "common/globals.h"
#include "connections/advice.h"
#include "connections/connectionsettings.h"
#include "connections/logintexts.h"
#include "connections/testproxy.h"
#include "ftp/ftpcontrol.h"
#include "servers/everyserver.h"
#include "servers/faultserver.h"
#include "servers/fixture.h"
#include "servers/network.h"
#include "support/fakepane.h"
#include "support/fakeshell.h"
#include "support/scriptedprompts.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using ftp::ErrorKind;
using servers::FaultServer;
using servers::Rule;

namespace {

/// The session over the real engine; only the window is missing.
struct Live {
    QTemporaryDir folder;
    FtpControl ftp;
    Globals globals;
    ScriptedPrompts prompts;
    FakeShell shell;
    FakePane remote { FakePane::disk() };
    Session session { ftp, globals, prompts, shell, remote };
    QStringList captions;
    int questions = 0; ///< certificates asked about
    FtpTrust trust = FtpTrust::Reject;

    Live()
    {
        globals.connection.RemoteHost = u"127.0.0.1"_s;
        globals.connection.Timeout = 10;
        ftp.setTrustFile(folder.filePath(u"trusted"_s));
        ftp.setCertificateQuestion([this](const FtpCertificate &certificate) {
            ++questions;
            EXPECT_FALSE(certificate.fingerprint.isEmpty());
            EXPECT_FALSE(certificate.reason.isEmpty());
            return trust;
        });
        QObject::connect(&session, &Session::captionChanged,
                         [this](const QString &caption) { captions << caption; });
    }
    template <class Server> void use(const Server &server)
    {
        globals.connection.RemotePort = server.port();
        globals.connection.UserName = QString::fromStdString(server.user());
        globals.connection.Password = QString::fromStdString(server.password());
    }
    [[nodiscard]] bool stands() const { return ftp.state() == FtpControl::Connected; }
    void expectConnected()
    {
        EXPECT_TRUE(stands()) << shell.log.toStdString();
        EXPECT_TRUE(shell.log.contains(u"Connected to: 127.0.0.1\r\n"_s))
            << shell.log.toStdString();
        EXPECT_EQ(captions.value(captions.size() - 1), u"Tarvelo FTP (Connected to: 127.0.0.1)"_s);
        EXPECT_FALSE(globals.session.ConnectionLost);
        EXPECT_TRUE(shell.calls.contains(u"DoRemoteRefresh "_s + ftp.currentFolder()));
        EXPECT_EQ(shell.calls.mid(shell.calls.size() - 3).first(), u"SetCommandsEnabled 0 1 1 1"_s);
    }
    /// The window is idle and shows that nothing stands.
    void expectDisconnected(ErrorKind kind)
    {
        EXPECT_EQ(ftp.state(), int { FtpControl::Closed });
        EXPECT_FALSE(ftp.isBusy());
        EXPECT_TRUE(globals.session.ConnectionLost);
        EXPECT_TRUE(shell.calls.contains(u"SetCommandsEnabled 1 0 1 1"_s));
        EXPECT_FALSE(shell.calls.join(u'|').contains(u"DoRemoteRefresh"_s));
        if (kind != ErrorKind::Aborted) {
            EXPECT_TRUE(shell.log.contains(u"\r\n"_s + adviceFor(kind) + u"\r\n"_s))
                << shell.log.toStdString();
        }
    }
};

struct SessionOnServers : servers::EveryServer { };

struct FaultySession : ::testing::Test, Live {
    FaultServer server;
    FaultySession() { use(server); }
};

/// Whether the password went over the wire, and how.
int passwords(const FaultServer &server, bool encrypted)
{
    int count = 0;
    for (const servers::Command &command : server.commands()) {
        count += command.line.rfind("PASS", 0) == 0 && command.encrypted == encrypted ? 1 : 0;
    }
    return count;
}

} // namespace

TEST_P(SessionOnServers, LogsInAndOutInClear)
{
    const servers::Server server(GetParam());
    Live live;
    live.use(server);
    live.session.ConnectSequence();
    live.expectConnected();
    EXPECT_TRUE(live.globals.session.ResumeSupport);
    EXPECT_EQ(live.questions, 0);
    live.session.LogoutSequence();
    EXPECT_EQ(live.ftp.state(), int { FtpControl::Closed });
    EXPECT_TRUE(live.shell.log.contains(u"Logging out ...\r\n"_s));
    EXPECT_TRUE(live.shell.log.endsWith(u"Connection Closed\r\n"_s))
        << live.shell.log.toStdString();
    EXPECT_EQ(live.captions.last(), u"Tarvelo FTP"_s);
}

TEST_P(SessionOnServers, LogsInEncryptedOnceTheCertificateIsTrusted)
{
    const servers::Server server(GetParam(), { .tlsOnly = true });
    Live live;
    live.use(server);
    live.trust = FtpTrust::Always;
    live.session.ConnectSequence();
    live.expectConnected();
    EXPECT_EQ(live.questions, 1);
    const FtpStatus listed = live.ftp.list();
    EXPECT_TRUE(listed) << (listed ? "" : listed.error().text.toStdString());
    live.session.LogoutSequence();
    live.shell.calls.clear();
    live.session.ConnectSequence();
    live.expectConnected();
    EXPECT_EQ(live.questions, 1); // trusted for good
}

TEST_P(SessionOnServers, ARejectedCertificateEndsTheLogin)
{
    const servers::Server server(GetParam(), { .tls = true });
    Live live;
    live.use(server);
    live.prompts.expectMessage(otherText);
    live.session.ConnectSequence();
    EXPECT_EQ(live.questions, 1);
    live.expectDisconnected(ErrorKind::CertificateRejected);
}

TEST_P(SessionOnServers, AWrongPasswordIsToldSo)
{
    const servers::Server server(GetParam());
    Live live;
    live.use(server);
    live.globals.connection.Password = u"falsch"_s;
    live.prompts.expectMessage(loginText);
    live.session.ConnectSequence();
    EXPECT_TRUE(live.shell.log.contains(u"530"_s));
    EXPECT_FALSE(live.shell.log.contains(u"falsch"_s));
    live.expectDisconnected(ErrorKind::LoginRefused);
}

INSTANTIATE_TEST_SUITE_P(Servers, SessionOnServers, testing::ValuesIn(servers::allKinds()),
                         servers::parameterName);

TEST_F(FaultySession, ATimeoutOfZeroIsNoLimit)
{
    globals.connection.Timeout = 0; // as a command line without a number has it
    server.fault.replyDelay = 50;
    session.ConnectSequence();
    expectConnected();
}

TEST_F(FaultySession, EveryConnectBeginsAFreshSession)
{
    session.ConnectSequence();
    expectConnected();
    session.LogoutSequence();
    shell.calls.clear();
    globals.connection.RemoteHost = u" ftp://127.0.0.1/ "_s; // cleaned on use
    session.ConnectSequence();
    expectConnected();
    EXPECT_EQ(server.sessions(), 2);
}

TEST_F(FaultySession, AnUnknownHostIsToldSo)
{
    globals.settings.ErrorMsg = false;
    for (const QString &host : { QString(64, u'a') + u".example"_s, QString(), u"a..b"_s }) {
        SCOPED_TRACE(host.toStdString());
        globals.connection.RemoteHost = host;
        prompts.expectMessage(hostText);
        session.ConnectSequence();
        EXPECT_TRUE(shell.log.contains(u"No such host is known"_s));
        expectDisconnected(ErrorKind::UnknownHost);
    }
}

TEST_F(FaultySession, APortWhereNobodyListensIsToldSo)
{
    globals.connection.RemotePort = servers::freePort("127.0.0.1");
    prompts.expectMessage(otherText);
    session.ConnectSequence();
    EXPECT_FALSE(shell.log.contains(u"530"_s));
    expectDisconnected(ErrorKind::ConnectRefused);
}

TEST_F(FaultySession, WithDetailedMessagesARefusedConnectionShowsNoBox)
{
    globals.settings.ErrorMsg = true;
    globals.connection.RemotePort = servers::freePort("127.0.0.1");
    session.ConnectSequence();
    EXPECT_TRUE(shell.log.contains(u"refused"_s));
    EXPECT_FALSE(shell.log.contains(adviceFor(ErrorKind::ConnectRefused)));
    EXPECT_EQ(ftp.state(), int { FtpControl::Closed });
}

TEST_F(FaultySession, AGarbageGreetingIsNoFtpServer)
{
    server.fault.greeting = "SSH-2.0-OpenSSH_9.2";
    prompts.expectMessage(otherText);
    session.ConnectSequence();
    expectDisconnected(ErrorKind::Protocol);
    EXPECT_EQ(passwords(server, false), 0);
}

TEST_F(FaultySession, AFullServerIsNoWrongPassword)
{
    server.fault.greeting = "421 Too many connections";
    prompts.expectMessage(otherText);
    session.ConnectSequence();
    EXPECT_TRUE(shell.log.contains(u"421 Too many connections"_s));
    expectDisconnected(ErrorKind::TooManyConnections);
}

TEST_F(FaultySession, ASilentServerEndsWithTheTimeout)
{
    server.on({ .verb = "USER", .action = Rule::Stall });
    globals.connection.Timeout = 1;
    prompts.expectMessage(otherText);
    QElapsedTimer timer;
    timer.start();
    session.ConnectSequence();
    EXPECT_GE(timer.elapsed(), 900);
    EXPECT_LT(timer.elapsed(), 4000);
    expectDisconnected(ErrorKind::Timeout);
}

TEST_F(FaultySession, AServerThatWantsEncryptionIsToldSo)
{
    server.fault.tls = true;
    server.fault.tlsRequired = true;
    globals.settings.encryption = 2; // never
    prompts.expectMessage(loginText); // its reply is a 530; the advice knows better
    session.ConnectSequence();
    EXPECT_EQ(passwords(server, false), 0);
    expectDisconnected(ErrorKind::TlsRequired);
}

TEST_F(FaultySession, AlwaysMeansNeverInClear)
{
    globals.connection.encryption = 1;
    prompts.expectMessage(otherText);
    session.ConnectSequence();
    EXPECT_EQ(passwords(server, false), 0);
    expectDisconnected(ErrorKind::TlsFailed);
}

TEST_F(FaultySession, AutomaticGoesOnInClearWithOneLogLine)
{
    session.ConnectSequence();
    expectConnected();
    EXPECT_EQ(shell.log.count(u"unencrypted"_s, Qt::CaseInsensitive)
                  + shell.log.count(u"unverschlüsselt"_s, Qt::CaseInsensitive),
              1)
        << shell.log.toStdString();
}

TEST_F(FaultySession, NothingIsSentBeforeTheCertificateIsTrusted)
{
    server.fault.tls = true;
    ftp.setCertificateQuestion([this](const FtpCertificate &) {
        EXPECT_EQ(passwords(server, true) + passwords(server, false), 0);
        EXPECT_TRUE(server.lines("USER").empty());
        ++questions;
        return FtpTrust::Once;
    });
    session.ConnectSequence();
    expectConnected();
    EXPECT_EQ(questions, 1);
    EXPECT_EQ(passwords(server, true), 1);
}

TEST_F(FaultySession, AServerOnceEncryptedMustStayIt)
{
    server.fault.tls = true;
    trust = FtpTrust::Always;
    session.ConnectSequence();
    expectConnected();
    session.LogoutSequence();
    server.fault.tls = false;
    shell.calls.clear();
    prompts.expectMessage(otherText);
    session.ConnectSequence();
    EXPECT_EQ(passwords(server, false), 0);
    expectDisconnected(ErrorKind::TlsFailed);
}

TEST_F(FaultySession, AnAccountIsGivenWhenAsked)
{
    server.fault.needAccount = true;
    globals.connection.Account = QString::fromStdString(server.account());
    session.ConnectSequence();
    expectConnected();
}

TEST_F(FaultySession, ConnectingCanBeCancelledByClosing)
{
    server.on({ .verb = "USER", .action = Rule::Stall });
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (!server.lines("USER").empty()) {
            watch.stop();
            EXPECT_TRUE(ftp.isBusy());
            ftp.close(); // what closing the window does
        }
    });
    watch.start(1);
    QElapsedTimer timer;
    timer.start();
    session.ConnectSequence(); // shows no box
    EXPECT_LT(timer.elapsed(), 5000);
    expectDisconnected(ErrorKind::Aborted);
}

TEST_F(FaultySession, TheWindowStaysAliveWhileConnecting)
{
    server.fault.replyDelay = 100;
    int beats = 0;
    QTimer pulse;
    QObject::connect(&pulse, &QTimer::timeout, [&beats] { ++beats; });
    pulse.start(10);
    session.ConnectSequence();
    expectConnected();
    EXPECT_GT(beats, 10);
}

TEST_F(FaultySession, AServerThatHangsUpIsSeenAtOnce)
{
    session.ConnectSequence();
    expectConnected();
    remote.model().setRows({ upRow() });
    server.dropSessions();
    EXPECT_TRUE(QTest::qWaitFor([this] { return ftp.state() == FtpControl::Closed; }));
    EXPECT_EQ(captions.last(), u"Tarvelo FTP"_s);
    EXPECT_TRUE(shell.log.contains(u"Connection Closed\r\n"_s));
    EXPECT_TRUE(globals.session.ConnectionLost);
    EXPECT_EQ(remote.model().rowCount(), 0);
}

TEST_F(FaultySession, AbortingDropsARunningTransfer)
{
    servers::writeRandomFile(server.root() / "a.bin", 3000000);
    server.fault.stallDataAfter = 1000000;
    session.ConnectSequence();
    expectConnected();
    prompts.expectConfirm(u"Beim Abbrechen wird die Verbindung getrennt."_s, true, u"Abbrechen"_s);
    bool pressed = false;
    QObject::connect(&session, &Session::progress, [&](const FtpEvent &event) {
        if (event.bytes > 0 && !pressed) {
            pressed = true;
            QTimer::singleShot(0, [this] { session.abortTransfer(); });
        }
    });
    qint64 offset = 0;
    const FtpStatus got = ftp.getFile(u"a.bin"_s, folder.filePath(u"a.bin"_s), offset);
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::Aborted);
    EXPECT_TRUE(globals.session.ConnectionLost);
    EXPECT_FALSE(ftp.isBusy());
    EXPECT_TRUE(shell.calls.contains(u"SetAbortEnabled 0"_s));
}

TEST_F(FaultySession, RepliesReachTheLogWithoutThePassword)
{
    session.ConnectSequence();
    expectConnected();
    EXPECT_TRUE(shell.log.contains(u"220 ready\r\n"_s)) << shell.log.toStdString();
    EXPECT_FALSE(shell.log.contains(globals.connection.Password));
}

TEST_F(FaultySession, ABlockedDataConnectionIsFollowedByAdvice)
{
    server.fault.deadPassivePort = true;
    server.on({ .verb = "PORT", .text = "500 no" });
    server.on({ .verb = "EPRT", .text = "500 no" });
    session.ConnectSequence();
    expectConnected();
    EXPECT_FALSE(ftp.list());
    EXPECT_TRUE(shell.log.contains(adviceFor(ErrorKind::DataConnection)))
        << shell.log.toStdString();
}

// Every kind of proxy leads to a server; listing proves that data connections get through as well.
struct ProxyRow {
    int type;
    TestProxy::Kind kind;
    bool login; ///< a proxy user is given
    std::vector<std::string> requests; ///< "%" stands for the server's address and port
};

struct ProxySession : ::testing::TestWithParam<ProxyRow> { };

TEST_P(ProxySession, LogsInAndListsThroughTheProxy)
{
    FaultServer server;
    servers::writeFile(server.root() / "datei.txt", "x");
    const TestProxy proxy(GetParam().kind, server.port());
    Live live;
    live.use(server);
    ConnectionProfile &connection = live.globals.connection;
    connection.ProxyType = GetParam().type;
    connection.ProxyHost = u"127.0.0.1"_s;
    connection.Proxyport = proxy.port();
    if (GetParam().login) {
        connection.ProxyUsername = u"proxyuser"_s;
        connection.ProxyPassword = u"proxypass"_s;
    }
    live.ftp.setProxy(proxyOf(connection));
    live.session.ConnectSequence();
    live.expectConnected();
    ASSERT_TRUE(live.ftp.list()) << live.shell.log.toStdString();
    QStringList names;
    for (const ListingEntry &entry : live.ftp.listing().entries) {
        names << entry.name;
    }
    EXPECT_TRUE(names.contains(u"datei.txt"_s));

    const std::string target = "127.0.0.1:" + std::to_string(server.port());
    const std::vector<std::string> seen = proxy.requests();
    ASSERT_GE(seen.size(), GetParam().requests.size());
    for (std::size_t at = 0; at < GetParam().requests.size(); ++at) {
        std::string expected = GetParam().requests.at(at);
        if (const std::size_t mark = expected.find('%'); mark != std::string::npos) {
            expected.replace(mark, 1, target);
        }
        EXPECT_EQ(seen.at(at), expected);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ProxySession,
    testing::Values(
        ProxyRow { 1, TestProxy::Kind::Socks4, true, { "CONNECT % proxyuser" } },
        ProxyRow { 2, TestProxy::Kind::Socks5, true, { "CONNECT %" } },
        ProxyRow {
            3, TestProxy::Kind::Gateway, true, { "USER proxyuser", "PASS proxypass", "SITE %" } },
        ProxyRow { 4,
                   TestProxy::Kind::Gateway,
                   true,
                   { "USER proxyuser", "PASS proxypass", "USER web01@%" } },
        ProxyRow { 5, TestProxy::Kind::Gateway, false, { "USER web01@%" } },
        ProxyRow {
            6, TestProxy::Kind::Gateway, true, { "USER proxyuser", "PASS proxypass", "OPEN %" } },
        ProxyRow { 7, TestProxy::Kind::Pipe, false, {} }),
    [](const testing::TestParamInfo<ProxyRow> &row) {
        return "Type" + std::to_string(row.param.type);
    });

TEST(RefusingProxy, ARefusalByTheProxyEndsTheLogin)
{
    const FaultServer server;
    const TestProxy proxy(TestProxy::Kind::Socks5, server.port());
    Live live;
    live.use(server);
    live.ftp.setProxy({ 2, u"127.0.0.1"_s, u"proxyuser"_s, u"falsch"_s, proxy.port() });
    live.prompts.expectMessage(otherText);
    live.session.ConnectSequence();
    live.expectDisconnected(ErrorKind::Proxy);
    EXPECT_EQ(server.sessions(), 0);
}
