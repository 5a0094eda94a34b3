#include "transferbench.h"

#include "remote/itemkind.h"

#include <QTime>
#include <QTimer>

#include <cmath>
#include <filesystem>
#include <semaphore>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

class DownloadTest : public TransferBench {
protected:
    void expectTargetListed() const
    {
        EXPECT_TRUE(local.calls.contains(u"list "_s + disk()));
        EXPECT_EQ(local.text, disk());
        EXPECT_EQ(local.calls.value(local.calls.size() - 1), u"clear selection"_s);
    }
};

TEST_F(DownloadTest, FetchesTheSelectedFilesAndNoOther)
{
    ftp.addFile(u"/www/a.txt"_s, "eins");
    ftp.addFile(u"/www/b.txt"_s, "zwei");
    ftp.addFile(u"/www/c.txt"_s, "drei");
    download({ u"a.txt"_s, u"c.txt"_s });
    EXPECT_EQ(readLocal(u"a.txt"_s), "eins");
    EXPECT_EQ(readLocal(u"c.txt"_s), "drei");
    EXPECT_FALSE(QFile::exists(disk(u"b.txt"_s)));
    ASSERT_EQ(shell.queue.size(), 2);
    EXPECT_EQ(queueRow(0),
              (QStringList { u"Download"_s, disk(u"a.txt"_s), u"4"_s, u"<--"_s, u"/www/a.txt"_s,
                             u"files01"_s }));
    EXPECT_FALSE(shell.queue[0].failed);
}

TEST_F(DownloadTest, StartsOnlyInAnIdleSessionWithRows)
{
    ftp.addFile(u"/www/a.txt"_s, "eins");
    showBoth();
    remote.select({ u"a.txt"_s });
    ftp.busy = true;
    commands.cmd_download_Click();
    ftp.busy = false;
    ftp.connectionState = FtpOperations::Connecting;
    commands.cmd_download_Click();
    ftp.connectionState = FtpOperations::Connected;
    remote.model().clear();
    remote.selected.clear();
    commands.cmd_download_Click();
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_TRUE(shell.calls.isEmpty());
    EXPECT_TRUE(local.calls.isEmpty());
}

TEST_F(DownloadTest, LeavesTheWindowReadyAndTheTargetListed)
{
    ftp.addFile(u"/www/a.txt"_s, "eins");
    ftp.during = [this](const QString &) {
        EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s),
                  QStringList { u"SetFolderBoxesEnabled 0"_s });
        EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).last(), u"SetToolbarsEnabled 0"_s);
        EXPECT_EQ(remote.markedNames(), QStringList { u"a.txt"_s });
    };
    download({ u"a.txt"_s });
    EXPECT_TRUE(shell.calls.contains(u"SetCommandsEnabled 0 1 1 1"_s));
    EXPECT_FALSE(shellCalls(u"UpdateRemoteCommandStates"_s).isEmpty());
    EXPECT_FALSE(shellCalls(u"UpdateLocalCommandStates"_s).isEmpty());
    EXPECT_TRUE(shell.calls.contains(u"SetAbortEnabled 0"_s)); // nothing is left to abort
    EXPECT_EQ(shell.calls.last(), u"SetFolderBoxesEnabled 1"_s);
    expectTargetListed();
    EXPECT_TRUE(remote.markedNames().isEmpty());
    EXPECT_EQ(progress.value(), 0);
    EXPECT_EQ(progress.rateText(), QString());
}

TEST_F(DownloadTest, ShowsItemAndProgressWhileItRuns)
{
    ftp.addFile(u"/www/langername.html"_s, QByteArray(3000, 'x'));
    download({ u"langername.html"_s });
    EXPECT_EQ(shellCalls(u"ShowTransferItem"_s),
              (QStringList { u"ShowTransferItem Datei: langername.html|3000"_s,
                             u"ShowTransferItem |"_s }));
    EXPECT_EQ(progress.maximum(), 3000);
    // Seconds of the day; midnight may have come in between.
    const double now = QTime::currentTime().msecsSinceStartOfDay() / 1000.0;
    EXPECT_LT(std::fmod(now - globals.transfer.TransferStart + 86400, 86400), 60);
}

