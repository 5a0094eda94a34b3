// The fault server: right when nothing is set, and wrong in exactly the way that is set.
#include "servers/faultserver.h"
#include "servers/fixture.h"
#include "servers/rawclient.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using namespace servers;
using testing::Test;

namespace {

class FaultServerTest : public Test {
protected:
    FaultServer server;

    std::unique_ptr<RawClient> loggedIn()
    {
        auto client = std::make_unique<RawClient>(server.port());
        EXPECT_EQ(client->login(server.user(), server.password()).substr(0, 3), "230");
        client->command("TYPE I");
        return client;
    }
};

TEST_F(FaultServerTest, IsACorrectServerAtFirst)
{
    makeWebSpace(server.root());
    const auto client = loggedIn();
    EXPECT_EQ(client->command("PWD"), "257 \"/\" is the current directory\r\n");
    EXPECT_NE(client->receive("LIST").find("index.html"), std::string::npos);
    EXPECT_EQ(client->receive("LIST").find(".htaccess"), std::string::npos);
    EXPECT_NE(client->receive("LIST -a").find(".htaccess"), std::string::npos);
    EXPECT_NE(client->receive("MLSD").find("type=dir;"), std::string::npos);
    EXPECT_TRUE(client->receive("RETR bilder/logo.png")
                == readFile(server.root() / "bilder/logo.png"));
    EXPECT_EQ(client->command("SIZE bilder/logo.png"), "213 4321\r\n");
    EXPECT_EQ(client->send("STOR neu.txt", "abc").substr(0, 3), "226");
    EXPECT_EQ(client->command("REST 1").substr(0, 3), "350");
    EXPECT_EQ(client->send("STOR neu.txt", "X").substr(0, 3), "226");
    EXPECT_EQ(client->send("APPE neu.txt", "!").substr(0, 3), "226");
    EXPECT_EQ(readFile(server.root() / "neu.txt"), "aXc!");
    EXPECT_EQ(client->command("MFMT 19990102030405 neu.txt").substr(0, 3), "213");
    EXPECT_EQ(client->command("MDTM neu.txt"), "213 19990102030405\r\n");
    EXPECT_EQ(client->command("SITE chmod 600 neu.txt").substr(0, 3), "200");
    EXPECT_EQ(fs::status(server.root() / "neu.txt").permissions(), fs::perms(0600));
    EXPECT_EQ(client->command("MKD ordner").substr(0, 3), "257");
    EXPECT_EQ(client->command("RNFR neu.txt").substr(0, 3), "350");
    EXPECT_EQ(client->command("RNTO ordner/alt.txt").substr(0, 3), "250");
    EXPECT_EQ(client->command("RMD ordner").substr(0, 3), "550");
    EXPECT_EQ(client->command("CWD ordner").substr(0, 3), "250");
    EXPECT_EQ(client->command("DELE alt.txt").substr(0, 3), "250");
    EXPECT_EQ(client->command("CDUP").substr(0, 3), "250");
    EXPECT_EQ(client->command("RMD ordner").substr(0, 3), "250");
    EXPECT_EQ(client->command("CWD ../../..").substr(0, 3), "250");
    EXPECT_EQ(client->command("PWD"), "257 \"/\" is the current directory\r\n");
    EXPECT_EQ(client->command("QUIT").substr(0, 3), "221");
    EXPECT_EQ(client->readRest(), "");
    EXPECT_TRUE(server.waitForEnd());
}

TEST_F(FaultServerTest, ConvertsLineEndsInAscii)
{
    writeFile(server.root() / "text", "a\nb\n");
    const auto client = loggedIn();
    client->command("TYPE A");
    EXPECT_EQ(client->receive("RETR text"), "a\r\nb\r\n");
    client->send("STOR text", "c\r\n");
    EXPECT_EQ(readFile(server.root() / "text"), "c\n");
}

TEST_F(FaultServerTest, RefusesWrongLoginsAndEarlyCommands)
{
    RawClient client(server.port());
    EXPECT_EQ(client.command("PWD").substr(0, 3), "530");
    EXPECT_EQ(client.login(server.user(), "falsch").substr(0, 3), "530");
    EXPECT_EQ(client.login("jemand", server.password()).substr(0, 3), "530");
    EXPECT_EQ(client.command("PWD").substr(0, 3), "530");
}

TEST_F(FaultServerTest, AsksForAnAccount)
{
    server.fault.needAccount = true;
    RawClient client(server.port());
    EXPECT_EQ(client.login(server.user(), server.password()).substr(0, 3), "332");
    EXPECT_EQ(client.command("ACCT falsch").substr(0, 3), "530");
    EXPECT_EQ(client.command("ACCT " + server.account()).substr(0, 3), "230");
}

TEST_F(FaultServerTest, RemembersCommands)
{
    const auto client = loggedIn();
    client->command("NOOP");
    const std::vector<std::string> expected { "USER web01", "PASS geheim", "TYPE I", "NOOP" };
    EXPECT_EQ(server.lines(), expected);
    EXPECT_EQ(server.lines("TYPE"), std::vector<std::string> { "TYPE I" });
    EXPECT_EQ(server.commands().back().session, 1);
    EXPECT_TRUE(server.waitForCommand("NOOP"));
}

TEST_F(FaultServerTest, ConnectsActively)
{
    writeFile(server.root() / "x", "inhalt");
    const auto client = loggedIn();
    EXPECT_EQ(client->receiveActively("RETR x"), "inhalt");
}

TEST_F(FaultServerTest, RulesReplaceCommands)
{
    server.on({ .verb = "CWD", .argument = "*geheim*", .text = "550 Nein" });
    server.on({ .verb = "MKD", .text = "452 voll", .skip = 1, .times = 1 });
    const auto client = loggedIn();
    EXPECT_EQ(client->command("CWD geheimes"), "550 Nein\r\n");
    EXPECT_EQ(client->command("CWD /").substr(0, 3), "250");
    EXPECT_EQ(client->command("MKD a").substr(0, 3), "257");
    EXPECT_EQ(client->command("MKD b"), "452 voll\r\n");
    EXPECT_EQ(client->command("MKD b").substr(0, 3), "257");
}

TEST_F(FaultServerTest, RulesBreakConnections)
{
    server.on({ .verb = "PWD", .action = Rule::Drop });
    server.on({ .verb = "NOOP", .text = "421 Timeout." });
    server.on({ .verb = "SYST", .action = Rule::Endless });
    server.on({ .verb = "CDUP", .text = std::string(1 << 20, 'x') + "\r\n" });
    EXPECT_EQ(loggedIn()->command("PWD"), "");
    const auto second = loggedIn();
    EXPECT_EQ(second->command("NOOP"), "421 Timeout.\r\n");
    EXPECT_EQ(second->readRest(), "");
    EXPECT_EQ(loggedIn()->command("CDUP").size(), (1U << 20) + 2);
    const auto fourth = loggedIn();
    fourth->write("SYST\r\n");
    for (int i = 0; i < 10000; ++i) {
        ASSERT_EQ(fourth->readLine(), "211-There is more\r\n");
    }
}

TEST_F(FaultServerTest, StallsReplies)
{
    server.on({ .verb = "PWD", .action = Rule::Stall });
    const auto client = loggedIn();
    client->write("PWD\r\n");
    EXPECT_TRUE(server.waitForCommand("PWD"));
    EXPECT_EQ(client->readRest(50), "");
    EXPECT_EQ(server.openSessions(), 1);
}

TEST_F(FaultServerTest, MayGreetWith421)
{
    server.fault.greeting = "421 Zu viele";
    RawClient client(server.port());
    EXPECT_EQ(client.greeting(), "421 Zu viele\r\n");
    EXPECT_EQ(client.readRest(), "");
}

TEST_F(FaultServerTest, LimitsConnections)
{
    server.fault.maxSessions = 1;
    const auto first = loggedIn();
    EXPECT_EQ(RawClient(server.port()).greeting(), "421 Too many connections\r\n");
    server.fault.tooManyReply = "530 Sorry, too many";
    RawClient third(server.port());
    EXPECT_EQ(third.login(server.user(), server.password()), "530 Sorry, too many\r\n");
}

TEST_F(FaultServerTest, DelaysRepliesByTheirCommandsArrival)
{
    const auto client = loggedIn();
    server.fault.replyDelay = 50;
    const auto start = std::chrono::steady_clock::now();
    client->write("NOOP\r\nNOOP\r\nNOOP\r\nNOOP\r\nNOOP\r\nNOOP\r\nNOOP\r\nNOOP\r\n");
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(client->readReply().substr(0, 3), "200");
    }
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_GE(took, std::chrono::milliseconds(50));
    EXPECT_LT(took, std::chrono::milliseconds(8 * 50)); // sent together, answered together
}

