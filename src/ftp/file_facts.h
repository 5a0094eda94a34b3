#pragma once

#include "ftp/client.h"
#include "ftp/fact_replies.h"
#include "ftp/localfile.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ftp {

/// What the server told of a file before it is fetched.
struct RemoteFacts {
    std::optional<std::int64_t> size; ///< bytes
    std::optional<std::int64_t> modified; ///< seconds since 1970, UTC
};

/// SIZE and MDTM (RFC 3659, sections 3 and 4), as far as the server knows them and they tell
/// something for that type; they may travel with other commands.
[[nodiscard]] std::vector<std::string> factCommands(Session &session, const std::string &remotePath,
                                                    Type type);
/// @param commands  what factCommands gave @param replies  theirs, in order
[[nodiscard]] RemoteFacts takeFacts(Session &session, std::span<const std::string> commands,
                                    std::span<const Reply> replies);

/// Asks both at once, without telling the user of a refusal. @param path  UTF-8
/// @return an error only when the session is gone
Awaitable<Result<RemoteFacts>> fileFacts(Client &client, std::string path);

/// Size of a file as a listing of its folder tells it, for servers without SIZE; nothing when it is
/// not listed. @param path  raw bytes
Awaitable<Result<std::optional<std::int64_t>>> listedSize(Session &session, std::string path);

/// Whether one copy of a file was changed after the last bytes of a broken transfer came to the
/// other, so that the two do not belong together. Clocks may differ by minutes.
/// @param source, part  times of last change, seconds since 1970, UTC
[[nodiscard]] inline bool changedSince(std::int64_t source, std::int64_t part)
{
    constexpr std::int64_t tolerance = 120;
    return source > part + tolerance;
}

/// Whether a download is all there.
/// @param have  bytes of the whole file @param properEnd  the server ended an encrypted stream as
///              it should, so that nobody can have cut it short
[[nodiscard]] Status checkComplete(const Session &session, std::int64_t have,
                                   std::optional<std::int64_t> size, bool properEnd);

/// SIZE and MFMT, which prove and complete an upload. They may be sent behind its last byte.
[[nodiscard]] std::vector<std::string>
checkCommands(Session &session, const std::string &remotePath, const OutgoingFile &file, Type type);
/// @return ErrorKind::Truncated when the server holds another number of bytes than were sent
[[nodiscard]] Status takeChecks(Session &session, std::span<const std::string> commands,
                                std::span<const Reply> replies, const OutgoingFile &file);

} // namespace ftp
