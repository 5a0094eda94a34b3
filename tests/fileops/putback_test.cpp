#include "fileops/putback.h"

#include "fileops/view.h"
#include "support/workbench.h"
#include "transfer/progressmodel.h"

#include <QTest>

using namespace Qt::StringLiterals;

class PutBackTest : public Workbench {
protected:
    PutBackTest()
    {
        globals.folders.temporary = disk(u"temp/"_s);
        QDir().mkpath(globals.folders.temporary);
        putBack.edits().setQuietTime(10);
        ftp.addFile(u"/www/a.html"_s, "alt");
        showBoth();
    }
    void view(const QString &name)
    {
        viewer.ViewRemoteFile(remote.model().findRow(name));
        ftp.commands.clear();
        shell.calls.clear();
    }
    void edit(const QByteArray &content) { writeLocal(u"temp/a.html"_s, content); }
    void expectOffer(bool answer)
    {
        prompts.expectQuestion(u"/www/a.html\r\nwurde geändert – zum Server zurückspielen?"_s,
                               answer);
    }
    /// Waits until the question was asked and all that follows was done.
    void waitForOffer()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return prompts.finished(); }));
    }
    /// Waits until an edit was noticed that leads to nothing else than a line in the log.
    void waitForLog(const QString &text)
    {
        ASSERT_TRUE(QTest::qWaitFor([&] { return shell.log.contains(text); }));
    }

    /// From now on uploads break off after a part has arrived.
    void breakUploads(const QByteArray &arrived)
    {
        ftp.refuse = [this, arrived](const QString &command) -> std::optional<FtpError> {
            if (!command.startsWith(u"PUT "_s)) {
                return std::nullopt;
            }
            auto &time = ftp.nodes[u"/www/a.html"_s].time;
            if (time) {
                ++*time;
            }
            ftp.nodes[u"/www/a.html"_s].content = arrived;
            return FtpError { ftp::ErrorKind::Refused, 552, u"552 Voll."_s };
        };
    }

    ProgressModel progress;
    PutBack putBack { work, progress };
    ViewCommand viewer { work, progress, putBack };
};

TEST_F(PutBackTest, AChangedTextGoesBackWhenWanted)
{
    view(u"a.html"_s);
    ftp.during = [this](const QString &) {
        EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s), QStringList { u"SetToolbarsEnabled 0"_s });
        EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s),
                  QStringList { u"SetFolderBoxesEnabled 0"_s });
    };
    expectOffer(true);
    edit("neu");
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "neu");
    EXPECT_EQ(queueRow(0),
              (QStringList { u"Upload"_s, disk(u"temp/a.html"_s), u"3"_s, u"-->"_s,
                             u"/www/a.html"_s, u"files01"_s }));
    EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).last(), u"SetToolbarsEnabled 1"_s);
    EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s).last(), u"SetFolderBoxesEnabled 1"_s);
    EXPECT_EQ(shellCalls(u"DoRemoteRefresh"_s).size(), 1);
}

TEST_F(PutBackTest, EverySavingIsAskedAboutOnce)
{
    view(u"a.html"_s);
    for (const char *content : { "eins", "zwei" }) {
        expectOffer(true);
        edit(content);
        waitForOffer();
        EXPECT_EQ(ftp.content(u"/www/a.html"_s), content);
    }
    expectOffer(false);
    edit("drei");
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "zwei");
}

TEST_F(PutBackTest, ACopyThatChangedOnTheServerIsNotReplaced)
{
    view(u"a.html"_s);
    ftp.nodes[u"/www/a.html"_s].content = "von anderen";
    expectOffer(true);
    edit("neu");
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "von anderen");
    EXPECT_EQ(statuses(), QStringList { u"Upload verweigert"_s });
    EXPECT_TRUE(shell.queue[0].detail.contains(disk(u"temp/a.html"_s)));
    EXPECT_TRUE(shell.log.contains(u"inzwischen geändert"_s));
}

TEST_F(PutBackTest, ATimeAloneTellsOfAChange)
{
    view(u"a.html"_s);
    ftp.nodes[u"/www/a.html"_s] = { u"-"_s, "neu", {}, 1800000000 };
    expectOffer(true);
    edit("mein");
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "neu");
}

