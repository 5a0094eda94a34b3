// Certificates for test servers, made when needed.
#pragma once

#include <string>
#include <vector>

namespace servers {

/// A certificate and its key, both in PEM form.
struct Certificate {
    std::string certificate;
    std::string key;
};

struct CertificateOptions {
    std::string commonName = "localhost";
    std::vector<std::string> names = { "DNS:localhost", "IP:127.0.0.1", "IP:::1" };
    long validFromSeconds = -24L * 3600; ///< relative to now
    long validUntilSeconds = 30L * 24 * 3600; ///< relative to now
    Certificate issuer = {}; ///< who signs it; empty = it signs itself
};

/// A new certificate. @throws std::runtime_error
Certificate makeCertificate(const CertificateOptions &options = {});

} // namespace servers
