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

namespace {

const QString file = QStringLiteral("index.html");

struct Case {
    const char *what;
    bool remote, connected;
    DecidingRow row;
    PaneCommands expected;
};

// Columns: rename, remove, rights, view, refresh, makeFolder, up, selectAll.
const Case table[] {
    { "remote, closed, nothing selected", true, false, {}, {} },
    { "remote, closed, file",
      true,
      false,
      { true, file, ItemKind::File },
      { 1, 1, 1, 1, 0, 0, 0, 0 } },
    { "remote, closed, folder",
      true,
      false,
      { true, file, ItemKind::FolderClose },
      { 1, 1, 1, 0, 0, 0, 0, 0 } },
    { "remote, closed, up row", true, false, { true, {}, ItemKind::Cdup }, {} },
    { "remote, nothing selected", true, true, {}, { 0, 0, 0, 0, 1, 1, 1, 1 } },
    { "remote, up row", true, true, { true, {}, ItemKind::Cdup }, { 0, 0, 0, 0, 1, 1, 1, 1 } },
    { "remote, folder",
      true,
      true,
      { true, file, ItemKind::FolderClose },
      { 1, 1, 1, 0, 1, 1, 1, 1 } },
    { "remote, folder link",
      true,
      true,
      { true, file, ItemKind::FolderLink },
      { 1, 1, 1, 0, 1, 1, 1, 1 } },
    { "remote, link", true, true, { true, file, ItemKind::Link }, { 1, 1, 1, 0, 1, 1, 1, 1 } },
    { "remote, file", true, true, { true, file, ItemKind::File }, { 1, 1, 1, 1, 1, 1, 1, 1 } },
    { "remote, text file",
      true,
      true,
      { true, file, ItemKind::TextFile },
      { 1, 1, 1, 1, 1, 1, 1, 1 } },
    { "remote, archive",
      true,
      true,
      { true, file, ItemKind::ZipFile },
      { 1, 1, 1, 1, 1, 1, 1, 1 } },
    { "remote, program",
      true,
      true,
      { true, file, ItemKind::ExeFile },
      { 1, 1, 1, 1, 1, 1, 1, 1 } },
    { "remote, picture",
      true,
      true,
      { true, file, ItemKind::ImageFile },
      { 1, 1, 1, 1, 1, 1, 1, 1 } },
    { "remote, help", true, true, { true, file, ItemKind::HelpFile }, { 1, 1, 1, 1, 1, 1, 1, 1 } },
    { "local, nothing selected", false, false, {}, { 0, 0, 0, 0, 1, 1, 1, 1 } },
    { "local, up row", false, true, { true, {}, ItemKind::Cdup }, { 0, 0, 0, 0, 1, 1, 1, 1 } },
    { "local, folder",
      false,
      true,
      { true, file, ItemKind::FolderClose },
      { 1, 1, 0, 0, 1, 1, 1, 1 } },
    { "local, file", false, true, { true, file, ItemKind::File }, { 1, 1, 0, 1, 1, 1, 1, 1 } },
    { "local, picture, closed",
      false,
      false,
      { true, file, ItemKind::ImageFile },
      { 1, 1, 0, 1, 1, 1, 1, 1 } },
};

} // namespace

TEST(Commands, FollowConnectionSelectionKindAndPane)
{
    for (const Case &one : table) {
        EXPECT_EQ(one.remote ? remoteCommands(one.connected, one.row) : localCommands(one.row),
                  one.expected)
            << one.what;
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
