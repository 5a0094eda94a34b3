#pragma once

#include "ftp/error.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace ftp {

/// One server as far as its encryption is remembered.
struct TrustedServer {
    std::string host;
    std::uint16_t port = 0;
    std::string fingerprint; ///< SHA-256 of the certificate trusted by hand; empty = none
};

/// Reads the text of a trust store: a line for each server, with host, port and fingerprint or "-",
/// separated by tabs. Lines that cannot be read are left out: at worst the question is asked once
/// more.
[[nodiscard]] std::vector<TrustedServer> parseTrust(std::string_view text);
/// Writes it.
[[nodiscard]] std::string formatTrust(const std::vector<TrustedServer> &servers);

/// Servers that were seen with TLS, and certificates that the user trusted by hand. One text file,
/// rewritten through a temporary file with mode 0600. Several windows may have it open: each change
/// is made to what the file holds just then. An empty path keeps everything in memory only.
class TrustStore {
public:
    explicit TrustStore(std::string path);

    [[nodiscard]] const std::vector<TrustedServer> &all() const { return m_servers; }
    /// The server has been seen with TLS and must offer it again.
    [[nodiscard]] bool seen(const std::string &host, std::uint16_t port) const;
    /// Fingerprint trusted by hand, empty for none.
    [[nodiscard]] std::string fingerprint(const std::string &host, std::uint16_t port) const;

    Status remember(const std::string &host, std::uint16_t port);
    Status trust(const std::string &host, std::uint16_t port, const std::string &fingerprint);
    /// Forgets certificate and encryption of a server.
    Status remove(const std::string &host, std::uint16_t port);

private:
    [[nodiscard]] const TrustedServer *find(const std::string &host, std::uint16_t port) const;
    void erase(const std::string &host, std::uint16_t port);
    void load();
    Status change(const std::function<void()> &edit);

    std::string m_path;
    std::vector<TrustedServer> m_servers;
};

} // namespace ftp