TEST_F(FaultServerTest, LosesCommandsThatComeTooEarly)
{
    const auto client = loggedIn();
    server.fault.noPipelining = true;
    server.fault.replyDelay = 30;
    client->write("NOOP\r\nPWD\r\n");
    EXPECT_EQ(client->readReply().substr(0, 3), "200");
    EXPECT_EQ(client->command("SYST").substr(0, 3), "215");
    EXPECT_TRUE(server.lines("PWD").empty());
    EXPECT_EQ(server.discardedBytes(), 5);
}

TEST_F(FaultServerTest, ShapesReplies)
{
    const auto client = loggedIn();
    server.fault.replyShape = ReplyShape::MultiLine;
    EXPECT_EQ(client->command("NOOP"),
              "200-Begin\r\n123 a number\r\n 200 indented\r\n\r\n200-again\r\n200 Zzz...\r\n");
    server.fault.replyShape = ReplyShape::LineFeedOnly;
    EXPECT_EQ(client->command("NOOP"), "200 Zzz...\n");
    server.fault.replyShape = ReplyShape::OneByteAtATime;
    EXPECT_EQ(client->command("NOOP"), "200 Zzz...\r\n");
    server.fault.replyShape = ReplyShape::CodeOnly;
    EXPECT_EQ(client->command("NOOP"), "200\r\n");
}

