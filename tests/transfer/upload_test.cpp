#include "transferbench.h"

#include "ftp/ftplocalnames.h"
#include "remote/itemkind.h"

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class UploadTest : public TransferBench { };

TEST_F(UploadTest, StoresTheSelectedFilesAndNoOther)
{
    writeLocal(u"a.txt"_s, "eins");
    writeLocal(u"b.txt"_s, "zwei");
    upload({ u"a.txt"_s });
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "eins");
    EXPECT_FALSE(ftp.has(u"/www/b.txt"_s));
    ASSERT_EQ(shell.queue.size(), 1);
    EXPECT_EQ(queueRow(0),
              (QStringList { u"Upload"_s, disk(u"a.txt"_s), u"4"_s, u"-->"_s, u"/www/a.txt"_s,
                             u"files01"_s }));
    EXPECT_TRUE(local.markedNames().isEmpty());
}

TEST_F(UploadTest, StartsOnlyInAnIdleSession)
{
    writeLocal(u"a.txt"_s, "eins");
    showBoth();
    local.select({ u"a.txt"_s });
    ftp.busy = true;
    commands.cmd_upload_Click();
    ftp.busy = false;
    ftp.connectionState = FtpOperations::Closed;
    commands.cmd_upload_Click();
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_TRUE(shell.calls.isEmpty());
}

TEST_F(UploadTest, NeedsNoRowInTheRemotePane)
{
    writeLocal(u"a.txt"_s, "eins");
    showBoth();
    remote.model().clear();
    local.select({ u"a.txt"_s });
    commands.cmd_upload_Click();
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "eins");
}

TEST_F(UploadTest, LeavesTheWindowReadyAndTheServerListed)
{
    writeLocal(u"a.txt"_s, "eins");
    upload({ u"a.txt"_s });
    EXPECT_EQ(remote.names(), QStringList { u"a.txt"_s });
    EXPECT_EQ(remote.calls.last(), u"clear selection"_s);
    EXPECT_EQ(ftp.commands.last(), u"LIST"_s);
    EXPECT_TRUE(shell.calls.contains(u"SetCommandsEnabled 0 1 1 1"_s));
    EXPECT_EQ(shell.calls.last(), u"SetFolderBoxesEnabled 1"_s);
    EXPECT_EQ(progress.value(), 0);
    EXPECT_EQ(progress.rateText(), QString());
}

TEST_F(UploadTest, ShowsItemAndProgressWhileItRuns)
{
    writeLocal(u"langername.html"_s, QByteArray(3000, 'x'));
    writeLocal(u"ordner/b"_s, "x");
    ftp.during = [this](const QString &command) {
        if (command.startsWith(u"PUT"_s)) {
            EXPECT_EQ(progress.maximum(), 3000);
        }
    };
    upload({ u"langername.html"_s });
    EXPECT_EQ(shellCalls(u"ShowTransferItem"_s),
              (QStringList { u"ShowTransferItem Datei: langername.html|3000"_s,
                             u"ShowTransferItem |"_s }));
    EXPECT_EQ(progress.maximum(), 3000);
    shell.calls.clear();
    upload({ u"ordner"_s });
    EXPECT_EQ(shellCalls(u"ShowTransferItem"_s),
              (QStringList { u"ShowTransferItem Ordner: ordner|"_s, u"ShowTransferItem |"_s }));
}

TEST_F(UploadTest, TheBarStartsAtTheResumeOffsetAndReturnsToZero)
{
    ftp.addFile(u"/www/a"_s, "12345");
    writeLocal(u"a"_s, QByteArray(100, 'x'));
    writeLocal(u"b"_s, QByteArray(50, 'y'));
    QList<qint64> atTheStart;
    ftp.during = [&](const QString &command) {
        if (command.startsWith(u"PUT"_s)) {
            atTheStart.append(progress.value());
        }
    };
    dialogs.steps = { { ConflictAnswer::Resume, false, {} } };
    upload({ u"a"_s, u"b"_s });
    EXPECT_EQ(atTheStart, (QList<qint64> { 5, 0 }));
}

TEST_F(UploadTest, SetsTheTransferTypeBeforeEveryPut)
{
    writeLocal(u"a.txt"_s, "eins");
    writeLocal(u"ordner/b.txt"_s, "zwei");
    globals.connection.TransferType = TypeEbcdic;
    ftp.setTransferType(TypeBinary);
    upload({ u"a.txt"_s });
    EXPECT_TRUE(ftp.commandsOf(u"PUT"_s).value(0).endsWith(u"[2]"_s));
    ftp.setTransferType(TypeBinary);
    upload({ u"ordner"_s });
    EXPECT_EQ(ftp.transferType(), TypeEbcdic);
}

