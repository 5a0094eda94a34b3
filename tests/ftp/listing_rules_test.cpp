#include "ftp/listing.h"

#include <gtest/gtest.h>

namespace {

const ftp::CivilTime now { 2026, 11, 20, 12, 0, 0 };

/// The only entry of a listing of one line.
ftp::Entry entryOf(std::string_view line)
{
    const ftp::Listing listing = ftp::parseList(line, now);
    EXPECT_TRUE(listing.understood) << line;
    EXPECT_EQ(listing.entries.size(), 1U) << line;
    return listing.entries.empty() ? ftp::Entry() : listing.entries.front();
}

std::string dateOf(const ftp::Entry &entry)
{
    return entry.time ? ftp::formatTimeVal(*entry.time) : "none";
}

} // namespace

TEST(ParseList, KnowsNothingOfABlankText)
{
    for (const char *text : { "", "\r\n", "\n\n", "   \r\n\t\r\n", "\r", " \r\r\n" }) {
        EXPECT_FALSE(ftp::parseList(text, now).understood);
        EXPECT_FALSE(ftp::parseMlsd(text).understood);
        EXPECT_TRUE(ftp::parseList(text, now).entries.empty());
        EXPECT_TRUE(ftp::parseMlsd(text).entries.empty());
    }
}

TEST(ParseList, UnderstandsTheTotalOfAnEmptyFolder)
{
    for (const char *text : { "total 0\r\n", "total 0", "insgesamt 0\n", "Gesamt 12K\n",
                              "total 1,5M\n", "\r\ntotal 0\r\n" }) {
        EXPECT_TRUE(ftp::parseList(text, now).understood) << text;
    }
    for (const char *text : { "total", "total zero", "total 0 files", "totally 0", "0 total" }) {
        EXPECT_FALSE(ftp::parseList(text, now).understood) << text;
    }
}

TEST(ParseList, KeepsACrThatBelongsToTheName)
{
    // Without it the entry would name another file.
    EXPECT_EQ(entryOf("-rw-r--r-- 1 u g 5 Nov 20 09:15 a\r\r\n").name, "a\r");
}

TEST(ParseList, SurvivesADialectThatFitsOnlyTheFirstLine)
{
    const ftp::Listing listing = ftp::parseList("+/,\ttmp\r\n-rw-r--r-- 1 u g 5 Nov 20 09:15 a\r\n"
                                                "11-20-26  09:15AM       <DIR>          b\r\n",
                                                now);
    ASSERT_EQ(listing.entries.size(), 3U);
    EXPECT_EQ(listing.entries[1].name, "a");
    EXPECT_EQ(listing.entries[2].name, "b");
    EXPECT_EQ(listing.entries[2].permissions, -1);
}

TEST(ParseUnix, ReadsEveryPermission)
{
    const std::pair<const char *, int> rows[] {
        { "-rwxrwxrwx", 0777 },  { "-r--------", 0400 },   { "-rwsr-sr-t", 07755 },
        { "-rwSr-Sr-T", 07644 }, { "-rw-r-lr--", 02644 },  { "----------", 0 },
        { "----------+", 0 },    { "drwxrwxrwt.", 01777 },
    };
    for (const auto &[mode, permissions] : rows) {
        EXPECT_EQ(entryOf(std::string(mode) + " 1 u g 5 Nov 20 09:15 a").permissions, permissions)
            << mode;
    }
}

TEST(ParseUnix, ReadsOddSizes)
{
    EXPECT_EQ(entryOf("-rw-r--r-- 1 u g -1294967296 Nov 20 09:15 a").size, 0); // a 32-bit server
    EXPECT_EQ(entryOf("crw-rw-rw- 1 u g 0x3000002 Nov 20 09:15 a").size, 0);
    EXPECT_EQ(entryOf("crw-rw-rw- 1 u g 1,3 Nov 20 09:15 a").size, 0);
    EXPECT_EQ(entryOf("brw-rw-rw- 1 u g 8,   1 Nov 20 09:15 a").size, 0);
    EXPECT_EQ(entryOf("-rw-r--r-- 1 u g 9223372036854775807 Nov 20 09:15 a").size, INT64_MAX);
    EXPECT_EQ(entryOf("-rw-r--r-- 1 u g 9223372036854775808 Nov 20 09:15 a").size, INT64_MAX);
}