TEST_F(FaultServerTest, BreaksDownloads)
{
    writeRandomFile(server.root() / "x", 100'000);
    server.fault.faultyTransfers = 1;
    server.fault.dropDataAfter = 1000;
    auto client = loggedIn();
    EXPECT_LE(client->receive("RETR x").size(), 1000U);
    EXPECT_EQ(client->lastReply().substr(0, 3), "426");
    EXPECT_EQ(client->receive("RETR x").size(), 100'000U); // only one transfer was to fail
    server.fault.faultyTransfers = -1;
    server.fault.dropDataAfter = -1;
    server.fault.truncateDataAfter = 70'000;
    EXPECT_EQ(client->receive("RETR x").size(), 70'000U);
    EXPECT_EQ(client->lastReply().substr(0, 3), "226");
    EXPECT_FALSE(client->receive("LIST").empty()); // listings are left alone
    server.fault.faultyListings = true;
    server.fault.truncateDataAfter = 5;
    EXPECT_EQ(client->receive("LIST").size(), 5U);
    server.fault.truncateDataAfter = -1;
    server.fault.dropAllAfter = 10;
    client->receive("RETR x");
    EXPECT_EQ(client->lastReply(), "");
}

TEST_F(FaultServerTest, StallsDownloads)
{
    writeRandomFile(server.root() / "x", 100'000);
    server.fault.stallDataAfter = 1000;
    const auto client = loggedIn();
    const auto data = client->openDataFor("RETR x");
    std::string bytes;
    while (bytes.size() < 1000 && data->read(bytes, 1000, 10000) > 0) { }
    EXPECT_EQ(bytes.size(), 1000U);
    EXPECT_EQ(data->read(bytes, 1, 50), -1);
    EXPECT_EQ(client->command("ABOR").substr(0, 3), "426");
    EXPECT_EQ(client->readReply().substr(0, 3), "226");
}

TEST_F(FaultServerTest, HoldsTheLastReplyBack)
{
    writeFile(server.root() / "x", "abc");
    server.fault.noFinalReply = true;
    const auto client = loggedIn();
    const auto data = client->openDataFor("RETR x");
    std::string bytes;
    while (data->read(bytes, 1000, 10000) > 0) { }
    EXPECT_EQ(bytes, "abc");
    EXPECT_EQ(client->command("NOOP").substr(0, 3), "200"); // not 226
}

TEST_F(FaultServerTest, BreaksUploads)
{
    server.fault.diskFullAfter = 10;
    const auto client = loggedIn();
    EXPECT_EQ(client->send("STOR x", "0123456789abc").substr(0, 3), "452");
    EXPECT_EQ(readFile(server.root() / "x"), "0123456789");
    server.fault.diskFullAfter = -1;
    server.fault.finalReply = "552 Quota exceeded";
    EXPECT_EQ(client->send("STOR x", "abc"), "552 Quota exceeded\r\n");
    server.fault.dropAllAfter = 1;
    EXPECT_EQ(client->send("STOR x", "abc"), "");
}

TEST_F(FaultServerTest, AnswersDuringTransfers)
{
    server.fault.answersDuringTransfers = true;
    const auto client = loggedIn();
    auto data = client->openDataFor("STOR x");
    client->write("SIZE x\r\n");
    ASSERT_TRUE(server.waitForCommand("STOR"));
    data->write("abc");
    EXPECT_EQ(client->readReply().substr(0, 3), "213"); // not 226
    data->finish();
    EXPECT_EQ(client->readReply().substr(0, 3), "226");
    data = client->openDataFor("STOR x");
    client->write("EPSV\r\n");
    data->write("abc");
    EXPECT_EQ(client->readReply().substr(0, 3), "229");
    EXPECT_EQ(client->command("NOOP").substr(0, 3), "200"); // no 226 ever
}

TEST_F(FaultServerTest, TellsForeignAndDeadPorts)
{
    const auto client = loggedIn();
    server.fault.passiveAddress = "10,9,9,9";
    EXPECT_NE(client->command("PASV").find("(10,9,9,9,"), std::string::npos);
    server.fault.deadPassivePort = true;
    EXPECT_ANY_THROW(client->receive("LIST"));
}

TEST_F(FaultServerTest, SendsListingsAsTheyAreGiven)
{
    const auto client = loggedIn();
    server.fault.listing = "../../boese\r\n";
    EXPECT_EQ(client->receive("LIST"), "../../boese\r\n");
}

TEST_F(FaultServerTest, SpeaksTls)
{
    writeRandomFile(server.root() / "x", 300'000);
    server.fault.tls = true;
    server.fault.tlsRequired = true;
    server.fault.requireReuse = true;
    RawClient plain(server.port());
    EXPECT_EQ(plain.command("USER web01").substr(0, 3), "530");
    RawClient client(server.port());
    EXPECT_EQ(client.command("AUTH TLS").substr(0, 3), "234");
    ASSERT_TRUE(client.startTls());
    EXPECT_EQ(client.login(server.user(), server.password()).substr(0, 3), "230");
    client.command("TYPE I");
    EXPECT_TRUE(client.receive("RETR x") == readFile(server.root() / "x"));
    EXPECT_EQ(client.send("STOR y", "abc").substr(0, 3), "226");
    EXPECT_EQ(server.reusedDataSessions(), 2);
    EXPECT_EQ(server.freshDataSessions(), 0);
    EXPECT_TRUE(server.commands().back().encrypted);
    EXPECT_FALSE(server.commands().front().encrypted);
}

TEST_F(FaultServerTest, TellsFeaturesAsSet)
{
    RawClient client(server.port());
    const std::string usual = client.command("FEAT");
    for (const char *feature : { " MLST ", " UTF8\r", " REST STREAM\r" }) {
        EXPECT_NE(usual.find(feature), std::string::npos) << feature;
    }
    EXPECT_EQ(usual.find("AUTH"), std::string::npos);
    server.fault.noMlsd = true;
    server.fault.noUtf8 = true;
    server.fault.noRestStream = true;
    server.fault.tls = true;
    EXPECT_EQ(client.command("FEAT"),
              "211-Features:\r\n EPRT\r\n EPSV\r\n MDTM\r\n MFMT\r\n SIZE\r\n AUTH TLS\r\n PBSZ\r\n"
              " PROT\r\n211 End\r\n");
    client.login(server.user(), server.password());
    EXPECT_EQ(client.command("MLSD").substr(0, 3), "500");
}

TEST_F(FaultServerTest, ForgetsRestarts)
{
    writeFile(server.root() / "x", "abc");
    const auto client = loggedIn();
    client->command("REST 1");
    EXPECT_EQ(client->receive("RETR x"), "bc");
    EXPECT_EQ(client->receive("RETR x"), "abc");
    server.fault.forgetRestart = true;
    EXPECT_EQ(client->command("REST 1").substr(0, 3), "350");
    EXPECT_EQ(client->receive("RETR x"), "abc");
}

TEST_F(FaultServerTest, BreaksEncryptedData)
{
    writeFile(server.root() / "x", "abc");
    server.fault.tls = true;
    RawClient client(server.port());
    client.command("AUTH TLS");
    ASSERT_TRUE(client.startTls());
    client.login(server.user(), server.password());
    const auto end = [&] {
        const auto data = client.openDataFor("RETR x");
        std::string bytes;
        long got = 0;
        while ((got = data->read(bytes, 100, 10000)) > 0) { }
        EXPECT_EQ(bytes, "abc");
        client.readReply();
        return got;
    };
    EXPECT_EQ(end(), 0); // close_notify
    server.fault.noCloseNotify = true;
    EXPECT_EQ(end(), -1);
    server.fault.requireReuse = true;
    server.fault.otherDataCertificate = true; // another certificate, so no session of ours
    client.receive("RETR x");
    EXPECT_EQ(client.lastReply().substr(0, 3), "522");
    EXPECT_EQ(server.freshDataSessions(), 1);
}

TEST_F(FaultServerTest, InjectsAndBreaksHandshakes)
{
    RawClient client(server.port());
    EXPECT_EQ(client.command("AUTH TLS").substr(0, 3), "502");
    server.fault.tls = true;
    server.fault.injectAfterAuth = "230 Logged in\r\n";
    EXPECT_EQ(client.command("AUTH TLS").substr(0, 3), "234");
    EXPECT_EQ(client.readReply(), "230 Logged in\r\n");
    server.fault.injectAfterAuth = "";
    server.fault.brokenHandshake = true;
    RawClient second(server.port());
    EXPECT_EQ(second.command("AUTH TLS").substr(0, 3), "234");
    EXPECT_FALSE(second.startTls());
}

TEST_F(FaultServerTest, ShowsTheCertificateOfTheMoment)
{
    server.fault.tls = true;
    const Certificate old = makeCertificate();
    const Certificate expired = makeCertificate({ .validUntilSeconds = -60 });
    const TemporaryFolder folder;
    writeFile(folder.path() / "old", old.certificate);
    writeFile(folder.path() / "expired", expired.certificate);
    const auto accepts = [&](const char *name) {
        RawClient client(server.port());
        client.command("AUTH TLS");
        return client.startTls(folder.path() / name);
    };
    server.fault.certificate = old;
    EXPECT_TRUE(accepts("old"));
    server.fault.certificate = expired;
    EXPECT_FALSE(accepts("old"));
    EXPECT_FALSE(accepts("expired"));
}

TEST_F(FaultServerTest, EndsWhileClientsAreConnected)
{
    auto own = std::make_unique<FaultServer>();
    RawClient client(own->port());
    client.greeting();
    own.reset();
    EXPECT_EQ(client.readRest(), "");
}

} // namespace
