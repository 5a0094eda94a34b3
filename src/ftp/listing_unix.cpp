#include "ftp/listing_dialects.h"

#include <array>

namespace ftp::dialects {
namespace {

constexpr std::size_t modeLength = 10;

/// Whether ten bytes look like "-rw-r--r--".
bool isMode(Text mode)
{
    const char type = lower(mode.front());
    if ((type < 'a' || type > 'z') && type != '-' && type != '?') {
        return false;
    }
    return mode.find_first_not_of("rwxsStTlL-", 1) == Text::npos;
}

int permissionsOf(Text mode)
{
    int permissions = 0;
    for (std::size_t i = 1; i < modeLength; ++i) {
        const char c = mode[i];
        const bool set = c != '-' && c != 'S' && c != 'T' && c != 'l' && c != 'L';
        permissions = permissions * 2 + (set ? 1 : 0);
    }
    constexpr std::array<std::size_t, 3> specials { 3, 6, 9 }; // set-uid, set-gid, sticky
    for (std::size_t i = 0; i < specials.size(); ++i) {
        const char c = mode[specials[i]];
        if (c != '-' && c != 'x' && c != 'r' && c != 'w') {
            permissions |= 04000 >> i;
        }
    }
    return permissions;
}

/// Place of the mode: at the begin, or behind the numbers of ls -i and ls -s.
std::size_t modePlace(Text line)
{
    std::size_t place = 0;
    for (int columns = 0; columns < 2; ++columns) {
        std::size_t end = place;
        const Text token = takeToken(line, end);
        if (!readSize(token)) {
            break;
        }
        place = end;
    }
    while (place < line.size() && isBlank(line[place])) {
        ++place;
    }
    return place;
}

/// Divides "name -> target" at the arrow behind which size bytes follow, else at the first one.
void splitLink(Entry &entry)
{
    constexpr Text arrow = " -> ";
    const Text whole = entry.name;
    std::size_t place = whole.find(arrow, 1);
    if (place == Text::npos) {
        return;
    }
    const auto size = static_cast<std::uint64_t>(entry.size);
    if (size > 0 && size + arrow.size() < whole.size()) {
        const std::size_t fitting = whole.size() - static_cast<std::size_t>(size) - arrow.size();
        if (whole.substr(fitting, arrow.size()) == arrow) {
            place = fitting;
        }
    }
    entry.target = whole.substr(place + arrow.size());
    entry.name.resize(place);
}

} // namespace

bool isTotal(Text line)
{
    constexpr std::array<Text, 8> words { "total",  "insgesamt", "gesamt",  "totale",
                                          "totaal", "totalt",    "samtals", "summa" };
    std::size_t at = 0;
    const Text word = takeToken(line, at);
    const Text number = takeToken(line, at);
    const bool numeric = !number.empty() && isDigit(number.front()) && takeToken(line, at).empty();
    for (const Text known : words) {
        if (numeric && sameText(word, known)) {
            return true;
        }
    }
    return false;
}

Verdict parseUnix(Text line, const CivilTime &now, Entry &entry)
{
    const std::size_t place = modePlace(line);
    if (line.size() < place + modeLength + 1 || !isMode(line.substr(place, modeLength))) {
        return isTotal(line) ? Verdict::Passed : Verdict::Foreign;
    }
    const Text mode = line.substr(place, modeLength);
    std::size_t at = place + modeLength;
    if (line[at] == '+' || line[at] == '.'
        || line[at] == '@') { // marks of ACL, SELinux, attributes
        ++at;
    }
    // The number of links may stick to the mode.
    if (at < line.size() && !isBlank(line[at]) && !isDigit(line[at])) {
        return Verdict::Foreign;
    }
    const std::optional<SizeAndStamp> found = findSizeAndStamp(line, at);
    if (!found) {
        return Verdict::Foreign;
    }
    if (found->stamp.end + 1 >= line.size()) {
        return Verdict::Passed;
    }
    entry.letter = mode.front();
    entry.type = entry.letter == 'd' || entry.letter == 'l' ? entry.letter : '-';
    entry.size = entry.letter == 'c' || entry.letter == 'b' ? 0 : found->size;
    entry.permissions = permissionsOf(mode);
    entry.name = line.substr(found->stamp.end + 1);
    putTime(found->stamp, now, entry);
    if (entry.type == 'l') {
        splitLink(entry);
    }
    return Verdict::Entry;
}

Verdict parseNetWare(Text line, const CivilTime &now, Entry &entry)
{
    std::size_t at = 0;
    const Text type = takeToken(line, at);
    const Text rights = takeToken(line, at);
    if ((type != "d" && type != "-") || rights.size() < 2 || rights.front() != '['
        || rights.back() != ']') {
        return Verdict::Foreign;
    }
    const std::optional<SizeAndStamp> found = findSizeAndStamp(line, at);
    if (!found) {
        return Verdict::Foreign;
    }
    // Some versions put several blanks in front of the name, so that its own cannot be told.
    const Text name = withoutBlanks(line, found->stamp.end, Text::npos);
    if (name.empty()) {
        return Verdict::Passed;
    }
    entry.type = entry.letter = type.front();
    entry.size = found->size;
    entry.name = name;
    putTime(found->stamp, now, entry);
    return Verdict::Entry;
}

} // namespace ftp::dialects
