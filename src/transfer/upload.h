#pragma once

#include "transfer/batch.h"

/// Stores the marked local rows (Globals::marked) in a remote folder. One object for one batch.
class Upload {
public:
    explicit Upload(const TransferTools &tools)
        : m_tools(tools)
        , m_state(tools.work.globals.transfer)
        , m_batch(tools)
    {
    }

    /// The whole batch. @param target  remote folder, ends in "/"
    void UploadSelection(const QString &target);
    /// One record of the batch. @param folder  local folder @param record  slot, from 1
    void UploadFile(const QString &folder, int record);
    void UploadFolder(const QString &folder, int record);

private:
    void enterTarget();
    void fill(const QString &folder, const MarkedItem &item);
    void askAboutFile();
    [[nodiscard]] std::optional<FtpError> putFile();
    [[nodiscard]] std::optional<FtpError> putFolder();
    void record(const QString &sizeText, const std::optional<FtpError> &failure,
                const QString &success);
    [[nodiscard]] QString localPath() const { return m_state.LocalDir + m_state.LocalName; }
    [[nodiscard]] QString remotePath() const { return m_state.RemoteDir + m_state.RemoteName; }

    TransferTools m_tools;
    TransferState &m_state;
    Batch m_batch;
    QString m_target; ///< remote folder of the batch, ends in "/"
    std::optional<FtpError> m_unreachable; ///< why the target could not be entered
};
