#include "ftp/feat.h"

#include <gtest/gtest.h>

namespace {

ftp::Features parsed(int code, std::vector<std::string> lines)
{
    return ftp::parseFeat(ftp::Reply { code, std::move(lines) });
}

} // namespace

TEST(ParseFeat, ReadsPureFtpd)
{
    const ftp::Features features
        = parsed(211,
                 { "211-Extensions supported:",
                   " UTF8",
                   " EPRT",
                   " IDLE",
                   " MDTM",
                   " SIZE",
                   " MFMT",
                   " REST STREAM",
                   " MLST type*;size*;sizd*;modify*;UNIX.mode*;UNIX.uid*;UNIX.gid*;unique*;",
                   " MLSD",
                   " PRET",
                   " AUTH TLS",
                   " PBSZ",
                   " PROT",
                   " TVFS",
                   " ESTA",
                   " PASV",
                   " EPSV",
                   " ESTP",
                   "211 End." });
    EXPECT_TRUE(features.known && features.utf8 && features.mlst && features.restStream
                && features.size && features.mdtm && features.mfmt && features.epsv
                && features.authTls && features.tvfs);
    const std::vector<std::string> facts { "type",      "size",     "sizd",     "modify",
                                           "unix.mode", "unix.uid", "unix.gid", "unique" };
    EXPECT_EQ(features.mlstFacts, facts);
    EXPECT_TRUE(features.mlstUnixMode());
}

TEST(ParseFeat, ReadsVsftpdAndInetutils)
{
    const ftp::Features vs = parsed(211,
                                    { "211-Features:", " EPRT", " EPSV", " MDTM", " PASV",
                                      " REST STREAM", " SIZE", " TVFS", "211 End" });
    EXPECT_TRUE(vs.known && vs.epsv && vs.mdtm && vs.restStream && vs.size && vs.tvfs);
    EXPECT_FALSE(vs.utf8 || vs.mlst || vs.mfmt || vs.authTls || vs.mlstUnixMode());
    const ftp::Features inet
        = parsed(211, { "211- Supported", " SIZE", " REST STREAM", "211 End" });
    EXPECT_TRUE(inet.known && inet.size && inet.restStream);
}

TEST(ParseFeat, DoesNotMindCaseIndentsAndRepeatedCodes)
{
    const ftp::Features features
        = parsed(211,
                 { "211-x", "utf8", "211-Rest Stream", "211- size", "\tmdtm\t",
                   "  MLST Type*;UNIX.MODE;;perm* ", "211 End" });
    EXPECT_TRUE(features.utf8 && features.restStream && features.size && features.mdtm
                && features.mlst);
    EXPECT_TRUE(features.mlstUnixMode());
    EXPECT_EQ(features.mlstFacts.size(), 3U);
}

TEST(ParseFeat, TakesOnlyTheStreamFormOfRest)
{
    EXPECT_FALSE(parsed(211, { "211-", " REST", "211 End" }).restStream);
    EXPECT_FALSE(parsed(211, { "211-", " REST BLOCK", "211 End" }).restStream);
}

TEST(ParseFeat, KnowsTheFormsOfAuth)
{
    for (const char *line : { " AUTH TLS", " AUTH SSL", " AUTH TLS-C", " auth tls;ssl;tls-p",
                              " AUTH SSL TLS", " AUTH KERBEROS,TLS" }) {
        EXPECT_TRUE(parsed(211, { "211-", line, "211 End" }).authTls) << line;
    }
    for (const char *line : { " AUTH", " AUTH TLS-P", " AUTH GSSAPI", " XAUTH TLS" }) {
        EXPECT_FALSE(parsed(211, { "211-", line, "211 End" }).authTls) << line;
    }
}

TEST(ParseFeat, KnowsNothingOfARefusal)
{
    EXPECT_FALSE(parsed(500, { "500 'FEAT': command not understood." }).known);
    EXPECT_FALSE(parsed(530, { "530-", " UTF8", "530 Please login" }).utf8);
    EXPECT_TRUE(parsed(211, { "211 No features" }).known);
    EXPECT_FALSE(parsed(211, { "211 UTF8" }).utf8);
}
