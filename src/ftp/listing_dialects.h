#pragma once

#include "ftp/listing.h"

/// The insides of listing.h: helpers and one function per dialect of LIST.
namespace ftp::dialects {

using Text = std::string_view;

inline bool isDigit(char c) { return c >= '0' && c <= '9'; }
inline bool isBlank(char c) { return c == ' ' || c == '\t'; }
inline char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Whether two texts are equal without regard to the case of ASCII letters.
inline bool sameText(Text a, Text b)
{
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (lower(a[i]) != lower(b[i])) {
            return false;
        }
    }
    return true;
}

/// Whether a line holds nothing to see; a CR too many at its end is nothing.
inline bool isBlankLine(Text line) { return line.find_first_not_of(" \t\r") == Text::npos; }

/// The next run without blanks from at on, empty at the line's end; at then lies behind it.
Text takeToken(Text line, std::size_t &at);

/// Text from at on, without its first blanks, of which at most the given number are dropped.
Text withoutBlanks(Text line, std::size_t at, std::size_t most);

/// Value of a run of digits, saturated at 2^63-1; nothing when text is empty or holds another byte.
std::optional<std::int64_t> readSize(Text text);

/// Value of octal digits, only the lowest twelve bits; -1 when text is empty or holds another byte.
int readOctal(Text text);

/// 1 to 12 for the name of a month in one of ten languages, in full or shortened to three letters
/// or more, with or without a dot, in UTF-8 or Latin-1; 0 when it is none.
int monthOf(Text name);

/// Reads a whole date of numbers into year, month and day, whether it exists or not: yyyy-mm-dd
/// with any of "-/.", dd.mm.yy, mm/dd/yy, mm-dd-yy, years with two or four digits.
bool readNumericDate(Text token, CivilTime &time);

/// Reads h:mm or h:mm:ss, with a fraction that is dropped, with AM or PM behind it.
/// @return how exactly it told the time; nothing when token is no time
std::optional<Entry::Precision> readClock(Text token, CivilTime &time);

/// The afternoon of a clock with AM and PM.
/// @return false when mark is neither "AM", "PM", "A" nor "P"
bool applyHalfDay(Text mark, CivilTime &time);

/// A date column as found in a line.
struct Stamp {
    CivilTime time; ///< perhaps impossible
    Entry::Precision precision = Entry::Precision::Day;
    bool hasYear = true;
    std::size_t end = 0; ///< place in the line behind the column and its padding
};

/// Reads a date column of ls at a place of a line, in any of its orders and languages.
std::optional<Stamp> readStamp(Text line, std::size_t at);

/// A size and the date column behind it.
struct SizeAndStamp {
    std::int64_t size = 0;
    Stamp stamp;
};

/// Finds the first number that is followed by a date column, from a place of a line on.
std::optional<SizeAndStamp> findSizeAndStamp(Text line, std::size_t at);

/// Puts a date into an entry, completed by its year, or none when it does not exist.
void putTime(const Stamp &stamp, const CivilTime &now, Entry &entry);

using Verdict = ListingParser::Verdict;

/// "total 12" in several languages.
bool isTotal(Text line);

/// Unix ls in its many forms; also Mac OS and the servers that imitate ls.
Verdict parseUnix(Text line, const CivilTime &now, Entry &entry);
/// The format of dir, as IIS sends it.
Verdict parseMsDos(Text line, Entry &entry);
/// Type, rights in square brackets, owner, size, date, name.
Verdict parseNetWare(Text line, const CivilTime &now, Entry &entry);
/// "Easily parsed LIST format": "+facts," TAB name.
Verdict parseEplf(Text line, Entry &entry);
/// Owner, size, date, time, *TYPE, name.
Verdict parseOs400(Text line, Entry &entry);
/// Size, attributes, date, time, name.
Verdict parseOs2(Text line, Entry &entry);
/// Size, date as MON-DD-YYYY, time, name, <DIR>.
Verdict parseVxWorks(Text line, Entry &entry);

/// VMS, whose long names stand on a line of their own.
class VmsReader {
public:
    Verdict parse(Text line, std::size_t number, Entry &entry);

private:
    std::string m_name; ///< name from the line before
    std::size_t m_nameLine = 0;
    std::string m_last; ///< name of the last file
};

/// MVS, whose heading says what the columns are.
class MvsReader {
public:
    Verdict parse(Text line, Entry &entry);

private:
    enum class Table { None, DataSets, Members, LoadModules };
    Table m_table = Table::None;
};

} // namespace ftp::dialects