TEST_F(PutBackTest, AnUnsentEditIsNeverReplacedByViewingAnew)
{
    for (const char *kept : { "temp/a.html.bearbeitet", "temp/a.html.bearbeitet2" }) {
        view(u"a.html"_s);
        shell.log.clear();
        expectOffer(false);
        edit(kept);
        waitForOffer();
        view(u"a.html"_s);
        EXPECT_EQ(readLocal(u"temp/a.html"_s), "alt");
        EXPECT_EQ(readLocal(QString::fromLatin1(kept)), kept);
        EXPECT_TRUE(shell.log.contains(u"steht jetzt in "_s + disk(QString::fromLatin1(kept))));
    }
}

TEST_F(PutBackTest, EditsOfAnEarlierRunAreNeverReplaced)
{
    view(u"a.html"_s);
    view(u"a.html"_s);
    PutBack secondRun(work, progress);
    ViewCommand secondViewer(work, progress, secondRun);
    const auto viewAgain
        = [&] { secondViewer.ViewRemoteFile(remote.model().findRow(u"a.html"_s)); };
    viewAgain();
    EXPECT_EQ(QDir(disk(u"temp"_s)).entryList(QDir::Files), QStringList { u"a.html"_s });

    ASSERT_TRUE(QFile::remove(disk(u"temp/a.html"_s)));
    edit("abends"); // when the program had ended
    PutBack thirdRun(work, progress);
    ViewCommand(work, progress, thirdRun).ViewRemoteFile(remote.model().findRow(u"a.html"_s));
    EXPECT_EQ(readLocal(u"temp/a.html"_s), "alt");
    EXPECT_EQ(readLocal(u"temp/a.html.bearbeitet"_s), "abends");

    ftp.addFile(u"/www/a.html.bearbeitet"_s, "vom Server");
    showBoth();
    ViewCommand(work, progress, thirdRun)
        .ViewRemoteFile(remote.model().findRow(u"a.html.bearbeitet"_s));
    EXPECT_EQ(readLocal(u"temp/a.html.bearbeitet.bearbeitet"_s), "abends");
}

TEST_F(PutBackTest, WhatWentBackOrCameInPartIsNoEditForTheNextRun)
{
    view(u"a.html"_s);
    expectOffer(true);
    edit("neu");
    waitForOffer();
    ftp.refuse = [this](const QString &command) -> std::optional<FtpError> {
        if (!command.startsWith(u"GET "_s)) {
            return std::nullopt;
        }
        writeLocal(u"temp/b.html"_s, "ha");
        return FtpError { ftp::ErrorKind::Timeout, 0, u"Connection timed out"_s };
    };
    ftp.addFile(u"/www/b.html"_s, "halb");
    showBoth();
    view(u"b.html"_s);
    ftp.refuse = nullptr;
    PutBack nextRun(work, progress);
    ViewCommand nextViewer(work, progress, nextRun);
    for (const char *name : { "a.html", "b.html" }) {
        nextViewer.ViewRemoteFile(remote.model().findRow(QString::fromLatin1(name)));
    }
    EXPECT_EQ(QDir(disk(u"temp"_s)).entryList(QDir::Files),
              (QStringList { u"a.html"_s, u"b.html"_s }));
}

TEST_F(PutBackTest, ARefusedSecondViewLeavesTheOfferStanding)
{
    view(u"a.html"_s);
    ftp.refuseAll(u"GET"_s, u"450 Besetzt."_s);
    view(u"a.html"_s);
    ftp.refuse = nullptr;
    expectOffer(true);
    edit("neu");
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "neu");
}

TEST_F(PutBackTest, AnEditedPictureIsKeptToo)
{
    ftp.addFile(u"/www/bild.png"_s, QByteArray("\x89PNG\0\0", 6));
    showBoth();
    view(u"bild.png"_s);
    writeLocal(u"temp/bild.png"_s, "bemalt");
    view(u"bild.png"_s);
    EXPECT_EQ(readLocal(u"temp/bild.png.bearbeitet"_s), "bemalt");
}

