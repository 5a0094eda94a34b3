#pragma once

#include "common/globals.h"

#include <QString>
#include <QStringList>
#include <tl/expected.hpp>

/// What the program was called with.
enum class CommandLine {
    Empty, ///< nothing, or blanks only: the connection dialog
    Help, ///< --help
    Version, ///< --version
    Address, ///< an ftp:// or ftpes:// address: the connection dialog, filled in
    Fields, ///< anything else: one connection in eleven fields, for the remote-controlled login
};

/// The arguments behind the program's name, joined with one blank and without blanks at the ends;
/// tabs stay, since they separate the fields.
[[nodiscard]] QString commandLineText(const QStringList &arguments);

[[nodiscard]] CommandLine commandLineKind(const QString &text);

/// Which of the two login paths runs when the info screen is closed the first time.
enum class StartDecision { ShowLogin, LoadCommands };
[[nodiscard]] StartDecision startDecision(const QString &commandLine);

/// Takes the eleven fields of a command line into a connection; its other values stay.
/// @return the connection, or a German sentence why there are no eleven fields
[[nodiscard]] tl::expected<ConnectionProfile, QString>
connectionFromFields(const QString &commandLine, const ConnectionProfile &current);

/// What --help and --version print.
[[nodiscard]] QString helpText();
[[nodiscard]] QString versionText();
