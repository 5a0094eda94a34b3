#include "fileops/delete.h"
#include "fileops/newfolder.h"
#include "fileops/permissions.h"
#include "fileops/rename.h"
#include "fileops/view.h"
#include "servers/everyserver.h"
#include "support/serverbench.h"

#include <QElapsedTimer>
#include <algorithm>
#include <random>
#include <set>
#include <thread>

using namespace Qt::StringLiterals;

// File operations over the real engine: what goes over the line, and what is left on the server.

namespace {

const std::string evil[] { "-rf",        " blank ", "a#b%20c?",   "[x]*",
                           "\"quoted\"", "ümläut",  ".verborgen", std::string(200, 'n') };

} // namespace

class CommandsOnTheLine : public ServerBench {
protected:
    using Lines = std::vector<std::string>;

    void makeTree(const std::string &name)
    {
        servers::writeFile(server.root() / name / "a", "x");
        servers::writeFile(server.root() / name / "tief/tiefer/b", "x");
    }
    bool start()
    {
        if (!login(server)) {
            return false;
        }
        server.clearCommands();
        return true;
    }
    void expectDelete(int count, const QString &details = {})
    {
        prompts.expectConfirm(
            u"Sind Sie sicher, dass Sie %1 Dateien oder Ordner löschen möchten?"_s.arg(count), true,
            u"Confirm Delete"_s, details);
    }

    servers::FaultServer server;
};

TEST_F(CommandsOnTheLine, ChmodIsSentInLowerCaseWithTheRelativeName)
{
    servers::writeFile(server.root() / "bin/a b.cgi", "x");
    ASSERT_TRUE(login(server));
    remote.show(u"/bin"_s);
    remote.select({ u"a b.cgi"_s });
    server.clearCommands();
    PermissionCommand(work, [this] { globals.permissions = { 755, true }; }).mnu_rechte_Click();
    EXPECT_EQ(server.lines("SITE"), Lines { "SITE chmod 755 a b.cgi" });
    EXPECT_EQ(statuses(), QStringList { u"Dateirechte"_s });
}

TEST_F(CommandsOnTheLine, RenameInThePaneUsesRelativeNames)
{
    servers::writeFile(server.root() / "unter/alt", "x");
    ASSERT_TRUE(login(server));
    remote.show(u"/unter"_s);
    server.clearCommands();
    RenameCommand(work).RenameRemoteAfterEdit(remote.model().findRow(u"alt"_s), u"neu"_s);
    EXPECT_EQ(server.lines("RNFR"), Lines { "RNFR alt" });
    EXPECT_EQ(server.lines("RNTO"), Lines { "RNTO neu" });
    EXPECT_EQ(remote.model().row(remote.model().findRow(u"neu"_s)).tag, u"/unter/neu"_s);
}

TEST_F(CommandsOnTheLine, RenameInAConflictUsesFullPaths)
{
    servers::writeFile(server.root() / "unter/a", "alt");
    writeLocal(u"a"_s, "neuer");
    ASSERT_TRUE(login(server));
    local.show(root.path());
    remote.show(u"/unter"_s);
    local.select({ u"a"_s });
    server.clearCommands();
    dialogs.answer = [first = true](const ConflictQuestion &) mutable {
        return ConflictReply { std::exchange(first, false) ? ConflictAnswer::Rename
                                                           : ConflictAnswer::Overwrite,
                               false };
    };
    dialogs.newName = [](const QString &) { return std::optional(u"b"_s); };
    commands.cmd_upload_Click();
    EXPECT_EQ(server.lines("RNFR"), Lines { "RNFR /unter/a" });
    EXPECT_EQ(server.lines("RNTO"), Lines { "RNTO /unter/b" });
    EXPECT_EQ(servers::readFile(server.root() / "unter/b"), "alt");
    EXPECT_EQ(servers::readFile(server.root() / "unter/a"), "neuer");
}

TEST_F(CommandsOnTheLine, ANewFolderIsTriedUnderRelativeNames)
{
    ASSERT_TRUE(start());
    servers::writeFile(server.root() / "Ordner/a", "x");
    servers::writeFile(server.root() / "Ordner(1)/a", "x");
    NewFolderCommand(work).MakeRemoteFolder();
    EXPECT_EQ(server.lines("MKD"), (Lines { "MKD Ordner", "MKD Ordner(1)", "MKD Ordner(2)" }));
    EXPECT_EQ(remote.model().rows().last().name, u"Ordner(2)"_s);
    EXPECT_EQ(remote.calls.last(), u"edit Ordner(2)"_s);
}

