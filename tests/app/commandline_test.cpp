#include "app/commandline.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString eleven
    = u"files01\tweb01\tgeheim\t/home/anna\t/html\t45\t2121\t1\t1\tkonto\tBemerkung"_s;

} // namespace

TEST(CommandLine, ArgumentsAreJoinedWithOneBlankAndOnlyBlanksAreCut)
{
    EXPECT_EQ(commandLineText({}), QString());
    EXPECT_EQ(commandLineText({ u"  "_s, u" "_s }), QString());
    EXPECT_EQ(commandLineText({ u"a\tb"_s, u"c"_s }), u"a\tb c"_s);
    EXPECT_EQ(commandLineText({ u" a\t\t"_s }), u"a\t\t"_s);
    EXPECT_EQ(commandLineText({ u"\ta"_s }), u"\ta"_s);
}

TEST(CommandLine, BlanksAloneStartTheInteractiveLogin)
{
    EXPECT_EQ(startDecision({}), StartDecision::ShowLogin);
    EXPECT_EQ(startDecision(u"   "_s), StartDecision::ShowLogin);
    EXPECT_EQ(startDecision(u"x"_s), StartDecision::LoadCommands);
    EXPECT_EQ(startDecision(eleven), StartDecision::LoadCommands);
    EXPECT_EQ(startDecision(u"\t"_s), StartDecision::LoadCommands);
}

TEST(CommandLine, OptionsAndAddressesAreTold)
{
    EXPECT_EQ(commandLineKind(u"--help"_s), CommandLine::Help);
    EXPECT_EQ(commandLineKind(u"--version"_s), CommandLine::Version);
    EXPECT_EQ(commandLineKind(u"ftp://web01@files01/html"_s), CommandLine::Address);
    EXPECT_EQ(commandLineKind(u"FTPES://files01"_s), CommandLine::Address);
    EXPECT_EQ(startDecision(u"ftp://files01"_s), StartDecision::ShowLogin);
    EXPECT_EQ(commandLineKind(u"ftp://"_s + eleven), CommandLine::Fields);
    EXPECT_EQ(commandLineKind(u"--other"_s), CommandLine::Fields);
    EXPECT_TRUE(helpText().contains(u"Tabulatoren"_s));
    EXPECT_EQ(versionText(), u"Tarvelo FTP 2.20\n"_s);
}

TEST(CommandLine, ElevenFieldsMakeAConnection)
{
    ConnectionProfile before;
    before.ProxyType = 5;
    before.ProxyHost = u"proxy"_s;
    before.encryption = 2;
    const auto connection = connectionFromFields(eleven, before);
    ASSERT_TRUE(connection);
    EXPECT_EQ(connection->RemoteHost, u"files01"_s);
    EXPECT_EQ(connection->UserName, u"web01"_s);
    EXPECT_EQ(connection->Password, u"geheim"_s);
    EXPECT_EQ(connection->LocalDir, u"/home/anna"_s);
    EXPECT_EQ(connection->RemoteDir, u"/html"_s);
    EXPECT_EQ(connection->Timeout, 45);
    EXPECT_EQ(connection->RemotePort, 2121);
    EXPECT_EQ(connection->TransferType, 1);
    EXPECT_TRUE(connection->Passive);
    EXPECT_EQ(connection->Account, u"konto"_s);
    EXPECT_EQ(connection->Bemerkungen, u"Bemerkung"_s);
    EXPECT_EQ(connection->ProxyType, 5);
    EXPECT_EQ(connection->ProxyHost, u"proxy"_s);
    EXPECT_EQ(connection->encryption, -1);
}

TEST(CommandLine, EmptyLastFieldsCountAndSurplusOnesDoNot)
{
    EXPECT_TRUE(connectionFromFields(u"h\tu\tp\t\t\t30\t21\t1\t1\t\t"_s, {}));
    EXPECT_TRUE(connectionFromFields(eleven + u"\tx\ty"_s, {}));
    EXPECT_EQ(connectionFromFields(eleven + u"\tx"_s, {})->Bemerkungen, u"Bemerkung"_s);
    const auto ten = connectionFromFields(u"h\tu\tp\t\t\t30\t21\t1\t1\t"_s, {});
    ASSERT_FALSE(ten);
    EXPECT_TRUE(ten.error().contains(u"10"_s));
    EXPECT_FALSE(connectionFromFields(u"--unknown"_s, {}));
}

TEST(CommandLine, TransferTypeAndPassiveAreReadByTheirNumber)
{
    struct Row {
        QString type, passive;
        int expectedType;
        bool expectedPassive;
    };
    const QList<Row> table {
        { u"0"_s, u"1"_s, 0, true },      { u"1"_s, u"0"_s, 1, false },
        { u"2"_s, u"2"_s, 2, false },     { u"5"_s, u"yes"_s, 2, false },
        { u"abc"_s, u""_s, 0, false },    { u""_s, u"-1"_s, 0, false },
        { u" 1x"_s, u" 1 "_s, 1, true },  { u"-1"_s, u"True"_s, 2, false },
        { u"0.5"_s, u"1.5"_s, 2, false },
    };
    for (const Row &row : table) {
        const auto connection = connectionFromFields(
            u"h\tu\tp\t\t\t30\t21\t%1\t%2\t\t"_s.arg(row.type, row.passive), {});
        ASSERT_TRUE(connection);
        EXPECT_EQ(connection->TransferType, row.expectedType) << row.type.toStdString();
        EXPECT_EQ(connection->Passive, row.expectedPassive) << row.passive.toStdString();
    }
}

TEST(CommandLine, NumbersThatAreNoneCountAsZero)
{
    const auto words = connectionFromFields(u"h\tu\tp\t\t\tbald\tftp\t1\t1\t\t"_s, {});
    EXPECT_EQ(words->Timeout, 0);
    EXPECT_EQ(words->RemotePort, 0);
    const auto huge = connectionFromFields(u"h\tu\tp\t\t\t30s\t99999999999\t1\t1\t\t"_s, {});
    EXPECT_EQ(huge->Timeout, 30);
    EXPECT_EQ(huge->RemotePort, 2147483647);
}
