#include "ftp/convert.h"

#include <gtest/gtest.h>

namespace {

/// Converts in blocks of a given size.
template <class Converter> std::string converted(std::string_view in, std::size_t block)
{
    Converter converter;
    std::string out;
    while (!in.empty()) {
        converter.convert(in.substr(0, block), out);
        in.remove_prefix(std::min(block, in.size()));
    }
    converter.finish(out);
    return out;
}

/// The result must not depend on where the blocks end.
template <class Converter> void expectConverted(std::string_view in, std::string_view out)
{
    for (std::size_t block = 1; block <= in.size() + 1; ++block) {
        EXPECT_EQ(converted<Converter>(in, block), out) << "blocks of " << block;
    }
}

} // namespace

TEST(AsciiSender, CompletesBareLineFeedsOnly)
{
    expectConverted<ftp::AsciiSender>("", "");
    expectConverted<ftp::AsciiSender>("a", "a");
    expectConverted<ftp::AsciiSender>("a\nb\r\nc\n\nd\r", "a\r\nb\r\nc\r\n\r\nd\r");
    expectConverted<ftp::AsciiSender>("\n\r\r\n\r\n\n", "\r\n\r\r\n\r\n\r\n");
    expectConverted<ftp::AsciiSender>("\ra\n", "\ra\r\n");
}

TEST(AsciiReceiver, DropsOneCrBeforeALineFeedOnly)
{
    expectConverted<ftp::AsciiReceiver>("", "");
    expectConverted<ftp::AsciiReceiver>("a\r\nb\nc\r\n\r\nd\r", "a\nb\nc\n\nd\r");
    expectConverted<ftp::AsciiReceiver>("a\r\r\nb\rc\r\r", "a\r\nb\rc\r\r");
    expectConverted<ftp::AsciiReceiver>("\r\n", "\n");
}

TEST(AsciiReceiver, UndoesTheSender)
{
    const std::string text = "eins\n\nzwei\ndrei";
    EXPECT_EQ(converted<ftp::AsciiReceiver>(converted<ftp::AsciiSender>(text, 3), 2), text);
}

TEST(AsciiConverters, CanBeUsedForAnotherFileAfterFinish)
{
    std::string out;
    ftp::AsciiSender sender;
    sender.convert("a\r", out);
    sender.finish(out);
    sender.convert("\n", out);
    EXPECT_EQ(out, "a\r\r\n");
    out.clear();
    ftp::AsciiReceiver receiver;
    receiver.convert("a\r", out);
    receiver.finish(out);
    receiver.convert("\n", out);
    EXPECT_EQ(out, "a\r\n");
}

TEST(EbcdicSender, WritesCodePage1047WithNl)
{
    expectConverted<ftp::EbcdicSender>("", "");
    expectConverted<ftp::EbcdicSender>("Hallo 19\n", "\xC8\x81\x93\x93\x96\x40\xF1\xF9\x15");
    expectConverted<ftp::EbcdicSender>("[]^", "\xAD\xBD\x5F"); // where 037 differs
    expectConverted<ftp::EbcdicSender>("\xE4\xDF", "\x43\x59");
    expectConverted<ftp::EbcdicSender>("a\r\nb\r\r\nc\r", "\x81\x15\x82\x0D\x15\x83\x0D");
}

TEST(EbcdicReceiver, TakesBothLineEnds)
{
    expectConverted<ftp::EbcdicReceiver>("\x81\x15\x82\x25\x0D", "a\nb\n\r");
}

TEST(EbcdicConverters, KeepEveryByteButTheSecondLineEnd)
{
    std::string all;
    for (int code = 0; code < 256; ++code) {
        if (code != 0x85) { // NEL shares its place with the other line end
            all += static_cast<char>(code);
        }
    }
    const std::string sent = converted<ftp::EbcdicSender>(all, 7);
    EXPECT_EQ(sent.size(), all.size());
    EXPECT_EQ(converted<ftp::EbcdicReceiver>(sent, 5), all);
    EXPECT_EQ(converted<ftp::EbcdicSender>("\x85", 1), "\x25");
}
