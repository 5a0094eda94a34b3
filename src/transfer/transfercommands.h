#pragma once

#include "common/shell.h"
#include "transfer/tools.h"

/// The commands that start a transfer: buttons, double clicks, drops and the queue's repeat.
/// Each does and says nothing unless the session is idle.
class TransferCommands {
public:
    explicit TransferCommands(const TransferTools &tools)
        : m_tools(tools)
    {
    }

    /// cmd_download and a double click on a remote file: the selected remote rows into the folder
    /// of the local box.
    void cmd_download_Click();
    /// cmd_upload and a double click on a local file: the selected local rows into the folder of
    /// the remote box.
    void cmd_upload_Click();

    /// A drop of the marked remote rows on the local pane. @param row  -1 for empty space
    void dropOnLocal(int row);
    /// A drop of the marked local rows on the remote pane. @param row  -1 for empty space
    void dropOnRemote(int row);

    /// Tries failed rows of the queue again; rows of other web spaces and rows whose name was
    /// refused are left out.
    void RetryTransfers(const QList<QueueRow> &rows);
    /// Whether RetryTransfers would try any of the rows.
    [[nodiscard]] bool mayRetry(const QList<QueueRow> &rows) const;

private:
    [[nodiscard]] QString localTarget() const;
    [[nodiscard]] QString remoteTarget() const;
    [[nodiscard]] bool dropConfirmed(Pane &source, const QString &text, const QString &title);

    TransferTools m_tools;
};
