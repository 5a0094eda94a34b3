#include "ftp/listing_dialects.h"

#include <array>

namespace ftp::dialects {
namespace {

/// Reads a number of one to most digits off the front of text.
bool takeNumber(Text &text, std::size_t most, int &value)
{
    std::size_t digits = 0;
    value = 0;
    while (digits < text.size() && isDigit(text[digits])) {
        if (digits == most) {
            return false;
        }
        value = value * 10 + (text[digits++] - '0');
    }
    text.remove_prefix(digits);
    return digits > 0;
}

bool takeByte(Text &text, char byte)
{
    if (text.empty() || text.front() != byte) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

/// Two digits stand for the years 1970 to 2069.
int fullYear(int year, std::size_t digits)
{
    if (digits > 2) {
        return year;
    }
    return year >= 70 ? 1900 + year : 2000 + year;
}

bool readYear(Text token, int &year)
{
    return token.size() == 4 && takeNumber(token, 4, year) && token.empty();
}

/// Reads a day of a month, "7", "07" or "7.".
bool readDay(Text token, int &day, bool &dotted)
{
    if (!takeNumber(token, 2, day)) {
        return false;
    }
    dotted = takeByte(token, '.');
    return token.empty() || token == ",";
}

/// Whether a token stands at a place, one blank in front of it, and more behind it.
bool isInnerToken(Text line, std::size_t at, std::size_t end)
{
    return at + 1 < line.size() && line[at] == ' ' && !isBlank(line[at + 1])
        && end + 1 < line.size();
}

/// Reads what follows day and month: a year or a clock, and behind seconds perhaps a year.
bool readYearOrClock(Text line, bool dottedDayFirst, Stamp &stamp)
{
    const Text token = takeToken(line, stamp.end);
    if (readYear(token, stamp.time.year)) {
        stamp.precision = Entry::Precision::Day;
        // The German style pads a year with a blank to the width of a clock.
        if (dottedDayFirst && line.substr(stamp.end).starts_with("  ")) {
            ++stamp.end;
        }
        return true;
    }
    const auto precision = readClock(token, stamp.time);
    if (!precision) {
        return false;
    }
    stamp.precision = *precision;
    stamp.hasYear = false;
    if (precision == Entry::Precision::Second) {
        std::size_t end = stamp.end;
        int year = 0;
        if (readYear(takeToken(line, end), year) && isInnerToken(line, stamp.end, end)) {
            stamp.time.year = year;
            stamp.hasYear = true;
            stamp.end = end;
        }
    }
    return true;
}

/// "+0100" behind the clock of style full-iso; the clock stays as printed.
void skipZone(Text line, Stamp &stamp)
{
    std::size_t end = stamp.end;
    Text zone = takeToken(line, end);
    int value = 0;
    if (zone.size() == 5 && (takeByte(zone, '+') || takeByte(zone, '-'))
        && takeNumber(zone, 4, value) && zone.empty() && isInnerToken(line, stamp.end, end)) {
        stamp.end = end;
    }
}

/// Reads the clock of a numeric date, which stands one blank behind it.
bool readIsoClock(Text line, Stamp &stamp)
{
    std::size_t end = stamp.end;
    const Text token = takeToken(line, end);
    if (token.empty() || token.data() != line.data() + stamp.end + 1) {
        return false;
    }
    const auto precision = readClock(token, stamp.time);
    if (!precision) {
        return false;
    }
    stamp.precision = *precision;
    stamp.end = end;
    if (precision == Entry::Precision::Second) {
        skipZone(line, stamp);
    }
    return true;
}

/// Styles iso, long-iso and full-iso of ls, and dates with other separators.
bool readIso(Text line, Text first, Stamp &stamp)
{
    if (readNumericDate(first, stamp.time)) {
        // Style iso pads a date without clock with a blank.
        if (!readIsoClock(line, stamp) && line.substr(stamp.end).starts_with("  ")) {
            ++stamp.end;
        }
        return true;
    }
    stamp.hasYear = false;
    return first.size() == 5 && takeNumber(first, 2, stamp.time.month) && takeByte(first, '-')
        && takeNumber(first, 2, stamp.time.day) && first.empty() && readIsoClock(line, stamp);
}

/// "7. Mär 2024", "7 Mar 09:15".
bool readDayFirst(Text line, Text first, Stamp &stamp)
{
    bool dotted = false;
    if (!readDay(first, stamp.time.day, dotted)) {
        return false;
    }
    stamp.time.month = monthOf(takeToken(line, stamp.end));
    return stamp.time.month != 0 && readYearOrClock(line, dotted, stamp);
}

/// "Mar  7 2024", "Mär  7 09:15".
bool readMonthFirst(Text line, Text first, Stamp &stamp)
{
    bool dotted = false;
    if (!readDay(takeToken(line, stamp.end), stamp.time.day, dotted)) {
        return false;
    }
    stamp.time.month = monthOf(first);
    return stamp.time.month != 0 && readYearOrClock(line, false, stamp);
}

} // namespace

bool readNumericDate(Text token, CivilTime &time)
{
    std::array<int, 3> fields {};
    std::array<std::size_t, 3> digits {};
    char separator = 0;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i == 1) {
            separator = token.empty() ? '\0' : token.front();
        }
        if (i > 0 && !takeByte(token, separator)) {
            return false;
        }
        const std::size_t before = token.size();
        if (!takeNumber(token, 4, fields[i])) {
            return false;
        }
        digits[i] = before - token.size();
    }
    if (!token.empty() || (separator != '-' && separator != '/' && separator != '.')
        || digits[1] > 2) {
        return false;
    }
    if (digits[0] == 4 && digits[2] <= 2) {
        time.year = fields[0];
        time.month = fields[1];
        time.day = fields[2];
        return true;
    }
    if (digits[0] > 2 || (digits[2] != 2 && digits[2] != 4)) {
        return false;
    }
    const bool dayFirst = separator == '.' || fields[0] > 12;
    time.day = fields[dayFirst ? 0 : 1];
    time.month = fields[dayFirst ? 1 : 0];
    time.year = fullYear(fields[2], digits[2]);
    return true;
}

