#pragma once

#include "common/names.h"
#include "ftp/ftplocalnames.h"
#include "ftp/ftptypes.h"

#include <optional>

/// The failure of a call; nothing when it went well.
[[nodiscard]] inline std::optional<FtpError> errorOf(const FtpStatus &status)
{
    if (status) {
        return std::nullopt;
    }
    return status.error();
}

/// Why an item is not even tried; the reasons are our own, not a server's.

/// A name of the server that must not become a local one.
[[nodiscard]] inline std::optional<FtpError> refuseName(const QString &name)
{
    if (isSafeName(name)) {
        return std::nullopt;
    }
    return FtpError { ftp::ErrorKind::UnsafeName, 0,
                      name + QStringLiteral(": Der Name ist als Dateiname nicht zulässig.") };
}

/// A pipe, socket or device is never opened: reading from it might wait for ever.
[[nodiscard]] inline std::optional<FtpError> refuseSpecial(const QString &path,
                                                           const LocalEntry &entry)
{
    if (!entry.exists || entry.isFile || entry.isFolder) {
        return std::nullopt;
    }
    return FtpError {
        ftp::ErrorKind::LocalFile, 0,
        path + QStringLiteral(": Pipes, Sockets und Geräte werden nicht übertragen.")
    };
}
