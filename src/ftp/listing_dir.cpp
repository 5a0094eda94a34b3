#include "ftp/listing_dialects.h"

/// Dialects of systems with drive letters and of small ones: columns of fixed order, no rights.
namespace ftp::dialects {
namespace {

/// Reads "date time" at a place, perhaps with AM or PM as a word of its own.
std::optional<Stamp> readDateAndClock(Text line, std::size_t at)
{
    Stamp stamp;
    if (!readNumericDate(takeToken(line, at), stamp.time)) {
        return std::nullopt;
    }
    const auto precision = readClock(takeToken(line, at), stamp.time);
    if (!precision) {
        return std::nullopt;
    }
    stamp.precision = *precision;
    stamp.end = at;
    if (const Text mark = takeToken(line, at); mark.size() == 2 && applyHalfDay(mark, stamp.time)) {
        stamp.end = at;
    }
    return stamp;
}

Verdict fill(Entry &entry, Text name, const Stamp &stamp)
{
    if (name.empty()) {
        return Verdict::Passed;
    }
    entry.name = name;
    putTime(stamp, {}, entry);
    return Verdict::Entry;
}

} // namespace

Verdict parseMsDos(Text line, Entry &entry)
{
    if (line.empty() || !isDigit(line.front())) {
        return Verdict::Foreign;
    }
    const std::optional<Stamp> stamp = readDateAndClock(line, 0);
    if (!stamp) {
        return Verdict::Foreign;
    }
    std::size_t at = stamp->end;
    const Text column = takeToken(line, at);
    if (const auto size = readSize(column)) {
        entry.size = *size;
        return fill(entry, withoutBlanks(line, at, 1), *stamp);
    }
    constexpr std::size_t columnWidth = 15; // "<DIR>" and ten blanks; more belong to the name
    if (column.size() < 3 || column.size() > columnWidth || column.front() != '<'
        || column.back() != '>') {
        return Verdict::Foreign;
    }
    entry.type = entry.letter = 'd';
    return fill(entry, withoutBlanks(line, at, columnWidth - column.size()), *stamp);
}

Verdict parseOs2(Text line, Entry &entry)
{
    std::size_t at = 0;
    const auto size = readSize(takeToken(line, at));
    if (!size) {
        return Verdict::Foreign;
    }
    std::size_t behind = at;
    for (Text word = takeToken(line, behind); !word.empty() && !isDigit(word.front());
         word = takeToken(line, behind)) {
        if (sameText(word, "dir")) {
            entry.type = entry.letter = 'd';
        } else if (word.find_first_not_of("ARHSD") != Text::npos) {
            return Verdict::Foreign;
        }
        at = behind;
    }
    const std::optional<Stamp> stamp = readDateAndClock(line, at);
    if (!stamp) {
        return Verdict::Foreign;
    }
    entry.size = entry.type == 'd' ? 0 : *size;
    return fill(entry, withoutBlanks(line, stamp->end, 2), *stamp);
}

Verdict parseVxWorks(Text line, Entry &entry)
{
    std::size_t at = 0;
    const Text first = takeToken(line, at);
    const Text date = takeToken(line, at);
    if (first == "size" && date == "date") {
        return Verdict::Passed;
    }
    const auto size = readSize(first);
    const std::size_t dash = date.find('-');
    if (!size || dash == Text::npos || date.size() != dash + 8
        || date[dash + 3] != '-') { // MON-DD-YYYY
        return Verdict::Foreign;
    }
    Stamp stamp;
    const auto day = readSize(date.substr(dash + 1, 2));
    const auto year = readSize(date.substr(dash + 4));
    const auto precision = readClock(takeToken(line, at), stamp.time);
    stamp.time.month = monthOf(date.substr(0, dash));
    if (!day || !year || !precision || stamp.time.month == 0) {
        return Verdict::Foreign;
    }
    stamp.time.day = static_cast<int>(*day);
    stamp.time.year = static_cast<int>(*year);
    stamp.precision = *precision;
    Text name = withoutBlanks(line, at, 3);
    constexpr Text mark = "<DIR>";
    if (const Text trimmed = name.substr(0, name.find_last_not_of(' ') + 1);
        trimmed.ends_with(mark)) {
        entry.type = entry.letter = 'd';
        name = trimmed.substr(0, trimmed.size() - mark.size());
        name = name.substr(0, name.find_last_not_of(' ') + 1);
    }
    entry.size = *size;
    return fill(entry, name, stamp);
}

Verdict parseOs400(Text line, Entry &entry)
{
    std::size_t at = 0;
    takeToken(line, at); // owner
    std::size_t behind = at;
    Stamp stamp;
    bool dated = false;
    if (const auto size = readSize(takeToken(line, behind))) {
        const std::optional<Stamp> read = readDateAndClock(line, behind);
        if (!read) {
            return Verdict::Foreign;
        }
        stamp = *read;
        dated = true;
        entry.size = *size;
        at = stamp.end;
    }
    const Text type = takeToken(line, at);
    if (type.size() < 4 || type.front() != '*'
        || type.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789", 1) != Text::npos) {
        return Verdict::Foreign;
    }
    Text name = withoutBlanks(line, at, Text::npos);
    const bool slash = name.size() > 1 && name.back() == '/';
    if (slash) {
        name.remove_suffix(1);
    }
    if (slash || type == "*DIR" || type == "*DDIR" || type == "*LIB" || type == "*FLR") {
        entry.type = entry.letter = 'd';
    }
    entry.name = name;
    if (dated) {
        putTime(stamp, {}, entry);
    }
    return name.empty() ? Verdict::Passed : Verdict::Entry;
}

} // namespace ftp::dialects