TEST_F(PutBackTest, WhatTheServerHasIsReplacedByViewingAnew)
{
    view(u"a.html"_s);
    view(u"a.html"_s);
    expectOffer(true);
    edit("neu");
    waitForOffer();
    view(u"a.html"_s);
    EXPECT_EQ(QDir(disk(u"temp"_s)).entryList(QDir::Files), QStringList { u"a.html"_s });
}

TEST_F(PutBackTest, WithoutTimesTheContentIsCompared)
{
    ftp.nodes[u"/www/a.html"_s].time.reset();
    view(u"a.html"_s);
    expectOffer(true);
    edit("neu");
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "neu");
    ftp.nodes[u"/www/a.html"_s] = { u"-"_s, "xyz", {}, std::nullopt };
    expectOffer(true);
    edit("neuer");
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "xyz");
    EXPECT_EQ(QDir(disk(u"temp"_s)).entryList(QDir::Files), QStringList { u"a.html"_s });
}

TEST_F(PutBackTest, TheComparisonCountsFromZero)
{
    ftp.nodes[u"/www/a.html"_s].time.reset();
    view(u"a.html"_s);
    globals.transfer.LocalSize = 500; // left over from a download that was continued
    ftp.during = [this](const QString &command) {
        EXPECT_TRUE(!command.startsWith(u"GET"_s) || globals.transfer.LocalSize == 0);
    };
    expectOffer(true);
    edit("neu");
    waitForOffer();
    EXPECT_EQ(ftp.commandsOf(u"GET"_s).size(), 1);
}

TEST_F(PutBackTest, ARefusedUploadIsTold)
{
    view(u"a.html"_s);
    ftp.refuseAll(u"PUT"_s, u"553 Verboten."_s);
    expectOffer(true);
    edit("neu");
    waitForOffer();
    EXPECT_EQ(statuses(), QStringList { u"Upload verweigert"_s });
    EXPECT_EQ(shell.queue[0].detail, u"553 Verboten."_s);
    EXPECT_FALSE(shell.queue[0].repeatable) << "it would go without a look at the server's copy";
}

TEST_F(PutBackTest, AnUploadThatBrokeOffGoesWithTheNextSavingChangedOrNot)
{
    view(u"a.html"_s);
    breakUploads("ne");
    expectOffer(true);
    edit("neu");
    waitForOffer();
    EXPECT_EQ(statuses(), QStringList { u"Upload verweigert"_s });
    ftp.refuse = nullptr;
    expectOffer(true);
    edit("neu");
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "neu") << shell.log.toStdString();
}

TEST_F(PutBackTest, AnUploadThatBrokeOffGoesAlsoWithAFurtherChange)
{
    view(u"a.html"_s);
    for (const QByteArray arrived : { "", "neu\r", "neu\neins" }) {
        breakUploads(arrived);
        expectOffer(true);
        edit("neu\neins");
        waitForOffer();
    }
    ftp.refuse = nullptr;
    expectOffer(true);
    edit("ganz neu");
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "ganz neu") << shell.log.toStdString();
}

TEST_F(PutBackTest, AServerMayRemoveWhatBrokeOff)
{
    ftp.nodes[u"/www/a.html"_s].time.reset();
    view(u"a.html"_s);
    breakUploads("");
    expectOffer(true);
    edit("neu");
    waitForOffer();
    ftp.nodes.remove(u"/www/a.html"_s);
    ftp.refuse = nullptr;
    expectOffer(true);
    edit("neu");
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "neu") << shell.log.toStdString();
}

TEST_F(PutBackTest, WhatOthersWroteAfterABrokenUploadIsNotReplaced)
{
    view(u"a.html"_s);
    breakUploads("ne");
    expectOffer(true);
    edit("neu");
    waitForOffer();
    ftp.refuse = nullptr;
    ftp.nodes[u"/www/a.html"_s] = { u"-"_s, "nein", {}, 1800000000 };
    expectOffer(true);
    edit("neu");
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "nein");
    EXPECT_TRUE(shell.log.contains(u"inzwischen geändert"_s));
}

