#include "app/commands.h"
#include "ftp/ftpoperations.h"
#include "remote/itemkind.h"

#include <gtest/gtest.h>
#include <ostream>

void PrintTo(const PaneCommands &commands, std::ostream *out)
{
    *out << "rename " << commands.rename << " remove " << commands.remove << " rights "
         << commands.rights << " view " << commands.view << " refresh " << commands.refresh
         << " makeFolder " << commands.makeFolder << " up " << commands.up << " selectAll "
         << commands.selectAll;
}

TEST(Commands, FollowConnectionSelectionKindAndPane)
{
    const QString name = QStringLiteral("x");
    struct Case {
        const char *what;
        DecidingRow row;
        PaneCommands closed, connected; ///< of the remote pane
        PaneCommands local; ///< of the local one, connected or not
    };
    // Columns: rename, remove, rights, view, refresh, makeFolder, up, selectAll.
    const PaneCommands none {};
    const PaneCommands always { 0, 0, 0, 0, 1, 1, 1, 1 };
    const PaneCommands folderGone { 1, 1, 1, 0, 0, 0, 0, 0 };
    const PaneCommands folder { 1, 1, 1, 0, 1, 1, 1, 1 };
    const PaneCommands folderHere { 1, 1, 0, 0, 1, 1, 1, 1 };
    const PaneCommands fileGone { 1, 1, 1, 1, 0, 0, 0, 0 };
    const PaneCommands file { 1, 1, 1, 1, 1, 1, 1, 1 };
    const PaneCommands fileHere { 1, 1, 0, 1, 1, 1, 1, 1 };
    const Case table[] {
        { "nothing selected", {}, none, always, always },
        { "up row", { true, {}, ItemKind::Cdup }, none, always, always },
        { "folder", { true, name, ItemKind::FolderClose }, folderGone, folder, folderHere },
        { "folder link", { true, name, ItemKind::FolderLink }, folderGone, folder, folderHere },
        { "link", { true, name, ItemKind::Link }, folderGone, folder, folderHere },
        { "file", { true, name, ItemKind::File }, fileGone, file, fileHere },
        { "text", { true, name, ItemKind::TextFile }, fileGone, file, fileHere },
        { "archive", { true, name, ItemKind::ZipFile }, fileGone, file, fileHere },
        { "program", { true, name, ItemKind::ExeFile }, fileGone, file, fileHere },
        { "picture", { true, name, ItemKind::ImageFile }, fileGone, file, fileHere },
        { "help", { true, name, ItemKind::HelpFile }, fileGone, file, fileHere },
    };
    for (const Case &one : table) {
        EXPECT_EQ(remoteCommands(false, one.row), one.closed) << one.what << ", remote, closed";
        EXPECT_EQ(remoteCommands(true, one.row), one.connected) << one.what << ", remote";
        EXPECT_EQ(localCommands(one.row), one.local) << one.what << ", local";
    }
}

TEST(Commands, TheLightIsGreenOnlyWhileASessionStands)
{
    EXPECT_EQ(lightFor(false, FtpOperations::Connected), Light::Green);
    EXPECT_EQ(lightFor(false, FtpOperations::Connecting), Light::Red);
    EXPECT_EQ(lightFor(false, FtpOperations::Closed), Light::Red);
    EXPECT_EQ(lightFor(true, FtpOperations::Closed), Light::Red);
    EXPECT_EQ(lightFor(true, FtpOperations::Connected), Light::Red);
}

TEST(Commands, OptionsAndTransferTypesCorrespond)
{
    const int types[] { TypeBinary, TypeAscii, TypeEbcdic };
    for (int option = 0; option < 3; ++option) {
        EXPECT_EQ(transferTypeOf(option), types[option]);
        EXPECT_EQ(optionOf(types[option]), option);
    }
}
