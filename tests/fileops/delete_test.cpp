// The question before deleting, and deleting on the server.
#include "fileops/deletecase.h"

#include "remote/itemkind.h"

#include <QEventLoop>
#include <QTimer>

using namespace Qt::StringLiterals;

TEST_F(DeleteTest, NothingSelectedIsSilent)
{
    ftp.addFile(u"/www/a"_s, "x");
    showBoth();
    remote.selected = { 0 }; // the up row
    command.DeleteRemoteItems();
    command.DeleteLocalItems();
    EXPECT_TRUE(shell.calls.isEmpty());
    EXPECT_TRUE(ftp.commands.isEmpty());
}

TEST_F(DeleteTest, RemoteNeedsAnIdleSession)
{
    ftp.addFile(u"/www/a"_s, "x");
    showBoth();
    remote.selectAll();
    ftp.busy = true;
    command.DeleteRemoteItems();
    command.DeleteLocalItems();
    ftp.busy = false;
    ftp.connectionState = FtpOperations::Connecting;
    command.DeleteRemoteItems();
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_TRUE(remote.markedNames().isEmpty());
}

TEST_F(DeleteTest, CancelChangesNothing)
{
    ftp.addFile(u"/www/a"_s, "x");
    writeLocal(u"b"_s, "y");
    deleteRemote({ u"a"_s }, {}, false);
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_TRUE(remote.markedNames().isEmpty());
    EXPECT_EQ(remote.calls, QStringList { u"text /www/"_s });
    deleteLocal({ u"b"_s }, {}, false);
    EXPECT_TRUE(local.selected.isEmpty());
    EXPECT_TRUE(onDisk(u"b"_s));
    EXPECT_TRUE(local.markedNames().isEmpty());
    EXPECT_TRUE(shell.queue.isEmpty());
    EXPECT_TRUE(shellCalls(u"SetToolbarsEnabled"_s).filter(u"0"_s).isEmpty());
    EXPECT_TRUE(shellCalls(u"SetFolderBoxesEnabled"_s).filter(u"0"_s).isEmpty());
}

TEST_F(DeleteTest, ARemoteFileGoesWithItsRow)
{
    ftp.addFile(u"/www/a"_s, "abc");
    ftp.addFile(u"/www/b"_s, "x");
    deleteRemote({ u"a"_s });
    EXPECT_EQ(ftp.commandsOf(u"DELE"_s), QStringList { u"DELE /www/a"_s });
    EXPECT_EQ(remote.names(), QStringList { u"b"_s });
    EXPECT_EQ(
        queueRow(0),
        (QStringList { u"Löschen"_s, QString(), u"3"_s, QString(), u"/www/a"_s, u"files01"_s }));
    EXPECT_EQ(shellCalls(u"ShowTransferItem"_s),
              (QStringList { u"ShowTransferItem Datei: a|"_s, u"ShowTransferItem |"_s }));
    EXPECT_EQ(shellCalls(u"DoRemoteRefresh"_s), QStringList { u"DoRemoteRefresh /www/"_s });
    EXPECT_EQ(remote.calls.filter(u"text"_s), QStringList { u"text /www/"_s });
}

TEST_F(DeleteTest, ATypedFolderThatWasNotEnteredDoesNotComeBackIntoTheBox)
{
    ftp.addFile(u"/www/a"_s, "abc");
    showBoth();
    remote.text = u"/getippt"_s;
    remote.select({ u"a"_s });
    expectQuestion(1, true);
    command.DeleteRemoteItems();
    EXPECT_FALSE(ftp.has(u"/www/a"_s));
    EXPECT_TRUE(remote.calls.filter(u"text"_s).isEmpty());
}

TEST_F(DeleteTest, ButtonsAndBoxesAreOffMeanwhileAndOnAfterwards)
{
    ftp.addFile(u"/www/a"_s, "abc");
    ftp.during = [this](const QString &) {
        EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).last(), u"SetToolbarsEnabled 0"_s);
        EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s).last(), u"SetFolderBoxesEnabled 0"_s);
        EXPECT_TRUE(shell.calls.contains(u"SetFtpProperties"_s));
        EXPECT_TRUE(command.isRunning());
    };
    deleteRemote({ u"a"_s });
    EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).last(), u"SetToolbarsEnabled 1"_s);
    EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s).last(), u"SetFolderBoxesEnabled 1"_s);
    EXPECT_FALSE(command.isRunning());
}

TEST_F(DeleteTest, ARefusalLeavesTheRowAndGoesOn)
{
    ftp.addFile(u"/www/a"_s, "x");
    ftp.addFile(u"/www/b"_s, "y");
    ftp.refuseAll(u"DELE /www/a"_s, u"550 Verboten."_s);
    deleteRemote({ u"a"_s, u"b"_s });
    EXPECT_EQ(remote.names(), QStringList { u"a"_s });
    EXPECT_TRUE(remote.markedNames().isEmpty());
    EXPECT_EQ(statuses(), (QStringList { u"Löschen verweigert"_s, u"Löschen"_s }));
    EXPECT_TRUE(shell.log.contains(u"\r\n550 Verboten."_s));
    EXPECT_TRUE(shell.queue[0].failed);
    EXPECT_EQ(shell.queue[0].detail, u"550 Verboten."_s);
}