TEST_F(UploadTest, ADropOnALinkGoesWhereItLeads)
{
    ftp.addFile(u"/www/ziel/x"_s, "x");
    ftp.addLink(u"/www/verweis"_s, u"/www/ziel"_s);
    writeLocal(u"a.txt"_s, "neu");
    const auto drop = [this](bool answer) {
        showBoth();
        local.selectAll();
        MarkSelectedLocal(local, globals, false);
        prompts.expectConfirm(u"1 Dateien oder Ordner Uploaden?"_s, answer, u"Store..."_s);
        commands.dropOnRemote(remote.model().findRow(u"verweis"_s));
    };
    drop(false);
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_TRUE(local.markedNames().isEmpty());
    drop(true);
    EXPECT_EQ(ftp.commands.first(), u"CWD /www/verweis/"_s);
    ASSERT_EQ(shell.queue.size(), 1);
    EXPECT_EQ(shell.queue[0].remote, u"/www/verweis/a.txt"_s);
}

TEST_F(UploadTest, ListsTheServerBeforeTheBoxesComeBack)
{
    writeLocal(u"a.txt"_s, "eins");
    int listings = 0;
    ftp.during = [&](const QString &command) {
        if (command == u"LIST"_s) {
            ++listings;
            EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s),
                      QStringList { u"SetFolderBoxesEnabled 0"_s });
            EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).last(), u"SetToolbarsEnabled 0"_s);
            EXPECT_TRUE(shellCalls(u"SetCommandsEnabled"_s).isEmpty());
        }
    };
    upload({ u"a.txt"_s });
    EXPECT_EQ(listings, 1);
    EXPECT_EQ(shell.calls.last(), u"SetFolderBoxesEnabled 1"_s);
}

TEST_F(UploadTest, EntersAndListsAnotherTargetBeforeTheFirstConflict)
{
    ftp.addFile(u"/www/unter/a.txt"_s, "alt");
    writeLocal(u"a.txt"_s, "neuer");
    showBoth();
    local.selectAll();
    MarkSelectedLocal(local, globals, false);
    prompts.expectConfirm(u"1 Dateien oder Ordner Uploaden?"_s, true, u"Store..."_s);
    dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
    commands.dropOnRemote(remote.model().findRow(u"unter"_s));
    EXPECT_EQ(ftp.commands.first(), u"CWD /www/unter/"_s);
    EXPECT_EQ(dialogs.questions.value(0).message.join(u' '),
              u"Überschreiben /www/unter/a.txt(3) mit "_s + disk(u"a.txt(5)"_s));
    EXPECT_EQ(remote.text, u"/www/unter"_s);
}

TEST_F(UploadTest, ATargetThatCannotBeEnteredOverwritesNothing)
{
    ftp.addFile(u"/www/unter/a.txt"_s, "alt");
    writeLocal(u"a.txt"_s, "neuer");
    showBoth();
    local.selectAll();
    MarkSelectedLocal(local, globals, false);
    ftp.refuseAll(u"CWD /www/unter/"_s, u"550 Verboten."_s);
    prompts.expectConfirm(u"1 Dateien oder Ordner Uploaden?"_s, true, u"Store..."_s);
    commands.dropOnRemote(remote.model().findRow(u"unter"_s));
    EXPECT_EQ(ftp.content(u"/www/unter/a.txt"_s), "alt");
    EXPECT_EQ(statuses(), QStringList { u"Upload verweigert"_s });
    EXPECT_EQ(shell.queue[0].detail, u"550 Verboten."_s);
}

