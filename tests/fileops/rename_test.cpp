#include "fileops/rename.h"

#include "support/workbench.h"

using namespace Qt::StringLiterals;

class RenameTest : public Workbench {
protected:
    int rowNamed(FakePane &pane, const QString &name) { return pane.model().findRow(name); }

    RenameCommand command { work };
};

TEST_F(RenameTest, StartsTheEditInThePaneUsedLast)
{
    ftp.addFile(u"/www/fern"_s, "x");
    writeLocal(u"nah"_s, "x");
    showBoth();
    remote.select({ u"fern"_s });
    local.select({ u"nah"_s });
    globals.active.RemoteListActive = true;
    command.RenameSelected();
    EXPECT_EQ(remote.calls.last(), u"edit fern"_s);
    globals.active.RemoteListActive = false;
    command.RenameSelected();
    EXPECT_EQ(local.calls.last(), u"edit nah"_s);
    local.clearSelection();
    local.current = 0; // the up row has no name
    command.RenameSelected();
    EXPECT_EQ(local.calls.filter(u"edit"_s).size(), 1);
}

TEST_F(RenameTest, RemoteSendsRelativeNamesAndFollows)
{
    ftp.addFile(u"/www/alt"_s, "x");
    showBoth();
    const int row = rowNamed(remote, u"alt"_s);
    command.RenameRemoteAfterEdit(row, u"neu"_s);
    EXPECT_EQ(ftp.commandsOf(u"RENAME"_s), QStringList { u"RENAME alt neu"_s });
    EXPECT_EQ(remote.model().row(row).name, u"neu"_s);
    EXPECT_EQ(remote.model().row(row).tag, u"/www/neu"_s);
    EXPECT_TRUE(ftp.has(u"/www/neu"_s));
}

TEST_F(RenameTest, TheBarsAreOffWhileTheServerIsAsked)
{
    ftp.addFile(u"/www/alt"_s, "x");
    showBoth();
    globals.active.RemoteListActive = true;
    ftp.during = [this](const QString &) {
        EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s), QStringList { u"SetToolbarsEnabled 0"_s });
    };
    command.RenameRemoteAfterEdit(rowNamed(remote, u"alt"_s), u"neu"_s);
    EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).last(), u"SetToolbarsEnabled 1"_s);
    EXPECT_EQ(shell.calls.last(), u"UpdateRemoteCommandStates"_s) << "the menu follows this pane";
}

TEST_F(RenameTest, NothingHappensWithoutAChange)
{
    ftp.addFile(u"/www/alt"_s, "x");
    writeLocal(u"alt"_s, "x");
    showBoth();
    command.RenameRemoteAfterEdit(rowNamed(remote, u"alt"_s), {});
    command.RenameRemoteAfterEdit(rowNamed(remote, u"alt"_s), u"alt"_s);
    command.RenameRemoteAfterEdit(-1, u"neu"_s);
    command.RenameRemoteAfterEdit(99, u"neu"_s);
    command.RenameLocalAfterEdit(rowNamed(local, u"alt"_s), {});
    command.RenameLocalAfterEdit(rowNamed(local, u"alt"_s), u"alt"_s);
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_EQ(shell.log, QString());
    EXPECT_TRUE(onDisk(u"alt"_s));
}

TEST_F(RenameTest, ARefusalKeepsTheCaption)
{
    ftp.addFile(u"/www/alt"_s, "x");
    showBoth();
    ftp.refuseAll(u"RENAME"_s, u"550 Verboten."_s);
    const int row = rowNamed(remote, u"alt"_s);
    command.RenameRemoteAfterEdit(row, u"neu"_s);
    EXPECT_EQ(remote.model().row(row).name, u"alt"_s);
    EXPECT_EQ(remote.model().row(row).tag, u"/www/alt"_s);
    EXPECT_TRUE(shell.log.contains(u"550 Verboten."_s));
}

