#pragma once

#include "ftp/ftptypes.h"

#include <QStringList>
#include <atomic>
#include <functional>
#include <memory>

/// One file of a list.
struct FtpFile {
    QString remotePath, localPath;
};

/// Told the outcome of one file of a list.
using FtpFileDone = std::function<void(qsizetype file, const FtpStatus &outcome)>;

/// What panes, transfers and file operations ask of the session; FtpControl is the real one. The
/// calls block their caller as FtpControl's do: events arrive and clicks run during a call.
class FtpOperations {
public:
    enum State { Closed = 0, Connecting = 1, Connected = 2 };

    virtual ~FtpOperations() = default;

    [[nodiscard]] virtual int state() const = 0; ///< Connected only when logged in
    [[nodiscard]] virtual bool isBusy() const = 0; ///< an operation runs
    /// Drops the connection at once, also from inside a running operation, which then fails with
    /// ErrorKind::Aborted.
    virtual void close() = 0;

    virtual void setTransferType(int type) = 0; ///< FtpTransferType of the next transfer or listing
    [[nodiscard]] virtual int transferType() const = 0;
    virtual void setStoreMode(int mode) = 0; ///< FtpStoreMode of the next put

    /// The server's working folder as last told by it.
    [[nodiscard]] virtual QString currentFolder() const = 0;
    virtual FtpStatus setCurrentFolder(const QString &folder) = 0;
    virtual FtpStatus changeToParentFolder() = 0;

    /// Lists the current folder; the result is in listing().
    virtual FtpStatus list() = 0;
    [[nodiscard]] virtual const RemoteListing &listing() const = 0;

    /// Fetches a file. A refused one leaves localPath as it was.
    /// @param offset  bytes of localPath to keep; 0 afterwards when the engine had to start anew
    virtual FtpStatus getFile(const QString &remotePath, const QString &localPath, qint64 &offset)
        = 0;
    /// Stores a file.
    /// @param offset  bytes of remotePath to keep, with StoreContinue only; as for getFile
    virtual FtpStatus putFile(const QString &localPath, const QString &remotePath, qint64 &offset)
        = 0;
    /// Whole files, existing ones being replaced, over as many sessions as a folder. Events and
    /// outcomes come in the list's order, file by file; byte counts are those of the first file
    /// whose outcome is still open. After a lost connection or an abort, files that were never
    /// begun have no outcome.
    /// @return why the list could not begin; failures of files are told by done alone
    virtual FtpStatus getFiles(const QList<FtpFile> &files, const FtpFileDone &done) = 0;
    virtual FtpStatus putFiles(const QList<FtpFile> &files, const FtpFileDone &done) = 0;
    /// Fetches a folder tree. @param pattern  remote folder + "/*", perhaps in double quotes
    virtual FtpStatus getMultiple(const QString &pattern, const QString &localFolder) = 0;
    /// Stores a folder tree. @param pattern  local folder + "/*", perhaps in double quotes
    virtual FtpStatus putMultiple(const QString &pattern, const QString &remoteFolder) = 0;

    virtual FtpStatus makeFolder(const QString &name) = 0;
    virtual FtpStatus removeFolder(const QString &path) = 0;
    virtual FtpStatus deleteFile(const QString &path) = 0;
    virtual FtpStatus rename(const QString &oldName, const QString &newName) = 0;
    /// Sends one command line and waits for its reply.
    virtual FtpStatus sendRaw(const QString &command) = 0;
    /// Removes a folder and everything in it; links inside are left alone, and then the folder that
    /// holds them stands and the call fails.
    virtual FtpStatus removeTree(const QString &folder) = 0;
    /// Deletes single files, many in one round trip.
    /// @param done  called on the caller's thread and before the call returns, for every file that
    ///              was tried; not always in the list's order
    virtual FtpStatus removeFiles(const QStringList &paths, const FtpFileDone &done) = 0;

    /// Counts what stands inside folders; links are not followed.
    /// @param stop  ends the counting soon when it becomes true
    virtual FtpResult<FtpFolderContent>
    countInside(const QStringList &folders, const std::shared_ptr<const std::atomic_bool> &stop)
        = 0;
    /// Sets the permissions of everything inside a folder; links are left alone.
    /// @param files, folders  modes as octal digits written as a decimal number (755)
    virtual FtpStatus changeModesInside(const QString &folder, int files, int folders) = 0;
    /// What the server says about a file, as far as it does.
    virtual FtpResult<FtpFileFacts> fileFacts(const QString &path) = 0;
};

/// Whether a command may start: a session stands and nothing runs. Commands that may not start do
/// and say nothing.
[[nodiscard]] inline bool mayStart(const FtpOperations &ftp)
{
    return ftp.state() == FtpOperations::Connected && !ftp.isBusy();
}
