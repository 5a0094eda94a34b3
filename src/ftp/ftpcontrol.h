#pragma once

#include "ftp/error.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

/// Transfer types as the program codes them in memory and in the settings.
enum FtpTransferType { TypeAscii = 0, TypeBinary = 1, TypeEbcdic = 2 };

/// What a put does with an existing remote file.
enum FtpStoreMode { StoreReplace = 0, StoreContinue = 2 };

/// Operation codes of FtpEvent. 14 to 17 carry byte counts, 25 drives the new-folder loop.
enum FtpOperation {
    OpConnect = 1,
    OpLogout = 2,
    OpChangeFolder = 5,
    OpList = 10,
    OpGetFile = 14, ///< bytes of one file, counted from the restart offset
    OpGetMultiple = 15, ///< bytes of a whole tree
    OpPutMultiple = 16, ///< bytes of a whole tree
    OpPutFile = 17, ///< bytes of one file, counted from the restart offset
    OpDelete = 20,
    OpRename = 22,
    OpMakeFolder = 25,
    OpRemoveFolder = 26,
    OpRawCommand = 30,
};

/// One report during or after an operation.
struct FtpEvent {
    enum Status { Completed = 0, InProgress = 1, Failed = 2 };
    int operation = 0; ///< FtpOperation
    int status = InProgress;
    /// One complete reply of the server (lines joined by CR LF, ending in CR LF) or a message of
    /// the engine in the same form; empty for pure byte counts.
    QString text;
    qint64 bytes = 0; ///< bytes so far, for operations 14 to 17
    qint64 total = 0; ///< bytes of the whole tree as far as known, for operations 15 and 16; 0 = unknown
};
Q_DECLARE_METATYPE(FtpEvent)

/// Why a call of FtpControl failed. number() is 1 or more, text is never empty.
struct FtpError {
    ftp::ErrorKind kind = ftp::ErrorKind::Protocol;
    int replyCode = 0; ///< 0 = no reply of the server involved
    QString text; ///< description: the server's reply or an English text of the engine
    [[nodiscard]] int number() const { return replyCode > 0 ? replyCode : 1000 + static_cast<int>(kind); }
};

/// A value or the reason why there is none; must be looked at.
template <class T> struct [[nodiscard]] FtpResult : tl::expected<T, FtpError> {
    using tl::expected<T, FtpError>::expected;
};
using FtpStatus = FtpResult<void>;

/// Drops a result on purpose; the reason is for the reader.
template <class T> void ignoreError(const FtpResult<T> &, const char * /*reason*/) { }

/// One entry of a parsed listing.
struct ListingEntry {
    QString name;
    QString type; ///< "d" folder, "l" or "L" link, anything else a file
    qint64 size = 0; ///< bytes
    QString date; ///< yyyy-MM-dd HH:mm in local time, empty when the listing has none
    int permissions = 0; ///< the octal digits as a decimal number: 755
    QString target; ///< target of a link, empty when unknown
};

/// The listing of the folder listed last.
struct RemoteListing {
    static constexpr int Uninterpretable = 2;
    QList<ListingEntry> entries;
    int format = Uninterpretable; ///< Uninterpretable: the text could not be read
    QString rawText; ///< the listing as received
};

/// Proxy or firewall between us and the server; the types are those of ConnectionProfile.
struct FtpProxy {
    int type = 0; ///< 0 none, 1 SOCKS4, 2 SOCKS5, 3 SITE, 4 user login, 5 user no login, 6 OPEN, 7 pipe
    QString host, user, password;
    int port = 0;
};

/// Whether the control connection is encrypted.
enum class FtpEncryption { Automatic, Always, Never };

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
class FtpControl : public QObject {
    Q_OBJECT

public:
    enum State { Closed = 0, Connecting = 1, Connected = 2 };

    explicit FtpControl(QObject *parent = nullptr);
    ~FtpControl() override;

    [[nodiscard]] int state() const; ///< Connected only when logged in
    [[nodiscard]] bool isBusy() const; ///< an operation runs

    void setTimeout(int milliseconds); ///< limit of inactivity for each wait
    void setPassiveMode(bool passive);
    void setTransferType(int type); ///< FtpTransferType, used by the next transfer or listing
    [[nodiscard]] int transferType() const;
    void setStoreMode(int mode); ///< FtpStoreMode, used by the next put
    void setProxy(const FtpProxy &proxy); ///< used by the next connect
    void setEncryption(FtpEncryption encryption); ///< used by the next connect
    void setSessionLimit(int sessions); ///< most connections of a folder transfer, 1 or more
    void setTrustFile(const QString &path); ///< where trusted certificates are kept
    /// Asked on this thread when a certificate is not trusted; without a question it is rejected.
    void setCertificateQuestion(std::function<FtpTrust(const FtpCertificate &)> question);

    FtpStatus connectAndLogin(const QString &server, const QString &user, const QString &password,
                              const QString &account, int port);
    /// Ends the session politely; the state is Closed afterwards unless an error is returned.
    FtpStatus logout();
    /// Drops the connection at once, also from inside a running operation, which then fails with
    /// ErrorKind::Aborted. Never fails.
    void close();

    /// Whether transfers may be restarted at an offset; asked from the server once per session.
    FtpResult<bool> resumeSupport();
    /// The server's working folder as last told by it.
    [[nodiscard]] QString currentFolder() const;
    FtpStatus setCurrentFolder(const QString &folder);
    FtpStatus changeToParentFolder();

    /// Lists the current folder; the result is in listing().
    FtpStatus list();
    [[nodiscard]] const RemoteListing &listing() const;

    /// Fetches a file from a restart offset.
    /// @param offset  bytes of localPath to keep; set to 0 when the engine had to start from the
    ///                beginning. A refused get leaves localPath as it was.
    FtpStatus getFile(const QString &remotePath, const QString &localPath, qint64 &offset);
    /// Stores a file from a restart offset (only with StoreContinue).
    FtpStatus putFile(const QString &localPath, const QString &remotePath, qint64 &offset);
    /// Fetches a folder tree. @param pattern  remote folder + "/*", perhaps in double quotes.
    FtpStatus getMultiple(const QString &pattern, const QString &localFolder);
    /// Stores a folder tree. @param pattern  local folder + "/*", perhaps in double quotes.
    FtpStatus putMultiple(const QString &pattern, const QString &remoteFolder);

    FtpStatus makeFolder(const QString &name);
    FtpStatus removeFolder(const QString &path);
    FtpStatus deleteFile(const QString &path);
    FtpStatus rename(const QString &oldName, const QString &newName);
    /// Sends one command line and waits for its reply.
    FtpStatus sendRaw(const QString &command);

    /// Removes a remote folder and everything in it; links inside are left alone, and then the
    /// folder that holds them stands and the call fails.
    FtpStatus removeTree(const QString &folder);

Q_SIGNALS:
    void stateChanged(int state);
    void replyEvent(const FtpEvent &event);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
