#include "ftp/listing.h"

#include "ftp/listing_dialects.h"

#include <algorithm>
#include <array>
#include <limits>

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

Listing parseList(std::string_view bytes, const CivilTime &now)
{
    constexpr std::size_t usualLine = 64;
    Listing listing;
    listing.entries.reserve(bytes.size() / usualLine);
    ListReader reader(now);
    forEachLine(bytes, [&](Text line, std::size_t number) {
        Entry entry;
        const Verdict verdict = reader.read(line, number, entry);
        listing.understood = listing.understood || verdict != Verdict::Foreign;
        if (verdict == Verdict::Entry) {
            entry.line = number;
            listing.entries.push_back(std::move(entry));
        }
    });
    return listing;
}

} // namespace ftp
