#include "connections/profile.h"

#include "common/codepage.h"
#include "common/globals.h"
#include "common/mo_standard.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

ProfileFields sample()
{
    ProfileFields fields;
    fields.RemoteHost = u"files01"_s;
    fields.UserName = u"web01"_s;
    fields.Password = u"abc"_s;
    fields.LocalDir = u"/home/anna/Büro"_s;
    fields.RemoteDir = u"/html"_s;
    fields.Timeout = u"45"_s;
    fields.RemotePort = u"2121"_s;
    fields.Passive = false;
    fields.TransferPosition = 1;
    fields.Account = u" konto "_s;
    fields.Bemerkungen = u"a\r\nb"_s;
    return fields;
}

ProfileFields readBack(const ProfileBytes &bytes)
{
    ProfileFields fields;
    EXPECT_EQ(decodeProfile(bytes, fields), 11);
    return fields;
}

/// The fields of a file of the given lines, read over empty ones.
ProfileFields readLines(const QByteArray &login, int expectedFields)
{
    ProfileFields fields;
    fields.Account = u"vorher"_s;
    fields.Bemerkungen = u"vorher"_s;
    EXPECT_EQ(decodeProfile({ login, {} }, fields), expectedFields);
    return fields;
}

} // namespace

TEST(Profile, ElevenLinesByteForByte)
{
    const ProfileBytes bytes = encodeProfile(sample());
    EXPECT_EQ(bytes.login,
              "files01\r\nweb01\r\n\x5e\x5f\x60\r\n/home/anna/B\xfcro\r\n/"
              "html\r\n45\r\n2121\r\n0\r\n1\r\n"
              " konto \r\na<br>b\r\n");
    EXPECT_EQ(bytes.side, QByteArray());
    EXPECT_EQ(readBack(bytes), sample());
}

TEST(Profile, TheDefaultsAreThoseOfANewProfile)
{
    EXPECT_EQ(encodeProfile({}).login, "\r\n\r\n\r\n\r\n\r\n30\r\n21\r\n1\r\n0\r\n\r\n\r\n");
    EXPECT_EQ(readBack(encodeProfile({})), ProfileFields {});
}

TEST(Profile, TransferTypesSwapZeroAndOne)
{
    EXPECT_EQ(swappedTransferType(0), 1);
    EXPECT_EQ(swappedTransferType(1), 0);
    EXPECT_EQ(swappedTransferType(2), 2);
    EXPECT_EQ(swappedTransferType(7), 2);
    EXPECT_EQ(swappedTransferType(-1), 2);
}

TEST(Profile, TheCurrentConnectionAsFields)
{
    ConnectionProfile connection;
    connection.RemoteHost = u"files01"_s;
    connection.Timeout = 45;
    connection.TransferType = 0;
    connection.Passive = false;
    connection.ProxyHost = u"proxy.example"_s;
    connection.ProxyPassword = u"geheim"_s;
    connection.encryption = 2;
    const ProfileFields fields = fieldsOf(connection);
    EXPECT_EQ(fields.Timeout, u"45"_s);
    EXPECT_EQ(fields.RemotePort, u"21"_s);
    EXPECT_EQ(fields.TransferPosition, 1);
    EXPECT_EQ(fields.encryption, 2);
    const ProfileBytes bytes = encodeProfile(fields);
    EXPECT_FALSE((bytes.login + bytes.side).contains("proxy")); // proxies belong to no profile
    EXPECT_FALSE((bytes.login + bytes.side).contains("geheim"));
}

TEST(Profile, LinesOneToNineAreTrimmedOfBlanks)
{
    const ProfileFields fields
        = readLines("  files01 \r\n web01\r\n ^_` \r\n /a b \r\n /html\t\r\n 30 \r\n 21 \r\n 1 "
                    "\r\n 2 \r\n  konto \r\nx\r\n",
                    11);
    EXPECT_EQ(fields.RemoteHost, u"files01"_s);
    EXPECT_EQ(fields.UserName, u"web01"_s);
    EXPECT_EQ(fields.Password, u"abc"_s); // shifted by the trimmed line's length
    EXPECT_EQ(fields.LocalDir, u"/a b"_s);
    EXPECT_EQ(fields.RemoteDir, u"/html\t"_s);
    EXPECT_EQ(fields.Timeout, u"30"_s);
    EXPECT_EQ(fields.RemotePort, u"21"_s);
    EXPECT_TRUE(fields.Passive);
    EXPECT_EQ(fields.TransferPosition, 2);
    EXPECT_EQ(fields.Account, u"  konto "_s);
}

