// A child process of a test: started in a process group of its own, stopped by its id. It ends with
// the test in every case: a watcher beside it kills its group when the test is no more.
#pragma once

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

namespace servers {

class Process {
public:
    Process() = default;
    ~Process() { stop(); }
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;

    /// Starts a program; both of its outputs are appended to a file.
    /// @param environment  further variables as "NAME=value"
    /// @throws std::runtime_error when the process cannot be made
    void start(const std::vector<std::string> &command, const std::vector<std::string> &environment,
               const std::filesystem::path &output);
    /// Ends the process and its children: politely, after two seconds by force.
    void stop();
    /// Waits for the end of the process. @return true when it has ended
    bool waitForEnd(int milliseconds);

private:
    void startWatcher();
    void endWatcher();

    pid_t m_id = -1;
    pid_t m_watcher = -1;
    int m_lifeline = -1; ///< closes when this process ends, however that happens
    int m_handle = -1; ///< becomes readable when the process has ended
};

} // namespace servers
