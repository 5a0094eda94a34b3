// A listing is over when the server closes the connection, and nobody tells how long it is: one
// that was cut short must not count as the whole.
#include "ftp/tree.h"

#include "ftp/faultcase.h"

#include <gmock/gmock.h>

using ftp::ErrorKind;
using ftp::Type;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

const std::string whole = "-rw-r--r-- 1 u g 3 Jan 01 2026 eins\r\n"
                          "-rw-r--r-- 1 u g 3 Jan 01 2026 zwei\r\n"
                          "-rw-r--r-- 1 u g 3 Jan 01 2026 wichtig.txt.alt\r\n";
const std::string firstTwo = whole.substr(0, 2 * whole.find('\n') + 2);

class EndOfListing : public FaultCase {
protected:
    EndOfListing()
    {
        server.fault.noMlsd = true;
        server.fault.listing = whole;
        for (const char *name : { "eins", "zwei", "wichtig.txt.alt" }) {
            servers::writeFile(server.root() / "web" / name, "drei");
        }
    }
    ftp::Client &encrypted(int sessions = 1)
    {
        server.fault.tls = true;
        return connected(ftp::Encryption::Always, sessions);
    }
    void cutAfter(std::size_t bytes, int transfers = -1)
    {
        server.fault.faultyListings = true;
        server.fault.truncateDataAfter = static_cast<long>(bytes);
        server.fault.faultyTransfers = transfers;
    }
    /// Names in the current folder, or what kept them from being told.
    std::vector<std::string> names()
    {
        server.clearCommands();
        const auto listed = run(m_client->client().list());
        if (!listed) {
            return { listed.error().text };
        }
        std::vector<std::string> names;
        for (const ftp::FolderEntry &entry : listed->entries) {
            names.push_back(entry.name);
        }
        return names;
    }
    std::size_t asked() const { return server.lines("LIST").size(); }

    const testing::Matcher<std::vector<std::string>> all
        = UnorderedElementsAre("eins", "zwei", "wichtig.txt.alt");
};

} // namespace

TEST_F(EndOfListing, InTheMiddleOfALineIsAskedForOnceMoreAndToldOnce)
{
    connected();
    cutAfter(whole.size() - 6, 1);
    EXPECT_THAT(names(), all);
    EXPECT_EQ(asked(), 2U);
}

TEST_F(EndOfListing, InTheMiddleOfALineIsAServersWayWhenItComesAgain)
{
    server.fault.listing = whole.substr(0, whole.size() - 2);
    connected();
    EXPECT_THAT(names(), all);
    EXPECT_EQ(asked(), 2U);
    EXPECT_THAT(names(), all);
    EXPECT_EQ(asked(), 1U) << "it is known by now";
}

TEST_F(EndOfListing, InTheMiddleOfALineNeverFetchesAnotherFile)
{
    servers::writeFile(server.root() / "web" / "wichtig.txt", "ein anderes");
    ftp::Client &client = connected();
    cutAfter(whole.size() - 6, 1);
    ASSERT_TRUE(run(ftp::getTree(client, "/web", local("web"), Type::Binary)));
    EXPECT_FALSE(std::filesystem::exists(local("web/wichtig.txt")));
    EXPECT_EQ(servers::readFile(local("web/wichtig.txt.alt")), "drei");
}

TEST_F(EndOfListing, WithoutAProperCloseIsNoneOfAServerThatKnowsBetter)
{
    encrypted();
    EXPECT_THAT(names(), all);
    EXPECT_EQ(asked(), 1U);
    cutAfter(firstTwo.size());
    server.fault.noCloseNotify = true;
    EXPECT_THAT(names(), UnorderedElementsAre("The listing was cut short"));
    EXPECT_EQ(asked(), 2U);
    EXPECT_TRUE(m_client->client().usable());
}

TEST_F(EndOfListing, WithoutAProperCloseEndsNoFolderTransferAsASuccess)
{
    for (const int sessions : { 1, 3 }) {
        ftp::Client &client = encrypted(sessions);
        ASSERT_TRUE(run(client.list()));
        cutAfter(firstTwo.size());
        server.fault.noCloseNotify = true;
        const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
        ASSERT_FALSE(got);
        EXPECT_EQ(got.error().kind, ErrorKind::Truncated);
        server.fault.noCloseNotify = false;
        cutAfter(0, 0);
        const auto again = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
        EXPECT_TRUE(again) << again.error().text;
    }
}

TEST_F(EndOfListing, WithoutAProperCloseIsAServersWayWhenItNeverComes)
{
    server.fault.noCloseNotify = true;
    ftp::Client &client = encrypted();
    EXPECT_THAT(names(), all);
    EXPECT_EQ(asked(), 2U);
    EXPECT_THAT(names(), all);
    EXPECT_EQ(asked(), 1U) << "it is known by now";
    server.clearCommands();
    const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
    EXPECT_TRUE(got) << got.error().text;
    EXPECT_EQ(asked(), 1U);
}

TEST_F(EndOfListing, WithoutAProperCloseIsFoundOutByAFolderTransferToo)
{
    server.fault.noCloseNotify = true;
    server.fault.noMlsd = false;
    server.fault.listing = "";
    servers::writeFile(server.root() / "web" / "unten" / "leer" / ".htaccess", "");
    ftp::Client &client = encrypted(3);
    const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
    EXPECT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
}

TEST_F(EndOfListing, ThatIsCutLeavesAFolderAlone)
{
    encrypted();
    ASSERT_TRUE(run(m_client->client().list()));
    cutAfter(0);
    server.fault.noCloseNotify = true;
    const auto removed = run(ftp::removeTree(m_client->client(), "/web"));
    ASSERT_FALSE(removed);
    EXPECT_EQ(removed.error().kind, ErrorKind::Truncated);
    EXPECT_THAT(server.lines("DELE"), IsEmpty());
    EXPECT_TRUE(std::filesystem::exists(server.root() / "web" / "eins"));
}
