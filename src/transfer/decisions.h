#pragma once

#include "common/globals.h"
#include "transfer/conflict.h"

/// Captions, message and whether resuming is offered.
[[nodiscard]] ConflictQuestion conflictQuestion(const TransferState &state, bool resumeSupport);
/// What frmTransfer's load does to the flags: leaving it by its frame skips the item.
void loadConflict(TransferState &state);
/// What the four buttons and "Alle" do to the flags.
void applyReply(TransferState &state, const ConflictReply &reply);

/// Whether a file of the same name stands at the target; an empty one does not count.
[[nodiscard]] bool fileConflict(const TransferState &state);
/// Whether a file's conflict is asked about; otherwise "Alle" has decided it.
[[nodiscard]] bool asksForFile(const TransferState &state);
/// Whether a folder that stands at the target is asked about.
[[nodiscard]] bool asksForFolder(const TransferState &state);
/// Decides a file's conflict by the earlier answer.
void decideAgain(TransferState &state);
/// After the dialog: an overwritten target starts at 0.
void applyOverwrite(TransferState &state);

/// End of every item: the skip stays in force only with "Alle".
void FinishTransferItem(TransferState &state);

/// Pattern of a multiple-file call: the folder and the wildcard, in double quotes when the folder
/// holds a blank.
[[nodiscard]] QString multiplePattern(const QString &folder, QChar separator);
