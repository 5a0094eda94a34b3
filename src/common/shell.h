#pragma once

#include <QString>

/// One row of the transfer queue, column by column.
struct QueueRow {
    QString status, local, size, direction, remote, server;
    QString detail; ///< what really happened, for the row's tool tip; may be empty
    bool failed = false; ///< shows the failure icon
    /// Whether the two paths may be taken apart again for another try: folder and name, cut at the
    /// last separator, are what they were only for names without one.
    bool repeatable = true;
    QString webSpace = {}; ///< webSpaceOf the connection of a transfer
};

/// What the features ask of the main window. The window wires the features; they never include it.
class Shell {
public:
    virtual ~Shell() = default;

    /// Appends to the end of the log, as it stands: callers bring their own line breaks.
    virtual void AppendLog(const QString &text) = 0;

    /// Hands time-out, passive mode and the like of the current connection to the control.
    virtual void SetFtpProperties() = 0;
    /// Shows and lists a remote folder.
    virtual void DoRemoteRefresh(const QString &folder) = 0;

    /// Enables login, logout, the commands menu and all fourteen toolbar buttons; the third
    /// argument has no effect. Switches the traffic lights.
    virtual void SetCommandsEnabled(bool login, bool logout, bool unused, bool commands,
                                    bool toolbars)
        = 0;
    /// Enables or disables only the toolbar buttons (all fourteen).
    virtual void SetToolbarsEnabled(bool enabled) = 0;
    virtual void SetFolderBoxesEnabled(bool enabled) = 0;
    virtual void SetAbortEnabled(bool enabled) = 0;
    virtual void UpdateRemoteCommandStates() = 0;
    virtual void UpdateLocalCommandStates() = 0;

    /// Appends a row to the transfer queue and scrolls to it.
    virtual void AddQueueRow(const QueueRow &row) = 0;
    /// Labels of the item about to be worked on; two empty texts clear them.
    virtual void ShowTransferItem(const QString &text, const QString &sizeText) = 0;

    /// Opens a file, web or mail address with its program. @return the opener's result code
    virtual int vorschau(const QString &path) = 0;
};
