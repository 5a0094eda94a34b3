#pragma once

#include "fileops/progressdisplay.h"
#include "fileops/workplace.h"
#include "transfer/conflict.h"
#include "transfer/disklook.h"

/// What a transfer driver works with.
struct TransferTools {
    Workplace work;
    ProgressDisplay &progress;
    ConflictDialogs &dialogs;
    DiskLook &disk;
};
