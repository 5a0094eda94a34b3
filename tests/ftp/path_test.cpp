#include "ftp/path.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

TEST(ParsePwd, ReadsToTheLastQuoteBeforeABlank)
{
    const std::pair<std::string, std::string> rows[] {
        { R"(257 "/" is the current directory)", "/" },
        { R"(257 "/a b/c" ist das aktuelle Verzeichnis.)", "/a b/c" },
        { R"(257 "/a")", "/a" },
        { R"(257 "/ vorne und hinten ")", "/ vorne und hinten " },
        { R"(257 "/mit ""Zitat""" is current)", R"(/mit "Zitat")" }, // doubled: vsftpd, ProFTPD
        { R"(257 "/mit "Zitat"" is current)",
          R"(/mit "Zitat")" }, // not doubled: Pure-FTPd, inetutils
        { R"(257 "/mit "Zitat" innen" is current)", R"(/mit "Zitat" innen)" },
        { R"(257 "/ein " allein" is current)", R"(/ein " allein)" },
        { R"(257 "/ein "" paar" is current)", R"(/ein " paar)" },
        { R"(257 "/ein "" und " dazu" is current)", R"(/ein "" und " dazu)" },
        { R"(257 "/a".)", "/a" },
        { R"(257 "'HLQ.'" is working directory)", "'HLQ.'" },
        { R"(257 "DISK$WEB:[WEB.HTML]" is current)", "DISK$WEB:[WEB.HTML]" },
        { "257 /ohne/quotes is current", "/ohne/quotes" },
        { "257   /blanks davor", "/blanks" },
        { "257 /allein", "/allein" },
        { "257 \"/\xDC"
          "bung\" ok",
          "/\xDC"
          "bung" },
    };
    for (const auto &[line, path] : rows) {
        EXPECT_EQ(ftp::parsePwd(line), path) << line;
    }
}

TEST(ParsePwd, RefusesWhatIsNoPathOrCouldNotBeSent)
{
    for (const std::string &line :
         { ""s, "257"s, "257 "s, "257    "s, "257 \"\" leer"s, "257 \"/offen"s, "257 \""s,
           "257 \"/a\rb\" x"s, "257 \"/a\nb\" x"s, "257 \"/a\0b\" x"s, "257 a\0b"s }) {
        EXPECT_FALSE(ftp::parsePwd(line).has_value()) << line;
    }
}

TEST(JoinPath, PutsOneSlashBetween)
{
    EXPECT_EQ(ftp::joinPath("/a", "b"), "/a/b");
    EXPECT_EQ(ftp::joinPath("/a/", "b"), "/a/b");
    EXPECT_EQ(ftp::joinPath("/", "b"), "/b");
    EXPECT_EQ(ftp::joinPath("", "b"), "b");
    EXPECT_EQ(ftp::joinPath("/a", " b "), "/a/ b ");
}

TEST(NameOf, IsWhatStandsBehindTheLastSlash)
{
    EXPECT_EQ(ftp::nameOf("/a/b"), "b");
    EXPECT_EQ(ftp::nameOf("b"), "b");
    EXPECT_EQ(ftp::nameOf("/a/ b "), " b ");
    EXPECT_EQ(ftp::nameOf("/a/"), "");
    EXPECT_EQ(ftp::nameOf("/"), "");
}

TEST(WithoutEndSlashes, LeavesTheRoot)
{
    EXPECT_EQ(ftp::withoutEndSlashes("/a/b//"), "/a/b");
    EXPECT_EQ(ftp::withoutEndSlashes("a/"), "a");
    EXPECT_EQ(ftp::withoutEndSlashes("/a"), "/a");
    EXPECT_EQ(ftp::withoutEndSlashes("//"), "/");
    EXPECT_EQ(ftp::withoutEndSlashes(""), "");
}

TEST(ParentOf, StopsAtTheRoot)
{
    EXPECT_EQ(ftp::parentOf("/a/b"), "/a");
    EXPECT_EQ(ftp::parentOf("/a/b/"), "/a");
    EXPECT_EQ(ftp::parentOf("/a//b"), "/a");
    EXPECT_EQ(ftp::parentOf("/a"), "/");
    EXPECT_EQ(ftp::parentOf("//a"), "/");
    EXPECT_EQ(ftp::parentOf("/"), "/");
    EXPECT_EQ(ftp::parentOf("//"), "/");
    EXPECT_EQ(ftp::parentOf("a"), "");
    EXPECT_EQ(ftp::parentOf("a/b"), "a");
    EXPECT_EQ(ftp::parentOf(""), "");
}

TEST(IsSafeName, RefusesEveryWayOutOfAFolder)
{
    for (const std::string &name : { ""s, "."s, ".."s, "/"s, "a/b"s, "../a"s, "/etc/passwd"s, "a/"s,
                                     "a\0"s, "\0"s, "a\rb"s, "a\n"s }) {
        EXPECT_FALSE(ftp::isSafeName(name)) << name;
    }
    for (const std::string &name :
         { "a"s, "..."s, "..a"s, ".htaccess"s, " "s, "-rf"s, "a\\b"s, "a -> b"s, "\xDC"s, "~"s }) {
        EXPECT_TRUE(ftp::isSafeName(name)) << name;
    }
}
