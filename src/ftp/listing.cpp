#include "ftp/listing.h"

#include "ftp/listing_dialects.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace ftp {
namespace dialects {

Text takeToken(Text line, std::size_t &at)
{
    while (at < line.size() && isBlank(line[at])) {
        ++at;
    }
    const std::size_t begin = at;
    while (at < line.size() && !isBlank(line[at])) {
        ++at;
    }
    return line.substr(begin, at - begin);
}

Text withoutBlanks(Text line, std::size_t at, std::size_t most)
{
    for (; most > 0 && at < line.size() && line[at] == ' '; --most) {
        ++at;
    }
    return line.substr(std::min(at, line.size()));
}

std::optional<std::int64_t> readSize(Text text)
{
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    if (text.empty()) {
        return std::nullopt;
    }
    std::int64_t value = 0;
    for (const char c : text) {
        if (!isDigit(c)) {
            return std::nullopt;
        }
        const int digit = c - '0';
        value = value > (largest - digit) / 10 ? largest : value * 10 + digit;
    }
    return value;
}

int readOctal(Text text)
{
    unsigned value = 0;
    if (text.starts_with("0o")) { // as pyftpdlib writes it
        text.remove_prefix(2);
    }
    for (const char c : text) {
        if (c < '0' || c > '7') {
            return -1;
        }
        value = (value << 3U | static_cast<unsigned>(c - '0')) & 07777U;
    }
    return text.empty() ? -1 : static_cast<int>(value);
}

} // namespace dialects

namespace {

using namespace dialects;

/// Longer than any path that a command may carry, with whatever stands beside it. Without a bound a
/// line that never ends would fill the memory.
constexpr std::size_t longestLine = 64 * 1024;

enum class Dialect { Unix, MsDos, NetWare, Eplf, Vms, Mvs, Os400, Os2, VxWorks };

/// Gives each line to the dialect of the line before, and to the others only when that one does
/// not know it: a wrong guess at the first line then costs nothing.
class ListReader {
public:
    explicit ListReader(const CivilTime &now)
        : m_now(now)
    {
    }

    Verdict read(Text line, std::size_t number, Entry &entry)
    {
        if (isBlankLine(line)) {
            return Verdict::Foreign;
        }
        const Dialect last = m_dialect;
        Verdict verdict = readAs(last, line, number, entry);
        for (const Dialect dialect : all) {
            if (verdict != Verdict::Foreign) {
                break;
            }
            if (dialect != last) {
                entry = Entry();
                m_dialect = dialect;
                verdict = readAs(dialect, line, number, entry);
            }
        }
        if (verdict == Verdict::Foreign) {
            m_dialect = last;
        }
        return verdict;
    }

private:
    static constexpr std::array all { Dialect::Unix,  Dialect::MsDos, Dialect::NetWare,
                                      Dialect::Eplf,  Dialect::Vms,   Dialect::Mvs,
                                      Dialect::Os400, Dialect::Os2,   Dialect::VxWorks };

    Verdict readAs(Dialect dialect, Text line, std::size_t number, Entry &entry)
    {
        switch (dialect) {
        case Dialect::Unix:
            return parseUnix(line, m_now, entry);
        case Dialect::MsDos:
            return parseMsDos(line, entry);
        case Dialect::NetWare:
            return parseNetWare(line, m_now, entry);
        case Dialect::Eplf:
            return parseEplf(line, entry);
        case Dialect::Vms:
            return m_vms.parse(line, number, entry);
        case Dialect::Mvs:
            return m_mvs.parse(line, entry);
        case Dialect::Os400:
            return parseOs400(line, entry);
        case Dialect::Os2:
            return parseOs2(line, entry);
        case Dialect::VxWorks:
            return parseVxWorks(line, entry);
        }
        return Verdict::Foreign;
    }

    CivilTime m_now;
    Dialect m_dialect = Dialect::Unix;
    VmsReader m_vms;
    MvsReader m_mvs;
};

} // namespace

void ListingParser::takeLine(std::string_view line)
{
    ++m_number;
    if (line.size() > longestLine) {
        return;
    }
    // One CR only: a second would be part of the name, and that name is another file's.
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    Entry entry;
    const Verdict verdict = m_reader(line, m_number, entry);
    m_understood = m_understood || verdict != Verdict::Foreign;
    if (verdict == Verdict::Entry) {
        entry.line = m_number;
        ++m_entries;
        m_take(std::move(entry));
    }
}

void ListingParser::read(std::string_view block)
{
    while (!block.empty()) {
        const std::size_t end = block.find('\n');
        const Text line = block.substr(0, end);
        block.remove_prefix(end == Text::npos ? block.size() : end + 1);
        if (end != Text::npos && m_begun.empty()) {
            takeLine(line);
            continue;
        }
        m_begun += line.substr(0, longestLine + 1 - m_begun.size()); // enough to know its length
        if (end != Text::npos) {
            takeLine(std::exchange(m_begun, {}));
        }
    }
}

void ListingParser::finish()
{
    if (!m_begun.empty()) {
        takeLine(std::exchange(m_begun, {}));
    }
}

ListingParser listParser(const CivilTime &now, ListingParser::Take take)
{
    return { [reader = ListReader(now)](Text line, std::size_t number, Entry &entry) mutable {
                return reader.read(line, number, entry);
            },
             std::move(take) };
}

namespace {

template <class Make> Listing wholeListing(std::string_view bytes, Make make)
{
    Listing listing;
    ListingParser parser
        = make([&listing](Entry &&entry) { listing.entries.push_back(std::move(entry)); });
    parser.read(bytes);
    parser.finish();
    listing.understood = parser.understood();
    return listing;
}

} // namespace

Listing parseList(std::string_view bytes, const CivilTime &now)
{
    return wholeListing(bytes, [&now](auto take) { return listParser(now, std::move(take)); });
}

Listing parseMlsd(std::string_view bytes) { return wholeListing(bytes, mlsdParser); }

} // namespace ftp
