#pragma once

#include <QList>
#include <QString>

/// Program settings, section "Properties" of the store; read once at start.
struct ProgramSettings {
    QString LogFolder; ///< where log files are saved
    bool LogName = true; ///< name log files automatically
    bool ErrorMsg = false; ///< detailed English messages instead of short German ones
    QString HtmlRoot; ///< kept for the store only
    bool HiddenFile = false; ///< show hidden and system files in the local pane
    /// 0 automatic, 1 always, 2 never (FtpEncryption); default for all profiles.
    int encryption = 0;
    int connections = 4; ///< most parallel connections of a folder transfer
};

/// One connection; also the current connection, section "Settings" of the store.
struct ConnectionProfile {
    QString RemoteHost, UserName;
    QString Password; ///< clear text in memory
    QString RemoteDir, LocalDir;
    int TransferType = 1; ///< 0 ASCII, 1 binary, 2 EBCDIC
    bool Passive = true;
    int Timeout = 30; ///< seconds
    int RemotePort = 21;
    QString Account, Bemerkungen;
    int ProxyType = 0;
    QString ProxyHost, ProxyUsername, ProxyPassword;
    int Proxyport = 2121;
    int encryption = -1; ///< -1 as in the program settings, else as ProgramSettings::encryption
};

/// "user@host:port", which tells web spaces apart: one host may serve many users.
[[nodiscard]] inline QString webSpaceOf(const ConnectionProfile &connection)
{
    return connection.UserName + u'@' + connection.RemoteHost + u':'
        + QString::number(connection.RemotePort);
}

/// Folders of this run; every folder ends in the separator unless said otherwise.
struct WorkingFolders {
    QString program; ///< folder that takes the place of the executable's own when that is read-only
    QString profiles; ///< program folder + "mo_def", without a separator at the end
    QString temporary; ///< for files fetched for viewing
    QString desktop; ///< the user's desktop folder, without a separator at the end
};

/// State of the session as the window sees it.
struct SessionState {
    QString Lastconnect; ///< profile that the current connection came from, empty for none
    bool DialogCancelled = true; ///< the connection dialog was not left with Login
    bool ConnectionLost = false; ///< the transfer loops stop when it is set
    bool ResumeSupport = false; ///< the server restarts transfers at an offset
    QString RemoteHome; ///< remote start folder of the session. Intended: read nowhere yet
    QString CurrentRemoteDir, CurrentLocalDir; ///< shown last. Intended: the local one is not read
};

/// State that drivers, dialogs and the progress display of a transfer share.
struct TransferState {
    QString LocalDir; ///< ends in the separator
    QString LocalName;
    qint64 LocalSize = 0; ///< bytes; download: resume offset
    QString RemoteDir; ///< ends in "/"
    QString RemoteName;
    qint64 RemoteSize = 0; ///< bytes; upload: resume offset
    bool IsUpload = false;
    bool SkipCurrent = false; ///< the conflict was answered with cancel
    bool OverwriteChosen = false;
    int ApplyToAll = 0; ///< value of the check box "Alle": 1 = checked
    bool RenameChosen = false;
    /// Intended: written before every transfer and read nowhere; a rate display may use it one day.
    double TransferStart = 0; ///< seconds since midnight
};

/// One marked row of a pane. The members' order is fixed.
struct MarkedItem {
    QString name;
    QString folder; ///< folder that the pane showed when the row was marked; empty = not marked
    QString kind; ///< ItemKind key
    QString sizeText; ///< text of the size column
    int rowIndex = 0; ///< row in the pane at marking time
};

/// The marked rows of one operation. Slots count from 1; slot 0 is never used.
struct MarkedItemList {
    QList<MarkedItem> MarkedItems { MarkedItem {} };
    int MarkedCount = 1; ///< next free slot
    [[nodiscard]] int count() const { return MarkedCount - 1; }
};

/// Result of the permissions dialog.
struct PermissionChoice {
    int PermissionMode = 0; ///< octal digits as a decimal number
    bool PermissionsConfirmed = false;
    bool alsoInside = false; ///< files inside marked folders become 644, folders 755
};

/// Exchange with the folder picker.
struct FolderChoice {
    QString PickedFolder; ///< start path on entry, choice on exit
    bool FolderPicked = false;
};

/// Answers of the make-folder operation, written by the reply event.
struct NewFolderState {
    bool MkdirDone = false;
    bool MkdirSucceeded = false;
};

/// Which list had the focus last; at most one is set.
struct ActiveList {
    bool RemoteListActive = false;
    bool LocalListActive = false;
    bool QueueListActive = false;
};

/// All program-wide state; one instance lives as long as the program.
struct Globals {
    ProgramSettings settings;
    ConnectionProfile connection;
    WorkingFolders folders;
    SessionState session;
    TransferState transfer;
    MarkedItemList marked;
    PermissionChoice permissions;
    FolderChoice folderChoice;
    NewFolderState newFolder;
    ActiveList active;
    int ProgramVersion = 0; ///< 220 once the info screen was loaded
};