TEST_F(DeleteTest, ARemoteFolderGoesAsATreeAndLeavesTheHistory)
{
    ftp.addFile(u"/www/ordner/tief/a"_s, "x");
    deleteRemote({ u"ordner"_s }, u"In den Ordnern: 1 Datei und 1 Ordner."_s);
    EXPECT_EQ(ftp.commandsOf(u"RMTREE"_s), QStringList { u"RMTREE /www/ordner"_s });
    EXPECT_FALSE(ftp.has(u"/www/ordner"_s));
    EXPECT_TRUE(remote.calls.contains(u"forget /www/ordner"_s));
    EXPECT_EQ(shellCalls(u"ShowTransferItem"_s).first(), u"ShowTransferItem Ordner: ordner|"_s);
    EXPECT_EQ(statuses(), QStringList { u"Löschen"_s });
}

TEST_F(DeleteTest, ATreeThatKeepsALinkIsRefused)
{
    ftp.addFile(u"/www/ordner/a"_s, "x");
    ftp.addLink(u"/www/ordner/verweis"_s, u"/anderswo"_s);
    deleteRemote({ u"ordner"_s }, u"In den Ordnern: 2 Dateien und 0 Ordner."_s);
    EXPECT_EQ(statuses(), QStringList { u"Löschen verweigert"_s });
    EXPECT_EQ(remote.names(), QStringList { u"ordner"_s });
    EXPECT_TRUE(remote.calls.contains(u"forget /www/ordner"_s)) << "whatever became of it";
}

TEST_F(DeleteTest, ARemoteLinkIsRemovedAsALink)
{
    ftp.addFile(u"/anderswo/wichtig"_s, "x");
    ftp.addLink(u"/www/verweis"_s, u"/anderswo"_s);
    deleteRemote({ u"verweis"_s });
    EXPECT_EQ(ftp.commands, QStringList { u"DELE /www/verweis"_s });
    EXPECT_TRUE(ftp.has(u"/anderswo/wichtig"_s));
    EXPECT_TRUE(remote.calls.contains(u"forget /www/verweis"_s));
    EXPECT_EQ(shellCalls(u"ShowTransferItem"_s).first(), u"ShowTransferItem Ordner: verweis|"_s);
    EXPECT_EQ(statuses(), QStringList { u"Löschen"_s });
}

TEST_F(DeleteTest, ALinkKnownToLeadToAFolderIsStillRemovedAsALink)
{
    ftp.addFile(u"/anderswo/wichtig"_s, "x");
    ftp.addLink(u"/www/verweis"_s, u"/anderswo"_s);
    showBoth();
    const int row = remote.model().findRow(u"verweis"_s);
    PaneRow opened = remote.model().row(row);
    opened.kind = ItemKind::FolderLink; // as after a double click
    remote.model().changeRow(row, opened);
    remote.select({ u"verweis"_s });
    expectQuestion(1, true);
    command.DeleteRemoteItems();
    EXPECT_EQ(ftp.commands, QStringList { u"DELE /www/verweis"_s });
    EXPECT_TRUE(ftp.has(u"/anderswo/wichtig"_s));
    EXPECT_EQ(shellCalls(u"ShowTransferItem"_s).first(), u"ShowTransferItem Ordner: verweis|"_s);
}

TEST_F(DeleteTest, ALinkThatIsNoFileToTheServerIsTriedAsAFolder)
{
    ftp.addFile(u"/anderswo/wichtig"_s, "x");
    ftp.addLink(u"/www/verweis"_s, u"/anderswo"_s);
    ftp.refuseAll(u"DELE"_s, u"550 Not a plain file."_s);
    deleteRemote({ u"verweis"_s });
    EXPECT_EQ(ftp.commands, (QStringList { u"DELE /www/verweis"_s, u"RMD /www/verweis"_s }));
    EXPECT_TRUE(ftp.has(u"/anderswo/wichtig"_s));
}

TEST_F(DeleteTest, ALostConnectionEndsTheDeletion)
{
    for (const char *name : { "a", "b", "c" }) {
        ftp.addFile(u"/www/"_s + QString::fromLatin1(name), "x");
    }
    ftp.during = [this](const QString &line) {
        if (line.endsWith(u"/b"_s)) {
            ftp.close();
        }
    };
    deleteRemote({ u"a"_s, u"b"_s, u"c"_s });
    EXPECT_EQ(statuses(), (QStringList { u"Löschen"_s, u"Löschen verweigert"_s }));
    EXPECT_FALSE(ftp.has(u"/www/a"_s));
    EXPECT_TRUE(ftp.has(u"/www/b"_s) && ftp.has(u"/www/c"_s));
    EXPECT_TRUE(remote.markedNames().isEmpty());
}