TEST_F(DownloadTest, TheBarReturnsToZeroAfterEveryFile)
{
    // Each in a call of its own: the first one meets a conflict, the second is a folder.
    ftp.addFile(u"/www/a"_s, "12345678");
    ftp.addFile(u"/www/b/c"_s, "12345678");
    writeLocal(u"a"_s, "1234");
    QList<qint64> atTheStart;
    ftp.during = [&](const QString &command) {
        if (command.contains(u"GET"_s)) {
            atTheStart.append(progress.value());
        }
    };
    dialogs.steps = { { ConflictAnswer::Resume, false, {} } };
    download({ u"a"_s, u"b"_s });
    EXPECT_EQ(atTheStart.size(), 2);
    EXPECT_TRUE(atTheStart.contains(4) && atTheStart.contains(0));
}

TEST_F(DownloadTest, ASizeOfZeroKeepsTheMaximumAndAddsARow)
{
    ftp.addFile(u"/www/leer"_s, "");
    progress.setMaximumFor(4711);
    download({ u"leer"_s });
    EXPECT_EQ(progress.maximum(), 4711);
    EXPECT_EQ(statuses(), QStringList { u"Download"_s });
    EXPECT_TRUE(QFile::exists(disk(u"leer"_s)));
}

TEST_F(DownloadTest, SetsTheTransferTypeBeforeEveryGet)
{
    ftp.addFile(u"/www/a.txt"_s, "eins");
    ftp.addFile(u"/www/ordner/b.txt"_s, "zwei");
    globals.connection.TransferType = TypeEbcdic;
    ftp.setTransferType(TypeBinary);
    download({ u"a.txt"_s });
    EXPECT_TRUE(ftp.commandsOf(u"GET"_s).value(0).endsWith(u"[2]"_s));
    ftp.setTransferType(TypeBinary);
    download({ u"ordner"_s });
    EXPECT_EQ(ftp.transferType(), TypeEbcdic);
}

TEST_F(DownloadTest, FoldersAndLinksAreFetchedAsTrees)
{
    ftp.addFile(u"/www/ordner/tief/b.txt"_s, "zwei");
    ftp.addFile(u"/www/neue bilder/c.txt"_s, "drei");
    ftp.addLink(u"/www/verweis"_s, u"/www/ordner"_s);
    download({ u"ordner"_s, u"neue bilder"_s, u"verweis"_s });
    EXPECT_EQ(ftp.commandsOf(u"MGET"_s),
              (QStringList { u"MGET \"/www/neue bilder/*\" "_s + disk(u"neue bilder"_s),
                             u"MGET /www/ordner/* "_s + disk(u"ordner"_s),
                             u"MGET /www/verweis/* "_s + disk(u"verweis"_s) }));
    EXPECT_EQ(readLocal(u"ordner/tief/b.txt"_s), "zwei");
    ASSERT_EQ(shell.queue.size(), 3);
    EXPECT_EQ(queueRow(1),
              (QStringList { u"Download"_s, disk(u"ordner"_s), QString(), u"<--"_s,
                             u"/www/ordner"_s, u"files01"_s }));
    EXPECT_TRUE(shell.calls.contains(u"ShowTransferItem Ordner: ordner|"_s));
}

TEST_F(DownloadTest, BracketsAndBlanksBelongToTheName)
{
    ftp.addFile(u"/www/Fotos [2020]/ b "_s, "bild");
    QDir().mkpath(disk(u"Ziel [x]"_s));
    remote.show(u"/www/Fotos [2020]"_s);
    local.show(disk(u"Ziel [x]"_s));
    remote.select({ u" b "_s });
    commands.cmd_download_Click();
    EXPECT_EQ(readLocal(u"Ziel [x]/ b "_s), "bild");
}

