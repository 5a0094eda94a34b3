#include "ftp/namebook.h"

#include "ftp/path.h"
#include "ftp/text.h"

#include <algorithm>

namespace ftp {
namespace {

bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

} // namespace

void NameBook::learn(std::string_view raw)
{
    if (!isAscii(raw)) {
        (isUtf8(raw) ? m_sawUtf8 : m_sawOther) = true;
    }
}

/// UTF-8 form of a name that the server told.
std::string NameBook::decode(std::string_view folder, std::string_view raw)
{
    if (isAscii(raw)) {
        return std::string(raw);
    }
    std::string name = toUtf8(raw);
    keep(folder, name, raw);
    return name;
}

void NameBook::keep(std::string_view folder, std::string_view name, std::string_view raw)
{
    learn(raw);
    if (name != raw) {
        m_raw[joinPath(folder, name)] = raw;
    } else if (!m_raw.empty()) {
        m_raw.erase(joinPath(folder, name)); // another file had this text earlier
    }
}

std::string NameBook::decodePath(std::string_view raw)
{
    std::string path;
    std::string prefix(raw.starts_with('/') ? "/" : ""); // as encode() has it
    std::size_t at = 0;
    while (at <= raw.size()) {
        const std::size_t slash = std::min(raw.find('/', at), raw.size());
        const std::string name = decode(prefix, raw.substr(at, slash - at));
        path += name;
        if (slash == raw.size()) {
            break;
        }
        path += '/';
        prefix = name.empty() ? prefix : joinPath(prefix, name);
        at = slash + 1;
    }
    return path;
}

std::string NameBook::encodeName(std::string_view folder, std::string_view name) const
{
    if (m_raw.empty() && isAscii(name)) {
        return std::string(name);
    }
    if (const auto known = m_raw.find(joinPath(folder, name)); known != m_raw.end()) {
        return known->second;
    }
    if (!isAscii(name) && !m_announced && m_sawOther && !m_sawUtf8) {
        if (auto bytes = toWindows1252(name)) {
            return *bytes;
        }
    }
    return std::string(name);
}

std::string NameBook::encode(std::string_view path, std::string_view folder) const
{
    std::string raw;
    std::string prefix(path.starts_with('/') ? "" : folder);
    std::size_t at = 0;
    while (at <= path.size()) {
        const std::size_t slash = std::min(path.find('/', at), path.size());
        const std::string_view name = path.substr(at, slash - at);
        raw += encodeName(prefix.empty() ? std::string_view("/") : std::string_view(prefix), name);
        if (slash == path.size()) {
            break;
        }
        raw += '/';
        prefix = name.empty() ? prefix : joinPath(prefix.empty() ? "/" : prefix, name);
        at = slash + 1;
    }
    return raw;
}

} // namespace ftp