TEST_F(DeleteTest, TheContentOfAllMarkedFoldersIsCountedOnce)
{
    ftp.addFile(u"/www/eins/a"_s, "x");
    ftp.addFile(u"/www/zwei/b"_s, "x");
    ftp.addLink(u"/www/verweis"_s, u"/anderswo"_s);
    deleteRemote({ u"eins"_s, u"zwei"_s, u"verweis"_s },
                 u"In den Ordnern: 2 Dateien und 0 Ordner."_s, false);
    EXPECT_EQ(ftp.commands, QStringList { u"COUNT /www/eins /www/zwei"_s });
}

TEST_F(DeleteTest, ALinkThatLooksLikeAFolderIsNotCounted)
{
    writeLocal(u"ziel/a"_s, "x");
    writeLocal(u"ordner/b"_s, "x");
    ASSERT_TRUE(QFile::link(disk(u"ziel"_s), disk(u"verweis"_s)));
    showBoth();
    const int row = local.model().findRow(u"verweis"_s);
    PaneRow shown = local.model().row(row);
    shown.kind = ItemKind::FolderClose; // as the window's pane shows it
    local.model().changeRow(row, shown);
    local.select({ u"ordner"_s, u"verweis"_s });
    expectQuestion(2, true, u"In den Ordnern: 1 Datei und 0 Ordner."_s);
    command.DeleteLocalItems();
    EXPECT_EQ(readLocal(u"ziel/a"_s), "x");
    EXPECT_FALSE(onDisk(u"verweis"_s));
}

TEST_F(DeleteTest, CountingEndsWhenItTakesTooLong)
{
    ftp.addFile(u"/www/ordner/a"_s, "x");
    command.setCountLimit(1);
    ftp.during = [](const QString &line) {
        if (line.startsWith(u"COUNT"_s)) {
            QEventLoop untilLater;
            QTimer::singleShot(2, &untilLater, &QEventLoop::quit);
            untilLater.exec();
        }
    };
    deleteRemote({ u"ordner"_s }, u"In den Ordnern: mehr als 1 Datei und 0 Ordner."_s);
    EXPECT_FALSE(ftp.has(u"/www/ordner"_s));
    EXPECT_EQ(shellCalls(u"SetAbortEnabled"_s),
              (QStringList { u"SetAbortEnabled 1"_s, u"SetAbortEnabled 0"_s }))
        << "a server that stalls now could not be left";
}

TEST_F(DeleteTest, AFailedCountSaysNothingAndTheQuestionStands)
{
    ftp.addFile(u"/www/ordner/a"_s, "x");
    ftp.refuseAll(u"COUNT"_s, u"450 Not now."_s);
    deleteRemote({ u"ordner"_s }, {});
    EXPECT_FALSE(ftp.has(u"/www/ordner"_s));
}

TEST_F(DeleteTest, ALineLostAtTheQuestionDeletesNothing)
{
    ftp.addFile(u"/www/ordner/a"_s, "x");
    ftp.addFile(u"/www/b"_s, "x");
    showBoth();
    remote.select({ u"ordner"_s, u"b"_s });
    expectQuestion(2, true, u"In den Ordnern: 1 Datei und 0 Ordner."_s);
    prompts.meanwhile([this] { ftp.close(); });
    command.DeleteRemoteItems();
    EXPECT_TRUE(ftp.has(u"/www/ordner/a"_s) && ftp.has(u"/www/b"_s));
    EXPECT_TRUE(shell.queue.isEmpty());
    EXPECT_TRUE(remote.markedNames().isEmpty());
}

TEST_F(DeleteTest, FilesAndFoldersGoInTheirOrder)
{
    ftp.addFile(u"/www/a/x"_s, "x");
    ftp.addFile(u"/www/b"_s, "x");
    ftp.addFile(u"/www/c"_s, "x");
    deleteRemote({ u"a"_s, u"b"_s, u"c"_s }, u"In den Ordnern: 1 Datei und 0 Ordner."_s);
    EXPECT_EQ(ftp.commands.mid(1),
              (QStringList { u"RMTREE /www/a"_s, u"DELE /www/b"_s, u"DELE /www/c"_s }));
    QStringList paths;
    for (const QueueRow &row : shell.queue) {
        paths.append(row.remote);
    }
    EXPECT_EQ(paths, (QStringList { u"/www/a"_s, u"/www/b"_s, u"/www/c"_s }));
    EXPECT_EQ(shellCalls(u"ShowTransferItem"_s).filter(u"Datei"_s),
              (QStringList { u"ShowTransferItem Datei: b|"_s, u"ShowTransferItem Datei: c|"_s }));
}
