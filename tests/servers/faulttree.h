// The folder tree that a session of the fault server works in.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <sys/stat.h>

namespace servers {

class FaultTree {
public:
    explicit FaultTree(std::filesystem::path root)
        : m_root(std::move(root))
    {
    }

    /// Shows what links lead to in place of them.
    void hideLinks() { m_hidesLinks = true; }
    void hideLinksFromMachines() { m_machineHidesLinks = true; }

    [[nodiscard]] const std::string &current() const { return m_current; } ///< "/" or "/a/b"
    /// A path of the client as a path on disk; ".." never leads out of the root.
    [[nodiscard]] std::filesystem::path resolve(const std::string &path) const;
    bool changeTo(const std::string &path); ///< false when there is no such folder

    /// As "ls -l" prints it. @param hidden  with names that begin with a dot
    [[nodiscard]] std::string list(const std::string &path, bool hidden) const;
    /// RFC 3659, section 7, with UNIX.mode.
    [[nodiscard]] std::string machineList(const std::string &path) const;

    /// YYYYMMDDHHMMSS in UTC, nothing when there is no such file.
    [[nodiscard]] std::optional<std::string> modified(const std::string &path) const;
    bool setModified(const std::string &path, const std::string &time) const;

private:
    [[nodiscard]] std::string absolute(const std::string &path) const;
    static bool look(const std::filesystem::path &path, bool follow, struct ::stat &info);
    std::filesystem::path m_root;
    std::string m_current = "/";
    bool m_hidesLinks = false, m_machineHidesLinks = false;
};

} // namespace servers
