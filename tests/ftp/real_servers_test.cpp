// The engine against real servers, in clear and encrypted.
#include "ftp/tree.h"

#include "ftp/run.h"
#include "servers/everyserver.h"
#include "servers/fixture.h"

#include <algorithm>
#include <fstream>
#include <sys/stat.h>

namespace fs = std::filesystem;
using servers::Kind;

namespace {

/// A server and whether the connection to it is encrypted.
struct Way {
    Kind kind;
    bool tls;
};

void PrintTo(const Way &way, std::ostream *out)
{
    *out << servers::name(way.kind) << (way.tls ? " TLS" : " plain");
}

std::vector<Way> allWays()
{
    std::vector<Way> ways;
    for (const Kind kind : servers::allKinds()) {
        ways.push_back({ kind, false });
        ways.push_back({ kind, true });
    }
    return ways;
}

class RealServers : public testing::TestWithParam<Way> {
protected:
    void SetUp() override
    {
        std::string why;
        if (!servers::canRun(GetParam().kind, &why)) {
            // The one reason allowed: this account cannot run that server, which is reported.
            GTEST_SKIP() << why;
        }
        servers::Options options;
        options.tls = GetParam().tls;
        server = std::make_unique<servers::Server>(GetParam().kind, options);
        login();
    }

    void login(int sessions = 1)
    {
        client = std::make_unique<TestClient>(
            server->port(), server->user(), server->password(),
            GetParam().tls ? ftp::Encryption::Always : ftp::Encryption::Never, sessions);
        client->trust(ftp::Trust::Once);
        const ftp::Status opened = client->open();
        ASSERT_TRUE(opened) << opened.error().text;
    }

    ftp::Client &ftpClient() { return client->client(); }
    template <class T> T run(ftp::Awaitable<T> work) { return client->run(std::move(work)); }

    std::string local(const std::string &name) { return (folder.path() / name).string(); }

    servers::TemporaryFolder folder;
    std::unique_ptr<servers::Server> server;
    std::unique_ptr<TestClient> client;
};

const ftp::FolderEntry *find(const ftp::Folder &listed, const std::string &name)
{
    const auto found = std::find_if(listed.entries.begin(), listed.entries.end(),
                                    [&](const auto &entry) { return entry.name == name; });
    return found == listed.entries.end() ? nullptr : &*found;
}

} // namespace

TEST_P(RealServers, ListsFilesFoldersAndHiddenNames)
{
    servers::writeFile(server->root() / ".htaccess", "deny from all\n");
    servers::writeFile(server->root() / "Größe & Maß.html", "12345");
    fs::create_directory(server->root() / "mit leer");
    server->adoptFiles();
    const auto listed = run(ftpClient().list());
    ASSERT_TRUE(listed) << listed.error().text;
    EXPECT_TRUE(listed->understood);
    ASSERT_NE(find(*listed, ".htaccess"), nullptr);
    const ftp::FolderEntry *page = find(*listed, "Größe & Maß.html");
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->size, 5);
    EXPECT_EQ(page->type, '-');
    const ftp::FolderEntry *below = find(*listed, "mit leer");
    ASSERT_NE(below, nullptr);
    EXPECT_EQ(below->type, 'd');
    EXPECT_NE(below->permissions, -1);
    ASSERT_TRUE(page->time);
    EXPECT_LT(std::abs(*page->time - std::time(nullptr)), 120);
}

TEST_P(RealServers, MovesAFileBothWays)
{
    servers::writeRandomFile(server->root() / "a b.bin", 300000, 7);
    server->adoptFiles();
    const auto got = run(ftpClient().get("a b.bin", local("unten.bin"), 0, ftp::Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("unten.bin"), server->root() / "a b.bin"), "");
    const auto put = run(ftpClient().put(local("unten.bin"), "/oben ü.bin", 0, ftp::Type::Binary));
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(servers::difference(local("unten.bin"), server->root() / "oben ü.bin"), "");
    ASSERT_FALSE(client->progress().empty());
    EXPECT_EQ(client->progress().front(), 0);
    EXPECT_EQ(client->progress().back(), 300000);
}

TEST_P(RealServers, MovesEmptyFiles)
{
    servers::writeFile(local("leer"), "");
    ASSERT_TRUE(run(ftpClient().put(local("leer"), "leer.txt", 0, ftp::Type::Binary)));
    ASSERT_TRUE(fs::exists(server->root() / "leer.txt"));
    ASSERT_TRUE(run(ftpClient().get("leer.txt", local("zurück"), 0, ftp::Type::Binary)));
    EXPECT_EQ(fs::file_size(local("zurück")), 0U);
}

