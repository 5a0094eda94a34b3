#include "servers/faulttree.h"

#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <vector>

namespace servers {

namespace fs = std::filesystem;

namespace {

std::string timeText(std::time_t time, const char *format)
{
    std::tm parts {};
    gmtime_r(&time, &parts);
    char text[64];
    return { text, std::strftime(text, sizeof(text), format, &parts) };
}

std::string modeText(mode_t mode)
{
    std::string text = S_ISDIR(mode) ? "d" : S_ISLNK(mode) ? "l" : "-";
    for (int bit = 8; bit >= 0; --bit) {
        text += (mode >> bit & 1) != 0 ? "xwr"[bit % 3] : '-';
    }
    return text;
}

std::string longLine(const fs::path &path, const std::string &name, const struct stat &info)
{
    const bool old = std::time(nullptr) - info.st_mtime > 180L * 24 * 3600;
    char text[128];
    std::snprintf(text, sizeof(text), "%s %3lu web      web      %12lld %s ",
                  modeText(info.st_mode).c_str(), static_cast<unsigned long>(info.st_nlink),
                  static_cast<long long>(info.st_size),
                  timeText(info.st_mtime, old ? "%b %e  %Y" : "%b %e %H:%M").c_str());
    std::string line = text + name;
    if (S_ISLNK(info.st_mode)) {
        line += " -> " + fs::read_symlink(path).string();
    }
    return line + "\r\n";
}

std::string facts(const std::string &name, const struct stat &info)
{
    char text[128];
    std::snprintf(text, sizeof(text), "type=%s;size=%lld;modify=%s;UNIX.mode=0%o; ",
                  S_ISDIR(info.st_mode)       ? "dir"
                      : S_ISLNK(info.st_mode) ? "OS.unix=symlink"
                                              : "file",
                  static_cast<long long>(info.st_size),
                  timeText(info.st_mtime, "%Y%m%d%H%M%S").c_str(),
                  static_cast<unsigned>(info.st_mode & 07777));
    return text + name + "\r\n";
}

} // namespace

std::string FaultTree::absolute(const std::string &path) const
{
    const std::string whole = path.starts_with('/') ? path : m_current + "/" + path;
    std::vector<std::string> parts;
    for (std::size_t start = 0; start <= whole.size();) {
        const std::size_t end = std::min(whole.find('/', start), whole.size());
        const std::string part = whole.substr(start, end - start);
        if (part == ".." && !parts.empty()) {
            parts.pop_back();
        } else if (!part.empty() && part != "." && part != "..") {
            parts.push_back(part);
        }
        start = end + 1;
    }
    std::string result;
    for (const std::string &part : parts) {
        result += "/" + part;
    }
    return result.empty() ? "/" : result;
}

fs::path FaultTree::resolve(const std::string &path) const
{
    return m_root.string() + absolute(path);
}

bool FaultTree::look(const fs::path &path, bool follow, struct stat &info)
{
    return (follow ? ::stat(path.c_str(), &info) : ::lstat(path.c_str(), &info)) == 0;
}

bool FaultTree::changeTo(const std::string &path)
{
    std::error_code missing;
    if (!fs::is_directory(resolve(path), missing)) {
        return false;
    }
    m_current = absolute(path);
    if (m_hidesLinks) {
        const fs::path inside = fs::relative(resolve(path), m_root); // both without links
        m_current = inside == "." ? "/" : "/" + inside.string();
    }
    return true;
}

std::string FaultTree::list(const std::string &path, bool hidden) const
{
    std::string text;
    const fs::path target = resolve(path);
    struct stat info { };
    if (look(target, m_hidesLinks, info) && !S_ISDIR(info.st_mode)) {
        return longLine(target, path, info);
    }
    std::error_code missing;
    for (const auto &entry : fs::directory_iterator(target, missing)) {
        const std::string name = entry.path().filename();
        if ((hidden || !name.starts_with('.')) && look(entry.path(), m_hidesLinks, info)) {
            text += longLine(entry.path(), name, info);
        }
    }
    return text;
}

std::string FaultTree::machineList(const std::string &path) const
{
    std::string text;
    std::error_code missing;
    for (const auto &entry : fs::directory_iterator(resolve(path), missing)) {
        struct stat info { };
        if (look(entry.path(), m_hidesLinks || m_machineHidesLinks, info)) {
            text += facts(entry.path().filename(), info);
        }
    }
    return text;
}

std::optional<std::string> FaultTree::modified(const std::string &path) const
{
    struct stat info { };
    if (stat(resolve(path).c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return std::nullopt;
    }
    return timeText(info.st_mtime, "%Y%m%d%H%M%S");
}

bool FaultTree::setModified(const std::string &path, const std::string &time) const
{
    std::tm parts {};
    if (time.size() < 14 || strptime(time.c_str(), "%Y%m%d%H%M%S", &parts) == nullptr) {
        return false;
    }
    const timespec times[2] = { { timegm(&parts), 0 }, { timegm(&parts), 0 } };
    return utimensat(AT_FDCWD, resolve(path).c_str(), times, 0) == 0;
}

} // namespace servers