TEST_F(UploadTest, InAFolderThatCannotBeListedTheServerIsAskedAboutEveryFile)
{
    ftp.addFile(u"/www/a"_s, "alt");
    writeLocal(u"a"_s, "neuer");
    writeLocal(u"b"_s, "x");
    writeLocal(u"bilder/c"_s, "y");
    showBoth();
    remote.model().setRows({ upRow() });
    remote.unread = [] { return true; };
    local.select({ u"a"_s, u"b"_s, u"bilder"_s });
    dialogs.steps
        = { { ConflictAnswer::Skip, false, {} }, { ConflictAnswer::Overwrite, false, {} } };
    commands.cmd_upload_Click();
    EXPECT_EQ(dialogs.questions.value(0).message.join(u' '),
              u"Überschreiben /www/bilder(0) mit "_s + disk(u"bilder(0)"_s));
    EXPECT_EQ(dialogs.questions.value(1).message.join(u' '),
              u"Überschreiben /www/a(3) mit "_s + disk(u"a(5)"_s));
    EXPECT_EQ(ftp.content(u"/www/a"_s), "neuer");
    EXPECT_EQ(ftp.content(u"/www/b"_s), "x");
    EXPECT_FALSE(ftp.has(u"/www/bilder/c"_s));
    EXPECT_EQ(ftp.lists, 0);
}

TEST_F(UploadTest, ATargetThatWasNotReadIsListedOnceMore)
{
    ftp.addFile(u"/www/a"_s, "alt");
    writeLocal(u"a"_s, "neuer");
    showBoth();
    remote.model().setRows({ upRow() });
    remote.unread = [this] { return ftp.commandsOf(u"LIST"_s).isEmpty(); };
    local.select({ u"a"_s });
    dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
    commands.cmd_upload_Click();
    EXPECT_EQ(ftp.content(u"/www/a"_s), "alt");
    EXPECT_TRUE(ftp.commandsOf(u"FACTS"_s).isEmpty());
}

TEST_F(UploadTest, ARelativeFolderOfTheBoxIsEnteredOnce)
{
    ftp.addFile(u"/www/www/a"_s, "alt");
    ftp.addFolder(u"/www/www/www"_s);
    writeLocal(u"a"_s, "neuer");
    showBoth();
    remote.text = u"www"_s;
    local.select({ u"a"_s });
    dialogs.steps = { { ConflictAnswer::Overwrite, false, {} } };
    commands.cmd_upload_Click();
    EXPECT_EQ(ftp.commandsOf(u"CWD"_s), QStringList { u"CWD www/"_s });
    EXPECT_EQ(ftp.content(u"/www/www/a"_s), "neuer");
    EXPECT_EQ(shell.queue.value(0).remote, u"/www/www/a"_s);
}

TEST_F(UploadTest, AnEmptyBoxMeansTheFolderShown)
{
    writeLocal(u"a"_s, "neu");
    for (const QString &text : { QString(), u"  "_s }) {
        ftp.nodes.remove(u"/www/a"_s);
        showBoth();
        remote.text = text;
        local.select({ u"a"_s });
        commands.cmd_upload_Click();
        EXPECT_EQ(ftp.content(u"/www/a"_s), "neu");
    }
}

TEST_F(UploadTest, ADropGoesByTheFolderShownNotByTheBox)
{
    ftp.addFolder(u"/www/bilder"_s);
    ftp.addFolder(u"/alt/bilder"_s);
    writeLocal(u"a"_s, "neu");
    showBoth();
    remote.text = u"/alt"_s; // typed, not entered
    local.selectAll();
    MarkSelectedLocal(local, globals, false);
    prompts.expectConfirm(u"1 Dateien oder Ordner Uploaden?"_s, true, u"Store..."_s);
    commands.dropOnRemote(remote.model().findRow(u"bilder"_s));
    EXPECT_EQ(ftp.content(u"/www/bilder/a"_s), "neu");
    EXPECT_FALSE(ftp.has(u"/alt/bilder/a"_s));
}

TEST_F(UploadTest, OfTwoFilesWithOneTargetOnlyTheFirstGoes)
{
    writeLocal(u"eins/index.html"_s, "eins");
    writeLocal(u"zwei/index.html"_s, "zwei");
    showBoth();
    for (const QString &folder : { u"eins/"_s, u"zwei/"_s }) {
        globals.marked.MarkedItems.append(
            { u"index.html"_s, disk(folder), ItemKind::File, u"4"_s, -1 });
        ++globals.marked.MarkedCount;
    }
    prompts.expectConfirm(u"2 Dateien oder Ordner Uploaden?"_s, true, u"Store..."_s);
    commands.dropOnRemote(-1);
    EXPECT_EQ(ftp.content(u"/www/index.html"_s), "eins");
    EXPECT_EQ(ftp.lists, 0) << "both would be written at once";
    EXPECT_EQ(statuses(), (QStringList { u"Upload"_s, u"Upload verweigert"_s }));
    EXPECT_EQ(shell.queue.value(1).local, disk(u"zwei/index.html"_s));
    EXPECT_TRUE(shell.log.contains(u"/www/index.html: Mehrere der markierten Objekte"_s));
}

