// The test servers themselves: each comes up, lets the user in and serves its folder.
#include "servers/everyserver.h"
#include "servers/fixture.h"
#include "servers/network.h"
#include "servers/rawclient.h"

#include <array>
#include <chrono>
#include <csignal>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace servers;

namespace {

TEST_P(EveryServer, LetsTheUserInAndListsItsFolder)
{
    Server server(GetParam());
    makeWebSpace(server.root());
    RawClient client(server.port());
    EXPECT_EQ(client.login(server.user(), server.password()).substr(0, 3), "230");
    EXPECT_NE(client.command("PWD").find("\"/\""), std::string::npos);
    EXPECT_NE(client.receive("LIST").find("index.html"), std::string::npos);
    client.command("TYPE I");
    EXPECT_TRUE(client.receive("RETR bilder/logo.png")
                == readFile(server.root() / "bilder/logo.png"));
}

TEST_P(EveryServer, EndsWithATestThatIsKilled)
{
    std::array<int, 2> line {};
    ASSERT_EQ(pipe(line.data()), 0);
    const pid_t test = fork();
    if (test == 0) {
        setpgid(0, 0);
        const Server server(GetParam());
        const std::uint16_t port = server.port();
        (void)!write(line[1], &port, sizeof port);
        for (;;) {
            pause();
        }
    }
    close(line[1]);
    std::uint16_t port = 0;
    ASSERT_EQ(read(line[0], &port, sizeof port), static_cast<ssize_t>(sizeof port));
    close(line[0]);
    EXPECT_TRUE(isListening(port));
    kill(test, SIGKILL);
    waitpid(test, nullptr, 0);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (isListening(port) && std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
    }
    EXPECT_FALSE(isListening(port));
}

TEST_P(EveryServer, RefusesAWrongPassword)
{
    Server server(GetParam());
    RawClient client(server.port());
    EXPECT_EQ(client.login(server.user(), "falsch").substr(0, 3), "530");
}

TEST_P(EveryServer, MayChangeItsFolder)
{
    Server server(GetParam());
    writeFile(server.root() / "seite.html", "alt");
    server.adoptFiles();
    RawClient client(server.port());
    client.login(server.user(), server.password());
    EXPECT_EQ(client.command("MKD neu").substr(0, 3), "257");
    EXPECT_EQ(client.send("STOR seite.html", "neu!").substr(0, 3), "226");
    EXPECT_TRUE(fs::is_directory(server.root() / "neu"));
    EXPECT_EQ(readFile(server.root() / "seite.html"), "neu!");
}

TEST_P(EveryServer, OffersTlsWhenTold)
{
    Server plain(GetParam());
    RawClient plainClient(plain.port());
    EXPECT_EQ(plainClient.command("AUTH TLS").substr(0, 1), "5");
    Server server(GetParam(), { .tls = true });
    RawClient client(server.port());
    EXPECT_EQ(client.command("AUTH TLS").substr(0, 3), "234");
    EXPECT_TRUE(client.startTls(server.certificate()));
    EXPECT_EQ(client.login(server.user(), server.password()).substr(0, 3), "230");
}

TEST_P(EveryServer, RefusesTheSecondConnectionWhenTold)
{
    Server server(GetParam(), { .maxPerIp = 1 });
    RawClient first(server.port());
    ASSERT_EQ(first.login(server.user(), server.password()).substr(0, 3), "230");
    RawClient second(server.port());
    std::string reply = second.greeting();
    if (reply.starts_with("220")) {
        reply = second.login(server.user(), server.password());
    }
    EXPECT_TRUE(reply.starts_with("421") || reply.starts_with("530")) << reply;
}

TEST_P(EveryServer, ComesBackOnItsPort)
{
    Server server(GetParam());
    const auto port = server.port();
    {
        RawClient client(port);
        client.login(server.user(), server.password());
        server.stop();
        EXPECT_TRUE(client.command("NOOP").empty());
    }
    EXPECT_ANY_THROW(RawClient { port });
    server.restart();
    EXPECT_EQ(server.port(), port);
    RawClient again(port);
    EXPECT_EQ(again.login(server.user(), server.password()).substr(0, 3), "230");
}

TEST_P(EveryServer, ListensOnIpv6)
{
    Server server(GetParam(), { .address = "::1" });
    RawClient client(server.port(), "::1");
    EXPECT_EQ(client.login(server.user(), server.password()).substr(0, 3), "230");
}

INSTANTIATE_TEST_SUITE_P(Servers, EveryServer, testing::ValuesIn(allKinds()), parameterName);

TEST(Server, SaysWhyItDoesNotComeUp)
{
    try {
        Server server(Kind::PyFtpd, { .extra = { "--no-such-option" } });
        FAIL() << "came up";
    } catch (const std::runtime_error &error) {
        EXPECT_NE(std::string(error.what()).find("--no-such-option"), std::string::npos);
    }
}

TEST(Server, LogsCommandsAndReplies)
{
    Server server(Kind::PyFtpd);
    RawClient client(server.port());
    client.login(server.user(), server.password());
    client.command("SIZE nichts");
    EXPECT_NE(server.log().find("SIZE nichts"), std::string::npos) << server.log();
}

TEST(Difference, IsEmptyForEqualFolders)
{
    const TemporaryFolder left;
    const TemporaryFolder right;
    makeWebSpace(left.path());
    makeWebSpace(right.path());
    EXPECT_EQ(difference(left.path(), right.path()), "");
}

TEST(Difference, SeesEveryKindOfDifference)
{
    const TemporaryFolder left;
    const TemporaryFolder right;
    const auto expectOne = [&](const std::string &part) {
        const std::string text = difference(left.path(), right.path());
        EXPECT_NE(text.find(part), std::string::npos) << text;
        fs::remove_all(left.path() / "x");
        fs::remove_all(right.path() / "x");
    };
    writeFile(left.path() / "x", "a");
    expectOne("x is missing in " + right.path().string());
    writeFile(right.path() / "x", "a");
    expectOne("x is missing in " + left.path().string());
    writeFile(left.path() / "x", "a");
    writeFile(right.path() / "x", "b");
    expectOne("differ");
    writeFile(left.path() / "x", "a");
    writeFile(right.path() / "x", "ab");
    expectOne("2");
    writeFile(left.path() / "x", "");
    fs::create_directory(right.path() / "x");
    expectOne("only one of them is a folder");
    EXPECT_NE(difference(left.path() / "none", right.path()), "");
}

TEST(RandomBytes, AreTheSameInMemoryAndOnDisk)
{
    const TemporaryFolder folder;
    const std::size_t size = (1 << 20) + 7; // more than one block
    writeRandomFile(folder.path() / "a/b", size, 9);
    EXPECT_TRUE(readFile(folder.path() / "a/b") == randomBytes(size, 9));
    EXPECT_NE(randomBytes(100, 1), randomBytes(100, 2));
}

} // namespace