TEST_F(DownloadTest, AVanishedFolderWithBracketsIsNoOtherFolder)
{
    ftp.addFile(u"/www/a"_s, "x");
    QDir().mkpath(disk(u"Fotos"_s));
    QDir().mkpath(disk(u"Fotos [2020]"_s));
    remote.show(u"/www"_s);
    local.show(disk(u"Fotos [2020]/"_s));
    QDir().rmdir(disk(u"Fotos [2020]"_s));
    remote.select({ u"a"_s });
    commands.cmd_download_Click();
    EXPECT_FALSE(onDisk(u"Fotos/a"_s));
    ASSERT_EQ(shell.queue.size(), 1);
    EXPECT_TRUE(shell.queue[0].failed);
    EXPECT_EQ(shell.queue[0].local, disk(u"Fotos [2020]/a"_s));
}

TEST_F(DownloadTest, TheBarStartsAtTheResumeOffset)
{
    ftp.addFile(u"/www/a.txt"_s, QByteArray(1000, 'x'));
    writeLocal(u"a.txt"_s, QByteArray(400, 'x'));
    dialogs.steps = { { ConflictAnswer::Resume, false, {} } };
    QList<qint64> values;
    QObject::connect(&progress, &ProgressModel::changed, [&] { values.append(progress.value()); });
    download({ u"a.txt"_s });
    EXPECT_TRUE(values.contains(400));
    EXPECT_TRUE(values.contains(1000));
    EXPECT_EQ(ftp.commandsOf(u"GET"_s).size(), 1);
    EXPECT_TRUE(ftp.commands.first().contains(u"@400"_s));
}

TEST_F(DownloadTest, AFailedGetKeepsItsRowAndTellsWhy)
{
    ftp.addFile(u"/www/a.txt"_s, "eins");
    ftp.addFile(u"/www/b.txt"_s, "zwei");
    ftp.refuseAll(u"GET /www/a.txt"_s, u"550 Zugriff verweigert."_s);
    download({ u"a.txt"_s, u"b.txt"_s });
    EXPECT_EQ(statuses(), (QStringList { u"Download"_s, u"Download"_s }));
    EXPECT_TRUE(shell.queue[0].failed);
    EXPECT_EQ(shell.queue[0].detail, u"550 Zugriff verweigert."_s);
    EXPECT_FALSE(shell.queue[1].failed);
    EXPECT_EQ(readLocal(u"b.txt"_s), "zwei");
}

TEST_F(DownloadTest, AnAbortEndsTheBatch)
{
    for (const char *name : { "a", "b", "c" }) {
        ftp.addFile(u"/www/"_s + QString::fromLatin1(name), "x");
    }
    ftp.during = [this](const QString &command) {
        if (command.contains(u"/www/b"_s)) {
            globals.session.ConnectionLost = true;
            ftp.close();
        }
    };
    download({ u"a"_s, u"b"_s, u"c"_s });
    EXPECT_EQ(shell.queue.size(), 2);
    EXPECT_TRUE(shell.queue[1].failed);
    EXPECT_TRUE(remote.markedNames().isEmpty());
    EXPECT_TRUE(shell.calls.contains(u"SetCommandsEnabled 1 0 1 1"_s));
    EXPECT_EQ(shell.calls.last(), u"SetFolderBoxesEnabled 1"_s);
    expectTargetListed();
}

TEST_F(DownloadTest, AFullDiskStopsTheBatchAndIsExplained)
{
    ftp.addFile(u"/www/a"_s, "x");
    ftp.addFile(u"/www/b"_s, "x");
    ftp.refuseAll(u"GET /www/a"_s, u"No space left"_s, ftp::ErrorKind::LocalDiskFull);
    download({ u"a"_s, u"b"_s });
    EXPECT_EQ(shell.queue.size(), 1);
    EXPECT_TRUE(shell.log.contains(u"Auf dem lokalen Datenträger ist kein Platz mehr frei."_s));
    EXPECT_TRUE(shell.calls.contains(u"SetCommandsEnabled 0 1 1 1"_s));
    expectTargetListed();
}

