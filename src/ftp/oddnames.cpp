#include "ftp/oddnames.h"

#include "ftp/text.h"

namespace ftp {
namespace {

/// No two names have the same: a "%" of the name itself is written so, too.
std::string escaped(std::string_view raw)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char letter : raw) {
        const auto byte = static_cast<unsigned char>(letter);
        if (byte < 0x80 && letter != '%') {
            text += letter;
        } else {
            text += { '%', digits[byte >> 4U], digits[byte & 0xFU] };
        }
    }
    return text;
}

} // namespace

void OddNames::learn(std::string_view raw)
{
    if (!isUtf8(raw)) {
        m_raw.emplace(toUtf8(raw), raw);
    }
}

void OddNames::compare(std::string_view raw)
{
    if (const auto odd = m_raw.find(raw); odd != m_raw.end()) {
        m_alike.insert(odd->second);
    }
    if (raw.find('%') != std::string_view::npos) {
        m_percents.emplace(raw);
    }
}

std::string OddNames::text(std::string_view raw) const
{
    if (!m_alike.contains(raw)) {
        return toUtf8(raw);
    }
    std::string text = escaped(raw);
    while (m_percents.contains(text)) {
        text += '%';
    }
    return text;
}

} // namespace ftp
