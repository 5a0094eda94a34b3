// A small FTP server inside the test's process that does everything right, until it is told what
// to do wrong. It serves a temporary folder and remembers every command.
#pragma once

#include "servers/faults.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace servers {

/// One command line as it arrived.
struct Command {
    int session = 0; ///< connections count from 1
    std::chrono::steady_clock::time_point time;
    std::string line; ///< without its line end
    bool encrypted = false;
};

/// What to do in place of a command.
struct Rule {
    enum Action {
        Reply, ///< send text; after a 421 close the connection
        Drop, ///< reset the connection (after sending text, if any)
        Stall, ///< never answer again
        Endless, ///< begin a multi-line reply that does not end
    };
    std::string verb = "*"; ///< upper case; "*" = every command
    std::string argument = "*"; ///< shell pattern
    Action action = Reply;
    std::string text = {}; ///< verbatim; a line end is added when there is none
    int fromSession = 1; ///< only for connections of this number and above
    int toSession = 1 << 30; ///< and below
    int skip = 0; ///< so many matching commands are carried out as usual first
    int times = -1; ///< then the rule holds so many times; -1 = for ever
};

/// Sessions run in threads of their own; everything here may be called at any time.
class FaultServer {
public:
    explicit FaultServer(const std::string &address = "127.0.0.1");
    ~FaultServer(); ///< drops all connections
    FaultServer(const FaultServer &) = delete;
    FaultServer &operator=(const FaultServer &) = delete;

    Faults fault;
    /// Adds a rule; the first one that matches counts.
    void on(Rule rule);
    void clearRules();

    [[nodiscard]] std::uint16_t port() const;
    [[nodiscard]] const std::filesystem::path &root() const; ///< what clients see as "/"
    [[nodiscard]] std::string user() const { return "web01"; }
    [[nodiscard]] std::string password() const { return "geheim"; }
    [[nodiscard]] std::string account() const { return "konto"; }

    [[nodiscard]] std::vector<Command> commands() const;
    /// Their lines only. @param verb  only commands with this verb; empty = all
    [[nodiscard]] std::vector<std::string> lines(const std::string &verb = {}) const;
    void clearCommands();
    /// Waits until so many commands with a verb have arrived. @return false after ten seconds
    bool waitForCommand(const std::string &verb, int count = 1) const;
    /// Waits until no session is open. @return false after ten seconds
    bool waitForEnd() const;

    [[nodiscard]] int sessions() const; ///< connections so far
    [[nodiscard]] int openSessions() const;
    [[nodiscard]] int reusedDataSessions() const; ///< data connections that resumed a TLS session
    [[nodiscard]] int freshDataSessions() const; ///< data connections that did not
    [[nodiscard]] long discardedBytes() const; ///< lost through noPipelining
    /// Resets all connections that are open now.
    void dropSessions();

    struct Private;

private:
    std::unique_ptr<Private> d;
};

} // namespace servers
