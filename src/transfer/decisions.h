#pragma once

#include "common/globals.h"
#include "transfer/conflict.h"

/// What frmTransfer's load does to the flags.
void loadConflict(TransferState &state);
/// What the four buttons and "Alle" do to the flags.
void applyReply(TransferState &state, const ConflictReply &reply);
/// Captions, message and whether resuming is offered.
[[nodiscard]] ConflictQuestion conflictQuestion(const TransferState &state, bool resumeSupport);

/// Whether an existing file is asked about (sizes as in the state). Decisions that "Alle" made
/// before are then applied to the state by decideAgain.
[[nodiscard]] bool asksForFile(const TransferState &state);
[[nodiscard]] bool asksForFolder(const TransferState &state, bool targetExists);
/// A conflict that "Alle" has decided already.
void decideAgain(TransferState &state);
/// After the dialog: an overwritten target starts at 0.
void applyOverwrite(TransferState &state);

/// End of every item: the skip stays in force only with "Alle".
void FinishTransferItem(TransferState &state);

/// Pattern of a multiple-file call: the folder and the wildcard, in double quotes when the folder
/// holds a blank.
[[nodiscard]] QString multiplePattern(const QString &folder, QChar separator);