TEST_F(UploadTest, ADropOnAFileRowStaysInTheFolder)
{
    ftp.addFile(u"/www/datei"_s, "x");
    writeLocal(u"a.txt"_s, "neu");
    showBoth();
    local.selectAll();
    MarkSelectedLocal(local, globals, false);
    prompts.expectConfirm(u"1 Dateien oder Ordner Uploaden?"_s, true, u"Store..."_s);
    commands.dropOnRemote(remote.model().findRow(u"datei"_s));
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "neu");
}

TEST_F(UploadTest, TheConflictCheckTrustsThePane)
{
    ftp.addFile(u"/www/a.txt"_s, "alt");
    writeLocal(u"a.txt"_s, "neuer");
    showBoth();
    PaneRow row = remote.model().row(1);
    row.size = u"2.5 von 7"_s;
    remote.model().changeRow(1, row);
    local.select({ u"a.txt"_s });
    dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
    commands.cmd_upload_Click();
    EXPECT_TRUE(dialogs.questions.value(0).message.first().contains(u"/www/a.txt(2)"_s));
}

TEST_F(UploadTest, AnEmptyRemoteFileIsReplacedWithoutAsking)
{
    ftp.addFile(u"/www/a.txt"_s, "");
    writeLocal(u"a.txt"_s, "neu");
    upload({ u"a.txt"_s });
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "neu");
}

TEST_F(UploadTest, AConflictIsAskedAboutAndAnswered)
{
    writeLocal(u"a.txt"_s, "neuer Inhalt");
    for (const auto answer :
         { ConflictAnswer::Skip, ConflictAnswer::Resume, ConflictAnswer::Overwrite }) {
        ftp.addFile(u"/www/a.txt"_s, "NEUER");
        dialogs.steps = { { answer, false, {} } };
        upload({ u"a.txt"_s });
        const QByteArray expected = answer == ConflictAnswer::Skip ? "NEUER"
            : answer == ConflictAnswer::Resume                     ? "NEUER Inhalt"
                                                                   : "neuer Inhalt";
        EXPECT_EQ(ftp.content(u"/www/a.txt"_s), expected);
    }
    EXPECT_EQ(statuses().size(), 2);
}

TEST_F(UploadTest, AConflictFreeUploadAfterAResumedOneReplaces)
{
    ftp.addFile(u"/www/a.txt"_s, "EINS");
    writeLocal(u"a.txt"_s, "eins und mehr");
    writeLocal(u"b.txt"_s, "zwei");
    dialogs.steps = { { ConflictAnswer::Resume, false, {} } };
    upload({ u"a.txt"_s, u"b.txt"_s });
    const QStringList puts = ftp.commandsOf(u"PUT"_s);
    ASSERT_EQ(puts.size(), 2);
    EXPECT_TRUE(puts[0].contains(u"@4 mode 2"_s));
    EXPECT_TRUE(puts[1].contains(u"@0 mode 0"_s));
}

TEST_F(UploadTest, AllRepeatsTheAnswer)
{
    writeLocal(u"a"_s, "eins eins");
    writeLocal(u"b"_s, "zwei zwei");
    for (const auto answer : { ConflictAnswer::Resume, ConflictAnswer::Overwrite }) {
        ftp.addFile(u"/www/a"_s, "EINS");
        ftp.addFile(u"/www/b"_s, "ZWEI");
        dialogs.steps = { { answer, true, {} } };
        upload({ u"a"_s, u"b"_s });
        EXPECT_EQ(ftp.content(u"/www/b"_s),
                  answer == ConflictAnswer::Resume ? "ZWEI zwei" : "zwei zwei");
    }
}

TEST_F(UploadTest, ARefusedPutSaysSoAndTheBatchGoesOn)
{
    writeLocal(u"a"_s, "eins");
    writeLocal(u"b"_s, "zwei");
    ftp.refuseAll(u"/www/a"_s, u"451 Quota."_s);
    upload({ u"a"_s, u"b"_s });
    EXPECT_EQ(statuses(), (QStringList { u"Upload verweigert"_s, u"Upload"_s }));
    EXPECT_EQ(shell.queue[0].local, disk(u"a"_s));
    EXPECT_EQ(shell.queue[0].size, u"4"_s);
    EXPECT_EQ(shell.queue[0].remote, u"/www/a"_s);
    EXPECT_EQ(ftp.content(u"/www/b"_s), "zwei");
}

