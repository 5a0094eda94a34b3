// Several sessions that work on one folder, when one of them waits or is lost.
#include "ftp/tree.h"

#include "ftp/faultcase.h"

#include <gmock/gmock.h>

using ftp::Type;

namespace {

class CrewAtWork : public FaultCase {
protected:
    void fill(int files)
    {
        for (int i = 0; i < files; ++i) {
            servers::writeRandomFile(server.root() / "web" / std::to_string(i), 3000,
                                     static_cast<std::uint32_t>(i));
        }
    }
    /// One of two sessions stalls in its file, so that the other has to wait for it.
    void fetchWhileOneStalls()
    {
        fill(6);
        server.fault.stallDataAfter = 1000;
        server.fault.faultyTransfers = 1;
        TestClient &client = prepared(ftp::Encryption::Never, 2);
        client.login().timeout = std::chrono::milliseconds(800);
        client.login().keepAlive = std::chrono::milliseconds(20);
        ASSERT_TRUE(client.open());
        const auto got = run(ftp::getTree(client.client(), "/web", local("web"), Type::Binary));
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
    }
    /// Begins without waiting for the end.
    void begin(ftp::Awaitable<ftp::Status> work)
    {
        asio::co_spawn(
            m_client->context(),
            [](ftp::Awaitable<ftp::Status> step,
               std::optional<ftp::Status> &out) -> ftp::Awaitable<void> {
                out.emplace(co_await std::move(step));
            }(std::move(work), m_outcome),
            asio::detached);
        m_client->context().restart();
    }
    void workUntil(const std::function<bool()> &until)
    {
        while (!until() && !m_outcome) {
            m_client->context().run_one_for(std::chrono::milliseconds(5));
        }
    }

    std::optional<ftp::Status> m_outcome;
};

} // namespace

TEST_F(CrewAtWork, ASessionThatWaitsForTheOthersIsNotSilent)
{
    fetchWhileOneStalls();
    EXPECT_GE(server.lines("NOOP").size(), 3U);
}

TEST_F(CrewAtWork, ASessionThatIsFoundLostWhileItWaitsLeavesItsWorkToTheOthers)
{
    server.on({ .verb = "NOOP", .action = servers::Rule::Drop });
    fetchWhileOneStalls();
    EXPECT_TRUE(run(m_client->client().list()));
}

TEST_F(CrewAtWork, AnAbortEndsThePauseBeforeTheNextTryToConnect)
{
    fill(3);
    ftp::Client &client = connected();
    server.fault.maxSessions = 0;
    server.on({ .verb = "RETR", .action = servers::Rule::Drop });
    begin(ftp::getTree(client, "/web", local("web"), Type::Binary));
    workUntil([&] { return server.sessions() >= 3; }); // two tries in vain, now five seconds' rest
    const auto begun = std::chrono::steady_clock::now();
    workUntil([&] { return server.openSessions() == 0; });
    client.abort();
    workUntil([] { return false; });
    ASSERT_FALSE(*m_outcome);
    EXPECT_EQ(m_outcome->error().kind, ftp::ErrorKind::Aborted);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(4));
    EXPECT_EQ(server.sessions(), 3);
}

TEST_F(CrewAtWork, AFolderThatALostLineLeftUnmadeIsMadeByTheNext)
{
    for (int i = 0; i < 100; ++i) {
        servers::writeFile(folder.path() / "web" / ("o" + std::to_string(i)) / "a", "x");
    }
    server.on({ .verb = "MKD", .action = servers::Rule::Drop, .skip = 70, .times = 1 });
    ftp::Client &client = connected();
    const auto put = run(ftp::putTree(client, local("web"), "/web", Type::Binary));
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(servers::difference(server.root() / "web", local("web")), "");
    EXPECT_TRUE(noted("Die Verbindung ging verloren"));
}

TEST_F(CrewAtWork, FoldersThatCannotBeMadeAtAllEndTheUpload)
{
    servers::writeFile(folder.path() / "web" / "a", "x");
    server.on({ .verb = "MKD", .action = servers::Rule::Drop });
    ftp::Client &client = connected();
    const auto put = run(ftp::putTree(client, local("web"), "/web", Type::Binary));
    ASSERT_FALSE(put);
    EXPECT_EQ(put.error().kind, ftp::ErrorKind::ConnectionClosed);
    EXPECT_THAT(server.lines("STOR"), testing::IsEmpty());
    EXPECT_EQ(server.sessions(), 4);
}

TEST_F(CrewAtWork, HelpersLeaveWhenTheFirstSessionIsNeededAndHasNoRoom)
{
    fill(60);
    server.fault.replyDelay = 5; // so that there is time for others to join
    server.on({ .verb = "RETR",
                .argument = "*/2*",
                .text = "450 Busy",
                .fromSession = 2,
                .toSession = 3 });
    ftp::Client &client = connected(ftp::Encryption::Never, 3);
    begin(ftp::getTree(client, "/web", local("web"), Type::Binary));
    workUntil([&] { return server.openSessions() == 3; });
    server.fault.maxSessions = 2;
    server.on({ .verb = "RETR", .action = servers::Rule::Drop, .toSession = 1, .times = 1 });
    workUntil([] { return false; });
    ASSERT_TRUE(*m_outcome) << m_outcome->error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
}
