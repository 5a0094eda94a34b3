#include "fileops/delete.h"
#include "fileops/newfolder.h"
#include "fileops/permissions.h"
#include "fileops/rename.h"
#include "servers/everyserver.h"
#include "support/serverbench.h"

#include <random>
#include <set>

using namespace Qt::StringLiterals;

// What is left on real servers.

namespace {

const std::string evil[] { "-rf",        " blank ", "a#b%20c?",   "[x]*",
                           "\"quoted\"", "ümläut",  ".verborgen", std::string(200, 'n') };

} // namespace

/// The same on every real server, with links and awkward names.
class FileOperations : public servers::EveryServerWith<ServerBench> {
protected:
    void SetUp() override
    {
        EveryServerWith::SetUp();
        if (!IsSkipped()) {
            server = std::make_unique<servers::Server>(GetParam());
        }
    }
    [[nodiscard]] std::filesystem::path at(const std::string &name) const
    {
        return server->root() / name;
    }
    bool start()
    {
        server->adoptFiles();
        return login(*server);
    }
    void deleteRemote(const QStringList &names, const QString &details)
    {
        remote.select(names);
        ASSERT_EQ(remote.selected.size(), names.size());
        prompts.expectConfirm(
            u"Sind Sie sicher, dass Sie %1 Dateien oder Ordner löschen möchten?"_s.arg(
                names.size()),
            true, u"Confirm Delete"_s, details);
        DeleteCommand command(work);
        command.setCountLimit(60000);
        command.DeleteRemoteItems();
    }

    /// A tree "opfer" beside a folder "daneben", both with links to everything.
    void grow(std::mt19937 &random)
    {
        std::vector<std::string> folders { "opfer", "daneben", "daneben/tief" };
        for (const std::string &name : folders) {
            std::filesystem::create_directories(at(name));
        }
        std::vector<std::string> everything = folders;
        const auto pick = [&random](const std::vector<std::string> &list) {
            return list[random() % list.size()];
        };
        for (int number = 0; number < 40; ++number) {
            const std::string name = pick(folders) + "/e" + std::to_string(number);
            const std::string target = pick(everything);
            switch (random() % 4) {
            case 0:
                std::filesystem::create_directory(at(name));
                folders.push_back(name);
                break;
            case 1: // inside the server's root as well as outside of it
                std::filesystem::create_symlink(
                    std::filesystem::relative(at(target), at(name).parent_path()), at(name));
                break;
            default:
                servers::writeFile(at(name), name);
                break;
            }
            everything.push_back(name);
        }
        std::filesystem::create_symlink("daneben", at("verweis"));
    }
    /// Everything that was not marked.
    [[nodiscard]] std::set<std::string> outside() const
    {
        std::set<std::string> found;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(at("daneben"))) {
            const std::string path = entry.path().string();
            found.insert(entry.is_symlink()
                             ? path + " -> " + std::filesystem::read_symlink(entry.path()).string()
                             : entry.is_regular_file()
                             ? path + ": " + servers::readFile(entry.path())
                             : path);
        }
        return found;
    }
    [[nodiscard]] bool exists(const QString &path) const
    {
        return std::filesystem::exists(
            std::filesystem::symlink_status(server->root().string() + path.toStdString()));
    }

    std::unique_ptr<servers::Server> server;
};

TEST_P(FileOperations, DeletesTreesWithAwkwardNames)
{
    for (const std::string &name : evil) {
        servers::writeFile(at("baum") / name / name, "x");
    }
    servers::writeFile(at("bleibt"), "x");
    ASSERT_TRUE(start());
    deleteRemote({ u"baum"_s }, u"In den Ordnern: 8 Dateien und 8 Ordner."_s);
    EXPECT_EQ(statuses(), QStringList { u"Löschen"_s }) << shell.log.toStdString();
    EXPECT_FALSE(std::filesystem::exists(at("baum")));
    EXPECT_TRUE(std::filesystem::exists(at("bleibt")));
}

TEST_P(FileOperations, NeverFollowsLinksWhenDeleting)
{
    servers::writeFile(at("aussen/wichtig"), "x");
    servers::writeFile(at("baum/a"), "x");
    std::filesystem::create_directory_symlink("../aussen", at("baum/verweis"));
    std::filesystem::create_symlink("../aussen/wichtig", at("baum/datei"));
    std::filesystem::create_directory_symlink("aussen", at("verweis"));
    ASSERT_TRUE(start());
    deleteRemote({ u"verweis"_s, u"baum"_s }, u"In den Ordnern: 3 Dateien und 0 Ordner."_s);
    EXPECT_TRUE(std::filesystem::exists(at("aussen/wichtig")));
    EXPECT_FALSE(std::filesystem::is_symlink(at("verweis"))) << shell.log.toStdString();
    EXPECT_TRUE(std::filesystem::is_symlink(at("baum/verweis")));
    EXPECT_FALSE(std::filesystem::exists(at("baum/a")));
    for (const QueueRow &row : shell.queue) {
        EXPECT_EQ(row.status,
                  row.remote.endsWith(u"baum"_s) ? u"Löschen verweigert"_s : u"Löschen"_s);
    }
}

