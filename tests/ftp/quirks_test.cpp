// Which servers are known by their greetings, and for what.
#include "ftp/quirks.h"

#include <gtest/gtest.h>
#include <string>

namespace {

/// The letters of what a greeting tells, in the order of the members.
std::string told(std::string_view greeting)
{
    const ftp::Quirks quirks = ftp::quirksOf(greeting);
    return std::string(quirks.losesPipelined ? "p" : "") + (quirks.keepsOrder ? "o" : "")
        + (quirks.noLookAhead ? "a" : "") + (quirks.singleTelnetIac ? "i" : "")
        + (quirks.diesOfUnknown ? "u" : "");
}

} // namespace

TEST(Quirks, AreThoseOfTheServerThatTheGreetingNames)
{
    EXPECT_EQ(told("220 Microsoft FTP Service"), "p");
    EXPECT_EQ(told("220 alpha.example MadGoat FTP server ready."), "p");
    EXPECT_EQ(told("220 MikroTik FTP server (MikroTik 6.49) ready"), "p");
    EXPECT_EQ(told("220 FS1 FTP Server for NetWare ready."), "u");
    EXPECT_EQ(told("220 ProFTPD Server (Debian) [127.0.0.1]"), "o");
    EXPECT_EQ(told("220---------- Welcome to Pure-FTPd [privsep] [TLS] ----------\r\n220 ."), "oi");
    EXPECT_EQ(told("220 pyftpdlib based ftpd ready."), "a");
    EXPECT_EQ(told("220 (vsFTPd 3.0.3)"), "oi");
}

TEST(Quirks, OfAnyOtherServerNothingIsKnown)
{
    EXPECT_EQ(told("220 FTP server ready."), "");
    EXPECT_EQ(told("220 vsftpd"), "") << "its own greeting is written in another way";
    EXPECT_EQ(told(""), "");
}

TEST(Quirks, AGreetingOfTwoServersTellsOfBoth)
{
    EXPECT_EQ(told("220 ProFTPD behind MikroTik"), "po");
}
