#include "servers/process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <map>
#include <poll.h>
#include <sstream>
#include <stdexcept>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace servers {

namespace {

std::vector<char *> pointers(std::vector<std::string> &texts)
{
    std::vector<char *> result;
    for (std::string &text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

std::vector<std::string> wholeEnvironment(const std::vector<std::string> &further)
{
    std::vector<std::string> result = further;
    for (char **variable = environ; *variable != nullptr; ++variable) {
        const std::string name = std::string(*variable, std::strcspn(*variable, "=") + 1);
        bool replaced = false;
        for (const std::string &other : further) {
            replaced = replaced || other.starts_with(name);
        }
        if (!replaced) {
            result.emplace_back(*variable);
        }
    }
    return result;
}

/// The children of a process and theirs. A server's sessions may have left its process group.
std::vector<pid_t> descendants(pid_t ancestor)
{
    std::map<pid_t, pid_t> parents;
    for (const auto &entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream file(entry.path() / "stat");
        std::string line;
        pid_t parent = 0;
        char state = 0;
        if (std::getline(file, line) && line.rfind(") ") != std::string::npos
            && std::istringstream(line.substr(line.rfind(") ") + 2)) >> state >> parent) {
            parents[static_cast<pid_t>(std::atoi(line.c_str()))] = parent;
        }
    }
    std::vector<pid_t> result;
    for (const auto &[id, parent] : parents) {
        pid_t above = parent;
        while (above != ancestor && parents.contains(above)) {
            above = parents[above];
        }
        if (above == ancestor) {
            result.push_back(id);
        }
    }
    return result;
}

} // namespace

void Process::start(const std::vector<std::string> &command,
                    const std::vector<std::string> &environment,
                    const std::filesystem::path &output)
{
    stop();
    std::vector<std::string> words = command;
    std::vector<std::string> variables = wholeEnvironment(environment);
    const std::vector<char *> argv = pointers(words);
    const std::vector<char *> envp = pointers(variables);
    const pid_t parent = getpid();
    m_id = fork();
    if (m_id < 0) {
        throw std::runtime_error(std::string("fork: ") + std::strerror(errno));
    }
    if (m_id == 0) {
        // Only calls that are safe between fork and exec of a program with threads.
        setpgid(0, 0);
        const int log = open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
        const int nothing = open("/dev/null", O_RDONLY);
        dup2(nothing, 0);
        dup2(log, 1);
        dup2(log, 2);
        closefrom(3);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        signal(SIGPIPE, SIG_DFL);
        if (getppid() == parent) {
            execvpe(argv[0], argv.data(), envp.data());
        }
        _exit(127);
    }
    setpgid(m_id, m_id); // here as well: whichever of both comes first
    m_handle = static_cast<int>(syscall(SYS_pidfd_open, m_id, 0));
    startWatcher();
}

bool Process::waitForEnd(int milliseconds)
{
    if (m_id <= 0) {
        return true;
    }
    pollfd handle { m_handle, POLLIN, 0 };
    if (poll(&handle, 1, milliseconds) <= 0) {
        return false;
    }
    // The first process is still there as a zombie, so its group id cannot be anybody else's.
    endWatcher();
    kill(-m_id, SIGKILL);
    waitpid(m_id, nullptr, 0);
    close(m_handle);
    m_id = -1;
    return true;
}

/// The parent-death signal alone would not do: it is forgotten when a server changes its user, and
/// it comes when the thread that started the server ends.
void Process::startWatcher()
{
    std::array<int, 2> line {};
    if (pipe2(line.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error(std::string("pipe: ") + std::strerror(errno));
    }
    m_watcher = fork();
    if (m_watcher == 0) {
        // Only calls that are safe after the fork of a program with threads. No other end of this
        // line or of any socket of the test stays open here.
        setpgid(0, 0);
        dup2(line[0], 0);
        closefrom(1);
        char byte = 0;
        while (read(0, &byte, 1) < 0 && errno == EINTR) { }
        kill(-m_id, SIGKILL);
        _exit(0);
    }
    close(line[0]);
    m_lifeline = line[1];
}

void Process::endWatcher()
{
    if (m_watcher > 0) {
        kill(m_watcher, SIGKILL);
        waitpid(m_watcher, nullptr, 0);
        m_watcher = -1;
    }
    if (m_lifeline >= 0) {
        close(m_lifeline);
        m_lifeline = -1;
    }
}

void Process::stop()
{
    if (m_id <= 0) {
        return;
    }
    const std::vector<pid_t> sessions = descendants(m_id);
    kill(-m_id, SIGTERM);
    for (const pid_t session : sessions) {
        kill(session, SIGKILL);
    }
    if (!waitForEnd(2000)) {
        kill(-m_id, SIGKILL);
        waitForEnd(-1);
    }
}

} // namespace servers
