#include "fileops/delete.h"
#include "fileops/newfolder.h"
#include "fileops/permissions.h"
#include "fileops/rename.h"
#include "fileops/view.h"
#include "servers/everyserver.h"
#include "support/serverbench.h"

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
    void expectDelete(int count)
    {
        prompts.expectConfirm(
            u"Sind Sie sicher, dass Sie %1 Dateien oder Ordner löschen möchten?"_s.arg(count), true,
            u"Confirm Delete"_s);
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
    expectDelete(2);
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
    expectDelete(1);
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
    EXPECT_EQ(statuses(), (QStringList { u"Löschen"_s, u"Löschen verweigert"_s }));
    EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s).last(), u"SetFolderBoxesEnabled 1"_s);
}

TEST_F(CommandsOnTheLine, ViewingFetchesIntoTheTemporaryFolder)
{
    globals.folders.temporary = disk(u"temp/"_s);
    QDir().mkpath(globals.folders.temporary);
    servers::writeFile(server.root() / "a#b%20.txt", "inhalt");
    ASSERT_TRUE(start());
    ViewCommand(work, progress).ViewRemoteFile(remote.model().findRow(u"a#b%20.txt"_s));
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
    void deleteRemote(const QStringList &names)
    {
        remote.select(names);
        ASSERT_EQ(remote.selected.size(), names.size());
        prompts.expectConfirm(
            u"Sind Sie sicher, dass Sie %1 Dateien oder Ordner löschen möchten?"_s.arg(
                names.size()),
            true, u"Confirm Delete"_s);
        DeleteCommand(work).DeleteRemoteItems();
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
    deleteRemote({ u"baum"_s });
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
    deleteRemote({ u"verweis"_s, u"baum"_s });
    EXPECT_TRUE(std::filesystem::exists(at("aussen/wichtig")));
    EXPECT_FALSE(std::filesystem::is_symlink(at("verweis"))) << shell.log.toStdString();
    EXPECT_TRUE(std::filesystem::is_symlink(at("baum/verweis")));
    EXPECT_FALSE(std::filesystem::exists(at("baum/a")));
    for (const QueueRow &row : shell.queue) {
        EXPECT_EQ(row.status,
                  row.remote.endsWith(u"baum"_s) ? u"Löschen verweigert"_s : u"Löschen"_s);
    }
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
