#include "ftp/truststore.h"

#include "ftp/localfile.h"
#include "ftp/path.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sstream>
#include <sys/file.h>
#include <unistd.h>

namespace ftp {
namespace {

bool sameHost(const std::string &a, const std::string &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char x, unsigned char y) {
        return std::tolower(x) == std::tolower(y);
    });
}

/// Keeps other windows from changing a file meanwhile. It is the folder that is locked, since the
/// file itself is replaced with every change. A file system without locks is no reason to fail.
class ChangeLock {
public:
    explicit ChangeLock(const std::string &path)
    {
        const std::string folder = parentOf(path);
        m_folder
            = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        while (m_folder >= 0 && ::flock(m_folder, LOCK_EX) != 0 && errno == EINTR) { }
    }
    ~ChangeLock()
    {
        if (m_folder >= 0) {
            ::close(m_folder);
        }
    }
    ChangeLock(const ChangeLock &) = delete;
    ChangeLock &operator=(const ChangeLock &) = delete;

private:
    int m_folder = -1;
};

} // namespace

std::vector<TrustedServer> parseTrust(std::string_view text)
{
    std::vector<TrustedServer> servers;
    std::istringstream lines { std::string(text) };
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        TrustedServer server;
        unsigned int port = 0;
        std::string fingerprint;
        if (std::getline(fields, server.host, '\t') && fields >> port && port <= 65535
            && fields >> fingerprint) {
            server.port = static_cast<std::uint16_t>(port);
            server.fingerprint = fingerprint == "-" ? "" : fingerprint;
            servers.push_back(server);
        }
    }
    return servers;
}

std::string formatTrust(const std::vector<TrustedServer> &servers)
{
    std::string text;
    for (const TrustedServer &server : servers) {
        text += server.host + '\t' + std::to_string(server.port) + '\t'
            + (server.fingerprint.empty() ? "-" : server.fingerprint) + '\n';
    }
    return text;
}

TrustStore::TrustStore(std::string path)
    : m_path(std::move(path))
{
    load();
}

/// What cannot be read, because it is not there yet, leaves what is known.
void TrustStore::load()
{
    if (std::ifstream file(m_path); file.is_open()) {
        const std::string text { std::istreambuf_iterator<char>(file), {} };
        m_servers = parseTrust(text);
    }
}

const TrustedServer *TrustStore::find(const std::string &host, std::uint16_t port) const
{
    const auto found
        = std::find_if(m_servers.begin(), m_servers.end(), [&](const TrustedServer &server) {
              return sameHost(server.host, host) && server.port == port;
          });
    return found == m_servers.end() ? nullptr : &*found;
}

void TrustStore::erase(const std::string &host, std::uint16_t port)
{
    std::erase_if(m_servers,
                  [&](const TrustedServer &s) { return sameHost(s.host, host) && s.port == port; });
}

bool TrustStore::seen(const std::string &host, std::uint16_t port) const
{
    return find(host, port) != nullptr;
}

std::string TrustStore::fingerprint(const std::string &host, std::uint16_t port) const
{
    const TrustedServer *server = find(host, port);
    return server == nullptr ? std::string() : server->fingerprint;
}

Status TrustStore::remember(const std::string &host, std::uint16_t port)
{
    if (seen(host, port)) {
        return {};
    }
    return change([&] {
        if (!seen(host, port)) {
            m_servers.push_back({ host, port, {} });
        }
    });
}

Status TrustStore::trust(const std::string &host, std::uint16_t port,
                         const std::string &fingerprint)
{
    return change([&] {
        erase(host, port);
        m_servers.push_back({ host, port, fingerprint });
    });
}

Status TrustStore::remove(const std::string &host, std::uint16_t port)
{
    return change([&] { erase(host, port); });
}

/// Changes what other windows may have changed since it was read.
Status TrustStore::change(const std::function<void()> &edit)
{
    if (m_path.empty()) {
        edit();
        return {};
    }
    const ChangeLock lock(m_path);
    load();
    edit();
    return replaceFile(m_path, formatTrust(m_servers));
}

} // namespace ftp
