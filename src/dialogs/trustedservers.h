#pragma once

#include <QString>
#include <QStringList>
#include <functional>

/// Servers that are trusted or were seen encrypted, as the settings dialog shows them.
struct TrustedServers {
    std::function<QStringList()> list; ///< one text for each, in a fixed order
    std::function<void(const QString &text)> remove; ///< forgets one of them
};

/// The servers kept in the engine's file. @param file  may be missing
/// @param tell  told when a server could not be forgotten
[[nodiscard]] TrustedServers trustedServersIn(const QString &file,
                                              const std::function<void(const QString &)> &tell);
