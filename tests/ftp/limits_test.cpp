// Servers that allow few connections, or end one in the middle of a folder.
#include "ftp/tree.h"

#include "ftp/faultcase.h"
#include "servers/everyserver.h"
#include "servers/rawclient.h"

#include <filesystem>

namespace fs = std::filesystem;
using ftp::Type;

namespace {

void makeFiles(const fs::path &folder, int count)
{
    for (int i = 0; i < count; ++i) {
        servers::writeRandomFile(folder / ("o" + std::to_string(i % 4)) / std::to_string(i), 3000,
                                 static_cast<std::uint32_t>(i));
    }
}

class OneConnection : public servers::EveryServer { };

/// A command that the server answers with 421 once, in the middle of the work.
struct Goodbye {
    const char *verb;
    int skip;
    int sessions;
};

void PrintTo(const Goodbye &one, std::ostream *out)
{
    *out << one.verb << " after " << one.skip << ", " << one.sessions << " sessions";
}

class SentAway : public FaultCase, public testing::WithParamInterface<Goodbye> {
protected:
    void sendAway()
    {
        server.on({ .verb = GetParam().verb,
                    .text = "421 Timeout.",
                    .skip = GetParam().skip,
                    .times = 1 });
    }
    void TearDown() override
    {
        EXPECT_GT(server.lines(GetParam().verb).size(), static_cast<std::size_t>(GetParam().skip));
        EXPECT_GT(server.sessions(), 1);
    }
};
using SentAwayGetting = SentAway;
using SentAwayPutting = SentAway;
using SentAwayRemoving = SentAway;

std::string goodbyeName(const testing::TestParamInfo<Goodbye> &info)
{
    return std::string(info.param.verb) + "_" + std::to_string(info.param.skip) + "_"
        + std::to_string(info.param.sessions);
}

} // namespace

TEST_P(OneConnection, IsEnoughForWholeFolders)
{
    servers::Options options;
    options.maxPerIp = 1;
    servers::Server server(GetParam(), options);
    servers::TemporaryFolder folder;
    const std::string up = (folder.path() / "hinauf").string();
    const std::string down = (folder.path() / "herunter").string();
    makeFiles(up, 60);
    TestClient client(server.port(), server.user(), server.password(), ftp::Encryption::Never, 4);
    const auto opened = client.open();
    ASSERT_TRUE(opened) << opened.error().text;
    servers::RawClient second(server.port());
    EXPECT_NE(second.login(server.user(), server.password()).substr(0, 3), "230");

    const auto put = client.run(ftp::putTree(client.client(), up, "/web", Type::Binary));
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(servers::difference(server.root() / "web", up), "");
    const auto got = client.run(ftp::getTree(client.client(), "/web", down, Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(down, up), "");
    const auto removed = client.run(ftp::removeTree(client.client(), "/web"));
    ASSERT_TRUE(removed) << removed.error().text;
    EXPECT_FALSE(fs::exists(server.root() / "web"));
    EXPECT_TRUE(client.run(client.client().list())); // and the session is in step
}

INSTANTIATE_TEST_SUITE_P(Servers, OneConnection, testing::ValuesIn(servers::allKinds()),
                         servers::parameterName);

TEST_P(SentAwayGetting, EverythingArrives)
{
    makeFiles(server.root() / "web", 24);
    sendAway();
    ftp::Client &client = connected(ftp::Encryption::Never, GetParam().sessions);
    const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
}

INSTANTIATE_TEST_SUITE_P(Commands, SentAwayGetting,
                         testing::Values(Goodbye { "RETR", 5, 1 }, Goodbye { "RETR", 5, 3 },
                                         Goodbye { "PASV", 9, 1 }, Goodbye { "MLSD", 1, 1 },
                                         Goodbye { "MLSD", 1, 3 }, Goodbye { "LIST", 0, 1 },
                                         Goodbye { "CWD", 0, 1 }),
                         goodbyeName);

TEST_P(SentAwayPutting, EverythingArrives)
{
    makeFiles(folder.path() / "web", 24);
    sendAway();
    ftp::Client &client = connected(ftp::Encryption::Never, GetParam().sessions);
    const auto put = run(ftp::putTree(client, local("web"), "/web", Type::Binary));
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(servers::difference(server.root() / "web", local("web")), "");
}

INSTANTIATE_TEST_SUITE_P(Commands, SentAwayPutting,
                         testing::Values(Goodbye { "MKD", 0, 1 }, Goodbye { "MKD", 3, 3 },
                                         Goodbye { "STOR", 5, 1 }, Goodbye { "STOR", 5, 3 },
                                         Goodbye { "PASV", 9, 1 }, Goodbye { "SIZE", 3, 1 },
                                         Goodbye { "MFMT", 3, 1 }),
                         goodbyeName);

TEST_P(SentAwayRemoving, EverythingIsGone)
{
    makeFiles(server.root() / "web", 24);
    sendAway();
    ftp::Client &client = connected(ftp::Encryption::Never, GetParam().sessions);
    const auto removed = run(ftp::removeTree(client, "/web"));
    ASSERT_TRUE(removed) << removed.error().text;
    EXPECT_FALSE(fs::exists(server.root() / "web"));
    EXPECT_EQ(client.folder(), "/");
}

INSTANTIATE_TEST_SUITE_P(Commands, SentAwayRemoving,
                         testing::Values(Goodbye { "DELE", 5, 1 }, Goodbye { "DELE", 5, 3 },
                                         Goodbye { "RMD", 1, 1 }, Goodbye { "MLSD", 2, 1 }),
                         goodbyeName);
