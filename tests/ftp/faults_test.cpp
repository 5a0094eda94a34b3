// What the user gets when the server does something wrong, and that nothing older is lost.
#include "ftp/tree.h"

#include "ftp/run.h"
#include "servers/faultserver.h"
#include "servers/fixture.h"

#include <algorithm>
#include <asio/post.hpp>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

namespace fs = std::filesystem;
using ftp::ErrorKind;
using ftp::Type;
using servers::Rule;

namespace {

class Faults : public testing::Test {
protected:
    TestClient &login(ftp::Encryption encryption = ftp::Encryption::Never, int sessions = 1)
    {
        m_client = std::make_unique<TestClient>(server.port(), server.user(), server.password(),
                                                encryption, sessions);
        m_client->login().timeout = std::chrono::milliseconds(700);
        return *m_client;
    }
    TestClient &connected(ftp::Encryption encryption = ftp::Encryption::Never, int sessions = 1)
    {
        TestClient &client = login(encryption, sessions);
        client.trust(ftp::Trust::Once);
        const ftp::Status opened = client.open();
        EXPECT_TRUE(opened) << (opened ? "" : opened.error().text);
        return client;
    }
    template <class T> T run(ftp::Awaitable<T> work) { return m_client->run(std::move(work)); }
    ftp::Client &ftpClient() { return m_client->client(); }
    std::string local(const std::string &name) { return (folder.path() / name).string(); }
    ftp::Result<std::int64_t> get(const std::string &name, std::int64_t offset = 0)
    {
        return run(ftpClient().get(name, local(name), offset, Type::Binary));
    }
    ftp::Result<std::int64_t> put(const std::string &name, std::int64_t offset = 0)
    {
        return run(ftpClient().put(local(name), name, offset, Type::Binary));
    }

    servers::FaultServer server;
    servers::TemporaryFolder folder;
    std::unique_ptr<TestClient> m_client;
};

const std::string older = "der alte Inhalt";

} // namespace

TEST_F(Faults, GarbageInPlaceOfAGreetingIsAProtocolError)
{
    server.fault.greeting = "SSH-2.0-OpenSSH_9.2\r\n";
    const auto opened = login().open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::Protocol);
    EXPECT_FALSE(m_client->client().usable());
}

TEST_F(Faults, AFullServerIsNoWrongPassword)
{
    server.fault.greeting = "421 Too many connections";
    auto opened = login().open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::TooManyConnections);
    EXPECT_NE(opened.error().text.find("421 Too many"), std::string::npos);
}

TEST_F(Faults, ASilentServerEndsWithinTheTimeOut)
{
    server.on({ .verb = "PASS", .action = Rule::Stall });
    const auto start = std::chrono::steady_clock::now();
    const auto opened = login().open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::Timeout);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

TEST_F(Faults, AnEndlessReplyAndAnEndlessLineAreCutOff)
{
    server.on({ .verb = "PASS", .action = Rule::Endless });
    EXPECT_FALSE(login().open());
    server.clearRules();
    server.on({ .verb = "PASS", .text = "230 " + std::string(3000000, 'x') });
    const auto opened = login().open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::Protocol);
}

TEST_F(Faults, EveryShapeOfReplyIsUnderstood)
{
    servers::writeRandomFile(server.root() / "a.bin", 5000);
    for (const auto shape : { servers::ReplyShape::MultiLine, servers::ReplyShape::LineFeedOnly,
                              servers::ReplyShape::OneByteAtATime }) {
        server.fault.replyShape = shape;
        connected();
        const auto got = get("a.bin");
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(servers::difference(local("a.bin"), server.root() / "a.bin"), "");
    }
}

