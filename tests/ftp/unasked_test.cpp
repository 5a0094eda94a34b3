// Replies that nobody asked for: none may answer a later command.
#include "ftp/faultcase.h"

#include <chrono>

using ftp::Type;

namespace {

/// @param GetParam()  whether the session is encrypted: its bytes wait in another place then
class Unasked : public FaultCase, public testing::WithParamInterface<bool> {
protected:
    ftp::Client &open()
    {
        server.fault.tls = GetParam();
        servers::writeFile(server.root() / "f", "inhalt");
        return connected(GetParam() ? ftp::Encryption::Always : ftp::Encryption::Never);
    }
    /// What the program does before every operation. @return whether the session can be used
    bool settled()
    {
        return run([](ftp::Client &used) -> ftp::Awaitable<bool> {
            co_await used.stopWatching();
            co_return used.usable();
        }(m_client->client()));
    }
    void waitForBytes()
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (!m_client->client().session().line().hasUnreadBytes()
               && std::chrono::steady_clock::now() < end) { } // they are on their way
    }
    /// A command with more behind its reply than there should be.
    void hear(const std::string &surplus)
    {
        server.on({ .verb = "NOOP", .text = "200 Ja\r\n" + surplus, .times = 1 });
        EXPECT_TRUE(run(m_client->client().raw("NOOP")));
        waitForBytes();
    }
};

} // namespace

TEST_P(Unasked, InAPacketOfItsOwnAnswersNoLaterCommand)
{
    ftp::Client &client = open();
    for (int i = 0; i < 20; ++i) {
        server.fault.surplusReply = "226 Zuviel";
        EXPECT_TRUE(run(client.raw("NOOP")));
        waitForBytes();
        server.fault.surplusReply = "";
        EXPECT_TRUE(settled());
        ASSERT_FALSE(run(client.removeFile("gibtesnicht"))) << i;
    }
}

TEST_P(Unasked, BehindAReplyAnswersNoLaterCommand)
{
    ftp::Client &client = open();
    server.fault.finalReply = "226 Transfer complete\r\n226 Transfer complete";
    ASSERT_TRUE(run(client.get("f", local("f"), 0, Type::Binary)));
    EXPECT_TRUE(settled());
    EXPECT_FALSE(run(client.removeFile("gibtesnicht")));
}

TEST_P(Unasked, HalfAReplyWithoutAnEndEndsTheSession)
{
    open();
    hear("226-Eins");
    EXPECT_FALSE(settled());
}

TEST_P(Unasked, WithoutEndEndsTheSession)
{
    std::string flood;
    for (int i = 0; i < 500; ++i) {
        flood += "200 Noch etwas\r\n";
    }
    open();
    hear(flood);
    EXPECT_FALSE(settled());
    EXPECT_LT(m_client->replies().size(), 200U);
}

INSTANTIATE_TEST_SUITE_P(Lines, Unasked, testing::Bool(),
                         [](const testing::TestParamInfo<bool> &line) {
                             return line.param ? "tls" : "plain";
                         });
