#include "ftp/listing_dialects.h"

#include <algorithm>

namespace ftp {
namespace {

using namespace dialects;

/// Whether text begins with a lower-case word, without regard to case.
bool beginsWith(Text text, Text word) { return sameText(text.substr(0, word.size()), word); }

/// What type=VALUE makes of an entry.
/// @return false for the folder listed and its parent, which are no entries of it
bool readType(Text value, Entry &entry)
{
    if (sameText(value, "cdir") || sameText(value, "pdir")) {
        return false;
    }
    entry.type = entry.letter = '-'; // a second type replaces the first
    entry.target.clear();
    if (sameText(value, "dir")) {
        entry.type = entry.letter = 'd';
    } else if (beginsWith(value, "os.unix=slink") || beginsWith(value, "os.unix=symlink")) {
        entry.type = entry.letter = 'l';
        if (const std::size_t colon = value.find(':'); colon != Text::npos) {
            entry.target = value.substr(colon + 1);
        }
    }
    return true;
}

/// Reads "name=value;name=value;".
Verdict readFacts(Text facts, Entry &entry)
{
    while (!facts.empty()) {
        const std::size_t end = std::min(facts.find(';'), facts.size());
        const Text fact = facts.substr(0, end);
        facts.remove_prefix(std::min(end + 1, facts.size()));
        const std::size_t equals = fact.find('=');
        if (equals == Text::npos || equals == 0) {
            return Verdict::Foreign;
        }
        const Text name = fact.substr(0, equals);
        const Text value = fact.substr(equals + 1);
        if (sameText(name, "type")) {
            if (!readType(value, entry)) {
                return Verdict::Passed;
            }
        } else if (sameText(name, "size") || sameText(name, "sizd")) {
            entry.size = readSize(value).value_or(0);
        } else if (sameText(name, "modify")) {
            entry.time = parseTimeVal(value);
        } else if (sameText(name, "unix.mode")) {
            entry.permissions = readOctal(value);
        }
    }
    return Verdict::Entry;
}

/// One line: the facts, a blank, the name.
Verdict readLine(Text line, std::size_t /*number*/, Entry &entry)
{
    const std::size_t blank = line.find(' ');
    if (blank == Text::npos || blank + 1 == line.size() || isBlankLine(line)) {
        return Verdict::Foreign;
    }
    const Verdict verdict = readFacts(line.substr(0, blank), entry);
    entry.name = line.substr(blank + 1);
    entry.utc = true;
    return verdict;
}

} // namespace

ListingParser mlsdParser(ListingParser::Take take) { return { readLine, std::move(take) }; }

} // namespace ftp
