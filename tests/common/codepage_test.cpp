#include "common/codepage.h"

#include <gtest/gtest.h>

TEST(CodePage, RoundTripsAll256Codes)
{
    QByteArray all;
    for (int code = 0; code < 256; ++code) {
        all += static_cast<char>(code);
    }
    const QString text = CodePage::decode(all);
    ASSERT_EQ(text.size(), 256);
    EXPECT_EQ(CodePage::encode(text), all);
    EXPECT_EQ(text.at(0x80), QChar(0x20AC));
    EXPECT_EQ(text.at(0xE4), QChar(u'ä'));
}

TEST(CodePage, RefusesCharactersOutsideTheCodePage)
{
    EXPECT_FALSE(CodePage::encode(QStringLiteral("日本")));
    EXPECT_EQ(CodePage::codeOf(QChar(0x65E5)), -1);
}

TEST(CodePage, WritesUtf8WithAMarkOnlyWhenNeeded)
{
    EXPECT_EQ(CodePage::encodeFile(QStringLiteral("Größe €")),
              QByteArray("Gr\xF6\xDF"
                         "e \x80"));
    for (const QString &text : { QStringLiteral("日本"), QStringLiteral("ï»¿x"),
                                 QStringLiteral("ä"), QStringLiteral("\uFEFF\uFEFF日本") }) {
        EXPECT_EQ(CodePage::decodeFile(CodePage::encodeFile(text)), text);
    }
    EXPECT_TRUE(CodePage::encodeFile(QStringLiteral("日本")).startsWith("\xEF\xBB\xBF"));
}
