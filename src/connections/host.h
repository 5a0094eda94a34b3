#pragma once

#include <QString>

/// The server name as it is used: without blanks around it, "ftp://" or "ftpes://" in front and
/// slashes at the end. What the user typed stays in the profile.
[[nodiscard]] QString cleanHost(const QString &typed);

/// Whether a number can be a TCP port: 1 to 65535.
[[nodiscard]] bool isPort(int port);