TEST(ParseUnix, ReadsOddDates)
{
    const std::pair<const char *, const char *> rows[] {
        { "Nov 20 09:15:30 a", "20261120091530" },
        { "Nov 20 09:15:30 2024 a", "20241120091530" },
        { "Nov 20 09:15:30.25 a", "20261120091530" },
        { "nov. 20. 2024 a", "20241120000000" },
        { "Nov 20, 2024 a", "20241120000000" },
        { "20. November 2024  a", "20241120000000" },
        { "2024-11-20 09:15:30 -0800 a", "20241120091530" },
        { "20.11.24 09:15 a", "20241120091500" },
        { "11/20/2024 09:15 a", "20241120091500" },
        { "Nov 20 24:15 a", "none" },
        { "Apr 31 2024 a", "none" },
        { "Feb 29 2023 a", "none" },
        { "2024-13-20 09:15 a", "none" },
        { "13-20 09:15 a", "none" },
    };
    for (const auto &[text, date] : rows) {
        const ftp::Entry entry = entryOf(std::string("-rw-r--r-- 1 u g 5 ") + text);
        EXPECT_EQ(entry.name, "a") << text;
        EXPECT_EQ(dateOf(entry), date) << text;
    }
}

TEST(ParseUnix, LeavesToTheNameWhatLooksLikeADate)
{
    const std::pair<const char *, const char *> rows[] {
        { "Nov 20 09:15:30 2024", "2024" },
        { "Nov 20 09:15 2024", "2024" },
        { "Nov 20 2024 09:15", "09:15" },
        { "2024-11-20  09:15", "09:15" },
        { "2024-11-20 09:15:30 +0100", "+0100" },
        { "Nov 20 09:15  2024 a", " 2024 a" },
        { "Nov 20 09:15:30  2024 a", " 2024 a" },
        { "1. Nov 2024  a", "a" },
        { "1. Nov 2024   a", " a" },
        { "1 Nov  2024  a", " a" },
        { "Nov 20 09:15 Nov 20 09:15 a", "Nov 20 09:15 a" },
        { "Nov 20 09:15 \t", "\t" },
    };
    for (const auto &[text, name] : rows) {
        EXPECT_EQ(entryOf(std::string("-rw-r--r-- 1 u g 5 ") + text).name, name) << text;
    }
}

TEST(ParseUnix, DividesLinksAtTheArrowTheSizeTells)
{
    const auto divided = [](const char *size, const char *name) {
        const ftp::Entry entry
            = entryOf(std::string("lrwxrwxrwx 1 u g ") + size + " Nov 20 09:15 " + name);
        return entry.name + "|" + entry.target;
    };
    EXPECT_EQ(divided("1", "a -> b"), "a|b");
    EXPECT_EQ(divided("6", "a -> b -> c"), "a|b -> c");
    EXPECT_EQ(divided("1", "a -> b -> c"), "a -> b|c");
    EXPECT_EQ(divided("99", "a -> b -> c"), "a|b -> c");
    EXPECT_EQ(divided("3", "abc"), "abc|");
    EXPECT_EQ(divided("3", "a -> "), "a|");
    EXPECT_EQ(divided("3", " -> abc"), " -> abc|"); // a link has a name
    EXPECT_EQ(divided("9223372036854775807", "a -> b"), "a|b");
}

TEST(ParseUnix, PassesOverLinesWithoutAName)
{
    for (const char *line : { "-rw-r--r-- 1 u g 5 Nov 20 09:15", "-rw-r--r-- 1 u g 5 Nov 20 09:15 ",
                              "drwxr-xr-x 1 u g 5 2024-11-20 " }) {
        EXPECT_TRUE(ftp::parseList(line, now).entries.empty()) << line;
    }
}

TEST(ParseUnix, RefusesLinesThatAreNone)
{
    for (const char *line :
         { "-rw-r--r--", "-rw-r--r--1", "-rw-r--r-- 1 u g 5", "-rw-r--r-- 1 u g Nov 20 09:15 a",
           "-rw-r--r--x 1 u g 5 Nov 20 09:15 a", "-rw-r--r-y 1 u g 5 Nov 20 09:15 a",
           "/rw-r--r-- 1 u g 5 Nov 20 09:15 a", "-rw-r--r-- 1 u g 5 Foo 20 09:15 a",
           "-rw-r--r-- 1 u g 5 Nov 200 09:15 a", "-rw-r--r-- 1 u g 5 jui 20 09:15 a" }) {
        EXPECT_FALSE(ftp::parseList(line, now).understood) << line;
    }
}

