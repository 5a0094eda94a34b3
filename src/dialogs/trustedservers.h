#pragma once

#include <QString>
#include <QStringList>
#include <functional>

/// Servers that are trusted or were seen encrypted, as the settings dialog shows them.
struct TrustedServers {
    std::function<QStringList()> list; ///< one text for each, in a fixed order
    std::function<void(int index)> remove; ///< forgets one of them
};

/// The servers kept in the engine's file. @param file  may be missing
[[nodiscard]] TrustedServers trustedServersIn(const QString &file);