TEST_F(Faults, AServerThatLosesPipelinedCommandsIsServedOneByOne)
{
    server.fault.noPipelining = true;
    server.fault.replyDelay = 30;
    servers::makeWebSpace(server.root() / "web");
    TestClient &client = login();
    client.login().timeout = std::chrono::milliseconds(2000);
    const auto opened = client.open();
    ASSERT_TRUE(opened) << opened.error().text;
    EXPECT_TRUE(client.knowledge().noPipelining);
    const auto got = run(ftp::getTree(ftpClient(), "/web", local("web"), Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
}

TEST_F(Faults, ABrokenDownloadIsNoSuccessAndSparesTheOlderFile)
{
    servers::writeRandomFile(server.root() / "a.bin", 100000);
    const auto breaks = [&](const char *what) {
        SCOPED_TRACE(what);
        connected();
        servers::writeFile(local("a.bin"), older);
        const auto got = get("a.bin");
        ASSERT_FALSE(got);
        EXPECT_EQ(servers::readFile(local("a.bin")), older);
        EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1)
            << "nothing is left beside it";
    };
    server.fault.dropDataAfter = 1000;
    breaks("data connection reset");
    server.fault.dropDataAfter = -1;
    server.fault.truncateDataAfter = 1000;
    breaks("cut short with 226");
    server.fault.truncateDataAfter = -1;
    server.fault.stallDataAfter = 1000;
    breaks("stalled");
    server.fault.stallDataAfter = -1;
    server.fault.dropAllAfter = 1000;
    breaks("both connections reset");
    server.fault.dropAllAfter = -1;
    server.fault.noFinalReply = true;
    breaks("no 226");
    server.fault.noFinalReply = false;
    server.fault.finalReply = "451 Local error";
    breaks("451 at the end");
    server.fault.finalReply = "";
    server.fault.deadPassivePort = true;
    breaks("nobody at the passive port");
}

TEST_F(Faults, ABrokenDownloadOfANewFileCanBeContinued)
{
    servers::writeRandomFile(server.root() / "neu.bin", 100000);
    server.fault.dropAllAfter = 40000;
    connected();
    ASSERT_FALSE(get("neu.bin"));
    const auto have = static_cast<std::int64_t>(fs::file_size(local("neu.bin")));
    EXPECT_GT(have, 0);
    server.fault.dropAllAfter = -1;
    connected();
    const auto got = get("neu.bin", have);
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(*got, have);
    EXPECT_EQ(servers::difference(local("neu.bin"), server.root() / "neu.bin"), "");
}

TEST_F(Faults, ABrokenUploadIsNoSuccess)
{
    servers::writeRandomFile(local("b.bin"), 3000000);
    server.fault.dropDataAfter = 1000;
    connected();
    EXPECT_FALSE(put("b.bin"));
    server.fault.dropDataAfter = -1;
    server.fault.diskFullAfter = 1000;
    connected();
    const auto full = put("b.bin");
    ASSERT_FALSE(full);
    EXPECT_EQ(full.error().replyCode, 452);
    EXPECT_NE(full.error().text.find("No space"), std::string::npos);
    EXPECT_TRUE(ftpClient().usable()); // the next file may be smaller
}

TEST_F(Faults, ThePassiveAddressOfTheReplyIsNotTrusted)
{
    server.fault.passiveAddress = "10,9,9,9";
    servers::writeRandomFile(server.root() / "a.bin", 5000);
    connected();
    const auto got = get("a.bin");
    ASSERT_TRUE(got) << got.error().text;
}

TEST_F(Faults, TheOtherPassiveCommandIsTriedWhenOneIsRefused)
{
    server.on({ .verb = "PASV", .text = "500 PASV not understood" });
    servers::writeRandomFile(server.root() / "a.bin", 5000);
    connected();
    const auto got = get("a.bin");
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_FALSE(server.lines("EPSV").empty());
}

TEST_F(Faults, NamesThatLeaveTheFolderAreRefused)
{
    server.fault.noMlsd = true;
    server.fault.listing
        = "-rw-r--r-- 1 u g 5 Jan 10 2026 ../boese.txt\r\n-rw-r--r-- 1 u g 5 Jan 10 2026 "
          "gut.txt\r\n"
          "drwxr-xr-x 1 u g 5 Jan 10 2026 ..\r\n-rw-r--r-- 1 u g 5 Jan 10 2026 /etc/passwd\r\n";
    servers::writeFile(server.root() / "web" / "gut.txt", "12345");
    connected();
    const auto got = run(ftp::getTree(ftpClient(), "/web", local("ziel"), Type::Binary));
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::UnsafeName);
    EXPECT_EQ(servers::readFile(local("ziel/gut.txt")), "12345");
    EXPECT_FALSE(fs::exists(folder.path() / "boese.txt"));
    EXPECT_EQ(m_client->notes().size(), 2U);
}

TEST_F(Faults, ANameWithALineBreakNeverBecomesACommand)
{
    connected();
    server.clearCommands();
    const auto removed = run(ftpClient().removeFile("a\r\nRMD wichtig"));
    ASSERT_FALSE(removed);
    EXPECT_EQ(removed.error().kind, ErrorKind::BadArgument);
    EXPECT_TRUE(server.lines("RMD").empty());
    EXPECT_TRUE(ftpClient().usable());
}

