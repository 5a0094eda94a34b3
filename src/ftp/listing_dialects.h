#pragma once

#include "ftp/listing.h"

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

/// Calls take(line, number) for every line, its end (LF or CR LF) taken off; numbers count from 1.
template <class Take> void forEachLine(Text bytes, Take take)
{
    std::size_t number = 0;
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        Text line = bytes.substr(0, end);
        bytes.remove_prefix(end == Text::npos ? bytes.size() : end + 1);
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        take(line, ++number);
    }
}

/// Value of a run of digits, saturated at 2^63-1; nothing when text is empty or holds another byte.
std::optional<std::int64_t> readSize(Text text);

/// Value of octal digits, only the lowest twelve bits; -1 when text is empty or holds another byte.
int readOctal(Text text);

/// What a dialect made of a line.
enum class Verdict {
    Foreign, ///< not of this dialect
    Passed, ///< of this dialect, but no entry (heading, total, first half of a wrapped entry)
    Entry, ///< the entry is filled, except for its line number
};

/// "Easily parsed LIST format": "+facts," TAB name.
Verdict parseEplf(Text line, Entry &entry);

} // namespace ftp::dialects
