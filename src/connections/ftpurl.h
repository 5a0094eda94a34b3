#pragma once

#include "common/globals.h"

#include <QString>
#include <optional>

/// The connection that an ftp:// or ftpes:// address names (RFC 1738, section 3.2), for filling in
/// the connection dialog. ftpes:// asks for encryption, ftp:// leaves it to the program settings;
/// an address without a user is an anonymous one. The path counts from the login folder ("%2F" at
/// its start: from the root); a last part with a dot in it is taken for a file and left out.
/// Everything that the address does not say keeps its default.
/// @return nothing for any other text, and for an address that cannot be used: no host, a port
/// outside
///         1..65535, or control characters in any part
[[nodiscard]] std::optional<ConnectionProfile> profileFromUrl(const QString &text);
