#pragma once

#include "ftp/client.h"

namespace ftp {

/// What a server says about a file by SIZE and MDTM (RFC 3659, sections 3 and 4).
struct FileFacts {
    std::optional<std::int64_t> size; ///< bytes in binary; nothing when the server does not say
    std::optional<std::int64_t> time; ///< seconds since 1970, UTC; nothing when it does not say
};

/// @return an error only when the session is gone
Awaitable<Result<FileFacts>> fileFacts(Client &client, std::string path);

} // namespace ftp
