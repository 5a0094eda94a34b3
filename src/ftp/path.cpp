#include "ftp/path.h"

namespace ftp {
namespace {

/// Bytes that no command can carry.
bool canBeSent(std::string_view text)
{
    return text.find_first_of(std::string_view("\0\r\n", 3)) == std::string_view::npos;
}

/// Undoes doubled quotes when all quotes come in pairs; else the server does not double them.
std::string undoubled(std::string_view text)
{
    std::string single;
    for (std::size_t i = 0; i < text.size(); ++i) {
        single += text[i];
        if (text[i] == '"') {
            if (i + 1 == text.size() || text[i + 1] != '"') {
                return std::string(text);
            }
            ++i;
        }
    }
    return single;
}

/// Place of the quote that closes the path opened before at; npos when there is none.
std::size_t closingQuote(std::string_view text, std::size_t at)
{
    for (std::size_t quote = text.size(); quote-- > at;) {
        if (text[quote] == '"' && (quote + 1 == text.size() || text[quote + 1] == ' ')) {
            return quote;
        }
    }
    const std::size_t last = text.rfind('"');
    return last != std::string_view::npos && last >= at ? last : std::string_view::npos;
}

} // namespace

std::optional<std::string> parsePwd(std::string_view lastLine)
{
    if (lastLine.size() < 5) {
        return std::nullopt;
    }
    const std::string_view text = lastLine.substr(4);
    std::string path;
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    if (const std::size_t open = text.find('"'); open != std::string_view::npos) {
        const std::size_t close = closingQuote(text, open + 1);
        if (close == std::string_view::npos) {
            return std::nullopt;
        }
        path = undoubled(text.substr(open + 1, close - open - 1));
    } else {
        path = text.substr(first, text.find(' ', first) - first);
    }
    return path.empty() || !canBeSent(path) ? std::nullopt : std::optional(path);
}

std::string joinPath(std::string_view folder, std::string_view name)
{
    std::string path(folder);
    if (!path.empty() && path.back() != '/') {
        path += '/';
    }
    return path.append(name);
}

std::string nameOf(std::string_view path) { return std::string(path.substr(path.rfind('/') + 1)); }

std::string withoutEndSlashes(std::string_view path)
{
    while (path.size() > 1 && path.back() == '/') {
        path.remove_suffix(1);
    }
    return std::string(path);
}

std::string parentOf(std::string_view path)
{
    const std::string child = withoutEndSlashes(path);
    const std::size_t slash = child.rfind('/');
    if (slash == std::string::npos) {
        return {};
    }
    const std::size_t end = child.find_last_not_of('/', slash);
    return end == std::string::npos ? "/" : child.substr(0, end + 1);
}

bool isSafeName(std::string_view name)
{
    return !name.empty() && name != "." && name != ".." && canBeSent(name)
        && name.find('/') == std::string_view::npos;
}

} // namespace ftp
