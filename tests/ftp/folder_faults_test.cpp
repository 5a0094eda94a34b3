// Transfers of whole folders when the server does something wrong: every file that can come comes.
#include "ftp/tree.h"

#include "ftp/impatientcase.h"

#include <filesystem>

using FolderFaults = ImpatientCase;
using ftp::ErrorKind;
using ftp::Type;

TEST_F(FolderFaults, NamesThatLeaveTheFolderAreRefused)
{
    server.fault.noMlsd = true;
    server.fault.listing
        = "-rw-r--r-- 1 u g 5 Jan 10 2026 ../boese.txt\r\n-rw-r--r-- 1 u g 5 Jan 10 2026 "
          "gut.txt\r\n"
          "drwxr-xr-x 1 u g 5 Jan 10 2026 ..\r\n-rw-r--r-- 1 u g 5 Jan 10 2026 /etc/passwd\r\n";
    servers::writeFile(server.root() / "web" / "gut.txt", "12345");
    connected();
    const auto got = run(ftp::getTree(m_client->client(), "/web", local("ziel"), Type::Binary));
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::UnsafeName);
    EXPECT_EQ(servers::readFile(local("ziel/gut.txt")), "12345");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "boese.txt"));
    EXPECT_EQ(m_client->notes().size(), 2U);
}

TEST_F(FolderFaults, FoldersNestedTooDeeplyFailAsSuchInEveryDirection)
{
    std::filesystem::path below;
    for (int level = 0; level <= 65; ++level) {
        below /= "t";
    }
    std::filesystem::create_directories(server.root() / "web" / below);
    std::filesystem::create_directories(std::filesystem::path(local("site")) / below);
    connected();
    ftp::Client &client = m_client->client();
    const std::vector outcomes { run(ftp::getTree(client, "/web", local("web"), Type::Binary)),
                                 run(ftp::putTree(client, local("site"), "/oben", Type::Binary)),
                                 run(ftp::removeTree(client, "/web")) };
    for (const ftp::Status &outcome : outcomes) {
        ASSERT_FALSE(outcome);
        EXPECT_EQ(outcome.error().kind, ErrorKind::TooDeep) << outcome.error().text;
    }
}

TEST_F(FolderFaults, AFolderTransferSurvivesALostConnection)
{
    for (int i = 0; i < 20; ++i) {
        servers::writeRandomFile(server.root() / "web" / ("f" + std::to_string(i)), 20000,
                                 static_cast<std::uint32_t>(i));
    }
    server.fault.dropAllAfter = 5000;
    server.fault.faultyTransfers = 2;
    connected();
    const auto got = run(ftp::getTree(m_client->client(), "/web", local("web"), Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
    server.fault.faultyTransfers = 2;
    const auto put = run(ftp::putTree(m_client->client(), local("web"), "/oben", Type::Binary));
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "oben"), "");
}

TEST_F(FolderFaults, ARefusedPortInTheMiddleOfAFolderCostsNoFile)
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
    const auto got = run(ftp::getTree(m_client->client(), "/web", local("web"), Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
    EXPECT_EQ(server.lines("PORT").size(), 10U); // a listing, eight files, one of them twice
    EXPECT_EQ(server.lines("RETR").size(), 9U); // one went ahead in vain
}

TEST_F(FolderFaults, AFolderTransferKeepsToOneSessionWhenTheServerWantsThat)
{
    for (int i = 0; i < 40; ++i) {
        servers::writeRandomFile(server.root() / "web" / ("f" + std::to_string(i)), 100);
    }
    for (const char *refusal : { "421 Too many connections", "530 Too many connections" }) {
        server.fault.maxSessions = 1;
        server.fault.tooManyReply = refusal;
        connected(ftp::Encryption::Never, 4);
        const auto got = run(ftp::getTree(m_client->client(), "/web", local("web"), Type::Binary));
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
        EXPECT_TRUE(run(m_client->client().quit()));
        ASSERT_TRUE(server.waitForEnd());
    }
}

TEST_F(FolderFaults, AFolderTransferTellsWhatWasRefused)
{
    servers::writeFile(server.root() / "web" / "gut.txt", "gut");
    servers::writeFile(server.root() / "web" / "geheim.txt", "nein");
    server.on({ .verb = "RETR", .argument = "*geheim*", .text = "550 Permission denied" });
    connected();
    const auto got = run(ftp::getTree(m_client->client(), "/web", local("web"), Type::Binary));
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().text, "550 Permission denied");
    EXPECT_EQ(servers::readFile(local("web/gut.txt")), "gut");
    ASSERT_EQ(m_client->notes().size(), 1U);
    EXPECT_NE(m_client->notes().front().find("geheim.txt"), std::string::npos);
}

TEST_F(FolderFaults, FoldersArriveWholeOnAServerThatAnswersDuringTransfers)
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
        const auto got = run(ftp::getTree(m_client->client(), "/web", down, Type::Binary));
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(servers::difference(down, server.root() / "web"), "");
        const std::string up = "oben" + std::to_string(sessions);
        TestClient &second = login(ftp::Encryption::Never, sessions);
        second.login().timeout = std::chrono::seconds(3);
        ASSERT_TRUE(second.open());
        const auto put = run(ftp::putTree(m_client->client(), down, "/" + up, Type::Binary));
        ASSERT_TRUE(put) << put.error().text;
        EXPECT_EQ(servers::difference(server.root() / up, down), "");
    }
}

TEST_F(FolderFaults, AChangeOfFolderThatIsAnsweredTooEarlyIsNotTheEndOfAListing)
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
        const auto got = run(ftp::getTree(m_client->client(), "/web", down, Type::Binary));
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(servers::difference(down, server.root() / "web"), "");
        EXPECT_LE(server.sessions(), before + 1) << "one is what it takes to find out";
    }
}
