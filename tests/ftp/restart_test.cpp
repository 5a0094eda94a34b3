// How it is found out whether transfers can be restarted, and how they are continued without it.
#include "ftp/faultcase.h"

#include <gmock/gmock.h>

using ftp::ErrorKind;
using ftp::Type;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string whole = servers::randomBytes(50000, 5);

class Restart : public FaultCase {
protected:
    ftp::Result<std::int64_t> get(const std::string &name, std::int64_t offset)
    {
        return run(m_client->client().get(name, local(name), offset, Type::Binary));
    }
    ftp::Result<std::int64_t> put(const std::string &name, std::int64_t offset)
    {
        return run(m_client->client().put(local(name), name, offset, Type::Binary));
    }
    /// Continues an upload whose beginning is on the server.
    void expectRestAppended()
    {
        servers::writeFile(server.root() / "f", whole.substr(0, 20000));
        servers::writeFile(local("f"), whole);
        connected();
        const auto put = this->put("f", 20000);
        ASSERT_TRUE(put) << put.error().text;
        EXPECT_EQ(*put, 20000);
        EXPECT_EQ(stored("f"), whole);
        EXPECT_THAT(server.lines("APPE"), ElementsAre("APPE f"));
    }
    static void setAge(const std::filesystem::path &file, std::chrono::minutes age)
    {
        std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() - age);
    }
};

} // namespace

TEST_F(Restart, IsBelievedWhereTheFeaturesNameIt)
{
    ftp::Client &client = connected();
    const auto can = run(client.supportsRestart());
    ASSERT_TRUE(can) << can.error().text;
    EXPECT_TRUE(*can);
    EXPECT_THAT(server.lines("REST"), IsEmpty());
}

TEST_F(Restart, IsTriedOnceWhereTheFeaturesDoNotNameIt)
{
    server.fault.noRestStream = true;
    ftp::Client &client = connected();
    for (int i = 0; i < 2; ++i) {
        const auto can = run(client.supportsRestart());
        ASSERT_TRUE(can) << can.error().text;
        EXPECT_TRUE(*can);
    }
    EXPECT_THAT(server.lines("REST"), ElementsAre("REST 1", "REST 0"));
}

TEST_F(Restart, LeavesNoOffsetBehindForTheNextTransfer)
{
    server.fault.noRestStream = true;
    servers::writeFile(server.root() / "f", whole);
    ftp::Client &client = connected();
    ASSERT_TRUE(run(client.supportsRestart()));
    const auto got = get("f", 0);
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::readFile(local("f")), whole);
}

TEST_F(Restart, IsTriedInBinaryModeSinceSomeServersRefuseItInText)
{
    server.fault.noRestStream = true;
    ftp::Client &client = connected();
    ASSERT_TRUE(run(client.list())); // in ASCII
    server.clearCommands();
    ASSERT_TRUE(run(client.supportsRestart()));
    EXPECT_THAT(server.lines(), ElementsAre("TYPE I", "REST 1", "REST 0"));
}

TEST_F(Restart, IsNotThereWhenItIsRefused)
{
    server.fault.noRestStream = true;
    server.on({ .verb = "REST", .text = "502 REST not implemented" });
    ftp::Client &client = connected();
    for (int i = 0; i < 2; ++i) {
        const auto can = run(client.supportsRestart());
        ASSERT_TRUE(can) << can.error().text;
        EXPECT_FALSE(*can);
    }
    EXPECT_THAT(server.lines("REST"), ElementsAre("REST 1"));
}

TEST_F(Restart, IsNotThereWhenOnlyTheBeginningIsAllowed)
{
    server.fault.noRestStream = true;
    server.on({ .verb = "REST", .argument = "1", .text = "501 Only REST 0" });
    ftp::Client &client = connected();
    const auto can = run(client.supportsRestart());
    ASSERT_TRUE(can) << can.error().text;
    EXPECT_FALSE(*can);
}

TEST_F(Restart, ALostLineWhileItIsTriedIsNoAnswer)
{
    server.fault.noRestStream = true;
    server.on({ .verb = "REST", .action = servers::Rule::Drop, .times = 1 });
    ftp::Client &client = connected();
    EXPECT_FALSE(run(client.supportsRestart()));
    ASSERT_TRUE(run(client.open()));
    const auto can = run(client.supportsRestart());
    ASSERT_TRUE(can) << can.error().text;
    EXPECT_TRUE(*can);
}

TEST_F(Restart, ARefusedOffsetFetchesTheWholeFile)
{
    server.on({ .verb = "REST", .text = "502 REST not implemented" });
    servers::writeFile(server.root() / "f", whole);
    servers::writeFile(local("f"), whole.substr(0, 20000));
    connected();
    const auto got = get("f", 20000);
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(*got, 0);
    EXPECT_EQ(servers::readFile(local("f")), whole);
    EXPECT_TRUE(noted("von vorn übertragen"));
}