TEST_F(PutBackTest, WhatWasSavedWithoutALineIsOfferedAfterTheLogin)
{
    view(u"a.html"_s);
    ftp.connectionState = FtpOperations::Closed;
    edit("neu");
    waitForLog(u"nicht zurückgespielt"_s);
    ftp.connectionState = FtpOperations::Connected;
    expectOffer(true);
    putBack.offerUnsent();
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "neu");
}

TEST_F(PutBackTest, AYesWithoutALineIsToldAndAskedAgainAfterTheLogin)
{
    view(u"a.html"_s);
    expectOffer(true);
    prompts.meanwhile([this] { ftp.connectionState = FtpOperations::Closed; });
    edit("neu");
    waitForOffer();
    EXPECT_TRUE(shell.log.contains(u"nicht zurückgespielt"_s));
    globals.connection.RemoteHost = u"anderswo"_s;
    ftp.connectionState = FtpOperations::Connected;
    putBack.offerUnsent(); // it is none of that server's
    globals.connection.RemoteHost = u"files01"_s;
    expectOffer(true);
    putBack.offerUnsent();
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "neu");
}

TEST_F(PutBackTest, AnUploadThatLostItsLineIsOfferedAfterTheLogin)
{
    view(u"a.html"_s);
    breakUploads("n");
    expectOffer(true);
    edit("neu");
    waitForOffer();
    ftp.refuse = nullptr;
    expectOffer(true);
    putBack.offerUnsent();
    waitForOffer();
    EXPECT_EQ(ftp.content(u"/www/a.html"_s), "neu");
}

TEST_F(PutBackTest, TheOfferWaitsForTheEndOfWhatRuns)
{
    view(u"a.html"_s);
    int asked = 0;
    bool busy = true;
    putBack.setBusyCheck([&] { return ++asked < 3 || busy; });
    edit("neu");
    ASSERT_TRUE(QTest::qWaitFor([&] { return asked > 2; }));
    expectOffer(false);
    busy = false;
    waitForOffer();
}

TEST_F(PutBackTest, NothingGoesToAnotherServerOrNone)
{
    view(u"a.html"_s);
    globals.connection.RemoteHost = u"anderswo"_s;
    edit("neu");
    waitForLog(u"nicht zurückgespielt"_s);
    globals.connection.RemoteHost = u"files01"_s;
    shell.log.clear();
    ftp.connectionState = FtpOperations::Closed;
    edit("neuer");
    waitForLog(u"nicht zurückgespielt"_s);
    EXPECT_TRUE(ftp.commands.isEmpty());
}

TEST_F(PutBackTest, FilesOfTwoFoldersWithOneNameAreNeverMixedUp)
{
    view(u"a.html"_s);
    ftp.addFile(u"/b/a.html"_s, "anderer");
    ftp.addFile(u"/www/b.html"_s, "alt");
    PaneRow row;
    row.name = u"a.html"_s;
    row.kind = u"File"_s;
    row.tag = u"/b/a.html"_s;
    viewer.ViewRemoteFile(remote.model().appendRow(row));
    EXPECT_TRUE(shell.log.contains(u"Änderungen werden nicht zurückgespielt"_s));
    edit("neu"); // an editor may still show the first one
    remote.show(u"/www"_s);
    view(u"b.html"_s);
    prompts.expectQuestion(u"/www/b.html\r\nwurde geändert – zum Server zurückspielen?"_s, false);
    writeLocal(u"temp/b.html"_s, "neu");
    waitForOffer(); // both were looked at by then
    EXPECT_EQ(ftp.content(u"/b/a.html"_s), "anderer");
}

TEST_F(PutBackTest, OnlyTextIsWatched)
{
    ftp.addFile(u"/www/bild.png"_s, QByteArray("\x89PNG\0\0", 6));
    showBoth();
    view(u"bild.png"_s);
    view(u"a.html"_s);
    writeLocal(u"temp/bild.png"_s, "neu");
    expectOffer(false);
    edit("neu");
    waitForOffer();
}