TEST_F(CommandsOnTheLine, AServerThatOnlyRefusesIsLookedAt)
{
    // The reply does not say why; the engine finds the folder and adds it.
    server.on({ .verb = "MKD", .argument = "Ordner", .text = "550 Create directory failed." });
    ASSERT_TRUE(start());
    servers::writeFile(server.root() / "Ordner/a", "x");
    NewFolderCommand(work).MakeRemoteFolder();
    EXPECT_EQ(server.lines("MKD"), (Lines { "MKD Ordner", "MKD Ordner(1)" }));
}

TEST_F(CommandsOnTheLine, AServerThatMakesNoFoldersEndsTheLoop)
{
    server.on({ .verb = "MKD", .text = "550 Permission denied." });
    ASSERT_TRUE(start());
    NewFolderCommand(work).MakeRemoteFolder();
    EXPECT_EQ(server.lines("MKD"), Lines { "MKD Ordner" });
    EXPECT_TRUE(remote.model().findRow(u"Ordner"_s) < 0);
}

TEST_F(CommandsOnTheLine, ADroppedLineEndsTheNewFolderLoop)
{
    server.on({ .verb = "MKD", .action = servers::Rule::Drop });
    ASSERT_TRUE(start());
    NewFolderCommand(work).MakeRemoteFolder();
    EXPECT_EQ(server.lines("MKD").size(), 1U);
    EXPECT_EQ(ftp.state(), FtpControl::Closed);
    EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).last(), u"SetToolbarsEnabled 1"_s);
}

TEST_F(CommandsOnTheLine, FilesAreDeletedByFullPathsAndTreesFromInside)
{
    servers::writeFile(server.root() / "x", "x");
    makeTree("baum");
    ASSERT_TRUE(start());
    remote.select({ u"x"_s, u"baum"_s });
    expectDelete(2, u"In den Ordnern: 2 Dateien und 2 Ordner."_s);
    DeleteCommand(work).DeleteRemoteItems();
    EXPECT_EQ(server.lines("DELE").size(), 3U);
    const Lines removed = server.lines("RMD");
    ASSERT_EQ(removed.size(), 3U);
    EXPECT_NE(removed[0].find("tiefer"), std::string::npos);
    EXPECT_TRUE(std::filesystem::is_empty(server.root()));
    EXPECT_EQ(statuses(), (QStringList { u"Löschen"_s, u"Löschen"_s }));
}

TEST_F(CommandsOnTheLine, ARefusalInsideATreeIsReported)
{
    makeTree("baum");
    server.on({ .verb = "DELE", .argument = "*b", .text = "550 In use." });
    ASSERT_TRUE(start());
    remote.select({ u"baum"_s });
    expectDelete(1, u"In den Ordnern: 2 Dateien und 2 Ordner."_s);
    DeleteCommand(work).DeleteRemoteItems();
    EXPECT_EQ(statuses(), QStringList { u"Löschen verweigert"_s });
    EXPECT_TRUE(shell.queue[0].detail.contains(u"550 In use."_s));
    EXPECT_TRUE(shell.log.contains(u"550 In use."_s));
    EXPECT_TRUE(std::filesystem::exists(server.root() / "baum/tief/tiefer/b"));
    EXPECT_GE(remote.model().findRow(u"baum"_s), 0);
}

TEST_F(CommandsOnTheLine, ALineThatDropsInTheMiddleIsHonest)
{
    for (const char *name : { "a", "b", "c" }) {
        servers::writeFile(server.root() / name, "x");
    }
    server.on({ .verb = "DELE", .action = servers::Rule::Drop, .skip = 1 });
    ASSERT_TRUE(start());
    remote.select({ u"a"_s, u"b"_s, u"c"_s });
    expectDelete(3);
    DeleteCommand(work).DeleteRemoteItems();
    for (const QueueRow &row : shell.queue) {
        const bool there
            = std::filesystem::exists(server.root().string() + row.remote.toStdString());
        EXPECT_EQ(row.status, there ? u"Löschen verweigert"_s : u"Löschen"_s);
    }
    // The third was on its way already, and nobody can tell what became of it.
    EXPECT_EQ(statuses(),
              (QStringList { u"Löschen"_s, u"Löschen verweigert"_s, u"Löschen verweigert"_s }));
    EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s).last(), u"SetFolderBoxesEnabled 1"_s);
}