TEST_P(RealServers, ContinuesDownloadsAndUploads)
{
    servers::writeRandomFile(server->root() / "groß.bin", 200000, 3);
    server->adoptFiles();
    const std::string whole = servers::readFile(server->root() / "groß.bin");
    servers::writeFile(local("teil.bin"), whole.substr(0, 77777));
    const auto resumable = run(ftpClient().supportsRestart());
    ASSERT_TRUE(resumable);
    EXPECT_TRUE(*resumable);
    const auto got = run(ftpClient().get("groß.bin", local("teil.bin"), 77777, ftp::Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(*got, 77777);
    EXPECT_EQ(servers::readFile(local("teil.bin")), whole);

    servers::writeFile(server->root() / "oben.bin", whole.substr(0, 55555));
    server->adoptFiles();
    const auto put = run(ftpClient().put(local("teil.bin"), "oben.bin", 55555, ftp::Type::Binary));
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(servers::readFile(server->root() / "oben.bin"), whole);
}

TEST_P(RealServers, StartsAnewWhenTheSizeToContinueIsNotThere)
{
    servers::writeRandomFile(server->root() / "neu.bin", 50000, 4);
    server->adoptFiles();
    servers::writeFile(local("alt.bin"), std::string(1000, 'x'));
    const auto got = run(ftpClient().get("neu.bin", local("alt.bin"), 2000, ftp::Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(*got, 0);
    EXPECT_EQ(servers::difference(local("alt.bin"), server->root() / "neu.bin"), "");
    EXPECT_EQ(client->notes().size(), 1U);
}

TEST_P(RealServers, ARefusedGetLeavesTheLocalFileAlone)
{
    servers::writeFile(local("wichtig.txt"), "alter Inhalt");
    const auto got
        = run(ftpClient().get("gibt es nicht", local("wichtig.txt"), 0, ftp::Type::Binary));
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ftp::ErrorKind::Refused);
    EXPECT_EQ(got.error().replyCode / 100, 5);
    EXPECT_EQ(servers::readFile(local("wichtig.txt")), "alter Inhalt");
    EXPECT_TRUE(run(ftpClient().list())); // the session goes on
}

TEST_P(RealServers, MakesRenamesAndRemoves)
{
    ASSERT_TRUE(run(ftpClient().makeFolder("neuer Ordner")));
    EXPECT_TRUE(fs::is_directory(server->root() / "neuer Ordner"));
    const auto twice = run(ftpClient().makeFolder("neuer Ordner"));
    ASSERT_FALSE(twice);
    std::string told = client->replies().back();
    std::transform(told.begin(), told.end(), told.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    EXPECT_NE(told.find("EXISTS"), std::string::npos) << told;
    ASSERT_TRUE(run(ftpClient().rename("neuer Ordner", "umbenannt")));
    EXPECT_TRUE(fs::is_directory(server->root() / "umbenannt"));
    ASSERT_TRUE(run(ftpClient().changeFolder("/umbenannt")));
    EXPECT_EQ(ftpClient().folder(), "/umbenannt");
    ASSERT_TRUE(run(ftpClient().changeToParent()));
    EXPECT_EQ(ftpClient().folder(), "/");
    ASSERT_TRUE(run(ftpClient().removeFolder("/umbenannt/")));
    EXPECT_FALSE(fs::exists(server->root() / "umbenannt"));
    servers::writeFile(server->root() / "weg.txt", "x");
    server->adoptFiles();
    ASSERT_TRUE(run(ftpClient().raw("SITE chmod 640 weg.txt")));
    struct stat status { };
    ASSERT_EQ(::stat((server->root() / "weg.txt").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640U);
    ASSERT_TRUE(run(ftpClient().removeFile("/weg.txt")));
    EXPECT_FALSE(fs::exists(server->root() / "weg.txt"));
}

TEST_P(RealServers, MovesWholeFoldersOverOneAndOverSeveralSessions)
{
    servers::makeWebSpace(server->root() / "web");
    server->adoptFiles();
    for (const int sessions : { 1, 3 }) {
        login(sessions);
        const std::string down = local("unten" + std::to_string(sessions));
        const ftp::Status got = run(ftp::getTree(ftpClient(), "/web", down, ftp::Type::Binary));
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(servers::difference(down, server->root() / "web"), "");
        const std::string up = "oben" + std::to_string(sessions);
        const ftp::Status put = run(ftp::putTree(ftpClient(), down, up, ftp::Type::Binary));
        ASSERT_TRUE(put) << put.error().text;
        EXPECT_EQ(servers::difference(server->root() / up, down), "");
        const ftp::Status removed = run(ftp::removeTree(ftpClient(), "/" + up));
        ASSERT_TRUE(removed) << removed.error().text;
        EXPECT_FALSE(fs::exists(server->root() / up));
        EXPECT_TRUE(run(ftpClient().list())); // the session is in step
    }
}

TEST_P(RealServers, LinksToFoldersAreNotFollowed)
{
    servers::writeFile(server->root() / "web" / "seite" / "a.html", "inhalt");
    server->adoptFiles();
    fs::create_directory_symlink(server->root() / "web", server->root() / "web" / "kreis");
    fs::create_directory_symlink("..", server->root() / "web" / "seite" / "hinauf");
    const ftp::Status got = run(ftp::getTree(ftpClient(), "/web", local("web"), ftp::Type::Binary));
    EXPECT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::readFile(local("web/seite/a.html")), "inhalt");
    EXPECT_FALSE(fs::exists(local("web/kreis/seite")));
    EXPECT_FALSE(fs::exists(local("web/seite/hinauf/seite")));
    EXPECT_EQ(ftpClient().folder(), "/");
    EXPECT_TRUE(run(ftpClient().removeFile("web/seite/a.html"))); // and we stand where we stood
}

TEST_P(RealServers, EmptiesAFolderNamedWithASeparatorAtItsEnd)
{
    servers::makeWebSpace(server->root() / "leeren");
    server->adoptFiles();
    const ftp::Status removed = run(ftp::removeTree(ftpClient(), "/leeren/"));
    ASSERT_TRUE(removed) << removed.error().text;
    EXPECT_TRUE(fs::is_directory(server->root() / "leeren"));
    EXPECT_TRUE(fs::is_empty(server->root() / "leeren"));
    EXPECT_TRUE(run(ftpClient().list())); // the session is in step
}

TEST_P(RealServers, EndsPolitely)
{
    EXPECT_TRUE(run(ftpClient().quit()));
    EXPECT_FALSE(ftpClient().usable());
    const auto listed = run(ftpClient().list());
    ASSERT_FALSE(listed);
    EXPECT_EQ(listed.error().kind, ftp::ErrorKind::NotConnected);
}

TEST_P(RealServers, RefusesAWrongPassword)
{
    TestClient stranger(server->port(), server->user(), "falsch",
                        GetParam().tls ? ftp::Encryption::Always : ftp::Encryption::Never);
    stranger.trust(ftp::Trust::Once);
    const ftp::Status opened = stranger.open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ftp::ErrorKind::LoginRefused);
    EXPECT_NE(opened.error().text.find("530"), std::string::npos);
}

TEST_P(RealServers, WorksInActiveMode)
{
    servers::writeRandomFile(server->root() / "aktiv.bin", 100000, 9);
    server->adoptFiles();
    TestClient active(server->port(), server->user(), server->password(),
                      GetParam().tls ? ftp::Encryption::Always : ftp::Encryption::Never);
    active.login().passive = false;
    active.trust(ftp::Trust::Once);
    ASSERT_TRUE(active.open());
    const auto got
        = active.run(active.client().get("aktiv.bin", local("aktiv.bin"), 0, ftp::Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("aktiv.bin"), server->root() / "aktiv.bin"), "");
    const auto put
        = active.run(active.client().put(local("aktiv.bin"), "aktiv2.bin", 0, ftp::Type::Binary));
    ASSERT_TRUE(put) << put.error().text;
    servers::makeWebSpace(server->root() / "web");
    server->adoptFiles();
    const auto tree
        = active.run(ftp::getTree(active.client(), "/web", local("web"), ftp::Type::Binary));
    ASSERT_TRUE(tree) << tree.error().text;
    EXPECT_EQ(servers::difference(local("web"), server->root() / "web"), "");
}

INSTANTIATE_TEST_SUITE_P(Ways, RealServers, testing::ValuesIn(allWays()), [](const auto &one) {
    return servers::name(one.param.kind) + (one.param.tls ? "_tls" : "_plain");
});
