#pragma once

#include "ftp/civiltime.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ftp {

/// One entry of a listing, as the server gave it. "." and ".." of a LIST are entries like others.
struct Entry {
    /// How exactly the listing told the time.
    enum class Precision { Second, Minute, Day };

    /// Raw bytes as received, to be sent back unchanged; never empty, may be unsafe.
    std::string name;
    char type = '-'; ///< 'd' folder, 'l' link, '-' anything else
    std::int64_t size = 0; ///< bytes, 0 where the dialect gives none, saturated at 2^63-1
    bool exact = true; ///< of size; VMS counts blocks, and its files may be somewhat shorter
    std::optional<CivilTime> time; ///< as printed; nothing when absent or impossible
    Precision precision = Precision::Second; ///< of time
    bool utc = false; ///< time is UTC (MLSD, EPLF), else the server's unknown clock
    bool yearInferred = false; ///< the listing gave no year
    int permissions = -1; ///< 0 to 07777, -1 when the dialect has none
    std::string target; ///< raw target of a link, empty when unknown
    char letter = '-'; ///< the type letter as received, for example 'c', 'p', 's'
    std::size_t line = 0; ///< number of the line that completed the entry, from 1
};

/// What became of a listing's text.
struct Listing {
    std::vector<Entry> entries; ///< in the order of the lines
    /// The text is of a known dialect, even without any entry; false for a blank text and for one
    /// of which no line was understood.
    bool understood = false;
};

/// Reads a listing while it arrives, in blocks that may be cut anywhere.
class ListingParser {
public:
    /// Hears of every entry as soon as its line is complete.
    using Take = std::function<void(Entry &&)>;
    /// What a dialect makes of one line, its end taken off; line numbers count from 1.
    enum class Verdict {
        Foreign, ///< not of this dialect, or not enough of it to tell
        Passed, ///< of this dialect, but no entry (heading, total)
        Entry, ///< the entry is filled, except for its line number
    };
    using Reader = std::function<Verdict(std::string_view line, std::size_t number, Entry &entry)>;

    ListingParser(Reader reader, Take take)
        : m_reader(std::move(reader))
        , m_take(std::move(take))
    {
    }
    /// The next bytes of the text.
    void read(std::string_view block);
    /// The text is over; its last line may have no end.
    void finish();
    /// As Listing::understood, of what was read so far.
    [[nodiscard]] bool understood() const { return m_understood; }
    /// Entries told so far.
    [[nodiscard]] std::size_t entries() const { return m_entries; }
    /// The text stopped in the middle of a line so far.
    [[nodiscard]] bool inLine() const { return !m_begun.empty(); }

private:
    void takeLine(std::string_view line);

    Reader m_reader;
    Take m_take;
    std::string m_begun; ///< a line whose end is still to come, or what is kept of it
    std::size_t m_number = 0, m_entries = 0;
    bool m_understood = false;
};

/// Reads LIST, see parseList().
[[nodiscard]] ListingParser listParser(const CivilTime &now, ListingParser::Take take);
/// Reads MLSD, see parseMlsd().
[[nodiscard]] ListingParser mlsdParser(ListingParser::Take take);

/// Reads the text of LIST in any known dialect: Unix ls with its many columns and languages,
/// MS-DOS, NetWare, EPLF, VMS, MVS, OS/400, OS/2, VxWorks, Mac OS. Lines end with CR LF or LF;
/// lines that are no entries are passed over.
/// @param now  the time in the server's clock, for dates without a year.
[[nodiscard]] Listing parseList(std::string_view bytes, const CivilTime &now);

/// Reads the text of MLSD (RFC 3659, section 7); the entries cdir and pdir are passed over.
[[nodiscard]] Listing parseMlsd(std::string_view bytes);

} // namespace ftp