TEST_F(DownloadTest, FilesThatNeedNoQuestionGoInOneCallAndTheOrderStands)
{
    for (const char *name : { "a", "b", "c", "d", "e" }) {
        ftp.addFile(u"/www/"_s + QString::fromLatin1(name), "neu");
    }
    ftp.addFile(u"/www/ordner/x"_s, "neu");
    writeLocal(u"c"_s, "alt");
    dialogs.steps = { { ConflictAnswer::Overwrite, false, {} } };
    showBoth();
    remote.selectAll();
    commands.cmd_download_Click();
    EXPECT_EQ(ftp.lists, 2) << "a and b, then the question about c, then d and e";
    QStringList names;
    for (const QueueRow &row : shell.queue) {
        names.append(row.local.section(u'/', -1));
    }
    EXPECT_EQ(names, (QStringList { u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s, u"ordner"_s }));
    EXPECT_EQ(readLocal(u"c"_s), "neu");
}

TEST_F(DownloadTest, EveryFileOfARunHasItsLabelsItsBarAndItsMark)
{
    ftp.addFile(u"/www/a"_s, QByteArray(100, 'x'));
    ftp.addFile(u"/www/b"_s, QByteArray(7000, 'x'));
    QStringList marked;
    QList<qint64> maxima;
    ftp.during = [&](const QString &) {
        marked.append(remote.markedNames().join(u','));
        maxima.append(progress.maximum());
    };
    download({ u"a"_s, u"b"_s });
    EXPECT_EQ(shellCalls(u"ShowTransferItem"_s).mid(0, 4),
              (QStringList { u"ShowTransferItem Datei: a|100"_s, u"ShowTransferItem |"_s,
                             u"ShowTransferItem Datei: b|7000"_s, u"ShowTransferItem |"_s }));
    EXPECT_EQ(maxima, (QList<qint64> { 100, 7000 }));
    EXPECT_EQ(marked.value(0), u"a,b"_s);
    EXPECT_TRUE(remote.markedNames().isEmpty());
    EXPECT_EQ(shell.queue.value(1).size, u"7000"_s);
}

TEST_F(DownloadTest, NamesThatLeadElsewhereAreRefusedWithALogLine)
{
    ftp.addFile(u"/www/a"_s, "x");
    showBoth();
    for (const QString &name : { u".."_s, u"../boese"_s, u"zwei\nzeilen"_s }) {
        PaneRow row;
        row.name = name;
        row.kind = ItemKind::File;
        row.size = u"1"_s;
        row.tag = u"/www/"_s + name;
        remote.model().appendRow(row);
    }
    remote.selectAll();
    commands.cmd_download_Click();
    EXPECT_EQ(ftp.commandsOf(u"GET"_s).size(), 1);
    EXPECT_EQ(shell.log.count(u"nicht zulässig"_s), 3);
    EXPECT_EQ(shell.queue.size(), 4);
    EXPECT_TRUE(shell.queue[1].failed);
    EXPECT_FALSE(QFile::exists(root.path() + u"/../boese"_s));
}

TEST_F(DownloadTest, ARefusedNameIsNotRepeated)
{
    QDir().mkpath(disk(u"ziel"_s));
    ftp.addFile(u"/boese"_s, "x");
    showBoth();
    PaneRow row;
    row.name = u"../boese"_s;
    row.kind = ItemKind::File;
    row.size = u"1"_s;
    row.tag = u"/www/../boese"_s;
    remote.model().appendRow(row);
    local.show(disk(u"ziel"_s));
    remote.selectAll();
    commands.cmd_download_Click();
    ASSERT_EQ(shell.queue.size(), 1);
    ASSERT_TRUE(shell.queue[0].failed);
    // Cut at its last separator the path would name a file outside the target folder.
    commands.RetryTransfers(shell.queue);
    EXPECT_TRUE(ftp.commandsOf(u"GET"_s).isEmpty());
    EXPECT_FALSE(onDisk(u"boese"_s));
    EXPECT_EQ(shell.queue.size(), 1);
}