TEST_F(UploadTest, FilesThatNeedNoQuestionGoInOneCallAndTheOrderStands)
{
    for (const char *name : { "a", "b", "c", "d", "e" }) {
        writeLocal(QString::fromLatin1(name), "neuer");
    }
    ftp.addFile(u"/www/c"_s, "alt");
    dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
    upload({ u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s });
    EXPECT_EQ(ftp.lists, 2);
    QStringList names;
    for (const QueueRow &row : shell.queue) {
        names.append(row.remote.section(u'/', -1));
    }
    EXPECT_EQ(names, (QStringList { u"a"_s, u"b"_s, u"d"_s, u"e"_s }));
    EXPECT_EQ(ftp.content(u"/www/c"_s), "alt");
    EXPECT_TRUE(local.markedNames().isEmpty());
}

TEST_F(UploadTest, ARowTellsOfTheFileThatWentWhenAnotherNeverBegan)
{
    for (const char *name : { "a", "b", "c" }) {
        writeLocal(QString::fromLatin1(name), "neu");
    }
    ftp.neverBegun = [](const FtpFile &file) { return file.remotePath == u"/www/b"_s; };
    upload({ u"a"_s, u"b"_s, u"c"_s });
    ASSERT_EQ(shell.queue.size(), 2);
    EXPECT_EQ(shell.queue[1].local, disk(u"c"_s));
    EXPECT_EQ(shell.queue[1].remote, u"/www/c"_s);
}

TEST_F(UploadTest, AResumedFileNeverGoesInARun)
{
    for (const char *name : { "a", "b", "c" }) {
        ftp.addFile(u"/www/"_s + QString::fromLatin1(name), "NEU");
        writeLocal(QString::fromLatin1(name), "neuer");
    }
    dialogs.steps = { { ConflictAnswer::Resume, true, {} } };
    upload({ u"a"_s, u"b"_s, u"c"_s });
    EXPECT_EQ(ftp.lists, 0);
    EXPECT_EQ(ftp.content(u"/www/c"_s), "NEUer");
}

TEST_F(UploadTest, AFolderIsMadeAndStoredAsATree)
{
    writeLocal(u"neue bilder/tief/.verborgen"_s, "x");
    writeLocal(u"bilder/a"_s, "y");
    upload({ u"bilder"_s, u"neue bilder"_s });
    EXPECT_EQ(
        ftp.commands.mid(0, 4),
        (QStringList { u"MKD /www/bilder"_s, u"MPUT "_s + disk(u"bilder/*"_s) + u" /www/bilder"_s,
                       u"MKD /www/neue bilder"_s,
                       u"MPUT \""_s + disk(u"neue bilder/*\""_s) + u" /www/neue bilder"_s }));
    EXPECT_EQ(ftp.content(u"/www/neue bilder/tief/.verborgen"_s), "x");
    EXPECT_EQ(shell.queue.value(0).size, QString());
    EXPECT_EQ(shell.queue.value(0).status, u"Upload"_s);
}

TEST_F(UploadTest, ALinkToAFolderIsSentAsATree)
{
    writeLocal(u"woanders/a"_s, "y");
    ASSERT_TRUE(QFile::link(disk(u"woanders"_s), disk(u"verweis"_s)));
    upload({ u"verweis"_s });
    EXPECT_EQ(ftp.commandsOf(u"PUT"_s), QStringList());
    EXPECT_EQ(ftp.commandsOf(u"MPUT"_s),
              QStringList { u"MPUT "_s + disk(u"verweis/*"_s) + u" /www/verweis"_s });
    EXPECT_EQ(shell.queue.value(0).size, QString());
}

TEST_F(UploadTest, TheStartIsNotedBeforeEveryCall)
{
    writeLocal(u"a"_s, "x");
    writeLocal(u"b"_s, "x");
    writeLocal(u"ordner/c"_s, "x");
    int calls = 0;
    ftp.during = [&](const QString &command) {
        if (command.contains(u"PUT"_s)) {
            EXPECT_GT(globals.transfer.TransferStart, 0) << command.toStdString();
            globals.transfer.TransferStart = 0;
            ++calls;
        }
    };
    upload({ u"a"_s, u"b"_s, u"ordner"_s });
    EXPECT_EQ(calls, 3);
}

