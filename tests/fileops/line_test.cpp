#include "fileops/linebench.h"
#include "fileops/newfolder.h"
#include "fileops/permissions.h"
#include "fileops/rename.h"
#include "fileops/view.h"

#include <QElapsedTimer>
#include <algorithm>

using namespace Qt::StringLiterals;

// What the commands other than deleting send over the line.

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