TEST_F(DownloadTest, APipeInTheWayIsNeverOpened)
{
    ftp.addFile(u"/www/rohr"_s, "x");
    ASSERT_EQ(::mkfifo(QFile::encodeName(disk(u"rohr"_s)).constData(), 0600), 0);
    download({ u"rohr"_s });
    EXPECT_TRUE(ftp.commands.isEmpty());
    ASSERT_EQ(shell.queue.size(), 1);
    EXPECT_TRUE(shell.queue[0].failed);
}

TEST_F(DownloadTest, MarkingAnewDuringTheBatchChangesNothing)
{
    ftp.addFile(u"/www/a"_s, "x");
    ftp.addFile(u"/www/b"_s, "y");
    ftp.during = [this](const QString &) { globals.marked = {}; };
    download({ u"a"_s, u"b"_s });
    EXPECT_EQ(readLocal(u"b"_s), "y");
    EXPECT_TRUE(remote.markedNames().isEmpty());
}

TEST_F(DownloadTest, ADropAsksAndGoesIntoTheFolderUnderThePointer)
{
    ftp.addFile(u"/www/a"_s, "x");
    ftp.addFile(u"/www/b"_s, "y");
    writeLocal(u"datei"_s, "z");
    QDir().mkpath(disk(u"ziel"_s));
    const QString question = u"2 Dateien oder Ordner Downloaden?"_s;
    const auto drop = [&](const QString &row, bool answer) {
        showBoth();
        remote.selectAll();
        MarkSelectedRemote(remote, globals, false);
        prompts.expectConfirm(question, answer, u"Retrieve..."_s);
        commands.dropOnLocal(row.isEmpty() ? -1 : local.model().findRow(row));
    };
    drop(u"ziel"_s, false);
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_TRUE(remote.markedNames().isEmpty());
    drop(u"ziel"_s, true);
    EXPECT_EQ(readLocal(u"ziel/a"_s), "x");
    EXPECT_EQ(local.text, disk(u"ziel/"_s));
    EXPECT_FALSE(QFile::exists(disk(u"a"_s)));
    drop(u"datei"_s, true);
    EXPECT_EQ(readLocal(u"a"_s), "x");
    drop({}, false);
}

TEST_F(DownloadTest, FailedRowsCanBeRepeated)
{
    ftp.addFile(u"/www/a"_s, "eins");
    ftp.addFile(u"/www/ordner/b"_s, "zwei");
    ftp.refuseAll(u"GET"_s, u"450 Besetzt."_s);
    download({ u"a"_s, u"ordner"_s });
    ftp.refuse = nullptr;
    QList<QueueRow> rows = shell.queue;
    shell.queue.clear();
    rows.append(rows.first());
    rows.last().webSpace = u"anderswo"_s;
    QDir(disk(u"ordner"_s)).removeRecursively();
    EXPECT_FALSE(commands.mayRetry({ rows.last() }));
    EXPECT_TRUE(commands.mayRetry(rows));
    ftp.busy = true;
    EXPECT_FALSE(commands.mayRetry(rows));
    ftp.busy = false;
    commands.RetryTransfers(rows);
    EXPECT_EQ(readLocal(u"a"_s), "eins");
    EXPECT_EQ(readLocal(u"ordner/b"_s), "zwei");
    EXPECT_EQ(shell.queue.size(), 2);
}