TEST_F(UploadTest, AnExistingFolderIsAskedAboutAndNotMadeAgain)
{
    ftp.addFolder(u"/www/bilder"_s);
    writeLocal(u"bilder/a"_s, "y");
    dialogs.steps = { { ConflictAnswer::Overwrite, false, {} } };
    upload({ u"bilder"_s });
    EXPECT_TRUE(ftp.commandsOf(u"MKD"_s).isEmpty());
    EXPECT_EQ(ftp.content(u"/www/bilder/a"_s), "y");
    EXPECT_TRUE(dialogs.questions.value(0).message.first().contains(u"/www/bilder(0)"_s));
}

TEST_F(UploadTest, AFolderThatCannotBeMadeIsRefused)
{
    writeLocal(u"bilder/a"_s, "y");
    ftp.refuseAll(u"MKD"_s, u"550 Verboten."_s);
    upload({ u"bilder"_s });
    EXPECT_EQ(statuses(), QStringList { u"Upload verweigert"_s });
}

TEST_F(UploadTest, RenamesTheRemoteFileWithFullPathsAndAsksAgain)
{
    ftp.addFile(u"/www/a.txt"_s, "alt");
    ftp.addFile(u"/www/vergeben"_s, "x");
    writeLocal(u"a.txt"_s, "neuer");
    dialogs.steps = { { ConflictAnswer::Rename, false, u"vergeben"_s },
                      { ConflictAnswer::Rename, false, u"b.txt"_s },
                      { ConflictAnswer::Overwrite, false, {} } };
    upload({ u"a.txt"_s });
    EXPECT_EQ(ftp.commandsOf(u"RENAME"_s), QStringList { u"RENAME /www/a.txt /www/b.txt"_s });
    EXPECT_EQ(ftp.content(u"/www/b.txt"_s), "alt");
    EXPECT_EQ(ftp.content(u"/www/vergeben"_s), "x");
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "neuer");
    EXPECT_EQ(shell.log.count(u"vergeben: Der Name ist schon vergeben.\r\n"_s), 1);
    EXPECT_EQ(dialogs.offeredNames, (QStringList { u"a.txt"_s, u"a.txt"_s }));
    ASSERT_EQ(dialogs.questions.size(), 3);
    EXPECT_EQ(dialogs.questions[2].message, dialogs.questions[0].message);
}

TEST_F(UploadTest, AConflictThatARenameMadeIsSeen)
{
    ftp.addFile(u"/www/a"_s, "alt");
    writeLocal(u"a"_s, "neuer");
    writeLocal(u"b"_s, "neuer");
    dialogs.steps = { { ConflictAnswer::Rename, false, u"b"_s },
                      { ConflictAnswer::Overwrite, false, {} },
                      { ConflictAnswer::Skip, false, {} } };
    upload({ u"a"_s, u"b"_s });
    EXPECT_EQ(ftp.content(u"/www/b"_s), "alt") << "overwritten without a question";
    EXPECT_EQ(ftp.content(u"/www/a"_s), "neuer");
}

TEST_F(UploadTest, RenamingAFolderMakesRoomForTheNewOne)
{
    ftp.addFile(u"/www/bilder/x"_s, "alt");
    writeLocal(u"bilder/x"_s, "neuer");
    dialogs.steps = { { ConflictAnswer::Rename, false, u"frueher"_s },
                      { ConflictAnswer::Overwrite, false, {} } };
    upload({ u"bilder"_s });
    EXPECT_EQ(ftp.commandsOf(u"MKD"_s), QStringList { u"MKD /www/bilder"_s });
    EXPECT_EQ(ftp.content(u"/www/bilder/x"_s), "neuer");
    EXPECT_EQ(ftp.content(u"/www/frueher/x"_s), "alt");
}

TEST_F(UploadTest, AFolderThatWasRenamedAndThenSkippedIsNotMadeAnew)
{
    ftp.addFolder(u"/www/bilder"_s);
    writeLocal(u"bilder/x"_s, "neuer");
    dialogs.steps
        = { { ConflictAnswer::Rename, false, u"frueher"_s }, { ConflictAnswer::Skip, false, {} } };
    upload({ u"bilder"_s });
    EXPECT_TRUE(ftp.has(u"/www/frueher"_s));
    EXPECT_FALSE(ftp.has(u"/www/bilder"_s));
    EXPECT_TRUE(shell.queue.isEmpty());
}

