#pragma once

#include "common/settingsstore.h"

#include <QString>

class Pane;
class Prompts;
class Shell;
struct FtpProxy;
struct Globals;

/// What the two login paths ask of the main window beyond Shell.
class LoginWindow {
public:
    virtual ~LoginWindow() = default;

    /// Shows the connection dialog modally; it sets DialogCancelled. @param connectionStands  the
    /// fields of a standing connection are locked
    virtual void showConnectDialog(bool connectionStands) = 0;
    /// Connects with the current connection (Session::ConnectSequence).
    virtual void ConnectSequence() = 0;
    /// Hands the proxy to the control, for the next connect.
    virtual void setProxy(const FtpProxy &proxy) = 0;
    /// Changes to a remote folder, as typed or relative, and lists it; nothing when not connected.
    virtual void EnterRemoteFolder(const QString &folder) = 0;
    /// The transfer-mode options follow the current connection's transfer type.
    virtual void showTransferType() = 0;
    virtual void setRememberButtonsEnabled(bool enabled) = 0;
    [[nodiscard]] virtual bool isLogoutEnabled() const = 0;
    /// Selects every row of the local pane from the second on, and no other.
    virtual void selectLocalRowsFromSecond() = 0;
};

/// The two ways to a connection: the dialog and the command line. Everything is kept by reference.
class Logins {
public:
    Logins(Globals &globals, SettingsStore &store, Prompts &prompts, Shell &shell, Pane &local,
           LoginWindow &window);

    /// The interactive login: dialog, connect, folders. Also the login command.
    void show_login();
    /// The remote-controlled login. @param commandLine  as commandLineText() gives it
    void load_commands(const QString &commandLine);

private:
    /// The same for both; also tells when the connection could not be saved.
    /// @return whether the local start folder is shown
    [[nodiscard]] bool connect();
    [[nodiscard]] bool enterStartFolders();
    void saveConnection();
    void save(const SettingsValues &values);

    Globals &m_globals;
    SettingsStore &m_store;
    Prompts &m_prompts;
    Shell &m_shell;
    Pane &m_local;
    LoginWindow &m_window;
};
