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
