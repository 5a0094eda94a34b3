// What happens on a session while the user reads.
#include "ftp/faultcase.h"

#include <gmock/gmock.h>

using ftp::Type;
using servers::Rule;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr ftp::Milliseconds often { 10 };
constexpr ftp::Milliseconds never { std::chrono::hours(1) };

class KeepAlive : public FaultCase {
protected:
    void watch(ftp::Milliseconds every)
    {
        server.clearCommands();
        m_client->client().watchIdle([this] { ++lost; }, every);
    }
    /// Lets the engine work until then. @return false after ten seconds
    bool wait(const std::function<bool()> &until)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        m_client->context().restart();
        while (!until() && std::chrono::steady_clock::now() < end) {
            m_client->context().run_one_for(std::chrono::milliseconds(5));
        }
        return until();
    }
    bool waitForCommands(const std::string &verb, std::size_t count = 1)
    {
        return wait([&] { return server.lines(verb).size() >= count; });
    }
    void stop()
    {
        run([](ftp::Client &client) -> ftp::Awaitable<bool> {
            co_await client.stopWatching();
            co_return true;
        }(m_client->client()));
    }

    int lost = 0;
};

} // namespace

TEST_F(KeepAlive, VariesItsCommandsAndTellsNobody)
{
    connected();
    const auto told = m_client->replies().size();
    watch(often);
    ASSERT_TRUE(waitForCommands("", 5));
    stop();
    const std::vector<std::string> sent = server.lines();
    EXPECT_THAT(std::vector(sent.begin(), sent.begin() + 5),
                ElementsAre("NOOP", "PWD", "NOOP", "TYPE I", "NOOP"));
    EXPECT_EQ(m_client->replies().size(), told);
    EXPECT_EQ(lost, 0);
    EXPECT_TRUE(m_client->client().usable());
}

TEST_F(KeepAlive, WorksOnEncryptedSessionsToo)
{
    server.fault.tls = true;
    ftp::Client &client = connected(ftp::Encryption::Always);
    watch(often);
    ASSERT_TRUE(waitForCommands("", 8));
    stop();
    EXPECT_EQ(lost, 0);
    EXPECT_TRUE(run(client.list()));
}

TEST_F(KeepAlive, ACommandThatComesInBetweenGetsItsOwnReply)
{
    servers::writeFile(server.root() / "web" / "a.txt", "x");
    ftp::Client &client = connected();
    server.fault.replyDelay = 200; // so that the reply is still to come
    for (const char *verb : { "NOOP", "PWD", "TYPE" }) {
        SCOPED_TRACE(verb);
        watch(often);
        ASSERT_TRUE(waitForCommands(verb));
        stop();
        const auto made = run(client.makeFolder("/web"));
        ASSERT_FALSE(made) << "the reply was that of another command";
        EXPECT_EQ(made.error().replyCode, 550);
        EXPECT_TRUE(client.usable());
    }
    server.fault.replyDelay = 0;
    const auto listed = run(client.list());
    ASSERT_TRUE(listed) << listed.error().text;
    EXPECT_EQ(listed->entries.size(), 1U);
}

TEST_F(KeepAlive, TheTypeThatItSetsIsRemembered)
{
    servers::writeRandomFile(server.root() / "bild.png", 3000);
    ftp::Client &client = connected();
    ASSERT_TRUE(run(client.list())); // TYPE A
    watch(often);
    ASSERT_TRUE(waitForCommands("TYPE"));
    stop();
    server.clearCommands();
    ASSERT_TRUE(run(client.get("bild.png", local("bild.png"), 0, Type::Binary)));
    EXPECT_THAT(server.lines("TYPE"), IsEmpty());
    EXPECT_EQ(servers::difference(local("bild.png"), server.root() / "bild.png"), "");
    ASSERT_TRUE(run(client.list()));
    EXPECT_THAT(server.lines("TYPE"), ElementsAre("TYPE A"));
}

TEST_F(KeepAlive, ARefusalIsAnAnswer)
{
    server.on({ .verb = "NOOP", .text = "500 NOOP not understood" });
    server.on({ .verb = "PWD", .text = "502 PWD not understood" });
    connected();
    watch(often);
    ASSERT_TRUE(waitForCommands("", 6));
    stop();
    EXPECT_EQ(lost, 0);
    EXPECT_TRUE(m_client->client().usable());
}

TEST_F(KeepAlive, AServerThatHangsUpIsNoticedAtOnce)
{
    ftp::Client &client = connected();
    watch(never);
    server.dropSessions();
    ASSERT_TRUE(wait([&] { return lost > 0; }));
    EXPECT_FALSE(client.usable());
    stop();
    EXPECT_EQ(lost, 1);
}

TEST_F(KeepAlive, AFarewellInPlaceOfAnAnswerEndsTheSession)
{
    ftp::Client &client = connected();
    server.on({ .verb = "PWD", .text = "421 Timeout." });
    watch(often);
    ASSERT_TRUE(wait([&] { return lost > 0; }));
    EXPECT_FALSE(client.usable());
    stop();
    EXPECT_EQ(lost, 1);
}

TEST_F(KeepAlive, AServerThatDoesNotAnswerIsLost)
{
    server.on({ .verb = "NOOP", .action = Rule::Stall });
    prepared().login().timeout = std::chrono::milliseconds(200);
    ASSERT_TRUE(m_client->open());
    watch(often);
    ASSERT_TRUE(wait([&] { return lost > 0; }));
    EXPECT_FALSE(m_client->client().usable());
    stop();
}

TEST_F(KeepAlive, AnAbortEndsTheWaitForAnAnswer)
{
    server.on({ .verb = "NOOP", .action = Rule::Stall });
    prepared().login().timeout = std::chrono::minutes(10);
    ASSERT_TRUE(m_client->open());
    watch(often);
    ASSERT_TRUE(waitForCommands("NOOP"));
    m_client->client().abort();
    stop();
    EXPECT_FALSE(m_client->client().usable());
}
