#pragma once

#include <QString>
#include <QStringList>

/// What the network box shows.
struct NetworkInfo {
    QString hostName;
    QStringList addresses; ///< of all interfaces that are up, loopback last, each once
    QString version; ///< kernel, major.minor
    QString status;
    QString description;
};

/// Reads the values of this computer.
[[nodiscard]] NetworkInfo readNetworkInfo();

/// "major.minor" of a kernel release such as "6.1.0-18-amd64"; the release itself when it has
/// another form.
[[nodiscard]] QString kernelVersion(const QString &release);
