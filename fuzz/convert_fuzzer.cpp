#include "ftp/convert.h"
#include "ftp/text.h"
#include "require.h"

#include <algorithm>

namespace {

template <class Converter> std::string converted(std::string_view in, std::size_t block)
{
    Converter converter;
    std::string out;
    for (; !in.empty(); in.remove_prefix(std::min(block, in.size()))) {
        converter.convert(in.substr(0, block), out);
    }
    converter.finish(out);
    return out;
}

template <class Converter> void requireSameInBlocks(std::string_view text, std::size_t block)
{
    REQUIRE(converted<Converter>(text, block) == converted<Converter>(text, text.size() + 1));
}

} // namespace

/// The contents of files and the texts of names. The first byte is the size of the blocks.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const std::size_t block = data[0] % 16U + 1U;
    const std::string_view text(reinterpret_cast<const char *>(data) + 1, size - 1);
    requireSameInBlocks<ftp::AsciiSender>(text, block);
    requireSameInBlocks<ftp::AsciiReceiver>(text, block);
    requireSameInBlocks<ftp::EbcdicSender>(text, block);
    requireSameInBlocks<ftp::EbcdicReceiver>(text, block);
    const std::string utf8 = ftp::toUtf8(text);
    REQUIRE(ftp::isUtf8(utf8));
    if (!ftp::isUtf8(text)) {
        REQUIRE(ftp::toWindows1252(utf8) == text);
    }
    return 0;
}
