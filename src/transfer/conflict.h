#pragma once

#include "common/globals.h"
#include "fileops/workplace.h"

#include <optional>

/// What frmTransfer shows.
struct ConflictQuestion {
    QString caption;
    QStringList message; ///< one file to a line
    bool mayResume = false;
};

enum class ConflictAnswer { Skip, Overwrite, Resume, Rename };

/// How frmTransfer was left.
struct ConflictReply {
    ConflictAnswer answer = ConflictAnswer::Skip;
    bool applyToAll = false; ///< the box "Alle"
};

/// The two dialogs of a conflict; tests script them.
class ConflictDialogs {
public:
    virtual ~ConflictDialogs() = default;

    [[nodiscard]] virtual ConflictReply askTransfer(const ConflictQuestion &question) = 0;
    /// The new name of the existing file, never empty, without blanks at its ends; nothing when
    /// cancelled.
    [[nodiscard]] virtual std::optional<QString> askNewName(const QString &existing) = 0;
};

/// Asks about the item in Globals::transfer and sets its flags; renames the existing file when
/// that is wanted and then asks again, with the same sizes.
void askConflict(const Workplace &work, ConflictDialogs &dialogs);