TEST(ParseMsDos, ReadsTheClockOfTwelveHours)
{
    const std::pair<const char *, const char *> rows[] {
        { "11-20-26  12:00AM", "20261120000000" },  { "11-20-26  12:59PM", "20261120125900" },
        { "11-20-26  1:05pm", "20261120130500" },   { "11-20-26  11:05p", "20261120230500" },
        { "11-20-26  11:05 AM", "20261120110500" }, { "11-20-26  17:05", "20261120170500" },
    };
    for (const auto &[text, date] : rows) {
        EXPECT_EQ(dateOf(entryOf(std::string(text) + "     5 a")), date) << text;
    }
}

TEST(ParseMsDos, TakesEveryMarkOfAFolder)
{
    EXPECT_EQ(entryOf("11-20-26  09:15AM       <JUNCTION>     a").type, 'd');
    EXPECT_EQ(entryOf("11-20-26  09:15AM       <JUNCTION>      a").name, " a");
    EXPECT_FALSE(ftp::parseList("11-20-26  09:15AM  a", now).understood);
    EXPECT_FALSE(ftp::parseList("11-20-26  09:15AM  <DIR a", now).understood);
}

TEST(ParseVms, WantsTheSecondHalfRightBehindTheFirst)
{
    EXPECT_EQ(entryOf("A.TXT;1\r\n  4/6  20-NOV-2026 09:16  [W]  (RWED)\r\n").name, "A.TXT");
    EXPECT_FALSE(
        ftp::parseList("A.TXT;1\r\n\r\n  4/6  20-NOV-2026 09:16  [W]  (RWED)\r\n", now).understood);
    EXPECT_EQ(entryOf("A.B;C.TXT;12  4  5-MAR-2024 09:16").name, "A.B;C.TXT");
    EXPECT_EQ(entryOf("A.TXT;1  99999999999999999999  5-MAR-2024 09:16").size, INT64_MAX);
}

TEST(ParseVms, TellsTheNewestVersionAloneAndThatSizesAreBlocks)
{
    const ftp::Listing listing = ftp::parseList("A.DIR;1  1  5-MAR-2024 09:16\r\n"
                                                "A.;2  4  5-MAR-2024 09:16\r\n"
                                                "A.;1  3  5-MAR-2024 09:16\r\n"
                                                "B.;1  3  5-MAR-2024 09:16\r\n",
                                                now);
    ASSERT_EQ(listing.entries.size(), 3U);
    EXPECT_EQ(listing.entries[1].name, "A.");
    EXPECT_EQ(listing.entries[1].size, 2048);
    EXPECT_FALSE(listing.entries[1].exact);
    EXPECT_EQ(listing.entries[2].name, "B.");
    EXPECT_TRUE(entryOf("-rw-r--r-- 1 u g 5 Nov 20 09:15 a").exact);
}

TEST(ParseMvs, ReadsNoRowsWithoutAHeading)
{
    EXPECT_FALSE(
        ftp::parseList(
            "WEB001 3390   2026/11/20  1   15  FB      80 27920  PS  WEB.INDEX\r\nLEER\r\n", now)
            .understood);
    const ftp::Listing modules
        = ftp::parseList(" Name      Size     TTR   Alias-of AC --------- Attributes ---\r\nMODUL1 "
                         "  000A38   000009          00 FO RN\r\n",
                         now);
    ASSERT_EQ(modules.entries.size(), 1U);
    EXPECT_EQ(modules.entries[0].name, "MODUL1");
}

