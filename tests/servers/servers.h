// Real FTP servers for tests: vsftpd, ProFTPD, Pure-FTPd and pyftpdlib, each on a free port of the
// loopback address with a temporary folder of its own. Any number of them run side by side.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace servers {

enum class Kind { Vsftpd, ProFtpd, PureFtpd, PyFtpd };

struct Options {
    bool tls = false; ///< AUTH TLS is allowed
    bool tlsOnly = false; ///< and required for login and data
    int maxPerIp = 0; ///< most connections from one address; 0 = any number
    bool listHidden = false; ///< LIST without -a shows names that begin with a dot too
    bool logCommands = true; ///< false for measurements
    std::string address = "127.0.0.1"; ///< where to listen; IPv6 ("::1") as well
    std::uint16_t port = 0; ///< 0 = a free one
    std::filesystem::path root = {}; ///< an existing folder to serve; empty = a temporary one
    std::string timeZone = "UTC"; ///< TZ of the server process
    /// Further lines of configuration (vsftpd "name=VALUE", ProFTPD) or further arguments
    /// (Pure-FTPd; pyftpdlib: see pyserver.py, for example "--deny=SIZE").
    std::vector<std::string> extra = {};
};

std::vector<Kind> allKinds();

/// "vsftpd", "proftpd", "pureftpd", "pyftpdlib"; usable as the name of a test's parameter.
std::string name(Kind kind);

/// Whether this user may run that server at all. vsftpd, ProFTPD and Pure-FTPd change to the
/// account of the user who logs in and lock him into his folder, which only root may.
/// A server that is allowed but not there is an error of Server's constructor, not a reason here.
/// @param why  receives the reason of a "no"
bool canRun(Kind kind, std::string *why = nullptr);

/// A running server; stopped, and its temporary folder removed, at the end of its life.
/// The server ends with the test's process, also when that crashes or is killed.
class Server {
public:
    /// Starts the server and waits until it answers.
    /// @throws std::runtime_error with the server's own output when it does not come up
    explicit Server(Kind kind, Options options = {});
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    [[nodiscard]] std::uint16_t port() const;
    [[nodiscard]] std::filesystem::path root() const; ///< the folder that the user sees as "/"
    [[nodiscard]] std::string user() const;
    [[nodiscard]] std::string password() const;
    /// The server's certificate in PEM form; for servers with TLS only.
    [[nodiscard]] std::filesystem::path certificate() const;
    /// What the server wrote: its messages, and for all but Pure-FTPd the commands and replies.
    [[nodiscard]] std::string log() const;
    /// Gives everything in root() to the account that the server works as. To be called after
    /// files were put there by the test, when the server is to change them.
    void adoptFiles() const;

    void stop(); ///< drops all connections; port and folder are kept for restart()
    void restart();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace servers
