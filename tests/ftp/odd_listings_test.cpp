// Listings that tell of a file what is not so, or cannot be all true.
#include "ftp/tree.h"

#include "ftp/faultcase.h"
#include "ftp/few_notes.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace fs = std::filesystem;
using ftp::ErrorKind;
using ftp::Type;
using testing::ElementsAre;

namespace {

class OddListings : public FaultCase {
protected:
    void store(const std::string &name, std::size_t size)
    {
        servers::writeRandomFile(server.root() / "web" / name, size);
    }
    ftp::Status fetch()
    {
        return run(ftp::getTree(m_client->client(), "/web", local("web"), Type::Binary));
    }
    std::string differs(const std::string &name)
    {
        return servers::difference(local("web/" + name), server.root() / "web" / name);
    }
};

} // namespace

TEST_F(OddListings, AnAbsurdSizeKeepsOnlyItsOwnFileAway)
{
    store("klein", 10);
    server.fault.machineListing
        = "type=file;size=4611686018427387904;modify=20260101000000; riesig\r\n"
          "type=file;size=10;modify=20260101000000; klein\r\n";
    connected();
    const auto got = fetch();
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::LocalFile);
    EXPECT_TRUE(noted("Größer als der ganze lokale Datenträger, nicht übertragen: riesig"));
    EXPECT_EQ(differs("klein"), "");
    EXPECT_EQ(server.lines("RETR").size(), 1U);
}

TEST_F(OddListings, SizesInBlocksAreNoProofAndOlderVersionsNoFiles)
{
    store("INDEX.HTML", 700);
    server.fault.noMlsd = true;
    server.fault.listing
        = "Directory DISK$WEB:[WEB]\r\n\r\n"
          "INDEX.HTML;3   2/3   20-NOV-2026 09:15:42  [WEB,OPER]  (RWED,RWED,RE,RE)\r\n"
          "INDEX.HTML;2   4/6   19-NOV-2026 09:15:42  [WEB,OPER]  (RWED,RWED,RE,RE)\r\n";
    connected();
    const auto got = fetch();
    EXPECT_TRUE(got) << got.error().text;
    EXPECT_EQ(differs("INDEX.HTML"), "");
    EXPECT_THAT(server.lines("RETR"), ElementsAre("RETR /web/INDEX.HTML"));
}

TEST_F(OddListings, WhatMachinesReadIsEnoughWhereNobodyReadsTheOther)
{
    store("unten/f", 3000);
    server.fault.listing = "<html>Heute keine Liste</html>\r\n";
    connected();
    const auto got = fetch();
    EXPECT_TRUE(got) << got.error().text;
    EXPECT_EQ(differs("unten/f"), "");
}

TEST_F(OddListings, AFileThatBecameShorterDoesNotSlowTheOthersDown)
{
    std::string listing;
    for (int i = 0; i < 20; ++i) {
        store(std::to_string(i), 3000);
        listing += "type=file;size=" + std::string(i == 3 ? "5000" : "3000")
            + ";modify=20260101000000; " + std::to_string(i) + "\r\n";
    }
    server.fault.machineListing = listing;
    connected();
    const auto got = fetch();
    EXPECT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
    EXPECT_FALSE(m_client->knowledge().noLookAhead);
}

TEST_F(OddListings, HalfOfWhatALinkLeadsToIsNotAll)
{
    servers::writeRandomFile(server.root() / "ziel", 5000);
    fs::create_directories(server.root() / "web");
    fs::create_symlink("../ziel", server.root() / "web" / "verweis");
    server.fault.greeting = "220 ProFTPD Server ready."; // such a server keeps the order
    server.fault.truncateDataAfter = 1000;
    for (const bool machine : { true, false }) {
        SCOPED_TRACE(machine);
        server.fault.noMlsd = !machine;
        connected();
        const auto got = fetch();
        ASSERT_FALSE(got);
        EXPECT_EQ(got.error().kind, ErrorKind::Truncated);
    }
}

TEST_F(OddListings, WhatIsAskedAboutTheNextFileIsNoNewsOfThisOne)
{
    servers::writeRandomFile(server.root() / "ziel", 300000);
    fs::create_directories(server.root() / "web");
    fs::create_symlink("../ziel", server.root() / "web" / "a");
    server.fault.noMlsd = true;
    server.fault.listing = "lrwxrwxrwx 1 u g 7 Jan 01 2026 a -> ../ziel\r\n"
                           "-rw-r--r-- 1 u g 7 Nov 20 09:15 weg\r\n";
    server.fault.answersDuringTransfers = true;
    prepared().login().timeout = std::chrono::seconds(3);
    ASSERT_TRUE(m_client->open());
    const auto got = fetch();
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().replyCode, 550);
    EXPECT_EQ(differs("a"), "");
}

TEST_F(OddListings, ManyUnsafeNamesAreToldInFewLines)
{
    std::string listing = "type=file;size=10;modify=20260101000000; klein\r\n";
    for (int i = 0; i < 5000; ++i) {
        listing += "type=file;size=1; ../" + std::to_string(i) + "\r\n";
    }
    store("klein", 10);
    server.fault.machineListing = listing;
    connected();
    const auto got = fetch();
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::UnsafeName);
    EXPECT_EQ(differs("klein"), "");
    ASSERT_EQ(m_client->notes().size(), ftp::FewNotes::most + 1);
    EXPECT_EQ(m_client->notes().back(), "... und 4900 weitere");
    m_client->notes().clear();
    server.fault.listing = "-rw-r--r-- 1 u g 10 Jan 01 2026 klein\r\n";
    EXPECT_FALSE(run(ftp::removeTree(m_client->client(), "/web")));
    EXPECT_LE(m_client->notes().size(), 2U);
}