TEST_F(UploadTest, TheNewNameIsAskedForWithTheServersName)
{
    const QString name = textOfName("a\xe4.txt"); // no UTF-8: another name on the server
    const QString onServer = nameForServer(name);
    ASSERT_NE(onServer, name);
    ftp.addFile(u"/www/"_s + onServer, "alt");
    showBoth();
    local.model().appendRow({ name, ItemKind::File, u"5"_s, {}, {}, disk(name), false });
    local.select({ name });
    dialogs.steps = { { ConflictAnswer::Rename, false, std::nullopt } };
    commands.cmd_upload_Click();
    EXPECT_EQ(dialogs.offeredNames, QStringList { onServer });
}

TEST_F(UploadTest, ResumingIsOfferedWhateverTheServerSaysOfRestarts)
{
    ftp.addFile(u"/www/a"_s, "alt");
    writeLocal(u"a"_s, "neuer");
    globals.session.ResumeSupport = false; // an upload is continued by appending
    dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
    upload({ u"a"_s });
    EXPECT_TRUE(dialogs.questions.value(0).mayResume);
}

TEST_F(UploadTest, AllGoesForFoldersThatExist)
{
    ftp.addFile(u"/www/a"_s, "EINS");
    ftp.addFolder(u"/www/d1"_s);
    ftp.addFolder(u"/www/d2"_s);
    writeLocal(u"a"_s, "eins eins");
    writeLocal(u"d1/x"_s, "x");
    writeLocal(u"d2/x"_s, "x");
    for (const auto &[answer, names] :
         { std::pair { ConflictAnswer::Overwrite, QStringList { u"d1"_s, u"d2"_s } },
           std::pair { ConflictAnswer::Resume, QStringList { u"a"_s, u"d1"_s } } }) {
        shell.queue.clear();
        ftp.nodes.remove(u"/www/d1/x"_s);
        dialogs.steps = { { answer, true, {} }, { answer, true, {} } };
        upload(names);
        EXPECT_EQ(dialogs.steps.size(), 1U) << "asked more than once";
        dialogs.steps.clear();
        EXPECT_EQ(ftp.content(u"/www/d1/x"_s), "x");
        EXPECT_EQ(statuses(), (QStringList { u"Upload"_s, u"Upload"_s }));
    }
    EXPECT_EQ(ftp.content(u"/www/d2/x"_s), "x");
}

TEST_F(UploadTest, TheBarIsEmptyWhileTheNextQuestionStands)
{
    ftp.addFile(u"/www/c"_s, "alt");
    for (const char *name : { "a", "b", "c" }) {
        writeLocal(QString::fromLatin1(name), "neuer");
    }
    dialogs.whileAsked = [this] { EXPECT_EQ(progress.value(), 0); };
    for (const QStringList &names :
         { QStringList { u"b"_s, u"c"_s }, QStringList { u"a"_s, u"b"_s, u"c"_s } }) {
        ftp.nodes.remove(u"/www/a"_s);
        ftp.nodes.remove(u"/www/b"_s);
        dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
        upload(names);
    }
}

TEST_F(UploadTest, ANameThatOnlyTheServerKnowsIsNotReplaced)
{
    ftp.addFile(u"/www/a.txt"_s, "alt");
    writeLocal(u"a.txt"_s, "neuer");
    showBoth();
    ftp.addFile(u"/www/heimlich"_s, "wertvoll");
    local.select({ u"a.txt"_s });
    dialogs.steps
        = { { ConflictAnswer::Rename, false, u"heimlich"_s }, { ConflictAnswer::Skip, false, {} } };
    commands.cmd_upload_Click();
    EXPECT_EQ(ftp.content(u"/www/heimlich"_s), "wertvoll");
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "alt");
    EXPECT_TRUE(shell.log.contains(u"heimlich: Der Name ist schon vergeben."_s));
}

TEST_F(UploadTest, ANewNameThatCannotBeLookedUpIsNotCalledTaken)
{
    ftp.addFile(u"/www/a.txt"_s, "alt");
    writeLocal(u"a.txt"_s, "neuer");
    showBoth();
    local.select({ u"a.txt"_s });
    ftp.refuseAll(u"LIST"_s, u"425 No data connection."_s);
    dialogs.steps
        = { { ConflictAnswer::Rename, false, u"frei"_s }, { ConflictAnswer::Skip, false, {} } };
    commands.cmd_upload_Click();
    EXPECT_TRUE(ftp.commandsOf(u"RENAME"_s).isEmpty());
    EXPECT_TRUE(shell.log.contains(u"frei: Ob der Name frei ist, ließ sich nicht feststellen"_s));
    EXPECT_FALSE(shell.log.contains(u"vergeben"_s));
}

