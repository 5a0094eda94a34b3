#include "ftp/fact_replies.h"

#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>

namespace ftp {

bool isUnknown(const Reply &reply)
{
    return reply.code == 500 || reply.code == 502 || reply.code == 504;
}

std::optional<std::int64_t> sizeOf(const Reply &reply)
{
    const std::string_view digits = reply.message();
    if (reply.code != 213 || digits.empty() || digits.size() > 18
        || digits.find_first_not_of("0123456789") != std::string_view::npos) {
        return std::nullopt;
    }
    return std::stoll(std::string(digits));
}

std::optional<std::int64_t> zoneOf(std::int64_t listed, std::int64_t utc)
{
    constexpr std::int64_t quarterHour = 15 * 60;
    const std::int64_t difference = listed - (utc - utc % 60);
    const auto rounded
        = static_cast<std::int64_t>(std::llround(static_cast<double>(difference) / quarterHour))
        * quarterHour;
    const bool plausible = std::abs(difference - rounded) <= 60 && std::abs(rounded) <= 14 * 3600;
    return plausible ? std::optional(rounded) : std::nullopt;
}

} // namespace ftp
