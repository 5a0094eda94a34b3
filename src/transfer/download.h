#pragma once

#include "transfer/batch.h"

/// Fetches the marked remote rows (Globals::marked) into a local folder. One object for one batch.
class Download {
public:
    explicit Download(const TransferTools &tools)
        : m_tools(tools)
        , m_state(tools.work.globals.transfer)
        , m_batch(tools)
    {
    }

    /// The whole batch. @param target  local folder, ends in the separator
    void DownloadSelection(const QString &target);
    /// One record of the batch. @param record  slot in the marked items, from 1
    void DownloadFile(const QString &target, int record);
    void DownloadFolder(const QString &target, int record);

private:
    void fill(const QString &target, const MarkedItem &item);
    void askAboutFile();
    [[nodiscard]] std::optional<FtpError> getFile();
    [[nodiscard]] std::optional<FtpError> getFolder();
    void record(const QString &sizeText, const std::optional<FtpError> &failure,
                const QString &success);
    [[nodiscard]] QString localPath() const { return m_state.LocalDir + m_state.LocalName; }
    [[nodiscard]] QString remotePath() const { return m_state.RemoteDir + m_state.RemoteName; }

    TransferTools m_tools;
    TransferState &m_state;
    Batch m_batch;
};
