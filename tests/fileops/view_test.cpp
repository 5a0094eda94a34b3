#include "fileops/view.h"

#include "support/workbench.h"
#include "transfer/progressmodel.h"

#include <QDesktopServices>

using namespace Qt::StringLiterals;

class ViewTest : public Workbench {
protected:
    ViewTest()
    {
        globals.folders.temporary = disk(u"temp/"_s);
        QDir().mkpath(globals.folders.temporary);
        ftp.onEvent = [this](const FtpEvent &event) { progress.report(event, globals.transfer); };
    }
    void viewRemote(const QString &name)
    {
        showBoth();
        remote.select({ name });
        globals.active.RemoteListActive = true;
        command.ViewSelected();
    }

    ProgressModel progress;
    PutBack putBack { work, progress };
    ViewCommand command { work, progress, putBack };
};

TEST_F(ViewTest, FetchesARemoteFileAndOpensIt)
{
    ftp.addFile(u"/www/index.html"_s, QByteArray(2000, 'x'));
    writeLocal(u"temp/index.html"_s, "etwas Altes, das viel länger war");
    globals.connection.TransferType = TypeAscii;
    globals.transfer.LocalSize = 500; // left over from a download
    ftp.during = [this](const QString &) {
        EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s), QStringList { u"SetToolbarsEnabled 0"_s });
        EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s),
                  QStringList { u"SetFolderBoxesEnabled 0"_s });
    };
    viewRemote(u"index.html"_s);
    EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).last(), u"SetToolbarsEnabled 1"_s);
    EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s).last(), u"SetFolderBoxesEnabled 1"_s);
    EXPECT_EQ(shell.calls.last(), u"UpdateRemoteCommandStates"_s) << "what is selected counts";
    EXPECT_EQ(
        ftp.commandsOf(u"GET"_s),
        QStringList { u"GET /www/index.html "_s + disk(u"temp/index.html"_s) + u" @0 [0]"_s });
    EXPECT_EQ(readLocal(u"temp/index.html"_s), QByteArray(2000, 'x'));
    EXPECT_EQ(shellCalls(u"vorschau"_s),
              QStringList { u"vorschau "_s + disk(u"temp/index.html"_s) });
    EXPECT_TRUE(shell.calls.contains(u"SetFtpProperties"_s));
    EXPECT_EQ(progress.maximum(), 2000);
    EXPECT_EQ(progress.value(), 0);
    EXPECT_EQ(progress.rateText(), QString());
    EXPECT_GT(globals.transfer.TransferStart, 0);
}

TEST_F(ViewTest, NothingCanBeAbortedAfterwards)
{
    ftp.addFile(u"/www/index.html"_s, "x");
    viewRemote(u"index.html"_s);
    EXPECT_EQ(shellCalls(u"SetAbortEnabled"_s), QStringList { u"SetAbortEnabled 0"_s });
}

TEST_F(ViewTest, AFileWithoutAProgramToOpenItIsPassedOverInSilence)
{
    ftp.addFile(u"/www/a.xyz"_s, "x");
    shell.opened = 31;
    viewRemote(u"a.xyz"_s);
    EXPECT_EQ(shellCalls(u"vorschau"_s).size(), 1);
    EXPECT_EQ(shell.log, QString());
    EXPECT_EQ(readLocal(u"temp/a.xyz"_s), "x");
}

TEST_F(ViewTest, NeedsAnIdleSession)
{
    ftp.addFile(u"/www/a"_s, "x");
    showBoth();
    remote.select({ u"a"_s });
    globals.active.RemoteListActive = true;
    for (const bool busy : { true, false }) {
        ftp.busy = busy;
        ftp.connectionState = busy ? FtpOperations::Connected : FtpOperations::Closed;
        command.ViewSelected();
        EXPECT_TRUE(ftp.commands.isEmpty());
        EXPECT_TRUE(shell.calls.isEmpty());
    }
}

TEST_F(ViewTest, AnEmptyFileKeepsTheMaximumAndIsOpened)
{
    ftp.addFile(u"/www/leer"_s, "");
    progress.setMaximumFor(4711);
    viewRemote(u"leer"_s);
    EXPECT_EQ(progress.maximum(), 4711);
    EXPECT_EQ(shellCalls(u"vorschau"_s).size(), 1);
}