TEST_F(RenameTest, ATakenRemoteNameIsRefused)
{
    ftp.addFile(u"/www/alt"_s, "x");
    ftp.addFile(u"/www/da"_s, "wertvoll");
    showBoth();
    ftp.addFile(u"/www/heimlich"_s, "wertvoll"); // since the listing
    for (const QString &name : { u"da"_s, u"heimlich"_s }) {
        command.RenameRemoteAfterEdit(rowNamed(remote, u"alt"_s), name);
        EXPECT_EQ(ftp.content(u"/www/"_s + name), "wertvoll");
        EXPECT_TRUE(shell.log.contains(name + u": Der Name ist schon vergeben."_s));
    }
    EXPECT_TRUE(ftp.commandsOf(u"RENAME"_s).isEmpty());
    EXPECT_GE(rowNamed(remote, u"alt"_s), 0);
}

TEST_F(RenameTest, ABusySessionRenamesNothing)
{
    ftp.addFile(u"/www/alt"_s, "x");
    showBoth();
    ftp.busy = true;
    command.RenameRemoteAfterEdit(rowNamed(remote, u"alt"_s), u"neu"_s);
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_GE(rowNamed(remote, u"alt"_s), 0);
}

TEST_F(RenameTest, LocalMovesAndFollows)
{
    writeLocal(u"alt"_s, "inhalt");
    QDir().mkpath(disk(u"ordner alt"_s));
    showBoth();
    const int row = rowNamed(local, u"alt"_s);
    command.RenameLocalAfterEdit(row, u"neu #%?"_s);
    EXPECT_EQ(readLocal(u"neu #%?"_s), "inhalt");
    EXPECT_EQ(local.model().row(row).name, u"neu #%?"_s);
    EXPECT_EQ(local.model().row(row).tag, disk(u"neu #%?"_s));
    command.RenameLocalAfterEdit(rowNamed(local, u"ordner alt"_s), u"ordner"_s);
    EXPECT_TRUE(QFileInfo(disk(u"ordner"_s)).isDir());
}

TEST_F(RenameTest, LocalNeverReplaces)
{
    writeLocal(u"alt"_s, "alt");
    writeLocal(u"da"_s, "wertvoll");
    QDir().mkpath(disk(u"leer"_s));
    QDir().mkpath(disk(u"ordner"_s));
    showBoth();
    command.RenameLocalAfterEdit(rowNamed(local, u"alt"_s), u"da"_s);
    command.RenameLocalAfterEdit(rowNamed(local, u"ordner"_s), u"leer"_s);
    EXPECT_EQ(readLocal(u"da"_s), "wertvoll");
    EXPECT_EQ(readLocal(u"alt"_s), "alt");
    EXPECT_TRUE(onDisk(u"ordner"_s));
    EXPECT_TRUE(shell.log.contains(u"Der Name ist schon vergeben."_s));
    EXPECT_GE(rowNamed(local, u"alt"_s), 0);
}

TEST_F(RenameTest, ANewNameNeverLeadsToAnotherFolder)
{
    ftp.addFile(u"/www/alt"_s, "alt");
    ftp.addFile(u"/www/unter/alt"_s, "wertvoll");
    writeLocal(u"alt"_s, "alt");
    QDir().mkpath(disk(u"unter"_s));
    showBoth();
    for (const QString &name : { u"unter/alt"_s, u"../alt"_s, u"unter/neu"_s, u".."_s }) {
        shell.log.clear();
        command.RenameRemoteAfterEdit(rowNamed(remote, u"alt"_s), name);
        command.RenameLocalAfterEdit(rowNamed(local, u"alt"_s), name);
        EXPECT_EQ(shell.log.count(name + u": Der Name ist als Dateiname nicht zulässig.\r\n"_s), 2);
    }
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_EQ(ftp.content(u"/www/unter/alt"_s), "wertvoll");
    EXPECT_EQ(readLocal(u"alt"_s), "alt");
    EXPECT_GE(rowNamed(remote, u"alt"_s), 0);
    EXPECT_GE(rowNamed(local, u"alt"_s), 0);
}

TEST_F(RenameTest, AVanishedFileIsALogLine)
{
    writeLocal(u"alt"_s, "alt");
    showBoth();
    QFile::remove(disk(u"alt"_s));
    command.RenameLocalAfterEdit(rowNamed(local, u"alt"_s), u"neu"_s);
    EXPECT_TRUE(shell.log.startsWith(disk(u"alt"_s)));
    EXPECT_TRUE(shell.log.endsWith(u"\r\n"_s));
    EXPECT_GE(rowNamed(local, u"alt"_s), 0);
}
