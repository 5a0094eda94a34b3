#pragma once

#include "transfer/driver.h"

/// Stores the marked local rows (Globals::marked) in a remote folder. One object for one batch.
class Upload final : private TransferDriver {
public:
    explicit Upload(const TransferTools &tools)
        : TransferDriver(tools, true)
    {
    }

    /// The whole batch. @param target  remote folder, ends in "/"
    void UploadSelection(const QString &target);
    /// One record of the batch, from its own folder. @param record  slot in the marked items, from
    /// 1
    void UploadFile(int record) { runFile(record); }
    void UploadFolder(int record) { runFolder(record); }

private:
    void oneFile(int record) override { UploadFile(record); }
    void oneFolder(int record) override { UploadFolder(record); }
    void enterTarget();
    void listTarget();
    [[nodiscard]] bool isListed() const;
    void fill(const MarkedItem &item) override;
    [[nodiscard]] std::optional<FtpError> refusal(const MarkedItem &item,
                                                  const LocalEntry &here) const override;
    [[nodiscard]] qint64 existingSize(const LocalEntry &here) override;
    [[nodiscard]] qint64 askedSize();
    [[nodiscard]] bool folderExists(const LocalEntry &here) const override;
    [[nodiscard]] bool knowsTarget() const override { return !m_tools.work.remote.isUnread(); }
    [[nodiscard]] std::optional<FtpError> moveFile() override;
    [[nodiscard]] std::optional<FtpError> moveFolder() override;
    [[nodiscard]] FtpStatus moveFiles(const QList<FtpFile> &files,
                                      const FtpFileDone &done) override;
    [[nodiscard]] QueueRow row(bool failed) const override;
    [[nodiscard]] QString success() const override;

    QString m_target; ///< remote folder of the batch, ends in "/"
    std::optional<FtpError> m_unreachable; ///< why the target could not be entered
    bool m_tellsNoSizes = false; ///< the server
};