TEST_F(CommandsOnTheLine, ManyFilesShareTheirRoundTrips)
{
    constexpr int files = 200;
    QStringList names;
    for (int number = 0; number < files; ++number) {
        const std::string name = "datei" + std::to_string(number);
        servers::writeFile(server.root() / name, "x");
        names.append(QString::fromStdString(name));
    }
    server.on({ .verb = "DELE", .argument = "*datei77", .text = "550 In use." });
    ASSERT_TRUE(start());
    remote.select(names);
    expectDelete(files);
    constexpr int roundTrip = 100; // milliseconds; one by one would take 20 seconds
    server.fault.replyDelay = roundTrip;
    QElapsedTimer clock;
    clock.start();
    DeleteCommand(work).DeleteRemoteItems();
    server.fault.replyDelay = 0;
    EXPECT_LT(clock.elapsed(), files * roundTrip / 2);
    EXPECT_EQ(statuses().count(u"Löschen"_s), files - 1);
    EXPECT_EQ(shell.queue.size(), files);
    const std::vector<std::string> sent = server.lines("DELE");
    ASSERT_EQ(sent.size(), static_cast<std::size_t>(files));
    for (int number = 0; number < files; ++number) {
        const QueueRow &row = shell.queue.at(number);
        EXPECT_EQ("DELE " + row.remote.toStdString(), sent[static_cast<std::size_t>(number)]);
        EXPECT_EQ(row.failed, row.remote.endsWith(u"datei77"_s));
    }
    EXPECT_EQ(remote.names(), QStringList { u"datei77"_s });
    EXPECT_TRUE(remote.markedNames().isEmpty());
    EXPECT_TRUE(shell.log.contains(u"\r\n550 In use."_s));
    EXPECT_EQ(shell.log.count(u"250 "_s), files - 1); // every reply has its line
}

TEST_F(CommandsOnTheLine, ATreeOf64LevelsGoesWhole)
{
    std::filesystem::path path = server.root() / "baum";
    for (int level = 0; level < 64; ++level) {
        path /= "ebene";
    }
    servers::writeFile(path / "a", "x");
    ASSERT_TRUE(start());
    remote.select({ u"baum"_s });
    expectDelete(1, u"In den Ordnern: 1 Datei und 64 Ordner."_s);
    DeleteCommand command(work);
    command.setCountLimit(60000);
    command.DeleteRemoteItems();
    EXPECT_EQ(statuses(), QStringList { u"Löschen"_s }) << shell.log.toStdString();
    EXPECT_TRUE(std::filesystem::is_empty(server.root()));
}

TEST_F(CommandsOnTheLine, WhatLiesDeeperStandsAndSaysSo)
{
    std::filesystem::path path = server.root() / "baum";
    for (int level = 0; level < 66; ++level) {
        path /= "ebene";
    }
    servers::writeFile(path / "a", "x");
    ASSERT_TRUE(start());
    remote.select({ u"baum"_s });
    expectDelete(1, u"In den Ordnern: mehr als 0 Dateien und 65 Ordner."_s);
    DeleteCommand command(work);
    command.setCountLimit(60000);
    command.DeleteRemoteItems();
    EXPECT_EQ(statuses(), QStringList { u"Löschen verweigert"_s });
    EXPECT_TRUE(std::filesystem::exists(path / "a"));
    EXPECT_TRUE(shell.queue[0].detail.contains(u"nested too deeply"_s));
}

TEST_F(CommandsOnTheLine, AFolderThatFillsWhileItIsDeletedStandsAndSaysSo)
{
    servers::writeFile(server.root() / "baum/a", "x");
    ASSERT_TRUE(start());
    remote.select({ u"baum"_s });
    expectDelete(1, u"In den Ordnern: 1 Datei und 0 Ordner."_s);
    // Between the arrival of the delete and that of the folder's removal lies its reply.
    server.fault.replyDelay = 100;
    std::thread writer([this] {
        if (server.waitForCommand("DELE")) {
            servers::writeFile(server.root() / "baum/neu", "y");
        }
    });
    DeleteCommand(work).DeleteRemoteItems();
    writer.join();
    EXPECT_EQ(statuses(), QStringList { u"Löschen verweigert"_s });
    EXPECT_FALSE(std::filesystem::exists(server.root() / "baum/a"));
    EXPECT_EQ(servers::readFile(server.root() / "baum/neu"), "y");
    EXPECT_GE(remote.model().findRow(u"baum"_s), 0);
}

