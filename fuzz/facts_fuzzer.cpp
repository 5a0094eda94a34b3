#include "ftp/civiltime.h"
#include "ftp/fact_replies.h"
#include "lines.h"
#include "require.h"

#include <cstdlib>
#include <optional>

namespace {

/// A time value as SIZE's sister MDTM sends it. @return seconds since 1970
std::optional<std::int64_t> checkedTime(std::string_view text)
{
    const auto time = ftp::parseTimeVal(text);
    if (!time) {
        return std::nullopt;
    }
    REQUIRE(ftp::isValid(*time));
    REQUIRE(text.starts_with(ftp::formatTimeVal(*time)));
    return ftp::toEpoch(*time);
}

void checkSize(std::string_view text)
{
    for (const int code : { 213, 550 }) {
        const ftp::Reply reply { code, { std::to_string(code) + " " + std::string(text) } };
        const auto size = ftp::sizeOf(reply);
        REQUIRE(!size || (code == 213 && *size >= 0));
        REQUIRE(!size || text.ends_with(std::to_string(*size)));
        REQUIRE(!ftp::isUnknown(reply));
    }
}

} // namespace

/// The texts of replies to SIZE and MDTM, a line each.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    std::optional<std::int64_t> before;
    forEachInputLine(data, size, [&before](std::string_view line) {
        checkSize(line);
        const auto time = checkedTime(line);
        if (const auto zone = time && before ? ftp::zoneOf(*before, *time) : std::nullopt) {
            REQUIRE(std::abs(*zone) <= 14 * 3600 && *zone % (15 * 60) == 0);
            REQUIRE(std::abs(*before - *time - *zone) <= 120);
        }
        before = time ? time : before;
    });
    return 0;
}
