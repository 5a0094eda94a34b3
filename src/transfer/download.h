#pragma once

#include "transfer/driver.h"

/// Fetches the marked remote rows (Globals::marked) into a local folder. One object for one batch.
class Download final : private TransferDriver {
public:
    explicit Download(const TransferTools &tools)
        : TransferDriver(tools, false)
    {
    }

    /// The whole batch. @param target  local folder, ends in the separator
    void DownloadSelection(const QString &target);
    /// Whether it ended early because the disk is full; that was told.
    [[nodiscard]] bool isDiskFull() const { return m_batch.isStopped(); }
    /// One record of the batch. @param record  slot in the marked items, from 1
    void DownloadFile(const QString &target, int record);
    void DownloadFolder(const QString &target, int record);

private:
    void oneFile(int record) override { DownloadFile(m_target, record); }
    void oneFolder(int record) override { DownloadFolder(m_target, record); }
    void fill(const MarkedItem &item) override;
    [[nodiscard]] std::optional<FtpError> refusal(const MarkedItem &item,
                                                  const LocalEntry &here) const override;
    [[nodiscard]] qint64 existingSize(const LocalEntry &here) override { return here.size; }
    [[nodiscard]] bool folderExists(const LocalEntry &here) const override { return here.isFolder; }
    [[nodiscard]] std::optional<FtpError> moveFile() override;
    [[nodiscard]] std::optional<FtpError> moveFolder() override;
    [[nodiscard]] FtpStatus moveFiles(const QList<FtpFile> &files,
                                      const FtpFileDone &done) override;
    [[nodiscard]] QueueRow row(bool failed) const override;
    [[nodiscard]] QString success() const override;

    QString m_target; ///< local folder of the batch, ends in the separator
};
