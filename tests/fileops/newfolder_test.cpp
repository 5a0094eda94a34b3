#include "fileops/newfolder.h"

#include "support/workbench.h"

#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;

class NewFolderTest : public Workbench {
protected:
    NewFolderTest()
    {
        // The flags as the session keeps them.
        ftp.onEvent = [this](const FtpEvent &event) {
            if (event.operation != OpMakeFolder || event.status == FtpEvent::InProgress) {
                return;
            }
            if (event.status == FtpEvent::Completed) {
                globals.newFolder = { true, true };
            } else if (!event.text.toUpper().contains(u"EXISTS"_s)) {
                globals.newFolder = { true, false };
            }
        };
    }

    NewFolderCommand command { work };
};

TEST_F(NewFolderTest, TheUniqueNameIsTheFirstFreeOne)
{
    PaneModel pane({ u"Name"_s });
    const auto add = [&pane](const QString &name) {
        PaneRow row;
        row.name = name;
        pane.appendRow(row);
    };
    EXPECT_EQ(UniqueRowName(pane, u"Ordner"_s), u"Ordner"_s);
    add(u"ordner"_s); // another name
    EXPECT_EQ(UniqueRowName(pane, u"Ordner"_s), u"Ordner"_s);
    add(u"Ordner"_s);
    EXPECT_EQ(UniqueRowName(pane, u"Ordner"_s), u"Ordner0"_s);
    add(u"Ordner0"_s);
    add(u"Ordner2"_s);
    EXPECT_EQ(UniqueRowName(pane, u"Ordner"_s), u"Ordner1"_s);
}

TEST_F(NewFolderTest, ThePaneUsedLastGetsTheFolder)
{
    showBoth();
    command.MakeDirectory();
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_FALSE(onDisk(u"Ordner"_s));
    globals.active.LocalListActive = true;
    command.MakeDirectory();
    EXPECT_TRUE(onDisk(u"Ordner"_s));
    globals.active.RemoteListActive = true;
    command.MakeDirectory();
    EXPECT_TRUE(ftp.has(u"/www/Ordner"_s));
}

TEST_F(NewFolderTest, RemoteMakesAndEdits)
{
    ftp.addFolder(u"/www/Ordner"_s);
    ftp.addFolder(u"/www/Ordner0"_s);
    showBoth();
    ftp.during = [this](const QString &) {
        EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).last(), u"SetToolbarsEnabled 0"_s);
        EXPECT_TRUE(shell.calls.contains(u"SetFtpProperties"_s));
    };
    command.MakeRemoteFolder();
    EXPECT_EQ(ftp.commandsOf(u"MKD"_s), QStringList { u"MKD Ordner1"_s });
    const PaneRow row = remote.model().rows().last();
    EXPECT_EQ(row.name, u"Ordner1"_s);
    EXPECT_EQ(row.kind, u"FolderClose"_s);
    EXPECT_EQ(row.tag, u"/www/Ordner1"_s);
    EXPECT_EQ(remote.calls.last(), u"edit Ordner1"_s);
    EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).last(), u"SetToolbarsEnabled 1"_s);
}

TEST_F(NewFolderTest, RemoteCountsWhileTheNameExists)
{
    showBoth();
    ftp.addFolder(u"/www/Ordner"_s); // not shown by the pane
    ftp.addFolder(u"/www/Ordner(1)"_s);
    command.MakeRemoteFolder();
    EXPECT_EQ(ftp.commandsOf(u"MKD"_s),
              (QStringList { u"MKD Ordner"_s, u"MKD Ordner(1)"_s, u"MKD Ordner(2)"_s }));
    EXPECT_EQ(remote.model().rows().last().name, u"Ordner(2)"_s);
}

TEST_F(NewFolderTest, AServerThatCallsEveryNameTakenCanBeLeft)
{
    showBoth();
    ftp.refuseAll(u"MKD"_s, u"550 File exists."_s);
    int tries = 0;
    ftp.onEvent = [&](const FtpEvent &) {
        const bool mayAbort = shellCalls(u"SetAbortEnabled"_s).last() == u"SetAbortEnabled 1"_s;
        EXPECT_EQ(mayAbort, tries > 0) << "the first try is not worth a button";
        if (++tries == 3) {
            ftp.close(); // what the button does
        }
    };
    command.MakeRemoteFolder();
    EXPECT_EQ(tries, 3);
    EXPECT_EQ(shellCalls(u"SetAbortEnabled"_s).last(), u"SetAbortEnabled 0"_s);
}

TEST_F(NewFolderTest, AnotherRefusalEndsTheLoop)
{
    showBoth();
    ftp.refuseAll(u"MKD"_s, u"550 Permission denied."_s);
    command.MakeRemoteFolder();
    EXPECT_EQ(ftp.commandsOf(u"MKD"_s).size(), 1);
    EXPECT_TRUE(remote.names().isEmpty());
    EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).last(), u"SetToolbarsEnabled 1"_s);
}

TEST_F(NewFolderTest, ALostConnectionEndsTheLoop)
{
    showBoth();
    ftp.refuse = [this](const QString &) -> std::optional<FtpError> {
        ftp.close();
        return FtpError { ftp::ErrorKind::ConnectionClosed, 0, u"gone; it exists no more"_s };
    };
    command.MakeRemoteFolder();
    EXPECT_EQ(ftp.commandsOf(u"MKD"_s).size(), 1);
    EXPECT_TRUE(remote.names().isEmpty());
}

TEST_F(NewFolderTest, AServerThatAlwaysSaysExistsIsGivenUp)
{
    showBoth();
    ftp.onEvent = nullptr;
    ftp.refuseAll(u"MKD"_s, u"550 File exists."_s);
    command.MakeRemoteFolder();
    EXPECT_EQ(ftp.commandsOf(u"MKD"_s).size(), 32767);
    EXPECT_TRUE(remote.names().isEmpty());
}

TEST_F(NewFolderTest, RemoteNeedsAnIdleSession)
{
    showBoth();
    ftp.busy = true;
    command.MakeRemoteFolder();
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_TRUE(shell.calls.isEmpty());
}

TEST_F(NewFolderTest, LocalMakesAndEdits)
{
    QDir().mkpath(disk(u"Ordner"_s));
    showBoth();
    local.text = root.path(); // without a separator at the end
    command.MakeLocalFolder();
    EXPECT_TRUE(QFileInfo(disk(u"Ordner0"_s)).isDir());
    EXPECT_EQ(local.model().rows().last().tag, disk(u"Ordner0"_s));
    EXPECT_EQ(local.calls.last(), u"edit Ordner0"_s);
}

TEST_F(NewFolderTest, ALocalFailureIsALogLineWithoutARow)
{
    showBoth();
    writeLocal(u"Ordner"_s, "eine Datei, die das Fenster nicht zeigt");
    command.MakeLocalFolder();
    EXPECT_TRUE(local.names().isEmpty());
    EXPECT_TRUE(shell.log.contains(disk(u"Ordner"_s)));
    EXPECT_TRUE(shell.log.contains(QString::fromLocal8Bit(std::strerror(EEXIST)))) << "the reason";
}
