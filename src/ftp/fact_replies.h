#pragma once

#include "ftp/reply.h"

#include <cstdint>
#include <optional>

namespace ftp {

/// The server does not know such a command, which says nothing about the file.
[[nodiscard]] bool isUnknown(const Reply &reply);
/// Bytes that a reply to SIZE tells; nothing when it is a refusal or strange.
[[nodiscard]] std::optional<std::int64_t> sizeOf(const Reply &reply);

/// How far a listing's clock is ahead of UTC, in seconds; nothing when the two times do not belong
/// together (zones are multiples of a quarter of an hour within 14 hours).
/// @param listed, utc  the same file's time in the listing and by MDTM, seconds since 1970
[[nodiscard]] std::optional<std::int64_t> zoneOf(std::int64_t listed, std::int64_t utc);

} // namespace ftp
