#pragma once

#include "fileops/editwatch.h"
#include "fileops/progressdisplay.h"
#include "fileops/workplace.h"

#include <QHash>
#include <QObject>
#include <functional>
#include <optional>

/// Offers to send a viewed text file back to the server each time that it was changed and saved.
class PutBack : public QObject {
    Q_OBJECT

public:
    PutBack(const Workplace &work, ProgressDisplay &progress);

    /// Whether something else runs or asks just now; the offer waits for its end.
    void setBusyCheck(std::function<bool()> busy) { m_busy = std::move(busy); }
    [[nodiscard]] EditWatch &edits() { return m_edits; }

    /// A file is about to be fetched: what the server says about it is the state to come back to.
    /// An edited copy that the server does not have gets out of the way.
    /// @return false when it cannot, so that nothing may be fetched
    [[nodiscard]] bool beforeFetch(const QString &localPath, const QString &remotePath);
    /// It was fetched. Text files are watched from now on.
    void afterFetch(const QString &localPath);
    /// It could not be fetched. A copy that stands as it was is watched on.
    void fetchFailed(const QString &localPath);
    /// A session stands: what could not go back to its server before is offered again.
    void offerUnsent();

private:
    /// A fetched file.
    struct Fetched {
        QString remotePath, server; ///< where it came from
        FtpFileFacts facts; ///< of the server's copy
        QByteArray hash; ///< of its content here
        int transferType = 0;
        FileStamp stamp = {}; ///< of the copy that the server has, too
        bool ambiguous = false; ///< files of two folders met under this name
        /// What was on its way when an upload broke off: the server may hold any part of it.
        std::optional<QByteArray> brokenOff = {};
    };
    enum class Outcome { Sent, Failed, ServerChanged };

    [[nodiscard]] bool isEdited(const QString &localPath) const;
    [[nodiscard]] bool moveAside(const QString &localPath);
    void noteServerCopy(const QString &localPath);
    void saved(const QString &localPath);
    void offerNext();
    void offer(const QString &localPath);
    void waitForLogin(const QString &localPath);
    void send(const QString &localPath);
    void listAgain();
    [[nodiscard]] Outcome upload(const QString &localPath, const Fetched &file, QString &refusal);
    [[nodiscard]] FtpResult<bool> isSame(const Fetched &file);
    [[nodiscard]] FtpResult<bool> hasSameContent(const Fetched &file);
    void record(const QString &localPath, const Fetched &file, const QString &refusal);
    [[nodiscard]] QString currentServer() const;

    Workplace m_work;
    ProgressDisplay &m_progress;
    std::function<bool()> m_busy = [] { return false; };
    EditWatch m_edits;
    QTimer m_retry;
    QHash<QString, Fetched> m_files; ///< by local path
    std::optional<Fetched> m_before; ///< what the file that is being fetched takes the place of
    FileStamp m_stampBefore; ///< of its copy here
    QStringList m_waiting; ///< local paths to be asked about
    QStringList m_unsent; ///< local paths to be asked about after the next login
};