TEST(Profile, PassiveAndTransferTypeAreReadLeniently)
{
    const auto read = [](const QByteArray &passive, const QByteArray &type) {
        return readLines(
            "h\r\nu\r\n\r\n\r\n\r\nbald\r\nftp\r\n" + passive + "\r\n" + type + "\r\n\r\n\r\n", 11);
    };
    EXPECT_FALSE(read("ja", "Ascii").Passive);
    EXPECT_EQ(read("ja", "Ascii").TransferPosition, 0);
    EXPECT_TRUE(read("1x", "2.0").Passive);
    EXPECT_EQ(read("1x", "2.0").TransferPosition, 2);
    EXPECT_EQ(read("0", "9").TransferPosition, 0);
    EXPECT_EQ(read("0", "-1").TransferPosition, 0);
    EXPECT_EQ(read("0", "99999999999999999999").TransferPosition, 0);
    EXPECT_EQ(read("0", "1").Timeout, u"bald"_s); // shown as it stands
    EXPECT_EQ(read("0", "1").RemotePort, u"ftp"_s);
}

TEST(Profile, RemarksOverSeveralLinesAreJoined)
{
    const QByteArray ten = "h\r\nu\r\n\r\n\r\n\r\n30\r\n21\r\n1\r\n0\r\nkonto\r\n";
    EXPECT_EQ(readLines(ten + "x\r\ny\r\n", 11).Bemerkungen, u"xy"_s);
    EXPECT_EQ(readLines(ten + "x\r\ny", 11).Bemerkungen, u"xy"_s);
    EXPECT_EQ(readLines(ten + "a<br>b\r\n\r\n<br>", 11).Bemerkungen, u"a\r\nb\r\n"_s);
    EXPECT_EQ(readLines(ten, 11).Bemerkungen, QString());
    EXPECT_EQ(readLines(ten.chopped(2), 11).Bemerkungen, QString());
}

TEST(Profile, EveryKindOfLineBreakInRemarksIsOneBreak)
{
    ProfileFields fields = sample();
    fields.Bemerkungen = u"a\nb\rc\r\nd"_s;
    EXPECT_TRUE(encodeProfile(fields).login.endsWith("\r\na<br>b<br>c<br>d\r\n"));
}

TEST(Profile, AShortFileChangesTheFieldsThatItHas)
{
    const QByteArray lines = "h\r\nu\r\n^_`\r\n/l\r\n/r\r\n45\r\n2121\r\n0\r\n2\r\n";
    const ProfileFields nine = readLines(lines, 9);
    EXPECT_EQ(nine.TransferPosition, 2);
    EXPECT_EQ(nine.Account, u"vorher"_s);
    EXPECT_EQ(nine.Bemerkungen, u"vorher"_s);
    const ProfileFields three = readLines("h\r\nu\r\n^_`\r\n", 3);
    EXPECT_EQ(three.Password, u"abc"_s);
    EXPECT_EQ(three.RemotePort, u"21"_s);
    EXPECT_TRUE(three.Passive);
    EXPECT_EQ(readLines("h", 1).RemoteHost, u"h"_s);
    EXPECT_EQ(readLines("", 0).RemoteHost, QString());
}

TEST(Profile, LinesMayEndInLfAlone)
{
    QByteArray login = encodeProfile(sample()).login;
    login.replace("\r\n", "\n");
    EXPECT_EQ(readBack({ login, {} }), sample());
    login.replace("\n", "\r");
    EXPECT_EQ(readBack({ login, {} }), sample());
}

TEST(Profile, TextOutsideTheCodePageIsWrittenWithAMark)
{
    ProfileFields fields = sample();
    fields.UserName = u"日本"_s;
    fields.Password = u"пароль"_s;
    const ProfileBytes bytes = encodeProfile(fields);
    EXPECT_TRUE(bytes.login.startsWith("\xEF\xBB\xBF"));
    EXPECT_EQ(readBack(bytes), fields);
}

TEST(Profile, ALineBreakInALineFieldDoesNotMoveTheOthers)
{
    ProfileFields fields = sample();
    fields.UserName = u"web\r\n01"_s;
    fields.LocalDir = u"/a\nb"_s;
    const ProfileFields read = readBack(encodeProfile(fields));
    EXPECT_EQ(read.UserName, u"web  01"_s);
    EXPECT_EQ(read.LocalDir, u"/a b"_s);
    EXPECT_EQ(read.RemoteDir, fields.RemoteDir);
}