TEST_F(Faults, ALocalFolderWithoutRightsEndsInAClearMessage)
{
    servers::writeFile(server.root() / "a.txt", "x");
    connected();
    const auto got = run(ftpClient().get("a.txt", local("gibt/es/nicht/a.txt"), 0, Type::Binary));
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::LocalFile);
    EXPECT_TRUE(ftpClient().usable());
    EXPECT_TRUE(get("a.txt"));
}

TEST_F(Faults, AFolderTransferSurvivesALostConnection)
{
    for (int i = 0; i < 20; ++i) {
        servers::writeRandomFile(server.root() / "web" / ("f" + std::to_string(i)), 20000,
                                 static_cast<std::uint32_t>(i));
    }
    server.fault.dropAllAfter = 5000;
    server.fault.faultyTransfers = 2;
    connected();
    const auto got = run(ftp::getTree(ftpClient(), "/web", local("web"), Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
    server.fault.faultyTransfers = 2;
    const auto put = run(ftp::putTree(ftpClient(), local("web"), "/oben", Type::Binary));
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "oben"), "");
}

TEST_F(Faults, AbortingEndsTheWaitForAServerThatNeverConnects)
{
    server.on({ .verb = "RETR", .text = "150 Here it comes" });
    TestClient &client = login();
    client.login().passive = false;
    client.login().timeout = std::chrono::seconds(60);
    ASSERT_TRUE(client.open());
    std::thread user([&] {
        EXPECT_TRUE(server.waitForCommand("RETR"));
        asio::post(client.context(), [&] { ftpClient().abort(); });
    });
    const auto start = std::chrono::steady_clock::now();
    const auto got = get("a.txt");
    user.join();
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::Aborted);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(50));
}

TEST_F(Faults, ARefusedPortInTheMiddleOfAFolderCostsNoFile)
{
    for (int i = 0; i < 8; ++i) {
        servers::writeRandomFile(server.root() / "web" / ("f" + std::to_string(i)), 3000,
                                 static_cast<std::uint32_t>(i));
    }
    server.fault.greeting = "220 (vsFTPd 3.0.3)"; // gets commands ahead
    server.on({ .verb = "PORT", .text = "500 Illegal PORT command", .skip = 4, .times = 1 });
    TestClient &client = login();
    client.login().passive = false;
    ASSERT_TRUE(client.open());
    const auto got = run(ftp::getTree(ftpClient(), "/web", local("web"), Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
    EXPECT_EQ(server.lines("PORT").size(), 10U); // a listing, eight files, one of them twice
    EXPECT_EQ(server.lines("RETR").size(), 9U); // one went ahead in vain
}

TEST_F(Faults, AFolderTransferKeepsToOneSessionWhenTheServerWantsThat)
{
    for (int i = 0; i < 40; ++i) {
        servers::writeRandomFile(server.root() / "web" / ("f" + std::to_string(i)), 100);
    }
    for (const char *refusal : { "421 Too many connections", "530 Too many connections" }) {
        server.fault.maxSessions = 1;
        server.fault.tooManyReply = refusal;
        connected(ftp::Encryption::Never, 4);
        const auto got = run(ftp::getTree(ftpClient(), "/web", local("web"), Type::Binary));
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
        EXPECT_TRUE(run(ftpClient().quit()));
        ASSERT_TRUE(server.waitForEnd());
    }
}

TEST_F(Faults, AFolderTransferTellsWhatWasRefused)
{
    servers::writeFile(server.root() / "web" / "gut.txt", "gut");
    servers::writeFile(server.root() / "web" / "geheim.txt", "nein");
    server.on({ .verb = "RETR", .argument = "*geheim*", .text = "550 Permission denied" });
    connected();
    const auto got = run(ftp::getTree(ftpClient(), "/web", local("web"), Type::Binary));
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().text, "550 Permission denied");
    EXPECT_EQ(servers::readFile(local("web/gut.txt")), "gut");
    ASSERT_EQ(m_client->notes().size(), 1U);
    EXPECT_NE(m_client->notes().front().find("geheim.txt"), std::string::npos);
}

TEST_F(Faults, AnAbortEndsTheRunningTransferAtOnce)
{
    servers::writeRandomFile(server.root() / "a.bin", 100000);
    server.fault.stallDataAfter = 1000;
    TestClient &client = connected();
    client.login().timeout = std::chrono::seconds(30);
    asio::steady_timer timer(client.context(), std::chrono::milliseconds(50));
    timer.async_wait([&](const std::error_code &) { client.client().abort(); });
    const auto got = get("a.bin");
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::Aborted);
}

