#include "ftp/reply.h"

#include <gtest/gtest.h>

namespace {

using ftp::ErrorKind;
using ftp::Reply;
using ftp::ReplyParser;

struct Shape {
    const char *name;
    std::vector<std::string> lines; ///< of one reply, without line ends
    int code;
    std::string message;
};

/// Feeds the lines; exactly the last one must complete the reply.
Reply parsed(const std::vector<std::string> &lines)
{
    ReplyParser parser;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto complete = parser.add(lines[i]);
        EXPECT_TRUE(complete.has_value()) << lines[i];
        EXPECT_EQ(complete.value_or(false), i + 1 == lines.size()) << lines[i];
    }
    EXPECT_TRUE(parser.inReply());
    Reply reply = parser.take();
    EXPECT_FALSE(parser.inReply());
    return reply;
}

class ReplyShapes : public testing::TestWithParam<Shape> { };

const Shape shapes[] {
    { "OneLine", { "220 (vsFTPd 3.0.3)" }, 220, "(vsFTPd 3.0.3)" },
    { "CodeAlone", { "220" }, 220, "" },
    { "CodeAndBlankAlone", { "220 " }, 220, "" },
    { "BlanksOfTheTextStay", { "220   drei " }, 220, "  drei " },
    { "FeaturesWithABlankInFront",
      { "211-Features:", " UTF8", " REST STREAM", "211 End" },
      211,
      "End" },
    { "CodeRepeatedOnEveryLine",
      { "220---------- Welcome to Pure-FTPd ----------", "220-You are user number 1", "220 ready" },
      220,
      "ready" },
    { "LinesWithoutAnyNumber",
      { "226- WARNING! 1 bare linefeeds received in ASCII mode.",
        "   File may not have transferred.", "226 Transfer complete." },
      226,
      "Transfer complete." },
    { "LinesThatBeginWithOtherCodes",
      { "230-Nachricht", "220 nicht das Ende", "550 auch nicht", "230 angemeldet" },
      230,
      "angemeldet" },
    { "LinesThatBeginWithOtherDigits", { "230-a", "2300 b", "23 c", "230x", "230 d" }, 230, "d" },
    { "ClosedByTheCodeAlone", { "214-Hilfe", "USER PASS", "214" }, 214, "" },
    { "EmptyLinesInside", { "230-", "", "", "230 ok" }, 230, "ok" },
    { "BytesThatAreNoText", { "550 \xFF\xFE\x01 \xDC" }, 550, "\xFF\xFE\x01 \xDC" },
    { "CodesOfSecurity", { "234 AUTH TLS OK." }, 234, "AUTH TLS OK." },
    { "ProtectedReply", { "631 abc" }, 631, "abc" },
};

} // namespace

TEST_P(ReplyShapes, IsReadToItsEndAndNoFurther)
{
    const Shape &shape = GetParam();
    const Reply reply = parsed(shape.lines);
    EXPECT_EQ(reply.code, shape.code);
    EXPECT_EQ(reply.message(), shape.message);
    EXPECT_EQ(reply.lines, shape.lines);
}

INSTANTIATE_TEST_SUITE_P(Section1, ReplyShapes, testing::ValuesIn(shapes),
                         [](const auto &test) { return std::string(test.param.name); });

TEST(Reply, JoinsItsLinesByCrLf)
{
    EXPECT_EQ(parsed({ "230-a", " b", "230 c" }).text(), "230-a\r\n b\r\n230 c");
    EXPECT_EQ(parsed({ "220-", "", "220 c" }).text(), "220-\r\n\r\n220 c");
    EXPECT_EQ(Reply().text(), "");
    EXPECT_EQ(Reply().message(), "");
}

TEST(Reply, IsDecidedByItsFirstDigit)
{
    const auto kinds = [](int code) {
        const Reply reply { code, {} };
        return std::string() + (reply.preliminary() ? "p" : "") + (reply.done() ? "d" : "")
            + (reply.refused() ? "r" : "");
    };
    EXPECT_EQ(kinds(120), "p");
    EXPECT_EQ(kinds(150), "p");
    EXPECT_EQ(kinds(231), "d");
    EXPECT_EQ(kinds(331), "");
    EXPECT_EQ(kinds(421), "r");
    EXPECT_EQ(kinds(553), "r");
    EXPECT_EQ(kinds(632), "r");
}

TEST(ReplyParser, RefusesAFirstLineWithoutACode)
{
    for (const char *line :
         { "", " ", "22", "abc", "22x", "220x", "2200 a", "020 a", "720 a", "-20 a", " 220 a",
           "<html>", "\xFF\xF4\xF2", "SSH-2.0-OpenSSH_9.2" }) {
        ReplyParser parser;
        const auto result = parser.add(line);
        ASSERT_FALSE(result.has_value()) << line;
        EXPECT_EQ(result.error().kind, ErrorKind::Protocol);
        EXPECT_FALSE(result.error().text.empty());
        EXPECT_FALSE(parser.inReply());
    }
}

TEST(ReplyParser, StartsAfreshAfterEachReply)
{
    ReplyParser parser;
    EXPECT_TRUE(parser.add("120 gleich").value());
    EXPECT_EQ(parser.take().code, 120);
    EXPECT_FALSE(parser.add("220-jetzt").value());
    EXPECT_TRUE(parser.add("220 ja").value());
    EXPECT_EQ(parser.take().lines.size(), 2U);
}

TEST(ReplyParser, GivesUpOnAReplyWithoutEnd)
{
    const std::string lines[] { std::string(1000, 'x'), std::string() };
    for (const std::string &line : lines) { // empty lines cost memory as well
        ReplyParser parser;
        ASSERT_TRUE(parser.add("230-").has_value());
        std::size_t taken = 0;
        while (taken < 2'000'000 && parser.add(line).has_value()) {
            ++taken;
        }
        EXPECT_GT(taken, 500U);
        EXPECT_LT(taken, 100'000U);
    }
}

TEST(Refusal, HoldsTheWholeReply)
{
    const auto error
        = ftp::refusal(parsed({ "552-Transfer aborted.", " Quota", "552 Quota exceeded" })).value();
    EXPECT_EQ(error.replyCode, 552);
    EXPECT_EQ(error.text, "552-Transfer aborted.\r\n Quota\r\n552 Quota exceeded");
}
