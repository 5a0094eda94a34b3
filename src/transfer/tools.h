#pragma once

#include "fileops/workplace.h"
#include "transfer/conflict.h"
#include "transfer/progressdisplay.h"

/// What a transfer driver works with.
struct TransferTools {
    Workplace work;
    ProgressDisplay &progress;
    ConflictDialogs &dialogs;
};