TEST_F(ViewTest, AFailedFetchOpensNothing)
{
    ftp.addFile(u"/www/a"_s, "x");
    ftp.refuseAll(u"GET"_s, u"550 Verboten."_s);
    viewRemote(u"a"_s);
    EXPECT_TRUE(shellCalls(u"vorschau"_s).isEmpty());
    EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).last(), u"SetToolbarsEnabled 1"_s);
    EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s).last(), u"SetFolderBoxesEnabled 1"_s);
}

TEST_F(ViewTest, NoSelectionFolderOrUpRowDoesNothing)
{
    ftp.addFolder(u"/www/ordner"_s);
    showBoth();
    globals.active.RemoteListActive = true;
    command.ViewSelected();
    remote.current = 0;
    command.ViewSelected();
    viewRemote(u"ordner"_s);
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_TRUE(shell.calls.isEmpty());
}

TEST_F(ViewTest, ANameThatLeadsElsewhereIsRefused)
{
    showBoth();
    PaneRow row;
    row.name = u"../boese"_s;
    row.kind = u"File"_s;
    row.tag = u"/www/../boese"_s;
    command.ViewRemoteFile(remote.model().appendRow(row));
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_TRUE(shell.log.contains(u"nicht zulässig"_s));
}

TEST_F(ViewTest, AFetchedFileIsNeverAProgram)
{
    ftp.addFile(u"/www/a.sh"_s, "#!/bin/sh");
    writeLocal(u"temp/a.sh"_s, "");
    QFile::setPermissions(disk(u"temp/a.sh"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeOther);
    viewRemote(u"a.sh"_s);
    EXPECT_FALSE(QFile::permissions(disk(u"temp/a.sh"_s)) & (QFile::ExeOwner | QFile::ExeOther));
    EXPECT_EQ(readLocal(u"temp/a.sh"_s), "#!/bin/sh");
}

TEST_F(ViewTest, ALocalFileIsOpenedWhereItIs)
{
    writeLocal(u"a.txt"_s, "x");
    showBoth();
    local.select({ u"a.txt"_s });
    command.ViewSelected();
    EXPECT_EQ(shellCalls(u"vorschau"_s), QStringList { u"vorschau "_s + disk(u"a.txt"_s) });
    local.clearSelection();
    command.ViewSelected();
    EXPECT_EQ(shellCalls(u"vorschau"_s).size(), 1);
}

TEST(VorschauUrl, KeepsAwkwardNamesWhole)
{
    for (const QString &name :
         { u"/tmp/a b"_s, u"/tmp/a#b"_s, u"/tmp/100%.txt"_s, u"/tmp/%41"_s, u"/tmp/was?"_s,
           u"/tmp/-rf"_s, u"/tmp/mailto:x"_s, u"/tmp/ä\\b"_s, u"/tmp/"_s + QString(255, u'x') }) {
        const QUrl url = vorschauUrl(name);
        EXPECT_EQ(url.scheme(), u"file"_s);
        EXPECT_EQ(QUrl(url.toString(QUrl::FullyEncoded)).toLocalFile(), name);
    }
}

TEST(VorschauUrl, KeepsAddressesAsTheyAre)
{
    EXPECT_EQ(vorschauUrl(u"mailto:hilfe@example.invalid?subject=a%20b&body=x%0Ay"_s)
                  .toString(QUrl::FullyEncoded),
              u"mailto:hilfe@example.invalid?subject=a%20b&body=x%0Ay"_s);
    EXPECT_EQ(vorschauUrl(u"https://www.example.invalid/faq#a"_s).toString(QUrl::FullyEncoded),
              u"https://www.example.invalid/faq#a"_s);
}

/// Stands in for the desktop.
class Opener : public QObject {
    Q_OBJECT

public:
    QUrl opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened = url; }
};

TEST(OpenWithDesktop, HandsTheAddressToTheDesktop)
{
    Opener opener;
    QDesktopServices::setUrlHandler(u"file"_s, &opener, "open");
    EXPECT_GT(openWithDesktop(u"/tmp/a#b"_s), 32);
    EXPECT_EQ(opener.opened.toLocalFile(), u"/tmp/a#b"_s);
    QDesktopServices::unsetUrlHandler(u"file"_s);
}

#include "view_test.moc"