TEST_F(DownloadTest, AFullDiskEndsTheRepeatingOfAllFolders)
{
    QList<QueueRow> rows;
    for (const QString &folder : { u"eins"_s, u"zwei"_s }) {
        ftp.addFile(u"/www/"_s + folder + u"/a"_s, "x");
        rows.append({ u"Download"_s,
                      disk(folder + u"/a"_s),
                      u"1"_s,
                      u"<--"_s,
                      u"/www/"_s + folder + u"/a"_s,
                      u"files01"_s,
                      {},
                      true,
                      true,
                      webSpaceOf(globals.connection) });
    }
    ftp.refuseAll(u"GET"_s, u"No space left"_s, ftp::ErrorKind::LocalDiskFull);
    commands.RetryTransfers(rows);
    EXPECT_EQ(shell.log.count(u"Die Übertragung wurde angehalten."_s), 1);
    EXPECT_EQ(ftp.commandsOf(u"GET"_s).size(), 1);
}

TEST_F(DownloadTest, NoFailedRowIsRepeatedInAnotherUsersWebSpace)
{
    ftp.addFile(u"/www/a"_s, "eins");
    ftp.refuseAll(u"GET"_s, u"450 Besetzt."_s);
    globals.connection.UserName = u"anna"_s;
    download({ u"a"_s });
    ftp.refuse = nullptr;
    ftp.commands.clear();
    const auto repeatAs = [this](const QString &user, int port) {
        globals.connection.UserName = user;
        globals.connection.RemotePort = port;
        commands.RetryTransfers({ shell.queue.first() });
    };
    repeatAs(u"bert"_s, 21);
    repeatAs(u"anna"_s, 2121);
    EXPECT_TRUE(ftp.commands.isEmpty());
    repeatAs(u"anna"_s, 21);
    EXPECT_EQ(readLocal(u"a"_s), "eins");
}

TEST_F(DownloadTest, OnADiskThatTellsNoCaseTheFirstOfTwoSpellingsIsKept)
{
    ftp.addFile(u"/www/Bild.JPG"_s, "gross");
    ftp.addFile(u"/www/bild.jpg"_s, "klein");
    ftp.onEvent = [this, log = ftp.onEvent](const FtpEvent &event) {
        log(event);
        // Such a disk knows the file by the other name, too.
        std::error_code there;
        std::filesystem::create_hard_link(disk(u"Bild.JPG"_s).toStdString(),
                                          disk(u"bild.jpg"_s).toStdString(), there);
    };
    download({ u"Bild.JPG"_s, u"bild.jpg"_s });
    EXPECT_EQ(readLocal(u"Bild.JPG"_s), "gross");
    ASSERT_EQ(shell.queue.size(), 2);
    EXPECT_TRUE(shell.queue[1].failed);
    EXPECT_TRUE(shell.queue[1].detail.contains(u"nur das erste"_s));
}

TEST_F(DownloadTest, OnOtherDisksBothSpellingsCome)
{
    ftp.addFile(u"/www/Bild.JPG"_s, "gross");
    ftp.addFile(u"/www/bild.jpg"_s, "klein");
    download({ u"Bild.JPG"_s, u"bild.jpg"_s });
    EXPECT_EQ(readLocal(u"Bild.JPG"_s), "gross");
    EXPECT_EQ(readLocal(u"bild.jpg"_s), "klein");
}

TEST_F(DownloadTest, ADeadMountLeavesTheWindowAliveAndCanBeGivenUp)
{
    const auto neverAnswered = std::make_shared<std::binary_semaphore>(0);
    looks.setReader([neverAnswered](const QString &) {
        neverAnswered->acquire();
        return LocalEntry {};
    });
    ftp.addFile(u"/www/a"_s, "neu");
    ftp.addFile(u"/www/b"_s, "neu");
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, &user, [&] {
        EXPECT_TRUE(looks.isLooking());
        if (shell.calls.contains(u"SetAbortEnabled 1"_s)) {
            ftp.close();
            user.stop();
        }
    });
    user.start(1);
    download({ u"a"_s, u"b"_s });
    EXPECT_FALSE(looks.isLooking());
    EXPECT_TRUE(ftp.commandsOf(u"GET"_s).isEmpty());
    EXPECT_TRUE(shell.queue.isEmpty());
    neverAnswered->release(4);
}