// Encryption

TEST_F(Faults, WithoutAnOfferTheAutomaticChoiceGoesOnInClearAndSaysSo)
{
    TestClient &client = connected(ftp::Encryption::Automatic);
    EXPECT_FALSE(client.client().session().encrypted());
    EXPECT_EQ(client.notes().size(), 1U);
    EXPECT_EQ(client.certificateQuestions(), 0);
}

TEST_F(Faults, BehindAProxyThatNamesTheServerTheAutomaticChoiceSaysThatItGoesOnInClear)
{
    TestClient &client = login(ftp::Encryption::Automatic);
    client.login().proxy.kind = ftp::ProxyKind::UserNoLogin;
    client.login().proxy.host = "127.0.0.1";
    client.login().proxy.port = server.port();
    client.login().host = "web.example.org";
    client.login().port = 21;
    EXPECT_FALSE(client.open()); // the server knows nobody of that name
    EXPECT_EQ(server.lines("USER"), std::vector<std::string> { "USER web01@web.example.org" });
    ASSERT_EQ(client.notes().size(), 1U);
    EXPECT_TRUE(client.notes().front().starts_with("Über diesen Proxy ist keine Verschlüsselung"));
}

TEST_F(Faults, WithoutAnOfferTheStrictChoiceSendsNoPassword)
{
    const auto opened = login(ftp::Encryption::Always).open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::TlsFailed);
    EXPECT_TRUE(server.lines("USER").empty());
    EXPECT_TRUE(server.lines("PASS").empty());
}

TEST_F(Faults, AServerOnceSeenWithEncryptionMustOfferItAgain)
{
    auto knowledge = std::make_shared<ftp::ServerKnowledge>(local("vertraut"));
    server.fault.tls = true;
    TestClient &first = login(ftp::Encryption::Automatic);
    first.useKnowledge(knowledge);
    first.trust(ftp::Trust::Always);
    ASSERT_TRUE(first.open());
    EXPECT_TRUE(first.client().session().encrypted());
    EXPECT_EQ(first.certificateQuestions(), 1);

    TestClient &again = login(ftp::Encryption::Automatic);
    again.useKnowledge(std::make_shared<ftp::ServerKnowledge>(local("vertraut")));
    ASSERT_TRUE(again.open());
    EXPECT_EQ(again.certificateQuestions(), 0) << "the answer was kept";

    server.fault.tls = false;
    server.clearCommands();
    TestClient &downgraded = login(ftp::Encryption::Automatic);
    downgraded.useKnowledge(std::make_shared<ftp::ServerKnowledge>(local("vertraut")));
    const auto opened = downgraded.open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::TlsFailed);
    EXPECT_TRUE(server.lines("USER").empty());
}

TEST_F(Faults, AChangedCertificateIsShownAsChangedAndNothingIsSentBefore)
{
    server.fault.tls = true;
    auto knowledge = std::make_shared<ftp::ServerKnowledge>(local("vertraut"));
    TestClient &first = login(ftp::Encryption::Always);
    first.useKnowledge(knowledge);
    first.trust(ftp::Trust::Always);
    ASSERT_TRUE(first.open());
    server.fault.certificate = servers::makeCertificate();
    server.clearCommands();
    TestClient &second = login(ftp::Encryption::Always);
    second.useKnowledge(std::make_shared<ftp::ServerKnowledge>(local("vertraut")));
    const auto opened = second.open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::CertificateRejected);
    EXPECT_TRUE(second.lastQuestion().changed);
    EXPECT_EQ(second.lastQuestion().certificate.fingerprint.size(), 95U);
    EXPECT_TRUE(server.lines("USER").empty());
}

TEST_F(Faults, InjectedRepliesBehindTheAuthReplyNeverCount)
{
    server.fault.tls = true;
    server.fault.injectAfterAuth = "230 Logged in\r\n";
    TestClient &client = login(ftp::Encryption::Always);
    client.trust(ftp::Trust::Once);
    const auto opened = client.open();
    // In the packet of the reply they are thrown away; behind it they spoil the handshake.
    if (!opened) {
        EXPECT_EQ(opened.error().kind, ErrorKind::TlsFailed);
    }
    EXPECT_TRUE(std::none_of(client.replies().begin(), client.replies().end(),
                             [](const std::string &reply) { return reply == "230 Logged in"; }));
    for (const servers::Command &command : server.commands()) {
        EXPECT_TRUE(command.encrypted || command.line == "AUTH TLS") << command.line;
    }
}

