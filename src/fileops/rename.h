#pragma once

#include "fileops/workplace.h"

#include <optional>

/// Moves a local file or folder to another name and never replaces anything.
/// @return nothing on success, else the reason
[[nodiscard]] std::optional<QString> renameLocal(const QString &from, const QString &to);

/// Why a text cannot be the new name of an entry; nothing when it can. With a separator in it the
/// entry would move to another folder and could replace what stands there.
[[nodiscard]] std::optional<QString> refuseNewName(const QString &name);

/// Whether the listing of the current remote folder, asked for afresh, holds a name.
[[nodiscard]] FtpResult<bool> remoteNameTaken(FtpOperations &ftp, const QString &name);

/// Renaming in place. The panes' PaneModel::captionEdited leads to the two AfterEdit calls.
class RenameCommand {
public:
    explicit RenameCommand(const Workplace &work)
        : m_work(work)
    {
    }

    /// Starts the caption edit in the pane that was used last.
    void RenameSelected();
    /// Renames on the server from the row's caption to the new text. Caption and tag follow only
    /// on success, so a refused rename leaves the old caption.
    void RenameRemoteAfterEdit(int row, const QString &newText);
    void RenameLocalAfterEdit(int row, const QString &newText);

private:
    [[nodiscard]] std::optional<QString> renameRemote(const QString &from, const QString &to);

    Workplace m_work;
};
