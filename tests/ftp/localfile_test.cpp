#include "ftp/localfile.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <unistd.h>

namespace fs = std::filesystem;
using ftp::ErrorKind;

namespace {

struct Folder {
    Folder()
    {
        // mkdtemp fills in the six X.
        std::string name = (fs::temp_directory_path() / "tarvelo-localfile-XXXXXX").string();
        path = ::mkdtemp(name.data());
    }
    ~Folder() { fs::remove_all(path); }
    [[nodiscard]] std::string operator/(const char *name) const { return (path / name).string(); }

    fs::path path;
};

std::string content(const std::string &file)
{
    std::ifstream stream(file);
    return { std::istreambuf_iterator<char>(stream), {} };
}

} // namespace

TEST(LocalError, OnlyADiskWithoutRoomIsFull)
{
    for (const int code : { ENOSPC, EDQUOT }) {
        EXPECT_EQ(ftp::localError(code, "/x").value().kind, ErrorKind::LocalDiskFull);
    }
    // One file that is too big for the file system leaves room for the others of its batch.
    for (const int code : { EFBIG, EACCES, ENOENT, EISDIR }) {
        EXPECT_EQ(ftp::localError(code, "/x").value().kind, ErrorKind::LocalFile);
    }
}

TEST(ReplaceFile, AFailureLeavesWhatWasThereAndNothingElse)
{
    const Folder folder;
    ASSERT_TRUE(ftp::replaceFile(folder / "a", "alt"));
    EXPECT_EQ(content(folder / "a"), "alt");
    fs::create_directories(folder.path / "b" / "c"); // a folder cannot be replaced by a file
    const ftp::Status replaced = ftp::replaceFile(folder / "b", "neu");
    ASSERT_FALSE(replaced);
    EXPECT_EQ(replaced.error().kind, ErrorKind::LocalFile);
    EXPECT_FALSE(ftp::replaceFile(folder / "missing/a", "neu"));
    EXPECT_TRUE(fs::is_directory(folder.path / "b" / "c"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path), {}), 2);
}

TEST(IncomingFile, OnlyRegularFilesAreWritten)
{
    const Folder folder;
    for (const char *name : { "", "missing/a" }) {
        ftp::IncomingFile file;
        EXPECT_FALSE(file.open(folder / name, 0)) << name;
        EXPECT_FALSE(ftp::IncomingFile().open(folder / name, 3)) << name;
    }
}

TEST(IncomingFile, WhatIsNotCompletedLeavesTheOlderFile)
{
    const Folder folder;
    ASSERT_TRUE(ftp::replaceFile(folder / "a", "alt"));
    {
        ftp::IncomingFile file;
        ASSERT_TRUE(file.open(folder / "a", 0));
        ASSERT_TRUE(file.write("neu"));
    }
    EXPECT_EQ(content(folder / "a"), "alt");
    ftp::IncomingFile file;
    ASSERT_TRUE(file.open(folder / "a", 0));
    ASSERT_TRUE(file.write("neu"));
    fs::remove(folder.path / "a");
    fs::create_directories(folder.path / "a" / "inside"); // somebody else was faster
    EXPECT_FALSE(file.commit(std::nullopt));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path), {}), 1);
}

TEST(IncomingFile, AnotherNameOfAFileKeepsTheOlderContent)
{
    const Folder folder;
    ASSERT_TRUE(ftp::replaceFile(folder / "a", "der alte Inhalt"));
    fs::create_hard_link(folder / "a", folder / "b");
    ftp::IncomingFile file;
    ASSERT_TRUE(file.open(folder / "a", 0));
    ASSERT_TRUE(file.write("neu"));
    ASSERT_TRUE(file.commit(std::nullopt));
    EXPECT_EQ(content(folder / "a"), "neu");
    EXPECT_EQ(content(folder / "b"), "der alte Inhalt") << "a backup of links";
}

TEST(IncomingFile, AFileMayBeWrittenWhereItsFolderTakesNoOther)
{
    const Folder folder;
    ASSERT_TRUE(ftp::replaceFile(folder / "a", "der alte Inhalt"));
    fs::permissions(folder / "a", fs::perms(0666));
    fs::permissions(folder.path, fs::perms(0555));
    const uid_t before = ::geteuid();
    constexpr uid_t nobody = 65534;
    ASSERT_EQ(before == 0 ? ::seteuid(nobody) : 0, 0); // rights do not bind root
    ftp::IncomingFile file;
    const ftp::Status opened = file.open(folder / "a", 0);
    ASSERT_EQ(::seteuid(before), 0);
    fs::permissions(folder.path, fs::perms(0700));
    ASSERT_TRUE(opened) << opened.error().text;
    ASSERT_TRUE(file.write("neu"));
    ASSERT_TRUE(file.commit(std::nullopt));
    EXPECT_EQ(content(folder / "a"), "neu");
}

TEST(OutgoingFile, OnlyRegularFilesAreRead)
{
    const Folder folder;
    EXPECT_FALSE(ftp::OutgoingFile().open(folder / "missing"));
    EXPECT_FALSE(ftp::OutgoingFile().open(folder.path.string()));
    EXPECT_FALSE(ftp::fileSize(folder.path.string()).has_value());
    EXPECT_FALSE(ftp::freeSpace(folder / "missing").has_value());
    EXPECT_FALSE(ftp::diskSize(folder / "missing").has_value());
    EXPECT_LE(ftp::freeSpace(folder.path.string()).value(),
              ftp::diskSize(folder.path.string()).value());
}
