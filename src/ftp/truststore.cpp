#include "ftp/truststore.h"

#include "ftp/localfile.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>

namespace ftp {
namespace {

bool sameHost(const std::string &a, const std::string &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char x, unsigned char y) {
        return std::tolower(x) == std::tolower(y);
    });
}

} // namespace

TrustStore::TrustStore(std::string path)
    : m_path(std::move(path))
{
    std::ifstream file(m_path);
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        TrustedServer server;
        unsigned int port = 0;
        std::string fingerprint;
        // Lines that cannot be read are left out: at worst the question is asked once more.
        if (std::getline(fields, server.host, '\t') && fields >> port && port <= 65535
            && fields >> fingerprint) {
            server.port = static_cast<std::uint16_t>(port);
            server.fingerprint = fingerprint == "-" ? "" : fingerprint;
            m_servers.push_back(server);
        }
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
    m_servers.push_back({ host, port, {} });
    return save();
}

Status TrustStore::trust(const std::string &host, std::uint16_t port,
                         const std::string &fingerprint)
{
    std::erase_if(m_servers,
                  [&](const TrustedServer &s) { return sameHost(s.host, host) && s.port == port; });
    m_servers.push_back({ host, port, fingerprint });
    return save();
}

Status TrustStore::remove(const std::string &host, std::uint16_t port)
{
    std::erase_if(m_servers,
                  [&](const TrustedServer &s) { return sameHost(s.host, host) && s.port == port; });
    return save();
}

Status TrustStore::save() const
{
    if (m_path.empty()) {
        return {};
    }
    std::string text;
    for (const TrustedServer &server : m_servers) {
        text += server.host + '\t' + std::to_string(server.port) + '\t'
            + (server.fingerprint.empty() ? "-" : server.fingerprint) + '\n';
    }
    return replaceFile(m_path, text);
}

} // namespace ftp