TEST_F(UploadTest, ANewNameThatLeadsElsewhereIsRefusedAndAskedForAgain)
{
    ftp.addFile(u"/www/a.txt"_s, "alt");
    ftp.addFile(u"/www/unter/a.txt"_s, "wertvoll");
    writeLocal(u"a.txt"_s, "neuer");
    dialogs.steps = { { ConflictAnswer::Rename, false, u"unter/a.txt"_s },
                      { ConflictAnswer::Skip, false, {} } };
    upload({ u"a.txt"_s });
    EXPECT_TRUE(ftp.commandsOf(u"RENAME"_s).isEmpty());
    EXPECT_EQ(ftp.content(u"/www/unter/a.txt"_s), "wertvoll");
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "alt");
    EXPECT_TRUE(shell.log.contains(u"unter/a.txt: Der Name ist als Dateiname nicht zulässig."_s));
}

TEST_F(UploadTest, CancellingTheNewNameSkipsTheItem)
{
    ftp.addFile(u"/www/a.txt"_s, "alt");
    writeLocal(u"a.txt"_s, "neuer");
    dialogs.steps = { { ConflictAnswer::Rename, false, std::nullopt } };
    upload({ u"a.txt"_s });
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "alt");
    EXPECT_TRUE(shell.queue.isEmpty());
}

TEST_F(UploadTest, PipesAreNeverOpened)
{
    ASSERT_EQ(::mkfifo(QFile::encodeName(disk(u"rohr"_s)).constData(), 0600), 0);
    upload({ u"rohr"_s });
    EXPECT_TRUE(ftp.commandsOf(u"PUT"_s).isEmpty());
    EXPECT_EQ(statuses(), QStringList { u"Upload verweigert"_s });
}

TEST_F(UploadTest, AVanishedFileIsRefused)
{
    writeLocal(u"a"_s, "eins");
    showBoth();
    local.select({ u"a"_s });
    QFile::remove(disk(u"a"_s));
    commands.cmd_upload_Click();
    EXPECT_EQ(statuses(), QStringList { u"Upload verweigert"_s });
}

TEST_F(UploadTest, ALineLostAtTheQuestionLeavesNoRow)
{
    ftp.addFile(u"/www/a"_s, "alt");
    ftp.addFolder(u"/www/bilder"_s);
    writeLocal(u"a"_s, "neuer");
    writeLocal(u"bilder/b"_s, "x");
    for (const QString &name : { u"a"_s, u"bilder"_s }) {
        ftp.connectionState = FtpOperations::Connected;
        dialogs.whileAsked = [this] { ftp.close(); };
        dialogs.steps = { { ConflictAnswer::Overwrite, false, {} } };
        upload({ name });
        EXPECT_TRUE(shell.queue.isEmpty()) << name.toStdString();
    }
}

TEST_F(UploadTest, TheRowTellsWhatWasSentNotWhatWasListed)
{
    writeLocal(u"a"_s, "kurz");
    showBoth();
    writeLocal(u"a"_s, "inzwischen länger");
    local.select({ u"a"_s });
    commands.cmd_upload_Click();
    ASSERT_EQ(shell.queue.size(), 1);
    EXPECT_EQ(shell.queue[0].detail, u"18 Bytes"_s);
}

TEST_F(UploadTest, ALostConnectionEndsTheBatch)
{
    for (const char *name : { "a", "b", "c" }) {
        writeLocal(QString::fromLatin1(name), "x");
    }
    ftp.during = [this](const QString &command) {
        if (command.contains(u"/www/b"_s)) {
            globals.session.ConnectionLost = true;
            ftp.close();
        }
    };
    upload({ u"a"_s, u"b"_s, u"c"_s });
    EXPECT_EQ(statuses(), (QStringList { u"Upload"_s, u"Upload verweigert"_s }));
    EXPECT_TRUE(local.markedNames().isEmpty());
    EXPECT_TRUE(shell.calls.contains(u"SetCommandsEnabled 1 0 1 1"_s));
    EXPECT_EQ(shell.calls.last(), u"SetFolderBoxesEnabled 1"_s);
}
