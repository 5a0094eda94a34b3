#pragma once

#include "ftp/ftpoperations.h"
#include "transfer/batch.h"

#include <QHash>

/// What downloads and uploads have in common: the order of questions, calls and records. One object
/// for one batch.
class TransferDriver {
protected:
    TransferDriver(const TransferTools &tools, bool upload)
        : m_tools(tools)
        , m_state(tools.work.globals.transfer)
        , m_batch(tools)
        , m_upload(upload)
    {
    }
    virtual ~TransferDriver() = default;
    TransferDriver(const TransferDriver &) = delete;
    TransferDriver &operator=(const TransferDriver &) = delete;

    /// The whole batch, in order. Neighbouring files that need no question go in one call.
    /// @param prepare  called once before the first item; may be empty
    /// @param list     shows what became of the target
    void runItems(Pane &source, const std::function<void()> &prepare,
                  const std::function<void()> &list);
    void runFile(int record);
    void runFolder(int record);

    [[nodiscard]] QString localPath() const { return m_state.LocalDir + m_state.LocalName; }
    [[nodiscard]] QString remotePath() const { return m_state.RemoteDir + m_state.RemoteName; }

    TransferTools m_tools;
    TransferState &m_state;
    Batch m_batch;

private:
    virtual void oneFile(int record) = 0;
    virtual void oneFolder(int record) = 0;
    /// Names, folders and the source's size of an item; the target's size is 0.
    virtual void fill(const MarkedItem &item) = 0;
    /// Why the item is not even tried, if it is not. @param here  what stands at localPath()
    [[nodiscard]] virtual std::optional<FtpError> refusal(const MarkedItem &item,
                                                          const LocalEntry &here) const
        = 0;
    /// Size of what stands at a file's target, 0 for nothing, or UnknownSize.
    [[nodiscard]] virtual qint64 existingSize(const LocalEntry &here) = 0;
    [[nodiscard]] virtual bool folderExists(const LocalEntry &here) const = 0;
    /// Whether existingSize() tells without asking the server.
    [[nodiscard]] virtual bool knowsTarget() const { return true; }
    [[nodiscard]] virtual std::optional<FtpError> moveFile() = 0;
    [[nodiscard]] virtual std::optional<FtpError> moveFolder() = 0;
    [[nodiscard]] virtual FtpStatus moveFiles(const QList<FtpFile> &files, const FtpFileDone &done)
        = 0;
    [[nodiscard]] virtual QueueRow row(bool failed) const = 0;
    /// What the row's tool tip says of a file that went well.
    [[nodiscard]] virtual QString success() const = 0;

    [[nodiscard]] qint64 &sourceSize() { return m_upload ? m_state.LocalSize : m_state.RemoteSize; }
    [[nodiscard]] qint64 &targetSize() { return m_upload ? m_state.RemoteSize : m_state.LocalSize; }
    [[nodiscard]] bool isPlain(int record);
    [[nodiscard]] std::optional<LocalEntry> seenAhead(int record);
    [[nodiscard]] QString firstSpelling(const QString &target);
    [[nodiscard]] bool hasTwin();
    void runFiles(int first, int end);
    void present(int record);
    [[nodiscard]] std::optional<FtpError> whyNot(int record, const LocalEntry &here);
    bool refuse(int record, const QString &sizeText, const LocalEntry &here);
    void askAboutFile();
    [[nodiscard]] bool stillConnected() const;
    void finishItem();
    void record(const QString &sizeText, const std::optional<FtpError> &failure,
                const QString &success);

    bool m_upload;
    QHash<QString, int> m_targets; ///< record that a target path belongs to
    QHash<QString, QString> m_spellings; ///< first target of those that differ in case alone
    QHash<QString, LocalEntry> m_seen; ///< by local path, what was looked at for a run
    int m_ahead = 1; ///< items to look at next
    QString m_lastRefusal; ///< as it stands in the log
};