TEST_F(CommandsOnTheLine, ATreeIsGoneOnWithAfterALineDropped)
{
    for (int number = 0; number < 20; ++number) {
        servers::writeFile(server.root() / ("baum/datei" + std::to_string(number)), "x");
    }
    server.on({ .verb = "DELE", .action = servers::Rule::Drop, .skip = 7, .times = 1 });
    ASSERT_TRUE(start());
    remote.select({ u"baum"_s });
    expectDelete(1, u"In den Ordnern: 20 Dateien und 0 Ordner."_s);
    DeleteCommand(work).DeleteRemoteItems();
    EXPECT_EQ(statuses(), QStringList { u"Löschen"_s }) << shell.log.toStdString();
    EXPECT_TRUE(std::filesystem::is_empty(server.root()));
}

TEST_F(CommandsOnTheLine, ATreeWhoseLineDropsForGoodStandsAndSaysSo)
{
    for (int number = 0; number < 20; ++number) {
        servers::writeFile(server.root() / ("baum/datei" + std::to_string(number)), "x");
    }
    server.on({ .verb = "DELE", .action = servers::Rule::Drop, .skip = 7 });
    ASSERT_TRUE(start());
    remote.select({ u"baum"_s });
    expectDelete(1, u"In den Ordnern: 20 Dateien und 0 Ordner."_s);
    DeleteCommand(work).DeleteRemoteItems();
    EXPECT_EQ(statuses(), QStringList { u"Löschen verweigert"_s });
    EXPECT_FALSE(shell.queue[0].detail.isEmpty());
    EXPECT_TRUE(std::filesystem::exists(server.root() / "baum"));
    EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s).last(), u"SetFolderBoxesEnabled 1"_s);
}

TEST_F(CommandsOnTheLine, ModesInsideGoOutWithFullPaths)
{
    makeTree("baum");
    std::filesystem::create_directory_symlink("tief", server.root() / "baum/verweis");
    ASSERT_TRUE(start());
    remote.select({ u"baum"_s });
    PermissionCommand(work, [this] {
        globals.permissions = { 700, true, true };
    }).mnu_rechte_Click();
    Lines sent = server.lines("SITE");
    std::sort(sent.begin() + 1, sent.end());
    EXPECT_EQ(sent,
              (Lines { "SITE chmod 700 baum", "SITE chmod 644 /baum/a",
                       "SITE chmod 644 /baum/tief/tiefer/b", "SITE chmod 755 /baum/tief",
                       "SITE chmod 755 /baum/tief/tiefer" }));
    EXPECT_FALSE(shell.queue.value(0).failed) << shell.queue.value(0).detail.toStdString();
}

TEST_F(CommandsOnTheLine, OldAndNewNameTravelTogether)
{
    servers::writeFile(server.root() / "alt", "x");
    ASSERT_TRUE(start());
    constexpr int roundTrip = 1000; // milliseconds; one after the other would take two
    server.fault.replyDelay = roundTrip;
    QElapsedTimer clock;
    clock.start();
    const FtpStatus renamed = ftp.rename(u"alt"_s, u"neu"_s);
    EXPECT_LT(clock.elapsed(), 2 * roundTrip);
    server.fault.replyDelay = 0;
    EXPECT_TRUE(renamed);
    EXPECT_EQ(server.lines("RNFR"), Lines { "RNFR alt" });
    EXPECT_EQ(server.lines("RNTO"), Lines { "RNTO neu" });
    EXPECT_EQ(servers::readFile(server.root() / "neu"), "x");
}

TEST_F(CommandsOnTheLine, ARefusedOldNameHasOneLineInTheLog)
{
    servers::writeFile(server.root() / "alt", "x");
    server.on({ .verb = "RNFR", .text = "550 Not yours." });
    ASSERT_TRUE(start());
    RenameCommand(work).RenameRemoteAfterEdit(remote.model().findRow(u"alt"_s), u"neu"_s);
    EXPECT_TRUE(shell.log.contains(u"550 Not yours."_s));
    EXPECT_FALSE(shell.log.contains(u"503"_s));
    EXPECT_GE(remote.model().findRow(u"alt"_s), 0);
}

TEST_F(CommandsOnTheLine, ViewingFetchesIntoTheTemporaryFolder)
{
    globals.folders.temporary = disk(u"temp/"_s);
    QDir().mkpath(globals.folders.temporary);
    servers::writeFile(server.root() / "a#b%20.txt", "inhalt");
    ASSERT_TRUE(start());
    PutBack putBack(work, progress);
    ViewCommand(work, progress, putBack).ViewRemoteFile(remote.model().findRow(u"a#b%20.txt"_s));
    EXPECT_EQ(readLocal(u"temp/a#b%20.txt"_s), "inhalt");
    EXPECT_EQ(shellCalls(u"vorschau"_s),
              QStringList { u"vorschau "_s + disk(u"temp/a#b%20.txt"_s) });
}

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
