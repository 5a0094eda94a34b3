// Deleting on this computer, beside the window.
#include "fileops/deletecase.h"

#include <QTimer>
#include <semaphore>

using namespace Qt::StringLiterals;

TEST_F(DeleteTest, ALocalFileGoesWithItsRow)
{
    writeLocal(u"a"_s, "abc");
    writeLocal(u"b"_s, "x");
    ASSERT_TRUE(QFile::setPermissions(disk(u"a"_s), QFile::ReadOwner));
    deleteLocal({ u"a"_s });
    EXPECT_FALSE(onDisk(u"a"_s));
    EXPECT_TRUE(onDisk(u"b"_s));
    EXPECT_EQ(
        queueRow(0),
        (QStringList { u"Löschen"_s, disk(u"a"_s), u"3"_s, QString(), QString(), QString() }));
    EXPECT_TRUE(local.calls.contains(u"list "_s + disk()));
    EXPECT_TRUE(ftp.commands.isEmpty());
}

TEST_F(DeleteTest, ALocalRowDisappearsAlsoWhenTheFileStays)
{
    writeLocal(u"a"_s, "abc");
    showBoth();
    local.select({ u"a"_s });
    expectQuestion(1, true);
    QFile::remove(disk(u"a"_s));
    QDir().mkpath(disk(u"a/darin"_s)); // no file any more: cannot be unlinked
    QStringList namesWhenRecorded;
    QObject::connect(&local.model(), &QAbstractItemModel::rowsRemoved,
                     [&] { namesWhenRecorded = local.names(); });
    namesWhenRecorded = { u"unberührt"_s };
    command.DeleteLocalItems();
    EXPECT_TRUE(namesWhenRecorded.isEmpty());
    EXPECT_EQ(statuses(), QStringList { u"Löschen verweigert"_s });
    EXPECT_TRUE(shell.log.startsWith(u"\r\n"_s + disk(u"a"_s)));
    EXPECT_TRUE(onDisk(u"a/darin"_s));
}

TEST_F(DeleteTest, WhatCannotBeDeletedHereHoldsUpNothingElse)
{
    writeLocal(u"aa/x"_s, "x");
    writeLocal(u"c/x"_s, "x");
    writeLocal(u"a"_s, "x");
    writeLocal(u"b"_s, "x");
    showBoth();
    local.select({ u"aa"_s, u"c"_s, u"a"_s, u"b"_s });
    expectQuestion(4, true, u"In den Ordnern: 2 Dateien und 0 Ordner."_s);
    prompts.meanwhile([this] {
        QDir(disk(u"aa"_s)).removeRecursively(); // gone already
        QFile::remove(disk(u"a"_s));
        QDir().mkpath(disk(u"a/darin"_s)); // no file any more: cannot be unlinked
    });
    command.DeleteLocalItems();
    EXPECT_EQ(statuses(),
              (QStringList { u"Löschen verweigert"_s, u"Löschen"_s, u"Löschen verweigert"_s,
                             u"Löschen"_s }));
    EXPECT_FALSE(onDisk(u"b"_s));
    EXPECT_FALSE(onDisk(u"c"_s));
    EXPECT_TRUE(shell.log.contains(u"\r\n"_s + disk(u"aa: "_s))) << shell.log.toStdString();
    EXPECT_TRUE(local.calls.contains(u"forget "_s + disk(u"aa"_s))) << "whatever became of it";
}

TEST_F(DeleteTest, ALocalFolderGoesAsATree)
{
    writeLocal(u"ordner/tief/a"_s, "x");
    writeLocal(u"ordner/b"_s, "x");
    deleteLocal({ u"ordner"_s }, u"In den Ordnern: 2 Dateien und 1 Ordner."_s);
    EXPECT_FALSE(onDisk(u"ordner"_s));
    EXPECT_TRUE(local.calls.contains(u"forget "_s + disk(u"ordner"_s)));
    EXPECT_EQ(statuses(), QStringList { u"Löschen"_s });
    EXPECT_EQ(queueRow(0).value(1), disk(u"ordner"_s));
}

TEST_F(DeleteTest, LocalDeletionsShowWhatIsGoing)
{
    writeLocal(u"datei"_s, "x");
    writeLocal(u"ordner/b"_s, "x");
    deleteLocal({ u"datei"_s, u"ordner"_s }, u"In den Ordnern: 1 Datei und 0 Ordner."_s);
    EXPECT_EQ(shellCalls(u"ShowTransferItem"_s),
              (QStringList { u"ShowTransferItem Ordner: ordner|"_s, u"ShowTransferItem |"_s,
                             u"ShowTransferItem Datei: datei|"_s, u"ShowTransferItem |"_s }));
}

TEST_F(DeleteTest, EveryLocalFileHasItsLabel)
{
    writeLocal(u"a"_s, "x");
    writeLocal(u"b"_s, "x");
    deleteLocal({ u"a"_s, u"b"_s });
    EXPECT_EQ(shellCalls(u"ShowTransferItem"_s),
              (QStringList { u"ShowTransferItem Datei: a|"_s, u"ShowTransferItem Datei: b|"_s,
                             u"ShowTransferItem |"_s }));
}

TEST_F(DeleteTest, APaneThatHasMovedOnStaysWhereItIs)
{
    writeLocal(u"ordner/b"_s, "x");
    QDir().mkpath(disk(u"woanders"_s));
    showBoth();
    local.select({ u"ordner"_s });
    expectQuestion(1, true, u"In den Ordnern: 1 Datei und 0 Ordner."_s);
    prompts.meanwhile([this] { local.show(disk(u"woanders"_s)); });
    command.DeleteLocalItems();
    EXPECT_FALSE(onDisk(u"ordner"_s));
    EXPECT_EQ(local.text, disk(u"woanders/"_s));
    EXPECT_TRUE(local.calls.filter(u"list"_s).isEmpty());
}

