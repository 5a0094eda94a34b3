#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ftp {

/// Reads the path of a reply 257 (RFC 959, appendix II): it stands in double quotes, inner quotes
/// doubled, though not by every server. Hence the path ends at the last quote that is followed by a
/// blank or nothing, and pairs are undone only when the quotes inside come in pairs alone.
/// Without quotes the first word counts.
/// @param lastLine  last line of the reply, the code in front
/// @return raw bytes; nothing when there is no path or it could not be sent back (NUL, CR, LF).
[[nodiscard]] std::optional<std::string> parsePwd(std::string_view lastLine);

/// folder and name joined by one "/"; an empty folder gives the bare name.
[[nodiscard]] std::string joinPath(std::string_view folder, std::string_view name);

/// The last component of a path; empty when it ends with "/".
[[nodiscard]] std::string nameOf(std::string_view path);

/// The path without "/" at its end, unless it is the root: that is this program's way to write
/// folders, not every server's.
[[nodiscard]] std::string withoutEndSlashes(std::string_view path);

/// The folder that holds path: "/a/b" and "/a/b/" give "/a", "/a" and "/" give "/", a bare name
/// gives an empty text.
[[nodiscard]] std::string parentOf(std::string_view path);

/// Whether a name from a server may become a local file name: not empty, not "." or "..", without
/// "/", NUL, CR and LF.
[[nodiscard]] bool isSafeName(std::string_view name);

} // namespace ftp
