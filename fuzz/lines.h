#pragma once

#include <cstddef>
#include <string_view>

/// Calls take(line) for every line of the fuzzer's bytes, the line end taken off.
template <class Take> void forEachInputLine(const unsigned char *data, std::size_t size, Take take)
{
    std::string_view bytes(reinterpret_cast<const char *>(data), size);
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        take(bytes.substr(0, end));
        bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    }
}
