#include "ftp/listing_dialects.h"

#include <algorithm>

namespace ftp::dialects {
namespace {

void readFact(Text fact, Entry &entry)
{
    if (fact == "/") {
        entry.type = entry.letter = 'd';
    } else if (fact.starts_with("up")) {
        entry.permissions = readOctal(fact.substr(2));
    } else if (fact.starts_with("s")) {
        entry.size = readSize(fact.substr(1)).value_or(0);
    } else if (fact.starts_with("m")) {
        if (const auto seconds = readSize(fact.substr(1))) {
            entry.time = fromEpoch(*seconds);
        }
    }
}

} // namespace

Verdict parseEplf(Text line, Entry &entry)
{
    if (line.empty() || line.front() != '+') {
        return Verdict::Foreign;
    }
    const std::size_t tab = line.find('\t');
    if (tab == Text::npos || tab + 1 == line.size()) {
        return Verdict::Foreign;
    }
    Text facts = line.substr(1, tab - 1);
    while (!facts.empty()) {
        const std::size_t end = std::min(facts.find(','), facts.size());
        readFact(facts.substr(0, end), entry);
        facts.remove_prefix(std::min(end + 1, facts.size()));
    }
    entry.name = line.substr(tab + 1);
    entry.utc = true;
    return Verdict::Entry;
}

} // namespace ftp::dialects