TEST_F(DeleteTest, ALocalLinkToAFolderIsRemovedAsALink)
{
    writeLocal(u"aussen/wichtig"_s, "x");
    ASSERT_EQ(::symlink(QFile::encodeName(disk(u"aussen"_s)).constData(),
                        QFile::encodeName(disk(u"verweis"_s)).constData()),
              0);
    deleteLocal({ u"verweis"_s });
    EXPECT_FALSE(onDisk(u"verweis"_s));
    EXPECT_TRUE(onDisk(u"aussen/wichtig"_s));
}

TEST_F(DeleteTest, TheWindowLivesWhileALocalTreeGoes)
{
    for (int number = 0; number < 400; ++number) {
        writeLocal(u"ordner/%1/datei%2"_s.arg(number % 20).arg(number), "x");
    }
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        ++ticks;
        command.DeleteLocalItems(); // a second one meanwhile does nothing
    });
    timer.start(0);
    showBoth();
    local.select({ u"ordner"_s });
    expectQuestion(1, true, u"In den Ordnern: 400 Dateien und 20 Ordner."_s);
    command.DeleteLocalItems();
    EXPECT_GT(ticks, 0);
    EXPECT_FALSE(onDisk(u"ordner"_s));
    EXPECT_EQ(shell.queue.size(), 1);
}

TEST_F(DeleteTest, TheWindowLivesWhileLocalFilesGo)
{
    for (int number = 0; number < 500; ++number) {
        writeLocal(u"datei%1"_s.arg(number), "x");
    }
    showBoth();
    local.selectAll();
    expectQuestion(500, true);
    QTimer stopper;
    QObject::connect(&stopper, &QTimer::timeout, [this] {
        if (!shell.queue.isEmpty()) {
            command.stop();
        }
    });
    stopper.start(0);
    command.DeleteLocalItems();
    EXPECT_FALSE(shell.queue.isEmpty());
    EXPECT_LT(shell.queue.size(), 500) << "no event came between the files";
    EXPECT_EQ(QDir(disk()).entryList(QDir::Files).size(), 500 - shell.queue.size());
}

TEST_F(DeleteTest, LocalFilesAndFoldersGoInTheirOrder)
{
    writeLocal(u"a/x"_s, "x");
    writeLocal(u"b"_s, "x");
    writeLocal(u"c"_s, "x");
    deleteLocal({ u"a"_s, u"b"_s, u"c"_s }, u"In den Ordnern: 1 Datei und 0 Ordner."_s);
    QStringList paths;
    for (const QueueRow &row : shell.queue) {
        paths.append(row.local);
    }
    EXPECT_EQ(paths, (QStringList { disk(u"a"_s), disk(u"b"_s), disk(u"c"_s) }));
    EXPECT_TRUE(local.names().isEmpty());
}

TEST_F(DeleteTest, AStopAtTheQuestionDeletesNothing)
{
    writeLocal(u"ordner/a"_s, "x");
    showBoth();
    local.select({ u"ordner"_s });
    expectQuestion(1, true, u"In den Ordnern: 1 Datei und 0 Ordner."_s);
    prompts.meanwhile([this] { command.stop(); });
    command.DeleteLocalItems();
    EXPECT_TRUE(onDisk(u"ordner/a"_s));
    EXPECT_TRUE(local.markedNames().isEmpty());
}

TEST_F(DeleteTest, AStopEndsTheDeletionSoon)
{
    for (int number = 0; number < 500; ++number) {
        writeLocal(u"ordner/datei%1"_s.arg(number), "x");
    }
    writeLocal(u"zuletzt"_s, "x");
    showBoth();
    local.select({ u"ordner"_s, u"zuletzt"_s });
    expectQuestion(2, true, u"In den Ordnern: 500 Dateien und 0 Ordner."_s);
    prompts.meanwhile([this] { QTimer::singleShot(0, [this] { command.stop(); }); });
    command.DeleteLocalItems();
    EXPECT_TRUE(onDisk(u"zuletzt"_s));
    EXPECT_TRUE(local.markedNames().isEmpty());
    EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).last(), u"SetToolbarsEnabled 1"_s);
}

TEST_F(DeleteTest, ADiskThatNeverAnswersIsLeftAloneAfterAStop)
{
    const auto answer = std::make_shared<std::counting_semaphore<>>(0);
    command.setLocalRemover([answer](const QString &, bool, const std::atomic_bool &) {
        answer->acquire();
        return DeleteCommand::Reason();
    });
    writeLocal(u"datei"_s, "x");
    writeLocal(u"ordner/a"_s, "x");
    for (const QString &name : { u"datei"_s, u"ordner"_s }) {
        showBoth();
        local.select({ name });
        expectQuestion(
            1, true, name == u"ordner"_s ? u"In den Ordnern: 1 Datei und 0 Ordner."_s : QString());
        prompts.meanwhile([this] { QTimer::singleShot(0, [this] { command.stop(); }); });
        command.DeleteLocalItems();
        EXPECT_FALSE(command.isRunning());
        EXPECT_TRUE(shell.log.contains(name + u": Der Datenträger hat nicht geantwortet."_s));
    }
    EXPECT_EQ(statuses(), (QStringList { u"Löschen verweigert"_s, u"Löschen verweigert"_s }));
    answer->release(2);
}
