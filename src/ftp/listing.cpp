#include "ftp/listing.h"

#include "ftp/listing_dialects.h"

#include <limits>

namespace ftp {
namespace dialects {

std::optional<std::int64_t> readSize(Text text)
{
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    if (text.empty()) {
        return std::nullopt;
    }
    std::int64_t value = 0;
    for (const char c : text) {
        if (!isDigit(c)) {
            return std::nullopt;
        }
        const int digit = c - '0';
        value = value > (largest - digit) / 10 ? largest : value * 10 + digit;
    }
    return value;
}

int readOctal(Text text)
{
    unsigned value = 0;
    for (const char c : text) {
        if (c < '0' || c > '7') {
            return -1;
        }
        value = (value << 3U | static_cast<unsigned>(c - '0')) & 07777U;
    }
    return text.empty() ? -1 : static_cast<int>(value);
}

} // namespace dialects

Listing parseList(std::string_view bytes, const CivilTime & /*now*/)
{
    using namespace dialects;
    Listing listing;
    forEachLine(bytes, [&](Text line, std::size_t number) {
        Entry entry;
        const Verdict verdict = parseEplf(line, entry);
        listing.understood = listing.understood || verdict != Verdict::Foreign;
        if (verdict == Verdict::Entry) {
            entry.line = number;
            listing.entries.push_back(std::move(entry));
        }
    });
    return listing;
}

} // namespace ftp
