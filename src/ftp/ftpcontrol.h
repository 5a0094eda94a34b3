#pragma once

#include "ftp/ftpconnection.h"

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

    [[nodiscard]] int state() const override;
    [[nodiscard]] bool isBusy() const override;

    void setTimeout(int milliseconds) override;
    void setPassiveMode(bool passive) override;
    void setTransferType(int type) override;
    [[nodiscard]] int transferType() const override;
    void setStoreMode(int mode) override;
    void setProxy(const FtpProxy &proxy) override;
    void setEncryption(FtpEncryption encryption) override;
    void setSessionLimit(int sessions) override;
    void setTrustFile(const QString &path); ///< where trusted certificates are kept
    /// Asked on this thread when a certificate is not trusted; without a question it is rejected.
    void setCertificateQuestion(std::function<FtpTrust(const FtpCertificate &)> question);

    FtpStatus connectAndLogin(const QString &server, const QString &user, const QString &password,
                              const QString &account, int port) override;
    FtpStatus logout() override;
    FtpStatus drop() override;
    void close() override;

    FtpResult<bool> resumeSupport() override;
    [[nodiscard]] QString currentFolder() const override;
    FtpStatus setCurrentFolder(const QString &folder) override;
    FtpStatus changeToParentFolder() override;

    FtpStatus list() override;
    [[nodiscard]] const RemoteListing &listing() const override;

    FtpStatus getFile(const QString &remotePath, const QString &localPath, qint64 &offset) override;
    FtpStatus putFile(const QString &localPath, const QString &remotePath, qint64 &offset) override;
    FtpStatus getFiles(const QList<FtpFile> &files, const FtpFileDone &done) override;
    FtpStatus putFiles(const QList<FtpFile> &files, const FtpFileDone &done) override;
    FtpStatus getMultiple(const QString &pattern, const QString &localFolder) override;
    FtpStatus putMultiple(const QString &pattern, const QString &remoteFolder) override;

    FtpStatus makeFolder(const QString &name) override;
    FtpStatus removeFolder(const QString &path) override;
    FtpStatus deleteFile(const QString &path) override;
    FtpStatus rename(const QString &oldName, const QString &newName) override;
    FtpStatus sendRaw(const QString &command) override;

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
