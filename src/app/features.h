#pragma once

#include "fileops/delete.h"
#include "fileops/newfolder.h"
#include "fileops/permissions.h"
#include "fileops/rename.h"
#include "fileops/view.h"
#include "transfer/conflictwindows.h"
#include "transfer/progressmodel.h"
#include "transfer/quota.h"
#include "transfer/transfercommands.h"

class QWidget;

/// The commands of the window that work on marked rows, with what they share.
struct Features {
    Workplace work;
    ProgressModel progress;
    DiskLook disk;
    WindowConflictDialogs dialogs;
    TransferCommands transfers;
    SpaceReplies space;
    DeleteCommand remove;
    NewFolderCommand newFolder;
    RenameCommand rename;
    PutBack putBack;
    ViewCommand view;
    PermissionCommand rights;

    /// @param window  parent of the dialogs
    Features(const Workplace &workplace, QWidget *window);
};
