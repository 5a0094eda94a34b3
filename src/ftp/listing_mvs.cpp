#include "ftp/listing_dialects.h"

#include <array>

namespace ftp::dialects {
namespace {

/// The words of a line, as many as any table has columns.
struct Words {
    explicit Words(Text line)
    {
        std::size_t at = 0;
        while (count < word.size() && !(word[count] = takeToken(line, at)).empty()) {
            ++count;
        }
    }
    std::array<Text, 12> word {};
    std::size_t count = 0;
};

/// Organisations of data sets; one that begins with PO is a library and opened like a folder.
bool isOrganisation(Text word)
{
    for (const Text known : { "PS", "PO", "DA", "VS", "IS", "GDG", "HFS", "ZFS", "**NONE**" }) {
        if (word.starts_with(known)) {
            return true;
        }
    }
    return false;
}

/// A data set: volume, unit, date and six more columns, or words in their place. Tracks and
/// records are no bytes, so the size stays 0.
Verdict readDataSet(const Words &row, Entry &entry)
{
    const auto &word = row.word;
    if (row.count < 2) {
        return Verdict::Foreign;
    }
    const Text name = word[row.count - 1];
    const Text before = word[row.count - 2];
    const bool pseudo
        = row.count == 3 && sameText(word[0], "pseudo") && sameText(word[1], "directory");
    const bool elsewhere
        = (row.count == 2 && (sameText(word[0], "migrated") || sameText(word[0], "archived")))
        || (row.count == 3 && sameText(word[1], "tape"));
    if (!pseudo && !elsewhere && (row.count < 4 || !isOrganisation(before))) {
        return Verdict::Foreign;
    }
    if (pseudo || (!elsewhere && before.starts_with("PO"))) {
        entry.type = entry.letter = 'd';
    }
    Stamp stamp;
    if (!elsewhere && readNumericDate(word[2], stamp.time)) {
        putTime(stamp, {}, entry);
    }
    entry.name = name;
    return Verdict::Entry;
}

bool isMemberName(Text word)
{
    return !word.empty() && word.size() <= 8 && !isDigit(word.front())
        && word.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789#@$") == Text::npos;
}

/// A member: name, version, created, changed with time, three counts of lines, user; or the
/// name alone.
Verdict readMember(const Words &row, Entry &entry)
{
    if (!isMemberName(row.word[0])) {
        return Verdict::Foreign;
    }
    Stamp stamp;
    if (row.count >= 5 && readNumericDate(row.word[3], stamp.time)) {
        if (const auto precision = readClock(row.word[4], stamp.time)) {
            stamp.precision = *precision;
        }
        putTime(stamp, {}, entry);
    } else if (row.count != 1) {
        return Verdict::Foreign;
    }
    entry.name = row.word[0];
    return Verdict::Entry;
}

Verdict readLoadModule(const Words &row, Entry &entry)
{
    if (!isMemberName(row.word[0])) {
        return Verdict::Foreign;
    }
    entry.name = row.word[0];
    return Verdict::Entry;
}

} // namespace

Verdict MvsReader::parse(Text line, Entry &entry)
{
    const Words row(line);
    if (row.count == 0) {
        return Verdict::Foreign;
    }
    if (row.word[0] == "Volume" && row.word[1] == "Unit") {
        m_table = Table::DataSets;
        return Verdict::Passed;
    }
    if (row.word[0] == "Name" && row.word[1] == "VV.MM") {
        m_table = Table::Members;
        return Verdict::Passed;
    }
    if (row.word[0] == "Name" && row.word[1] == "Size" && row.word[2] == "TTR") {
        m_table = Table::LoadModules;
        return Verdict::Passed;
    }
    switch (m_table) {
    case Table::DataSets:
        return readDataSet(row, entry);
    case Table::Members:
        return readMember(row, entry);
    case Table::LoadModules:
        return readLoadModule(row, entry);
    case Table::None:
        break;
    }
    return Verdict::Foreign;
}

} // namespace ftp::dialects
