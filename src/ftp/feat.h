#pragma once

#include "ftp/reply.h"

#include <string>
#include <vector>

namespace ftp {

/// What the server says it can do (FEAT, RFC 2389). A missing feature proves nothing.
struct Features {
    bool known = false; ///< the server answered FEAT with a list
    bool utf8 = false;
    bool mlst = false; ///< MLST and MLSD
    bool restStream = false; ///< REST STREAM
    bool size = false;
    bool mdtm = false;
    bool mfmt = false;
    bool epsv = false;
    bool authTls = false; ///< AUTH TLS, TLS-C or SSL
    bool tvfs = false; ///< paths with "/" (RFC 3659, section 6)
    /// Facts of the MLST line, lower case, without the mark "*".
    std::vector<std::string> mlstFacts;

    /// Whether MLSD can tell the permissions.
    [[nodiscard]] bool mlstUnixMode() const;
};

/// Reads the reply to FEAT; known stays false when it was refused.
[[nodiscard]] Features parseFeat(const Reply &reply);

} // namespace ftp
