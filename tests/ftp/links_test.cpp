// Links to folders on a server that shows them as the folders they lead to: what they lead to is
// no part of the tree, so it is neither fetched twice nor, above all, removed.
#include "ftp/tree.h"

#include "ftp/faultcase.h"

#include <filesystem>

namespace fs = std::filesystem;
using ftp::Type;

namespace {

/// @param GetParam()  whether the server has machine listings
class HiddenLinks : public FaultCase, public testing::WithParamInterface<bool> {
protected:
    void SetUp() override
    {
        server.fault.hidesLinks = true;
        server.fault.noMlsd = !GetParam();
        servers::writeFile(server.root() / "web" / "tief" / "a.txt", "in der Seite");
        servers::writeFile(server.root() / "andere" / "b.txt", "nicht in der Seite");
        fs::create_directory_symlink("../andere", server.root() / "web" / "verweis");
    }
};

} // namespace

TEST_P(HiddenLinks, AreNotFollowedByADownload)
{
    ftp::Client &client = connected();
    const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::readFile(local("web/tief/a.txt")), "in der Seite");
    EXPECT_FALSE(fs::exists(local("web/verweis/b.txt")));
}

TEST_P(HiddenLinks, KeepWhatTheyLeadToWhenAFolderIsRemoved)
{
    ftp::Client &client = connected();
    const auto removed = run(ftp::removeTree(client, "/web"));
    EXPECT_EQ(stored("andere/b.txt"), "nicht in der Seite");
    EXPECT_FALSE(fs::exists(server.root() / "web" / "tief"));
    if (removed) {
        EXPECT_FALSE(fs::exists(server.root() / "web"));
    }
}

TEST_P(HiddenLinks, AreNotCounted)
{
    ftp::Client &client = connected();
    const auto counted = run(
        ftp::countInside(client, { "/web" }, std::make_shared<const std::atomic_bool>(false)));
    ASSERT_TRUE(counted);
    EXPECT_EQ(counted->files, 1);
}

TEST_P(HiddenLinks, KeepThePermissionsOfWhatTheyLeadTo)
{
    ftp::Client &client = connected();
    const auto changed = run(ftp::changeModesInside(client, "/web", { 600, 700 }));
    EXPECT_TRUE(changed) << changed.error().text;
    for (const std::string &line : server.lines("SITE")) {
        EXPECT_EQ(line.find("b.txt"), std::string::npos) << line;
    }
}

INSTANTIATE_TEST_SUITE_P(Listings, HiddenLinks, testing::Bool(),
                         [](const testing::TestParamInfo<bool> &listing) {
                             return listing.param ? "machine" : "plain";
                         });

namespace {

/// Machine listings follow links, and only LIST shows them.
class LinksOnlyInLists : public FaultCase {
protected:
    void SetUp() override
    {
        server.fault.machineHidesLinks = true;
        servers::writeFile(server.root() / "andere" / "b.txt", "nicht in der Seite");
        servers::writeFile(server.root() / "web" / "a.txt", "in der Seite");
    }
    void link(const std::string &target)
    {
        fs::create_directory_symlink(target, server.root() / "web" / "verweis");
    }
    void expectKept() { EXPECT_EQ(stored("andere/b.txt"), "nicht in der Seite"); }
};

} // namespace

TEST_F(LinksOnlyInLists, AreKeptWhenTheListFailsForAMoment)
{
    link("../andere");
    server.on({ .verb = "LIST", .text = "425 Can't open data connection.", .times = 2 });
    ftp::Client &client = connected();
    EXPECT_FALSE(run(ftp::removeTree(client, "/web")));
    expectKept();
}

TEST_F(LinksOnlyInLists, AreKeptWhenTheListCannotBeUnderstood)
{
    link("../andere");
    server.fault.listing = "Heute keine Liste.\r\n";
    ftp::Client &client = connected();
    EXPECT_FALSE(run(ftp::removeTree(client, "/web")));
    expectKept();
}

TEST_F(LinksOnlyInLists, AreKeptAsTopOfWhatIsRemoved)
{
    link("../andere");
    server.on({ .verb = "LIST", .text = "425 Can't open data connection.", .times = 2 });
    ftp::Client &client = connected();
    EXPECT_FALSE(run(ftp::removeTree(client, "/web/verweis")));
    expectKept();
}

TEST_F(LinksOnlyInLists, AreRemovedAsLinksWhereTheFolderAboveMayNotBeListed)
{
    link("../andere");
    server.on({ .verb = "LIST", .text = "550 Permission denied.", .times = 2 });
    ftp::Client &client = connected();
    EXPECT_TRUE(run(ftp::removeTree(client, "/web/verweis")));
    EXPECT_FALSE(fs::exists(fs::symlink_status(server.root() / "web" / "verweis")));
    expectKept();
}

TEST_F(LinksOnlyInLists, ToFilesKeepTheModesOfWhatTheyLeadToWhereNoFolderStandsBesideThem)
{
    link("../andere/b.txt");
    fs::permissions(server.root() / "andere" / "b.txt", fs::perms(0755));
    ftp::Client &client = connected();
    ASSERT_TRUE(run(ftp::changeModesInside(client, "/web", { 644, 755 })));
    EXPECT_EQ(fs::status(server.root() / "andere" / "b.txt").permissions(), fs::perms(0755));
    EXPECT_EQ(fs::status(server.root() / "web" / "a.txt").permissions(), fs::perms(0644));
}

TEST_F(LinksOnlyInLists, ThatAreManyAndDeadDoNotEndTheSession)
{
    std::string many;
    for (int i = 0; i < 20000; ++i) {
        many += "lrwxrwxrwx 1 u g 4 Jan 01 2020 verweis" + std::to_string(i) + " -> weg\r\n";
    }
    server.fault.noMlsd = true;
    server.fault.listing = many;
    const std::string length(200, 'x');
    server.on({ .verb = "RETR", .text = "550 Not there" });
    server.on({ .verb = "CWD", .argument = "*verweis*", .text = "550 Not there either " + length });
    ftp::Client &client = connected();
    EXPECT_TRUE(run(ftp::getTree(client, "/web", local("web"), Type::Binary)));
    EXPECT_TRUE(client.usable());
    EXPECT_TRUE(noted("... und 19900 weitere"));
    EXPECT_LE(m_client->notes().size(), 101U);
}