TEST(Profile, TheEncryptionChoiceStandsInTheSideFile)
{
    for (const int choice : { -1, 0, 1, 2 }) {
        ProfileFields fields = sample();
        fields.encryption = choice;
        const ProfileBytes bytes = encodeProfile(fields);
        EXPECT_EQ(bytes.login, encodeProfile(sample()).login);
        EXPECT_EQ(bytes.side.isEmpty(), choice < 0);
        EXPECT_EQ(readBack(bytes), fields);
    }
    ProfileFields fields;
    decodeProfile({ encodeProfile(sample()).login, "Encryption=99\nsomething\n=\n" }, fields);
    EXPECT_EQ(fields.encryption, -1);
}

TEST(Profile, EveryPasswordOfOneTo64CharactersSurvives)
{
    // Each code of the code page at the beginning, in the middle and at the end, in every length.
    ProfileFields fields = sample();
    for (int length = 1; length <= 64; ++length) {
        for (int code = 0; code < 256; ++code) {
            for (const int at : { 0, length / 2, length - 1 }) {
                fields.Password = QString(length, u'k');
                fields.Password[at] = CodePage::characterOf(code);
                ASSERT_EQ(readBack(encodeProfile(fields)), fields)
                    << length << ' ' << code << ' ' << at;
            }
        }
    }
}

TEST(Profile, AnyTwoNeighboursInAPasswordSurvive)
{
    ProfileFields fields = sample();
    const int length = 24; // blanks become LF, "%" becomes CR
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            fields.Password = QString(length - 2, u'k') + CodePage::characterOf(first)
                + CodePage::characterOf(second);
            ASSERT_EQ(readBack(encodeProfile(fields)), fields) << first << ' ' << second;
        }
    }
}

TEST(Profile, RandomPasswordsSurvive)
{
    QRandomGenerator random(42);
    ProfileFields fields = sample();
    for (int round = 0; round < 20000; ++round) {
        fields.Password.resize(random.bounded(1, 65));
        for (QChar &character : fields.Password) {
            character = CodePage::characterOf(random.bounded(256));
        }
        ASSERT_EQ(readBack(encodeProfile(fields)), fields) << round;
    }
}

TEST(Profile, OnlyPasswordsThatNeedItGetASideFile)
{
    ProfileFields fields = sample();
    EXPECT_TRUE(encodeProfile(fields).side.isEmpty());
    // Ends in a blank, holds CR, LF, NUL when scrambled.
    for (const char16_t unit : { 0x20 + 3, 0x0d + 3, 0x0a + 3, 0x00 + 3 }) {
        fields.Password = u"ab"_s + QChar(unit);
        EXPECT_TRUE(encodeProfile(fields).side.startsWith("Password=")) << int { unit };
    }
    fields.Password = u"a#b"_s; // a blank inside is no trouble
    EXPECT_TRUE(encodeProfile(fields).side.isEmpty());
}

TEST(Profile, TheLoginFileIsWrittenAllTheSame)
{
    ProfileFields fields = sample();
    fields.Password = QString(QChar(u'!')); // scrambled: one blank
    EXPECT_TRUE(encodeProfile(fields).login.startsWith("files01\r\nweb01\r\n \r\n"));
}

TEST(Profile, ASideFileOfAnotherPasswordIsNotBelieved)
{
    ProfileFields before = sample();
    before.Password = u"!"_s;
    ProfileFields after = sample();
    after.Password = u"neu"_s; // somebody else rewrote the eleven lines
    const ProfileFields read = readBack({ encodeProfile(after).login, encodeProfile(before).side });
    EXPECT_EQ(read.Password, u"neu"_s);
    EXPECT_EQ(read.LocalDir, after.LocalDir);
}

TEST(Profile, BinaryFilesAreReadWithoutHarm)
{
    QRandomGenerator random(7);
    for (int round = 0; round < 200; ++round) {
        QByteArray noise(random.bounded(2000), '\0');
        QByteArray side(random.bounded(200), '\0');
        for (char &byte : noise) {
            byte = static_cast<char>(random.bounded(256));
        }
        for (char &byte : side) {
            byte = static_cast<char>(random.bounded(256));
        }
        ProfileFields fields;
        EXPECT_LE(decodeProfile({ noise, "Password=" + side }, fields), 11);
        EXPECT_LE(fields.TransferPosition, 2);
    }
}

TEST(Profile, NamesHoldLettersDigitsAndUnderscores)
{
    EXPECT_EQ(FilterProfileNameKey(u"my site.1"_s), u"my_site_1"_s);
    EXPECT_EQ(FilterProfileNameKey(u"AZaz09_"_s), u"AZaz09_"_s);
    EXPECT_EQ(FilterProfileNameKey(u"Büro/../x\\y@[`{"_s), u"B_ro____x_y____"_s);
    EXPECT_EQ(FilterProfileNameKey({}), QString());
}
