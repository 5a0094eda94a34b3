#pragma once

#include "app/features.h"
#include "app/logins.h"
#include "app/mainlayout.h"
#include "app/mainmenu.h"
#include "common/addresses.h"
#include "common/shell.h"

#include <QMainWindow>
#include <memory>
#include <optional>

class FtpControl;
class FilePane;
class LocalPane;
class LogPanel;
class Notifier;
class PaneView;
class QueueModel;
class QueueView;
class ProgressPanel;
class Prompts;
class QToolButton;
class RemotePane;
class Session;
class SettingsStore;
class TransferColumn;
class TransferNotice;
struct Globals;

/// What the main window works with; everything outlives it.
struct WindowServices {
    Globals &globals;
    FtpControl &ftp;
    Prompts &prompts;
    SettingsStore &store;
    Addresses addresses;
    QString commandLine; ///< as commandLineText() gives it
    Notifier *notifier = nullptr; ///< for the end of long transfers; may be null
};

/// The main window: builds its controls, owns what the features share, and forwards.
class frm_tarvelo : public QMainWindow, public Shell, private LoginWindow {
    Q_OBJECT

public:
    explicit frm_tarvelo(const WindowServices &services);
    ~frm_tarvelo() override;

    // The public operations, in their fixed order.
    int vorschau(const QString &path) override;
    void SetFtpProperties() override;
    void DoRemoteRefresh(const QString &folder) override;
    [[nodiscard]] int RemoteItem(int index) const; ///< row of a marked entry, -1 for none
    void show_login();
    void load_commands();

    void AppendLog(const QString &text) override;
    void SetCommandsEnabled(bool login, bool logout, bool unused, bool commands,
                            bool toolbars) override;
    void SetToolbarsEnabled(bool enabled) override;
    void SetFolderBoxesEnabled(bool enabled) override;
    void SetAbortEnabled(bool enabled) override;
    void UpdateRemoteCommandStates() override;
    void UpdateLocalCommandStates() override;
    void AddQueueRow(const QueueRow &row) override;
    void ShowTransferItem(const QString &text, const QString &sizeText) override;

    // For tests, which do with the panes what a user does.
    [[nodiscard]] LocalPane &localPane() { return *m_local; }
    [[nodiscard]] RemotePane &remotePane() { return *m_remote; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void showConnectDialog(bool connectionStands) override;
    void ConnectSequence() override;
    void setProxy(const FtpProxy &proxy) override;
    void EnterRemoteFolder(const QString &folder) override;
    void showTransferType() override;
    void setRememberButtonsEnabled(bool enabled) override;
    [[nodiscard]] bool isLogoutEnabled() const override;
    void selectLocalRowsFromSecond() override;

    void buildPanes();
    void buildLayout();
    void addLogos();
    QToolButton *addRememberButton(FilePane &pane, const QString &name, const QString &toolTip);
    void connectMenu();
    void connectLocalBar();
    void connectRemoteBar();
    void connectPanes();
    void connectPane(FilePane &pane, FilePane &other);
    void connectSelection(PaneView &view, bool remote);
    void connectSession();
    void connectEdits(); ///< keys and clicks of the panes that work on rows
    void connectColumn();
    void connectQueue();
    /// Runs a command unless something runs that it could disturb.
    template <class Command> void onTrigger(QAction *action, Command command);

    [[nodiscard]] bool isBusy() const; ///< something runs that commands must not disturb
    [[nodiscard]] bool mayBegin();
    void refreshActive();
    void selectAllActive();
    void goUp(bool remote);
    void enableBars(bool enabled);
    void followPane(bool remote); ///< the commands are those of the pane's selected rows
    void DeleteSelected();
    void pickFolder(QWidget *parent);
    void showSettings();
    void renameTyped();
    void tellNotRenamed(const QString &name);
    void rememberFolder(bool remote);
    void showProgress(const FtpEvent &event);
    void abort();
    void refreshRemote();
    void refreshLocal();

    WindowServices m_services;
    Globals &m_globals;
    MainMenu m_menu;
    PaneToolBar m_localBar, m_remoteBar;
    LocalPane *m_local = nullptr;
    RemotePane *m_remote = nullptr;
    TransferColumn *m_column = nullptr;
    LogPanel *m_log = nullptr;
    QToolButton *m_rememberLocal = nullptr;
    QToolButton *m_rememberRemote = nullptr;
    std::unique_ptr<Session> m_session;
    std::unique_ptr<Logins> m_logins;
    std::unique_ptr<Features> m_features;
    QueueModel *m_queueModel = nullptr;
    QueueView *m_queue = nullptr;
    ProgressPanel *m_progress = nullptr;
    TransferNotice *m_notice = nullptr;
    std::unique_ptr<MainLayout> m_layout;
    /// A row of the server's pane whose caption was edited.
    struct TypedName {
        QString name, newName;
    };
    std::optional<TypedName> m_typedName; ///< until its editor has closed
    bool m_barsEnabled = true; ///< off while a command runs, also between its calls
    bool m_unwinding = false; ///< the window closes as soon as what runs has come to its end
};