TEST(ParseMvs, TellsRowsFromOtherLines)
{
    const ftp::Listing sets
        = ftp::parseList("Volume Unit    Referred Ext Used Recfm Lrecl BlkSz Dsorg Dsname\r\n"
                         "Zeile\r\nnoch eine Zeile mit Text\r\n"
                         "Archived   WEB.ALT\r\nWEB009 Tape   WEB.BAND\r\n",
                         now);
    ASSERT_EQ(sets.entries.size(), 2U);
    EXPECT_EQ(sets.entries[0].name, "WEB.ALT");
    EXPECT_EQ(sets.entries[1].name, "WEB.BAND");
    const ftp::Listing members = ftp::parseList(
        " Name     VV.MM   Created       Changed      Size  Init   Mod   Id\r\n"
        "kein Name\r\nZULANGERNAME\r\nLEER #\r\nA\r\nB 01.00 2024/03/05 2024/03/05 x 1\r\n",
        now);
    ASSERT_EQ(members.entries.size(), 2U);
    EXPECT_EQ(members.entries[0].name, "A");
    EXPECT_EQ(members.entries[1].precision, ftp::Entry::Precision::Day);
    EXPECT_TRUE(ftp::parseList(" Name Size TTR\r\nkein Modul\r\n", now).entries.empty());
}

TEST(ParseEplf, ReadsTimesBeyondTheCalendar)
{
    EXPECT_EQ(dateOf(entryOf("+m99999999999999999999,\ta")), "99991231235959");
    EXPECT_EQ(entryOf("+s99999999999999999999,\ta").size, INT64_MAX);
    EXPECT_EQ(entryOf("+up7777777,\ta").permissions, 07777);
}

TEST(ParseMlsd, RefusesLinesWithoutFacts)
{
    for (const char *line : { "Willkommen auf dem Server", "-rw-r--r-- 1 u g 5 Nov 20 09:15 a",
                              "type=file;", "type=file; ", " ", "=x; a", "type=file;x a" }) {
        EXPECT_FALSE(ftp::parseMlsd(line).understood) << line;
    }
}

TEST(ParseMlsd, UnderstandsAFolderWithNothingButItself)
{
    const ftp::Listing listing = ftp::parseMlsd("type=cdir; .\r\ntype=pdir; ..\r\n");
    EXPECT_TRUE(listing.understood);
    EXPECT_TRUE(listing.entries.empty());
}

TEST(ParseMlsd, DropsValuesThatAreNone)
{
    const ftp::Listing listing
        = ftp::parseMlsd("type=file;size=-5;modify=gestern;UNIX.mode=rw-r--r--; a\r\n");
    ASSERT_EQ(listing.entries.size(), 1U);
    EXPECT_EQ(listing.entries[0].size, 0);
    EXPECT_FALSE(listing.entries[0].time.has_value());
    EXPECT_EQ(listing.entries[0].permissions, -1);
}

TEST(ParseMlsd, TakesTheLastOfTwoTypes)
{
    const ftp::Listing listing = ftp::parseMlsd("type=OS.unix=slink:ziel;type=file; a\r\n");
    ASSERT_EQ(listing.entries.size(), 1U);
    EXPECT_EQ(listing.entries[0].type, '-');
    EXPECT_EQ(listing.entries[0].target, "");
}

TEST(ParseMlsd, ReadsModesInEveryNotation)
{
    const std::pair<const char *, int> rows[] {
        { "0644", 0644 },   { "00", 0 },  { "644", 0644 }, { "0o644", 0644 },
        { "100644", 0644 }, { "0o", -1 }, { "", -1 },      { "0689", -1 },
    };
    for (const auto &[mode, permissions] : rows) {
        const ftp::Listing listing = ftp::parseMlsd("UNIX.mode=" + std::string(mode) + "; a");
        ASSERT_EQ(listing.entries.size(), 1U);
        EXPECT_EQ(listing.entries[0].permissions, permissions) << mode;
    }
}

TEST(ParseList, LeavesOutALineWithoutEnd)
{
    const std::string line = "-rw-r--r-- 1 u g 5 Nov 20 09:15 ";
    const std::string endless(70000, 'x');
    const std::string text
        = line + "a\r\n" + line + endless + "\r\n" + line + "b\r\n" + line + endless;
    for (const std::size_t block : { std::size_t { 1000 }, text.size() }) {
        std::vector<ftp::Entry> entries;
        ftp::ListingParser parser = ftp::listParser(
            now, [&](ftp::Entry &&entry) { entries.push_back(std::move(entry)); });
        for (std::size_t at = 0; at < text.size(); at += block) {
            parser.read(std::string_view(text).substr(at, block));
        }
        parser.finish();
        ASSERT_EQ(entries.size(), 2U) << block;
        EXPECT_EQ(entries[1].name, "b");
        EXPECT_EQ(entries[1].line, 3U);
    }
}