TEST_F(Faults, ABrokenHandshakeNeverFallsBackToClearText)
{
    server.fault.tls = true;
    server.fault.brokenHandshake = true;
    const auto opened = login(ftp::Encryption::Automatic).open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::TlsFailed);
    EXPECT_TRUE(server.lines("USER").empty());
}

TEST_F(Faults, DataConnectionsResumeTheControlConnectionsSession)
{
    server.fault.tls = true;
    server.fault.requireReuse = true;
    servers::writeRandomFile(server.root() / "a.bin", 5000);
    connected(ftp::Encryption::Always);
    for (int i = 0; i < 3; ++i) {
        const auto got = get("a.bin");
        ASSERT_TRUE(got) << got.error().text;
    }
    EXPECT_EQ(server.reusedDataSessions(), 3);
    EXPECT_EQ(server.freshDataSessions(), 0);
}

TEST_F(Faults, AnEncryptedDownloadWithoutAProperEndCountsWhenTheSizeFits)
{
    server.fault.tls = true;
    server.fault.noCloseNotify = true;
    servers::writeRandomFile(server.root() / "a.bin", 5000);
    connected(ftp::Encryption::Always);
    EXPECT_TRUE(get("a.bin"));
    server.on({ .verb = "SIZE", .text = "500 unknown" });
    connected(ftp::Encryption::Always);
    const auto got = get("a.bin");
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::Truncated);
}

TEST_F(Faults, AnotherCertificateOnTheDataConnectionIsRefused)
{
    server.fault.tls = true;
    server.fault.otherDataCertificate = true;
    servers::writeRandomFile(server.root() / "a.bin", 5000);
    connected(ftp::Encryption::Always);
    const auto got = get("a.bin");
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::TlsFailed);
}

TEST_F(Faults, FoldersArriveWholeOnAServerThatAnswersDuringTransfers)
{
    for (int i = 0; i < 15; ++i) {
        servers::writeRandomFile(server.root() / "web" / ("f" + std::to_string(i)), 300000,
                                 static_cast<std::uint32_t>(i));
    }
    server.fault.answersDuringTransfers = true;
    for (const int sessions : { 1, 3 }) {
        SCOPED_TRACE(sessions);
        TestClient &client = login(ftp::Encryption::Never, sessions);
        client.login().timeout = std::chrono::seconds(3);
        ASSERT_TRUE(client.open());
        const std::string down = local("unten" + std::to_string(sessions));
        const auto got = run(ftp::getTree(ftpClient(), "/web", down, Type::Binary));
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(servers::difference(down, server.root() / "web"), "");
        const std::string up = "oben" + std::to_string(sessions);
        TestClient &second = login(ftp::Encryption::Never, sessions);
        second.login().timeout = std::chrono::seconds(3);
        ASSERT_TRUE(second.open());
        const auto put = run(ftp::putTree(ftpClient(), down, "/" + up, Type::Binary));
        ASSERT_TRUE(put) << put.error().text;
        EXPECT_EQ(servers::difference(server.root() / up, down), "");
    }
}

TEST_F(Faults, AChangeOfFolderThatIsAnsweredTooEarlyIsNotTheEndOfAListing)
{
    for (int i = 0; i < 3; ++i) {
        const auto below = server.root() / "web" / ("o" + std::to_string(i));
        for (int j = 0; j < 5; ++j) {
            servers::writeFile(below / std::to_string(j) / "datei mit langem namen.html", "x");
        }
    }
    server.fault.answersDuringTransfers = true;
    for (const bool machine : { true, false }) {
        SCOPED_TRACE(machine);
        server.fault.noMlsd = !machine;
        TestClient &client = login(ftp::Encryption::Never, 1);
        client.login().timeout = std::chrono::seconds(3);
        ASSERT_TRUE(client.open());
        const int before = server.sessions();
        const std::string down = local(machine ? "machine" : "plain");
        const auto got = run(ftp::getTree(ftpClient(), "/web", down, Type::Binary));
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(servers::difference(down, server.root() / "web"), "");
        EXPECT_LE(server.sessions(), before + 1) << "one is what it takes to find out";
    }
}