/// Trees grown at random, with links to everywhere: only what is marked goes, and of that nothing
/// that a link inside leads to.
TEST_P(FileOperations, NothingOutsideTheMarkedItemsIsEverTouched)
{
    for (unsigned seed = 1; seed <= 4; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        grow(random);
        ASSERT_TRUE(start());
        const std::set<std::string> before = outside();
        remote.select({ u"opfer"_s, u"verweis"_s });
        prompts.anyConfirm(true);
        DeleteCommand(work).DeleteRemoteItems();
        EXPECT_EQ(outside(), before);
        EXPECT_FALSE(std::filesystem::is_symlink(at("verweis"))) << shell.log.toStdString();
        for (const QueueRow &row : shell.queue) {
            EXPECT_EQ(row.failed, exists(row.remote)) << row.remote.toStdString();
        }
        session.LogoutSequence();
        shell.queue.clear();
        std::filesystem::remove_all(at("opfer"));
        std::filesystem::remove_all(at("daneben"));
    }
}

TEST_P(FileOperations, SetsTheModesOfEverythingInsideButOfNothingBehindLinks)
{
    using std::filesystem::perms;
    servers::writeFile(at("aussen/wichtig"), "x");
    servers::writeFile(at("baum/a"), "x");
    servers::writeFile(at("baum/tief/b"), "x");
    std::filesystem::permissions(at("aussen/wichtig"), static_cast<perms>(0600));
    std::filesystem::permissions(at("baum/tief/b"), static_cast<perms>(0600));
    std::filesystem::permissions(at("baum/tief"), static_cast<perms>(0700));
    std::filesystem::create_directory_symlink("../aussen", at("baum/verweis"));
    std::filesystem::create_symlink("../aussen/wichtig", at("baum/datei"));
    ASSERT_TRUE(start());
    remote.select({ u"baum"_s });
    PermissionCommand(work, [this] {
        globals.permissions = { 755, true, true };
    }).mnu_rechte_Click();
    const auto mode = [this](const char *name) {
        return std::filesystem::status(at(name)).permissions() & perms::mask;
    };
    EXPECT_EQ(mode("aussen/wichtig"), static_cast<perms>(0600));
    const bool set = mode("baum/tief/b") == static_cast<perms>(0644)
        && mode("baum/tief") == static_cast<perms>(0755);
    EXPECT_EQ(shell.queue.value(0).failed, !set) << shell.log.toStdString();
}

TEST_P(FileOperations, RenamesNeverReplace)
{
    servers::writeFile(at("alt"), "alt");
    ASSERT_TRUE(start());
    servers::writeFile(at("da"), "wertvoll"); // since the listing
    server->adoptFiles();
    RenameCommand rename(work);
    rename.RenameRemoteAfterEdit(remote.model().findRow(u"alt"_s), u"da"_s);
    EXPECT_EQ(servers::readFile(at("da")), "wertvoll");
    EXPECT_GE(remote.model().findRow(u"alt"_s), 0);
    rename.RenameRemoteAfterEdit(remote.model().findRow(u"alt"_s), u"neu ä#"_s);
    EXPECT_EQ(servers::readFile(at("neu ä#")), "alt") << shell.log.toStdString();
}

TEST_P(FileOperations, MakesFoldersBesideUnseenOnes)
{
    ASSERT_TRUE(start());
    servers::writeFile(at("Ordner/a"), "x");
    server->adoptFiles();
    NewFolderCommand(work).MakeRemoteFolder();
    EXPECT_TRUE(std::filesystem::is_directory(at("Ordner(1)"))) << shell.log.toStdString();
    EXPECT_EQ(remote.model().rows().last().name, u"Ordner(1)"_s);
}

TEST_P(FileOperations, SetsPermissionsOrSaysWhyNot)
{
    servers::writeFile(at("a.cgi"), "x");
    ASSERT_TRUE(start());
    remote.select({ u"a.cgi"_s });
    PermissionCommand(work, [this] { globals.permissions = { 705, true }; }).mnu_rechte_Click();
    const bool set
        = (std::filesystem::status(at("a.cgi")).permissions() & std::filesystem::perms::mask)
        == static_cast<std::filesystem::perms>(0705);
    ASSERT_EQ(shell.queue.size(), 1);
    EXPECT_EQ(shell.queue[0].failed, !set) << shell.queue[0].detail.toStdString();
    EXPECT_TRUE(shell.log.startsWith(u"a.cgi > "_s));
}

INSTANTIATE_TEST_SUITE_P(Servers, FileOperations, ::testing::ValuesIn(servers::allKinds()),
                         servers::parameterName);
