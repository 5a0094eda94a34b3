#pragma once

#include <QString>

/// The row that decides about a pane's commands.
struct DecidingRow {
    bool selected = false; ///< false: no row is selected
    QString name; ///< empty for the up row
    QString kind; ///< ItemKind key
};

/// Which of a pane's commands are enabled: menu item and tool bar button alike.
struct PaneCommands {
    bool rename = false;
    bool remove = false;
    bool rights = false;
    bool view = false;
    bool refresh = false;
    bool makeFolder = false;
    bool up = false;
    bool selectAll = false;

    bool operator==(const PaneCommands &) const = default;
};

/// Commands of the remote pane. @param connected  state 2
[[nodiscard]] PaneCommands remoteCommands(bool connected, const DecidingRow &row);
/// Commands of the local pane, which needs no connection.
[[nodiscard]] PaneCommands localCommands(const DecidingRow &row);

/// Which of the two lights is on.
enum class Light { Red, Green };
/// @param loginAllowed  first argument of SetCommandsEnabled @param state  of the session
[[nodiscard]] Light lightFor(bool loginAllowed, int state);

/// Transfer type of an option of the mode group, and back.
[[nodiscard]] int transferTypeOf(int option);
[[nodiscard]] int optionOf(int transferType);
