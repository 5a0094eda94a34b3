#include "ftp/address.h"
#include "ftp/convert.h"
#include "ftp/feat.h"
#include "ftp/listing.h"
#include "ftp/path.h"
#include "ftp/text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>

namespace {

const ftp::CivilTime now { 2026, 11, 20, 12, 0, 0 };

/// Numbers that are the same in every run.
class Dice {
public:
    int upTo(int most) { return static_cast<int>(m_engine() % static_cast<unsigned>(most + 1)); }
    std::int64_t size()
    {
        return static_cast<std::int64_t>((std::uint64_t(m_engine()) << 31U | m_engine())
                                         >> upTo(62));
    }
    std::string bytes(std::size_t length)
    {
        std::string result(length, '\0');
        for (char &byte : result) {
            byte = static_cast<char>(upTo(255));
        }
        return result;
    }
    /// A name of bytes that a line can carry, blanks and digits among them in good number.
    std::string name()
    {
        std::string result = bytes(static_cast<std::size_t>(upTo(20)) + 1);
        for (char &byte : result) {
            constexpr std::string_view likely = "  ->.;:0123456789Nov";
            if (byte == '\0' || byte == '\r' || byte == '\n' || byte == '/' || upTo(1) == 0) {
                byte = likely[static_cast<std::size_t>(upTo(static_cast<int>(likely.size()) - 1))];
            }
        }
        return result;
    }

private:
    std::mt19937 m_engine { 20261120 };
};

ftp::Entry anyEntry(Dice &dice)
{
    ftp::Entry entry;
    constexpr std::string_view letters = "-dlps";
    entry.letter = letters[static_cast<std::size_t>(dice.upTo(4))];
    entry.type = entry.letter == 'd' || entry.letter == 'l' ? entry.letter : '-';
    entry.name = dice.name();
    entry.size = dice.size();
    entry.permissions = dice.upTo(07777);
    if (entry.type == 'l') {
        entry.target = dice.name();
        entry.size = static_cast<std::int64_t>(entry.target.size());
    }
    ftp::CivilTime time = ftp::fromEpoch(ftp::toEpoch(now) - dice.upTo(2'000'000'000));
    time.second = 0;
    entry.yearInferred = ftp::toEpoch(now) - ftp::toEpoch(time) < 86400 * 180;
    entry.precision
        = entry.yearInferred ? ftp::Entry::Precision::Minute : ftp::Entry::Precision::Day;
    if (!entry.yearInferred) {
        time.hour = time.minute = 0;
    }
    entry.time = time;
    return entry;
}

std::string modeText(const ftp::Entry &entry)
{
    std::string mode(1, entry.letter);
    for (int i = 8; i >= 0; --i) {
        mode += (entry.permissions >> i) % 2 != 0 ? "xwr"[i % 3] : '-';
    }
    const auto special = [&](std::size_t at, int bit, char small, char large) {
        if ((entry.permissions & bit) != 0) {
            mode[at] = mode[at] == 'x' ? small : large;
        }
    };
    special(3, 04000, 's', 'S');
    special(6, 02000, 's', 'S');
    special(9, 01000, 't', 'T');
    return mode;
}

/// Writes a line as ls does.
std::string unixLine(const ftp::Entry &entry)
{
    constexpr std::array months { "Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec" };
    const ftp::CivilTime &time = *entry.time;
    std::array<char, 100> columns {};
    const int length = std::snprintf(columns.data(), columns.size(), " %3d %-8s %-8s %8lld %s %2d ",
                                     1, "web", "www", static_cast<long long>(entry.size),
                                     months[static_cast<std::size_t>(time.month - 1)], time.day);
    std::array<char, 40> end {};
    const int endLength = entry.yearInferred
        ? std::snprintf(end.data(), end.size(), "%02d:%02d ", time.hour, time.minute)
        : std::snprintf(end.data(), end.size(), "%5d ", time.year);
    return modeText(entry) + std::string(columns.data(), static_cast<std::size_t>(length))
        + std::string(end.data(), static_cast<std::size_t>(endLength)) + entry.name
        + (entry.type == 'l' ? " -> " + entry.target : std::string()) + "\r\n";
}

std::string mlsdLine(const ftp::Entry &entry)
{
    std::array<char, 100> facts {};
    const int length
        = std::snprintf(facts.data(), facts.size(),
                        ";size=%lld;UNIX.mode=%05o;modify=", static_cast<long long>(entry.size),
                        static_cast<unsigned>(entry.permissions));
    const std::string type = entry.type == 'd' ? "dir"
        : entry.type == 'l'                    ? "OS.unix=symlink"
                                               : "file";
    return "type=" + type + std::string(facts.data(), static_cast<std::size_t>(length))
        + ftp::formatTimeVal(*entry.time) + "; " + entry.name + "\r\n";
}

void expectSame(const ftp::Entry &read, const ftp::Entry &written)
{
    EXPECT_EQ(read.name, written.name);
    EXPECT_EQ(read.type, written.type);
    EXPECT_EQ(read.size, written.size);
    EXPECT_EQ(read.permissions, written.permissions);
    EXPECT_EQ(read.time, written.time);
}

/// All parsers on the same bytes; their results must hold what their comments promise.
void parseWithEverything(const std::string &bytes)
{
    for (const ftp::Listing &listing : { ftp::parseList(bytes, now), ftp::parseMlsd(bytes) }) {
        const auto lines
            = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n')) + 1;
        std::size_t line = 0;
        for (const ftp::Entry &entry : listing.entries) {
            ASSERT_TRUE(listing.understood);
            ASSERT_FALSE(entry.name.empty());
            ASSERT_EQ(entry.name.find('\n'), std::string::npos);
            ASSERT_GE(entry.size, 0);
            ASSERT_TRUE(entry.permissions >= -1 && entry.permissions <= 07777);
            ASSERT_TRUE(entry.type == 'd' || entry.type == 'l' || entry.type == '-');
            ASSERT_TRUE(!entry.time || ftp::isValid(*entry.time));
            ASSERT_TRUE(entry.line > line && entry.line <= lines);
            line = entry.line;
        }
    }
    if (const auto address = ftp::parsePasv(bytes)) {
        ASSERT_NE(address->port, 0);
    }
    ASSERT_NE(ftp::parseEpsv(bytes), 0);
    if (const auto path = ftp::parsePwd(bytes)) {
        ASSERT_FALSE(path->empty());
        ASSERT_EQ(path->find_first_of(std::string_view("\0\r\n", 3)), std::string::npos);
    }
    ASSERT_TRUE(ftp::isUtf8(ftp::toUtf8(bytes)));
    ASSERT_EQ(ftp::parseFeat({ 211, { "211-", bytes, "211 End" } }).known, true);
}

std::vector<std::string> corpusFiles()
{
    std::vector<std::string> files;
    for (const auto &file : std::filesystem::directory_iterator(std::filesystem::path(TEST_DATA_DIR)
                                                                / "ftp" / "listings")) {
        if (file.path().extension() == ".txt") {
            std::ifstream stream(file.path(), std::ios::binary);
            files.emplace_back(std::istreambuf_iterator<char>(stream),
                               std::istreambuf_iterator<char>());
        }
    }
    return files;
}

} // namespace

TEST(ParserProperties, EveryUnixLineReadsBack)
{
    Dice dice;
    for (int i = 0; i < 20'000; ++i) {
        const ftp::Entry written = anyEntry(dice);
        const std::string line = unixLine(written);
        const ftp::Listing listing = ftp::parseList(line, now);
        ASSERT_EQ(listing.entries.size(), 1U) << line;
        expectSame(listing.entries[0], written);
        EXPECT_EQ(listing.entries[0].letter, written.letter);
        EXPECT_EQ(listing.entries[0].target, written.target);
        EXPECT_EQ(listing.entries[0].yearInferred, written.yearInferred);
        EXPECT_EQ(listing.entries[0].precision, written.precision);
        ASSERT_FALSE(testing::Test::HasFailure()) << line;
    }
}

TEST(ParserProperties, EveryMlsdLineReadsBack)
{
    Dice dice;
    for (int i = 0; i < 20'000; ++i) {
        const ftp::Entry written = anyEntry(dice);
        const std::string line = mlsdLine(written);
        const ftp::Listing listing = ftp::parseMlsd(line);
        ASSERT_EQ(listing.entries.size(), 1U) << line;
        expectSame(listing.entries[0], written);
        ASSERT_FALSE(testing::Test::HasFailure()) << line;
    }
}

TEST(ParserProperties, RandomBytesBreakNothing)
{
    Dice dice;
    for (int i = 0; i < 3'000; ++i) {
        ASSERT_NO_FATAL_FAILURE(
            parseWithEverything(dice.bytes(static_cast<std::size_t>(dice.upTo(300)))));
    }
}

TEST(ParserProperties, DamagedListingsBreakNothing)
{
    Dice dice;
    for (const std::string &file : corpusFiles()) {
        for (int i = 0; i < 60 && !file.empty(); ++i) {
            std::string damaged = file;
            for (int damage = dice.upTo(10); damage >= 0; --damage) {
                const auto at
                    = static_cast<std::size_t>(dice.upTo(static_cast<int>(damaged.size()) - 1));
                const auto length = static_cast<std::size_t>(dice.upTo(12));
                damaged.replace(at, length,
                                dice.upTo(1) == 0 ? dice.bytes(length)
                                                  : damaged.substr(at / 2, length));
                damaged.push_back(' ');
            }
            ASSERT_NO_FATAL_FAILURE(parseWithEverything(damaged));
        }
    }
}

TEST(ParserProperties, EveryCutOffLineBreaksNothing)
{
    for (const std::string &file : corpusFiles()) {
        const std::string begin = file.substr(0, 800);
        for (std::size_t length = 0; length < begin.size(); ++length) {
            // A copy of just this size, so that a read beyond the end is found.
            ASSERT_NO_FATAL_FAILURE(parseWithEverything(std::string(begin.data(), length)));
        }
    }
}

TEST(ParserProperties, ConvertersDoNotDependOnTheBlocks)
{
    Dice dice;
    const auto converted = [&](auto converter, std::string_view in, bool whole) {
        std::string out;
        while (!in.empty()) {
            const std::size_t block = whole
                ? in.size()
                : std::min<std::size_t>(in.size(), static_cast<std::size_t>(dice.upTo(7)));
            converter.convert(in.substr(0, block), out);
            in.remove_prefix(block);
        }
        converter.finish(out);
        return out;
    };
    for (int i = 0; i < 2'000; ++i) {
        std::string text = dice.bytes(static_cast<std::size_t>(dice.upTo(60)));
        for (char &byte : text) {
            byte = dice.upTo(2) == 0 ? "\r\n"[dice.upTo(1)] : byte;
        }
        EXPECT_EQ(converted(ftp::AsciiSender(), text, false),
                  converted(ftp::AsciiSender(), text, true));
        EXPECT_EQ(converted(ftp::AsciiReceiver(), text, false),
                  converted(ftp::AsciiReceiver(), text, true));
        EXPECT_EQ(converted(ftp::EbcdicSender(), text, false),
                  converted(ftp::EbcdicSender(), text, true));
        EXPECT_EQ(converted(ftp::EbcdicReceiver(), text, false),
                  converted(ftp::EbcdicReceiver(), text, true));
    }
}