TEST_F(Restart, ARefusedOffsetAppendsToAnUpload)
{
    server.on({ .verb = "REST", .text = "502 REST not implemented" });
    expectRestAppended();
    EXPECT_THAT(server.lines("STOR"), IsEmpty());
}

TEST_F(Restart, AnUploadIsAppendedWhereSizesAreUnknown)
{
    server.on({ .verb = "SIZE", .text = "500 SIZE not understood" });
    expectRestAppended();
    EXPECT_THAT(server.lines("REST"), IsEmpty()); // a wrong offset would leave a hole
}

TEST_F(Restart, NothingIsAppendedToAFileThatIsGone)
{
    servers::writeFile(local("f"), whole);
    connected();
    const auto put = this->put("f", 20000);
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(*put, 0);
    EXPECT_EQ(stored("f"), whole);
    EXPECT_TRUE(noted("andere Größe"));
}

TEST_F(Restart, ASizeThatOnlyTheListingTellsCountsToo)
{
    server.on({ .verb = "SIZE", .text = "500 SIZE not understood" });
    servers::writeFile(server.root() / "web" / "f", whole.substr(0, 25000)); // grown meanwhile
    servers::writeFile(local("f"), whole);
    connected();
    const auto put = run(m_client->client().put(local("f"), "/web/f", 20000, Type::Binary));
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(*put, 0);
    EXPECT_EQ(stored("web/f"), whole);
    EXPECT_EQ(run(m_client->client().list())->entries.size(), 1U) << "it stands in another folder";
}

TEST_F(Restart, NothingIsAppendedToAFileThatIsGoneWhereSizesAreUnknown)
{
    server.on({ .verb = "SIZE", .text = "500 SIZE not understood" });
    servers::writeFile(local("f"), whole);
    connected();
    const auto put = this->put("f", 20000);
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(stored("f"), whole);
}

TEST_F(Restart, ADownloadStartsAnewWhenTheServersFileWasReplaced)
{
    servers::writeFile(local("f"), std::string(20000, 'x'));
    setAge(local("f"), std::chrono::hours(24));
    servers::writeFile(server.root() / "f", whole);
    connected();
    const auto got = get("f", 20000);
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(*got, 0);
    EXPECT_EQ(servers::readFile(local("f")), whole);
    EXPECT_TRUE(noted("Die Datei auf dem Server wurde inzwischen geändert"));
}

TEST_F(Restart, AnUploadStartsAnewWhenTheLocalFileWasChanged)
{
    servers::writeFile(server.root() / "f", std::string(20000, 'x'));
    setAge(server.root() / "f", std::chrono::hours(24));
    servers::writeFile(local("f"), whole);
    connected();
    const auto put = this->put("f", 20000);
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(*put, 0);
    EXPECT_EQ(stored("f"), whole);
    EXPECT_TRUE(noted("Die lokale Datei wurde inzwischen geändert"));
}

TEST_F(Restart, ClocksThatDifferByAMinuteAreNoChange)
{
    servers::writeFile(local("f"), whole.substr(0, 20000));
    setAge(local("f"), std::chrono::minutes(1));
    servers::writeFile(server.root() / "f", whole);
    connected();
    const auto got = get("f", 20000);
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(*got, 20000);
    EXPECT_EQ(servers::readFile(local("f")), whole);
}

TEST_F(Restart, AnUploadStartsAnewOnAFileOfAnotherSize)
{
    servers::writeFile(server.root() / "f", std::string(30000, 'x'));
    servers::writeFile(local("f"), whole);
    connected();
    const auto put = this->put("f", 20000);
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(*put, 0);
    EXPECT_EQ(stored("f"), whole);
}

TEST_F(Restart, ALongerFileOnTheServerStaysAsItIs)
{
    const std::string longer(60000, 'x');
    servers::writeFile(server.root() / "f", longer);
    servers::writeFile(local("f"), whole);
    connected();
    const auto put = this->put("f", 20000);
    ASSERT_FALSE(put);
    EXPECT_EQ(put.error().kind, ErrorKind::RemoteLonger);
    EXPECT_EQ(stored("f"), longer);
    EXPECT_TRUE(noted("größer als die lokale"));
}

TEST_F(Restart, AnOffsetBeyondTheLocalFileIsNotAppendedBlindly)
{
    server.on({ .verb = "SIZE", .text = "500 SIZE not understood" });
    const std::string longer(60000, 'x');
    servers::writeFile(server.root() / "f", longer);
    servers::writeFile(local("f"), whole);
    connected();
    const auto put = this->put("f", 60000);
    ASSERT_FALSE(put);
    EXPECT_EQ(stored("f"), longer);
}
