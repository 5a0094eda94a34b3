#pragma once

#include "ftp/ftpcontrol.h"

#include <QObject>

class Pane;
class Prompts;
class Shell;
struct Globals;

/// The main window's side of the FTP session: connects, logs in and out, turns failures into
/// messages and follows the control's state and replies.
class Session : public QObject {
    Q_OBJECT

public:
    /// Everything is kept by reference and must outlive the session. @param remote  the server pane
    Session(FtpControl &control, Globals &globals, Prompts &prompts, Shell &shell, Pane &remote,
            QObject *parent = nullptr);
    /// The same without a control's events: onStateChanged and onReplyEvent are called directly.
    Session(FtpConnection &control, Globals &globals, Prompts &prompts, Shell &shell, Pane &remote,
            QObject *parent = nullptr);

    /// Hands time-out and passive mode of the current connection to the control; called before
    /// every connect, logout and command. A time-out that does not fit is a log line.
    void SetFtpProperties();
    /// Connects and logs in with the current connection, then shows the server's folder.
    /// Afterwards FtpControl::state() tells whether the connection stands.
    void ConnectSequence();
    /// Explains a failed connect, login or logout, writes it to the log and closes the connection.
    void LoginErrorMessage(const FtpError &error);
    void LogoutSequence();

    void logoutCommand(); ///< mnuLogout
    void abortTransfer(); ///< cmdAbort
    /// Commands and buttons of a window without a connection.
    void showDisconnected();

Q_SIGNALS:
    /// The log shall be emptied: a new connection begins. Connect directly, never queued.
    void logToBeCleared();
    void loggedIn(); ///< a session stands and its folder is shown
    void captionChanged(const QString &caption); ///< of the main window
    /// Bytes of a running transfer, for the progress display.
    void progress(const FtpEvent &event);
    /// Any event of the control, after it was handled here; for explanations of replies.
    void replied(const FtpEvent &event);

public Q_SLOTS:
    void onStateChanged(int state);
    void onReplyEvent(const FtpEvent &event);

private:
    [[nodiscard]] FtpStatus applyProperties();
    [[nodiscard]] FtpStatus connectAndLogin();
    void afterLogin();
    /// What to do about a failure, for those who did not ask for detailed messages.
    void appendAdvice(const QString &sentence);
    /// Whether an event came in the middle of a transfer, which may go on for long after a reply:
    /// with the next file, with a server that stalls, with a lost line that is built up again.
    [[nodiscard]] bool duringTransfer(const FtpEvent &event) const;
    void noteNewFolder(const FtpEvent &event);

    FtpConnection &m_control;
    Globals &m_globals;
    Prompts &m_prompts;
    Shell &m_shell;
    Pane &m_remote;
};
