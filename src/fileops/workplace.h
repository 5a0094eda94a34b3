#pragma once

#include "common/globals.h"
#include "common/prompts.h"
#include "common/shell.h"
#include "ftp/ftpoperations.h"
#include "remote/pane.h"
#include "remote/panemodel.h"

/// Everything that file operations and transfers work with; the main window fills it. The members
/// live as long as the window.
struct Workplace {
    FtpOperations &ftp;
    Globals &globals;
    Prompts &prompts;
    Shell &shell;
    Pane &local;
    Pane &remote;
};

/// What may be done with the selected rows, which may be others than at a command's beginning. The
/// menu's items are shared: they follow the pane that was used last.
inline void updateCommandStates(const Workplace &work)
{
    if (work.globals.active.RemoteListActive) {
        work.shell.UpdateLocalCommandStates();
        work.shell.UpdateRemoteCommandStates();
    } else {
        work.shell.UpdateRemoteCommandStates();
        work.shell.UpdateLocalCommandStates();
    }
}
