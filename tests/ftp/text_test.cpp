#include "ftp/text.h"

#include <gtest/gtest.h>

TEST(IsUtf8, KnowsWellFormedText)
{
    for (const char *text :
         { "", "abc",
           "Gr\xC3\xB6\xC3\x9F"
           "e",
           "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBF",
           "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "\x7F\x01" }) {
        EXPECT_TRUE(ftp::isUtf8(text)) << text;
    }
}

TEST(IsUtf8, RefusesEveryMalformedSequence)
{
    for (const char *text : { "\x80",
                              "\xBF",
                              "\xC0\x80",
                              "\xC1\xBF",
                              "\xC3",
                              "\xC3"
                              "a",
                              "a\xC3",
                              "\xE0\x9F\xBF",
                              "\xE2\x82",
                              "\xE2\x82"
                              "a",
                              "\xED\xA0\x80",
                              "\xED\xBF\xBF",
                              "\xF0\x8F\xBF\xBF",
                              "\xF0\x90\x80",
                              "\xF4\x90\x80\x80",
                              "\xF5\x80\x80\x80",
                              "\xF8\x88\x80\x80\x80",
                              "\xFE",
                              "\xFF",
                              "\xDC"
                              "bung.txt" }) {
        EXPECT_FALSE(ftp::isUtf8(text)) << text;
    }
}

TEST(ToUtf8, ReadsOtherBytesAsWindows1252)
{
    EXPECT_EQ(ftp::toUtf8("Gr\xC3\xB6\xC3\x9F"
                          "e"),
              "Gr\xC3\xB6\xC3\x9F"
              "e");
    EXPECT_EQ(ftp::toUtf8("\xDC"
                          "bung"),
              "\xC3\x9C"
              "bung");
    EXPECT_EQ(ftp::toUtf8("\x80 \x9F \xFF"), "\xE2\x82\xAC \xC5\xB8 \xC3\xBF");
    EXPECT_EQ(ftp::toUtf8("\x81\x8D\x8F\x90\x9D"), "\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D");
}

TEST(ToWindows1252, UndoesToUtf8ForEveryCode)
{
    for (int code = 0; code < 256; ++code) {
        const std::string raw = std::string("\xFF") + static_cast<char>(code); // never UTF-8
        const std::string text = ftp::toUtf8(raw);
        EXPECT_TRUE(ftp::isUtf8(text)) << code;
        EXPECT_EQ(ftp::toWindows1252(text), raw) << code;
    }
}

TEST(ToWindows1252, RefusesOtherCharacters)
{
    EXPECT_FALSE(ftp::toWindows1252("\xD0\x96").has_value()); // Cyrillic
    EXPECT_FALSE(ftp::toWindows1252("\xC2\x80").has_value()); // a control that Windows-1252 has not
    EXPECT_FALSE(ftp::toWindows1252("\xF0\x9F\x98\x80").has_value());
    EXPECT_FALSE(ftp::toWindows1252("\xDC"
                                    "bung")
                     .has_value());
}
