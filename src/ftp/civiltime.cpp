#include "ftp/civiltime.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

namespace ftp {
namespace {

constexpr std::int64_t secondsPerDay = 86400;

bool isLeap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int daysIn(int year, int month)
{
    constexpr std::array<int, 12> days { 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31 };
    return month == 2 && isLeap(year) ? 29 : days[static_cast<std::size_t>(month - 1)];
}

std::int64_t daysFromEpoch(int year, int month, int day)
{
    using namespace std::chrono;
    return sys_days(std::chrono::year(year) / month / day).time_since_epoch().count();
}

bool isDigits(std::string_view text)
{
    return text.find_first_not_of("0123456789") == std::string_view::npos;
}

} // namespace

bool isValid(const CivilTime &time)
{
    return time.year >= 1 && time.year <= 9999 && time.month >= 1 && time.month <= 12
        && time.day >= 1 && time.day <= daysIn(time.year, time.month) && time.hour >= 0
        && time.hour <= 23 && time.minute >= 0 && time.minute <= 59 && time.second >= 0
        && time.second <= 60;
}

std::int64_t toEpoch(const CivilTime &time)
{
    const int secondOfDay = time.hour * 3600 + time.minute * 60 + time.second;
    return daysFromEpoch(time.year, time.month, time.day) * secondsPerDay + secondOfDay;
}

CivilTime fromEpoch(std::int64_t seconds)
{
    using namespace std::chrono;
    const std::int64_t lowest = daysFromEpoch(1, 1, 1) * secondsPerDay;
    const std::int64_t highest = daysFromEpoch(9999, 12, 31) * secondsPerDay + secondsPerDay - 1;
    const std::int64_t inRange = std::clamp(seconds, lowest, highest);
    const auto day = floor<days>(sys_seconds(std::chrono::seconds(inRange)));
    const year_month_day date(day);
    const auto rest = static_cast<int>(inRange - day.time_since_epoch().count() * secondsPerDay);
    return { int(date.year()),
             int(unsigned(date.month())),
             int(unsigned(date.day())),
             rest / 3600,
             rest / 60 % 60,
             rest % 60 };
}

std::optional<CivilTime> inferYear(CivilTime partial, const CivilTime &now)
{
    const std::int64_t latest = toEpoch(now) + secondsPerDay;
    // Leap years lie at most eight years apart, and the next year may begin within the 24 hours.
    for (int back = -1; back <= 8; ++back) {
        partial.year = now.year - back;
        if (isValid(partial) && toEpoch(partial) <= latest) {
            return partial;
        }
    }
    return std::nullopt;
}

std::optional<CivilTime> parseTimeVal(std::string_view text)
{
    constexpr std::size_t length = 14;
    const std::string_view fraction = text.substr(std::min(length, text.size()));
    if (text.size() < length || !isDigits(text.substr(0, length))
        || (!fraction.empty() && (fraction.front() != '.' || !isDigits(fraction.substr(1))))) {
        return std::nullopt;
    }
    const auto field = [&](std::size_t at, std::size_t digits) {
        int value = 0;
        for (const char digit : text.substr(at, digits)) {
            value = value * 10 + (digit - '0');
        }
        return value;
    };
    const CivilTime time { field(0, 4), field(4, 2),  field(6, 2),
                           field(8, 2), field(10, 2), field(12, 2) };
    return isValid(time) ? std::optional(time) : std::nullopt;
}

std::string formatTimeVal(const CivilTime &time)
{
    std::array<char, 80> text {};
    const int length
        = std::snprintf(text.data(), text.size(), "%04d%02d%02d%02d%02d%02d", time.year, time.month,
                        time.day, time.hour, time.minute, time.second);
    return { text.data(), static_cast<std::size_t>(length) };
}

} // namespace ftp
