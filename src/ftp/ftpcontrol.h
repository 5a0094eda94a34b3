#pragma once

#include "ftp/ftpconnection.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>

/// A server certificate that could not be verified.
struct FtpCertificate {
    QString host; ///< the server asked for
    QString subject, issuer; ///< readable names
    QString validFrom, validUntil; ///< yyyy-MM-dd
    QString fingerprint; ///< SHA-256, upper-case hex pairs joined by ":"
    QString reason; ///< why it is not trusted, German sentence
    bool changed = false; ///< another certificate was trusted for this server before
};

enum class FtpTrust { Reject, Once, Always };

/// The FTP client of the program: one session with one server.
///
/// Every operation blocks its caller in a nested event loop, so that the window keeps painting and
/// any click may run inside it. A second operation meanwhile fails with ErrorKind::Busy. Events
/// arrive on the caller's thread during the call.
class FtpControl : public QObject, public FtpConnection {
    Q_OBJECT

public:
    explicit FtpControl(QObject *parent = nullptr);
    ~FtpControl() override;

    [[nodiscard]] int state() const override; ///< Connected only when logged in
    [[nodiscard]] bool isBusy() const override; ///< an operation runs

    void setTimeout(int milliseconds) override; ///< limit of inactivity for each wait; 0 = none
    void setPassiveMode(bool passive) override;
    void
    setTransferType(int type) override; ///< FtpTransferType, used by the next transfer or listing
    [[nodiscard]] int transferType() const override;
    void setStoreMode(int mode) override; ///< FtpStoreMode, used by the next put
    void setProxy(const FtpProxy &proxy) override; ///< used by the next connect
    void setEncryption(FtpEncryption encryption) override; ///< used by the next connect
    void
    setSessionLimit(int sessions) override; ///< most connections of a folder transfer, 1 or more
    void setTrustFile(const QString &path); ///< where trusted certificates are kept
    /// Asked on this thread when a certificate is not trusted; without a question it is rejected.
    void setCertificateQuestion(std::function<FtpTrust(const FtpCertificate &)> question);

    FtpStatus connectAndLogin(const QString &server, const QString &user, const QString &password,
                              const QString &account, int port) override;
    /// Ends the session politely; the state is Closed afterwards unless an error is returned.
    FtpStatus logout() override;
    FtpStatus drop() override;
    /// Drops the connection at once, also from inside a running operation, which then fails with
    /// ErrorKind::Aborted. Never fails.
    void close() override;

    /// Whether transfers may be restarted at an offset; asked from the server once per session.
    FtpResult<bool> resumeSupport() override;
    /// The server's working folder as last told by it.
    [[nodiscard]] QString currentFolder() const override;
    FtpStatus setCurrentFolder(const QString &folder) override;
    FtpStatus changeToParentFolder() override;

    /// Lists the current folder; the result is in listing().
    FtpStatus list() override;
    [[nodiscard]] const RemoteListing &listing() const override;

    /// Fetches a file from a restart offset.
    /// @param offset  bytes of localPath to keep; set to 0 when the engine had to start from the
    ///                beginning. A refused get leaves localPath as it was.
    FtpStatus getFile(const QString &remotePath, const QString &localPath, qint64 &offset) override;
    /// Stores a file from a restart offset (only with StoreContinue).
    FtpStatus putFile(const QString &localPath, const QString &remotePath, qint64 &offset) override;
    FtpStatus getFiles(const QList<FtpFile> &files, const FtpFileDone &done) override;
    FtpStatus putFiles(const QList<FtpFile> &files, const FtpFileDone &done) override;
    /// Fetches a folder tree. @param pattern  remote folder + "/*", perhaps in double quotes.
    FtpStatus getMultiple(const QString &pattern, const QString &localFolder) override;
    /// Stores a folder tree. @param pattern  local folder + "/*", perhaps in double quotes.
    FtpStatus putMultiple(const QString &pattern, const QString &remoteFolder) override;

    FtpStatus makeFolder(const QString &name) override;
    FtpStatus removeFolder(const QString &path) override;
    FtpStatus deleteFile(const QString &path) override;
    FtpStatus rename(const QString &oldName, const QString &newName) override;
    /// Sends one command line and waits for its reply.
    FtpStatus sendRaw(const QString &command) override;

    /// Removes a remote folder and everything in it; links inside are left alone, and then the
    /// folder that holds them stands and the call fails.
    FtpStatus removeTree(const QString &folder) override;
    FtpStatus removeFiles(const QStringList &paths, const FtpFileDone &done) override;
    FtpResult<FtpFolderContent>
    countInside(const QStringList &folders,
                const std::shared_ptr<const std::atomic_bool> &stop) override;
    FtpStatus changeModesInside(const QString &folder, int files, int folders) override;
    FtpResult<FtpFileFacts> fileFacts(const QString &path) override;

Q_SIGNALS:
    void stateChanged(int state);
    void replyEvent(const FtpEvent &event);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
