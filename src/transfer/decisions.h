#pragma once

#include "common/globals.h"
#include "transfer/conflict.h"

#include <functional>

/// Size of a target about which the server tells nothing: something may stand there.
constexpr qint64 UnknownSize = -1;

/// Captions, message and whether resuming is offered.
[[nodiscard]] ConflictQuestion conflictQuestion(const TransferState &state, bool resumeSupport);
/// What frmTransfer's load does to the flags: leaving it by its frame skips the item.
void loadConflict(TransferState &state);
/// What the four buttons and "Alle" do to the flags.
void applyReply(TransferState &state, const ConflictReply &reply);

/// Whether a file of the same name stands at the target, or may; an empty one does not count.
[[nodiscard]] bool fileConflict(const TransferState &state);
/// Whether a file's conflict is asked about; otherwise "Alle" has decided it.
[[nodiscard]] bool asksForFile(const TransferState &state);
/// Whether a folder that stands at the target is asked about.
[[nodiscard]] bool asksForFolder(const TransferState &state);
/// Decides a file's conflict by the earlier answer.
void decideAgain(TransferState &state);
/// After the dialog: an overwritten target starts at 0.
void applyOverwrite(TransferState &state);

/// Whether a file starts at 0 without anybody being asked. @param state  sizes as measured
[[nodiscard]] bool startsWithoutQuestion(TransferState state);
/// Splits a batch into runs: the slot behind the items from first on that go in one call, at least
/// first + 1. @param plain  whether an item needs neither question nor offset
[[nodiscard]] int endOfRun(int first, int behindLast, const std::function<bool(int slot)> &plain);

/// End of every item: the skip stays in force only with "Alle".
void FinishTransferItem(TransferState &state);

/// Pattern of a multiple-file call: the folder and the wildcard, in double quotes when the folder
/// holds a blank.
[[nodiscard]] QString multiplePattern(const QString &folder, QChar separator);