bool applyHalfDay(Text mark, CivilTime &time)
{
    const bool morning = sameText(mark, "am") || sameText(mark, "a");
    if (!morning && !sameText(mark, "pm") && !sameText(mark, "p")) {
        return false;
    }
    time.hour = time.hour % 12 + (morning ? 0 : 12);
    return true;
}

std::optional<Entry::Precision> readClock(Text token, CivilTime &time)
{
    CivilTime read = time;
    read.second = 0;
    if (!takeNumber(token, 2, read.hour) || !takeByte(token, ':') || token.size() < 2
        || !takeNumber(token, 2, read.minute)) {
        return std::nullopt;
    }
    const bool seconds = takeByte(token, ':');
    if (seconds && !takeNumber(token, 2, read.second)) {
        return std::nullopt;
    }
    if (seconds && takeByte(token, '.')) {
        const std::size_t behind = token.find_first_not_of("0123456789");
        token.remove_prefix(behind == Text::npos ? token.size() : behind);
    }
    if (!token.empty() && !applyHalfDay(token, read)) {
        return std::nullopt;
    }
    time = read;
    return seconds ? Entry::Precision::Second : Entry::Precision::Minute;
}

std::optional<Stamp> readStamp(Text line, std::size_t at)
{
    const Text first = takeToken(line, at);
    if (first.empty()) {
        return std::nullopt;
    }
    Stamp stamp;
    stamp.end = at;
    if (!isDigit(first.front())) {
        return readMonthFirst(line, first, stamp) ? std::optional(stamp) : std::nullopt;
    }
    const bool isShort = first.size() <= 3; // a day: "7", "07", "07."
    return (isShort ? readDayFirst(line, first, stamp) : readIso(line, first, stamp))
        ? std::optional(stamp)
        : std::nullopt;
}

std::optional<SizeAndStamp> findSizeAndStamp(Text line, std::size_t at)
{
    while (true) {
        const Text token = takeToken(line, at);
        if (token.empty()) {
            return std::nullopt;
        }
        // Device numbers and negative sizes stand in this column too; they give the size 0.
        if (isDigit(token.front())
            || (token.front() == '-' && token.size() > 1 && isDigit(token[1]))) {
            if (const auto stamp = readStamp(line, at)) {
                return SizeAndStamp { readSize(token).value_or(0), *stamp };
            }
        }
    }
}

void putTime(const Stamp &stamp, const CivilTime &now, Entry &entry)
{
    entry.precision = stamp.precision;
    entry.yearInferred = !stamp.hasYear;
    if (!stamp.hasYear) {
        entry.time = inferYear(stamp.time, now);
    } else if (isValid(stamp.time)) {
        entry.time = stamp.time;
    }
}

} // namespace ftp::dialects
