#include "ftp/address.h"

#include <gtest/gtest.h>

namespace {

struct Row {
    std::string_view text;
    std::string_view host; ///< empty: nothing is read
    unsigned port;
};

} // namespace

TEST(ParsePasv, FindsTheFirstRunOfSixNumbers)
{
    constexpr Row rows[] {
        { "227 Entering Passive Mode (192,168,1,2,4,210).", "192.168.1.2", 1234 },
        { "227 Entering Passive Mode (127,0,0,1,0,21)", "127.0.0.1", 21 },
        { "227 Entering Passive Mode 10,0,0,1,255,255", "10.0.0.1", 65535 },
        { "227 =10,0,0,1,4,1", "10.0.0.1", 1025 },
        { "227 Entering Passive Mode. 10,0,0,1,4,1, bitte", "10.0.0.1", 1025 },
        { "227 (10, 0, 0, 1, 4, 1)", "10.0.0.1", 1025 },
        { "227 (010,000,000,001,004,001)", "10.0.0.1", 1025 },
        { "227 Passive 2,5 (1,2,3,4,5,6) or 7,8,9,10,11,12", "1.2.3.4", 1286 },
        { "10,0,0,1,4,1", "10.0.0.1", 1025 },
    };
    for (const Row &row : rows) {
        const auto found = ftp::parsePasv(row.text);
        ASSERT_TRUE(found.has_value()) << row.text;
        EXPECT_EQ(found->host, row.host) << row.text;
        EXPECT_EQ(found->port, row.port) << row.text;
    }
}

TEST(ParsePasv, RefusesWhatIsNoAddress)
{
    for (const char *text :
         { "", "227", "227 Entering Passive Mode", "227 (1,2,3,4,5)", "227 (1,2,3,4,5,6,7)",
           "227 (256,2,3,4,5,6)", "227 (1,2,3,4,5,256)", "227 (1,2,3,4,0,0)",
           "227 (1,2,3,4,99999999999999999999,6)", "227 (1,,3,4,5,6)", "227 (1.2.3.4,5,6)",
           "227 (1,2,3,4,5,", "229 Entering (|||1234|)" }) {
        EXPECT_FALSE(ftp::parsePasv(text).has_value()) << text;
    }
}

TEST(ParseEpsv, ReadsThePortBetweenAnyDelimiters)
{
    constexpr Row rows[] {
        { "229 Entering Extended Passive Mode (|||1234|)", "", 1234 },
        { "229 Extended Passive mode OK (|||65535|).", "", 65535 },
        { "229 (!!!21!)", "", 21 },
        { "229 (~~~21~)", "", 21 },
        { "229 (1112101)", "", 210 }, // a digit is a legal delimiter
        { "229 (really) (|||40000|)", "", 40000 },
        { "229 (|1|10.0.0.1|40001|)", "", 40001 },
        { "229 (|2|::1|40002|)", "", 40002 },
    };
    for (const Row &row : rows) {
        EXPECT_EQ(ftp::parseEpsv(row.text), row.port) << row.text;
    }
}

TEST(ParseEpsv, RefusesWhatIsNoPort)
{
    for (const char *text :
         { "", "229", "229 ()", "229 (", "229 (|||)", "229 (||||)", "229 (|||0|)",
           "229 (|||65536|)", "229 (|||99999999999999999999|)", "229 (|||-1|)", "229 (|||12 |)",
           "229 (||12|)", "229 (|||12!)", "229 (|||1234|", "229 |||1234|", "229 (   1234 )",
           "229 (\xFF\xFF\xFF"
           "1\xFF)",
           "227 (1,2,3,4,5,6)" }) {
        EXPECT_FALSE(ftp::parseEpsv(text).has_value()) << text;
    }
}

TEST(FormatPort, IsReadBackByParsePasv)
{
    EXPECT_EQ(ftp::formatPort("192.168.1.2", 1234), "192,168,1,2,4,210");
    EXPECT_EQ(ftp::formatPort("127.0.0.1", 80), "127,0,0,1,0,80");
    for (unsigned port = 1; port <= 65535; port += 257) {
        const auto back
            = ftp::parsePasv(ftp::formatPort("10.20.30.40", static_cast<std::uint16_t>(port)));
        ASSERT_TRUE(back.has_value());
        EXPECT_EQ(back->host, "10.20.30.40");
        EXPECT_EQ(back->port, port);
    }
}

TEST(FormatEprt, NamesTheFamily)
{
    EXPECT_EQ(ftp::formatEprt("10.0.0.1", 65535), "|1|10.0.0.1|65535|");
    EXPECT_EQ(ftp::formatEprt("fe80::1", 1025), "|2|fe80::1|1025|");
}
