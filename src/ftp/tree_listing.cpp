#include "ftp/tree_listing.h"

#include <cstring>
#include <set>

namespace ftp {
namespace {

/// Small ones, since growing one of them means having it twice.
constexpr std::size_t blockSize = 64 * 1024;

} // namespace

void TreeListing::add(const Entry &entry)
{
    Head head {};
    head.size = entry.size;
    head.time = entry.time ? toEpoch(*entry.time) : 0;
    head.utc = entry.utc;
    head.clock = entry.time && entry.precision != Entry::Precision::Day;
    head.exact = entry.exact;
    head.nameLength = static_cast<std::uint32_t>(entry.name.size());
    head.type = entry.type;
    if (m_blocks.empty()) {
        m_blocks.emplace_back(); // most folders are small: this one grows as needed
    } else if (m_blocks.back().size() + sizeof head + entry.name.size() > blockSize) {
        m_blocks.emplace_back().reserve(blockSize);
    }
    std::string &block = m_blocks.back();
    block.append(reinterpret_cast<const char *>(&head), sizeof head);
    block.append(entry.name);
    m_folders = m_folders || (head.type == 'd' && entry.name != "." && entry.name != "..");
}

/// Moves from the end of a block to the next one. @return false at the end of all
bool TreeListing::settle(Position &at) const
{
    if (at.block < m_blocks.size() && at.byte == m_blocks[at.block].size()) {
        at = { at.block + 1, 0 };
    }
    return at.block < m_blocks.size();
}

TreeListing::Head TreeListing::headAt(const Position &at) const
{
    Head head {};
    std::memcpy(&head, m_blocks[at.block].data() + at.byte, sizeof head);
    return head;
}

std::optional<TreeEntry> TreeListing::next(Position &at) const
{
    if (!settle(at)) {
        return std::nullopt;
    }
    const Head head = headAt(at);
    const std::string_view block = m_blocks[at.block];
    const std::string_view name = block.substr(at.byte + sizeof head, head.nameLength);
    at.byte += sizeof head + head.nameLength;
    return TreeEntry { name, head.type, head.size, head.exact, head.time, head.utc, head.clock };
}

void TreeListing::markLinks(const TreeListing &plain)
{
    std::set<std::string_view> links;
    for (Position at; const auto entry = plain.next(at);) {
        if (entry->type == 'l') {
            links.insert(entry->name);
        }
    }
    for (Position at; settle(at);) {
        Head head = headAt(at);
        const Position here = at;
        if (const auto entry = next(at); links.contains(entry->name)) {
            head.type = 'l';
            std::memcpy(m_blocks[here.block].data() + here.byte, &head, sizeof head);
        }
    }
}

} // namespace ftp
