#include "ftp/text.h"

#include <array>

namespace ftp {
namespace {

/// Windows-1252, codes 0x80 to 0x9F; the others equal Latin-1.
constexpr std::array<char16_t, 32> upperControls {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

constexpr char32_t malformed = 0xFFFFFFFF;

/// Takes one character off the front of text, which must not be empty.
/// @return malformed when there is no well-formed one; text is then unchanged.
char32_t takeCharacter(std::string_view &text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(0);
    if (lead < 0x80) {
        text.remove_prefix(1);
        return lead;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) {
        return malformed;
    }
    char32_t code = lead & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) {
            return malformed;
        }
        code = (code << 6U) | (byte(i) & 0x3FU);
    }
    constexpr std::array<char32_t, 5> smallest { 0, 0, 0x80, 0x800, 0x10000 };
    if (code < smallest[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
        return malformed;
    }
    text.remove_prefix(length);
    return code;
}

/// Appends a character below U+FFFF.
void appendUtf8(char16_t code, std::string &out)
{
    const auto put = [&](unsigned byte) { out += static_cast<char>(byte); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0U | (code >> 6U));
        put(0x80U | (code & 0x3FU));
    } else {
        put(0xE0U | (code >> 12U));
        put(0x80U | ((code >> 6U) & 0x3FU));
        put(0x80U | (code & 0x3FU));
    }
}

/// Code of a character in Windows-1252, -1 when it has none.
int codeOf(char32_t character)
{
    if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) {
        return static_cast<int>(character);
    }
    for (std::size_t i = 0; i < upperControls.size(); ++i) {
        if (upperControls[i] == character) {
            return static_cast<int>(0x80 + i);
        }
    }
    return -1;
}

} // namespace

bool isUtf8(std::string_view bytes)
{
    while (!bytes.empty()) {
        if (takeCharacter(bytes) == malformed) {
            return false;
        }
    }
    return true;
}

std::string toUtf8(std::string_view raw)
{
    if (isUtf8(raw)) {
        return std::string(raw);
    }
    std::string text;
    text.reserve(raw.size() + raw.size() / 2);
    for (const char byte : raw) {
        const auto code = static_cast<unsigned char>(byte);
        appendUtf8(code >= 0x80 && code < 0xA0 ? upperControls[code - 0x80U] : code, text);
    }
    return text;
}

std::optional<std::string> toWindows1252(std::string_view utf8)
{
    std::string bytes;
    bytes.reserve(utf8.size());
    while (!utf8.empty()) {
        const char32_t character = takeCharacter(utf8);
        const int code = character == malformed ? -1 : codeOf(character);
        if (code < 0) {
            return std::nullopt;
        }
        bytes += static_cast<char>(code);
    }
    return bytes;
}

} // namespace ftp
