#pragma once

#include "ftp/listing.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ftp {

/// What the work on a whole tree needs to know of an entry.
struct TreeEntry {
    std::string_view name; ///< raw bytes; of the listing, as long as that lives
    char type = '-'; ///< as Entry::type
    std::int64_t size = 0; ///< bytes
    bool exact = true; ///< as Entry::exact
    std::int64_t time = 0; ///< as listed, seconds since 1970; 0 unknown
    bool utc = false; ///< of time; else it is by the server's unknown clock
    bool clock = false; ///< time is more exact than a day

    /// The folder itself or its parent.
    [[nodiscard]] bool isDot() const { return name == "." || name == ".."; }
};

/// The entries of a folder in little memory, some 20 bytes and the name for each: a tree may have
/// hundreds of thousands in one folder.
class TreeListing {
public:
    /// A place in front of an entry.
    struct Position {
        std::size_t block = 0, byte = 0;
    };

    void add(const Entry &entry);
    /// The entry at a place, which moves behind it; nothing at the end.
    [[nodiscard]] std::optional<TreeEntry> next(Position &at) const;
    /// Whether there are folders besides the folder itself and its parent.
    [[nodiscard]] bool hasFolders() const { return m_folders; }
    /// Some servers follow links in machine listings, and a link to a folder looks like a folder
    /// there. What LIST shows as a link is one.
    void markLinks(const TreeListing &plain);

private:
    /// Written before every name.
    struct Head {
        std::int64_t size, time;
        std::uint32_t nameLength;
        char type;
        bool utc, clock, exact;
    };
    bool settle(Position &at) const;
    [[nodiscard]] Head headAt(const Position &at) const;

    std::vector<std::string> m_blocks;
    bool m_folders = false;
};

} // namespace ftp
