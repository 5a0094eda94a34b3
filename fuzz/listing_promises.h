#pragma once

#include "ftp/listing.h"
#include "require.h"

#include <algorithm>
#include <string_view>

/// What every listing promises, whatever its text was.
inline void requirePromises(const ftp::Listing &listing, std::string_view bytes)
{
    const auto ends = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n'));
    REQUIRE(listing.understood || listing.entries.empty());
    REQUIRE(!listing.understood || bytes.find_first_not_of(" \t\r\n") != std::string_view::npos);
    std::size_t line = 0;
    for (const ftp::Entry &entry : listing.entries) {
        REQUIRE(entry.line > line && entry.line <= ends + 1);
        line = entry.line;
        REQUIRE(!entry.name.empty());
        REQUIRE(entry.name.find('\n') == std::string::npos);
        if (bytes.size() < 2000) { // the searches would take most of the time
            REQUIRE(bytes.find(entry.name) != std::string_view::npos); // raw, nothing invented
            REQUIRE(bytes.find(entry.target) != std::string_view::npos);
        }
        REQUIRE(entry.type == 'd' || entry.type == 'l' || entry.type == '-');
        REQUIRE(entry.type == 'l' || entry.target.empty());
        REQUIRE(entry.size >= 0);
        REQUIRE(entry.permissions >= -1 && entry.permissions <= 07777);
        REQUIRE(!entry.time || ftp::isValid(*entry.time));
    }
}
