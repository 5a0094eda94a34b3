#include "app/commands.h"

#include "ftp/ftpoperations.h"
#include "remote/itemkind.h"

namespace {

/// What a selected row adds; the up row adds nothing.
void addRowCommands(PaneCommands &commands, const DecidingRow &row)
{
    if (row.selected && !row.name.isEmpty()) {
        commands.view = !ItemKind::isFolderLike(row.kind);
        commands.rename = true;
        commands.remove = true;
    }
}

} // namespace

PaneCommands remoteCommands(bool connected, const DecidingRow &row)
{
    PaneCommands commands;
    commands.refresh = connected;
    commands.makeFolder = connected;
    commands.up = connected;
    commands.selectAll = connected;
    // Intended: rows that are still shown without a connection may be acted upon; the commands
    // themselves then do nothing.
    addRowCommands(commands, row);
    commands.rights = commands.rename;
    return commands;
}

PaneCommands localCommands(const DecidingRow &row)
{
    PaneCommands commands;
    commands.refresh = true;
    commands.makeFolder = true;
    commands.up = true;
    commands.selectAll = true;
    addRowCommands(commands, row);
    return commands;
}

Light lightFor(bool loginAllowed, int state)
{
    // While connecting the login is not allowed either, and yet nothing stands.
    return !loginAllowed && state == FtpOperations::Connected ? Light::Green : Light::Red;
}

int transferTypeOf(int option)
{
    return option == 0 ? TypeBinary : option == 1 ? TypeAscii : TypeEbcdic;
}

int optionOf(int transferType)
{
    return transferType == TypeBinary ? 0 : transferType == TypeAscii ? 1 : 2;
}
