#include "ftp/listing_dialects.h"

#include <utility>

namespace ftp::dialects {
namespace {

/// Whether a token is a name with its version, "INDEX.HTML;3".
bool isName(Text token)
{
    const std::size_t mark = token.rfind(';');
    return mark != Text::npos && mark > 0 && readSize(token.substr(mark + 1)).has_value();
}

/// Reads "20-NOV-2026".
bool readDate(Text token, CivilTime &time)
{
    const std::size_t dash = token.find('-');
    if (dash == Text::npos || dash > 2 || token.size() != dash + 9 || token[dash + 4] != '-') {
        return false;
    }
    const auto day = readSize(token.substr(0, dash));
    const auto year = readSize(token.substr(dash + 5));
    time.month = monthOf(token.substr(dash + 1, 3));
    time.day = static_cast<int>(day.value_or(0));
    time.year = static_cast<int>(year.value_or(0));
    return day && year && time.month != 0;
}

/// Reads "used/allocated" or "used" in blocks of 512 bytes.
std::optional<std::int64_t> readBlocks(Text token)
{
    constexpr std::int64_t blockSize = 512;
    constexpr std::int64_t mostBlocks = INT64_MAX / blockSize;
    const auto used = readSize(token.substr(0, token.find('/')));
    if (!used) {
        return std::nullopt;
    }
    return *used > mostBlocks ? INT64_MAX : *used * blockSize;
}

/// A folder is the file NAME.DIR;1; its name in commands is NAME. Files lose their version.
void putName(Text token, Entry &entry)
{
    constexpr Text folderEnd = ".DIR";
    Text name = token.substr(0, token.rfind(';'));
    const bool longEnough = name.size() > folderEnd.size();
    if (longEnough && sameText(name.substr(name.size() - folderEnd.size()), folderEnd)) {
        entry.type = entry.letter = 'd';
        name.remove_suffix(folderEnd.size());
    }
    entry.name = name;
}

bool isHeading(Text line)
{
    return (line.starts_with("Directory ") && line.ends_with("]")) || line.starts_with("Total of ")
        || line.starts_with("%DIRECT-W-NOFILES");
}

} // namespace

Verdict VmsReader::parse(Text line, std::size_t number, Entry &entry)
{
    if (isHeading(line)) {
        return Verdict::Passed;
    }
    const std::string begun = std::exchange(m_name, {});
    std::size_t at = 0;
    Text name = takeToken(line, at);
    const bool whole = isName(name);
    if (!whole) {
        name = number == m_nameLine + 1 ? Text(begun) : Text();
        at = 0;
    }
    const Text sizeToken = takeToken(line, at);
    if (name.empty() || sizeToken.empty()) {
        if (whole) {
            m_name = name; // the rest stands on the next line
            m_nameLine = number;
        }
        return Verdict::Foreign;
    }
    const auto size = readBlocks(sizeToken);
    Stamp stamp;
    if (!size || !readDate(takeToken(line, at), stamp.time)) {
        return Verdict::Foreign;
    }
    const auto precision = readClock(takeToken(line, at), stamp.time);
    if (!precision) {
        return Verdict::Foreign;
    }
    stamp.precision = *precision;
    entry.size = *size;
    entry.exact = false;
    putName(name, entry);
    putTime(stamp, {}, entry);
    // Older versions stand below the newest, which is the one that commands without one mean.
    const bool older = entry.type != 'd' && entry.name == m_last;
    m_last = entry.type == 'd' ? std::string() : entry.name;
    return older ? Verdict::Passed : Verdict::Entry;
}

} // namespace ftp::dialects
