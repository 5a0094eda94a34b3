// Folders and files of the fault server, but for their contents.
#include "servers/faultsession.h"

#include <algorithm>
#include <cstdio>
#include <strings.h>
#include <utility>

namespace servers {

namespace fs = std::filesystem;

void FaultSession::pwd(const std::string &)
{
    std::string quoted;
    for (const char c : m_tree.current()) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    reply("257 \"" + quoted + "\" is the current directory");
}

void FaultSession::cwd(const std::string &argument)
{
    reply(m_tree.changeTo(argument) ? "250 Directory changed." : "550 No such directory.");
}

void FaultSession::cdup(const std::string &) { cwd(".."); }

void FaultSession::mkd(const std::string &argument)
{
    std::error_code error;
    const fs::path path = m_tree.resolve(argument);
    if (fs::exists(path)) {
        reply("550 File exists.");
    } else if (fs::create_directory(path, error)) {
        reply("257 \"" + argument + "\" created");
    } else {
        reply("550 " + error.message() + ".");
    }
}

void FaultSession::rmd(const std::string &argument)
{
    std::error_code error;
    const fs::path path = m_tree.resolve(argument);
    if (!fs::is_directory(fs::symlink_status(path))) {
        reply("550 Not a directory.");
    } else if (fs::remove(path, error)) {
        reply("250 Directory removed.");
    } else {
        reply("550 " + error.message() + ".");
    }
}

void FaultSession::dele(const std::string &argument)
{
    std::error_code error;
    const fs::path path = m_tree.resolve(argument);
    const bool folder = fs::is_directory(fs::symlink_status(path));
    reply(!folder && fs::remove(path, error) ? "250 File removed." : "550 Delete failed.");
}

void FaultSession::rnfr(const std::string &argument)
{
    const bool there = fs::exists(fs::symlink_status(m_tree.resolve(argument)));
    m_renameFrom = there ? m_tree.resolve(argument).string() : std::string();
    reply(there ? "350 Ready for RNTO." : "550 No such file.");
}

void FaultSession::rnto(const std::string &argument)
{
    std::error_code error;
    if (m_renameFrom.empty()) {
        reply("503 RNFR first.");
        return;
    }
    fs::rename(std::exchange(m_renameFrom, {}), m_tree.resolve(argument), error);
    reply(error ? "550 Rename failed." : "250 Renamed.");
}

void FaultSession::size(const std::string &argument)
{
    const fs::path path = m_tree.resolve(argument);
    std::error_code error;
    const bool file = fs::is_regular_file(path, error);
    reply(file ? "213 " + std::to_string(fs::file_size(path)) : "550 No such file.");
}

void FaultSession::mdtm(const std::string &argument)
{
    const std::optional<std::string> time = m_tree.modified(argument);
    reply(time ? "213 " + *time : "550 No such file.");
}

void FaultSession::mfmt(const std::string &argument)
{
    const std::size_t blank = std::min(argument.find(' '), argument.size());
    const std::string time = argument.substr(0, blank);
    const std::string name = argument.substr(std::min(blank + 1, argument.size()));
    reply(m_tree.setModified(name, time) ? "213 Modify=" + time + "; " + name
                                         : "550 Could not change the time.");
}

void FaultSession::site(const std::string &argument)
{
    char verb[8] = {};
    unsigned mode = 0;
    int used = 0;
    if (std::sscanf(argument.c_str(), "%7s %o %n", verb, &mode, &used) != 2
        || strcasecmp(verb, "chmod") != 0) {
        reply("500 Unknown SITE command.");
        return;
    }
    std::error_code error;
    fs::permissions(m_tree.resolve(argument.substr(static_cast<std::size_t>(used))),
                    static_cast<fs::perms>(mode), error);
    reply(error ? "550 CHMOD failed." : "200 Permissions changed.");
}

} // namespace servers
