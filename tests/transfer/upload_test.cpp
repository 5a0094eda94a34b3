#include "transferbench.h"

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

TEST_F(UploadTest, AFolderThatCannotBeMadeIsRefused)
{
    writeLocal(u"bilder/a"_s, "y");
    ftp.refuseAll(u"MKD"_s, u"550 Verboten."_s);
    upload({ u"bilder"_s });
    EXPECT_EQ(statuses(), QStringList { u"Upload verweigert"_s });
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
