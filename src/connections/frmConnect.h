#pragma once

#include "connections/profile.h"
#include "connections/profilefolder.h"

#include <QDialog>
#include <functional>

class Prompts;
class QComboBox;
class QLayout;
class QTabWidget;
class SettingsStore;
class VerbindungTab;
class ErweitertTab;
class ProxyTab;
struct FtpProxy;
struct Globals;

/// What the connection dialog works with; everything outlives it.
struct ConnectDialogServices {
    Globals &globals;
    SettingsStore &store;
    Prompts &prompts;
    std::function<void(const FtpProxy &)> handProxy; ///< to the control, for the next connect
    /// Shows the folder picker over the dialog; talks through Globals::folderChoice.
    std::function<void(QWidget *)> pickFolder;
};

/// The dialog in which profiles are picked, edited, saved and deleted, and which confirms the
/// connection to use. DialogCancelled of the session state tells how it was left.
class frmConnect : public QDialog {
    Q_OBJECT

public:
    /// @param connectionStands  fields that cannot change under a live session are locked
    frmConnect(const ConnectDialogServices &services, bool connectionStands,
               QWidget *parent = nullptr);

    /// Fills the dialog in.
    void setFields(const ProfileFields &fields);
    [[nodiscard]] ProfileFields fields() const;

private:
    void buildLayout();
    [[nodiscard]] QLayout *profileRow();
    [[nodiscard]] QLayout *buttonRow();
    void fillProfiles();
    void showFields(const ProfileFields &fields);
    [[nodiscard]] int entryOf(const QString &name) const;
    void filterName(const QString &typed);
    void onChosen(int index);
    void ReadProfile();
    [[nodiscard]] bool WriteProfile();
    void onNew();
    void onReset();
    void onDelete();
    void forgetCurrent(const QString &deleted);
    void onLogin();
    void onBrowse();
    [[nodiscard]] bool timeoutIsValid();
    void takeConnection();
    void saveSettings();

    ConnectDialogServices m_services;
    Globals &m_globals;
    ProfileFolder m_profiles;
    ProfileFields m_unchanged; ///< as last loaded or saved
    QComboBox *m_cbo_profil = nullptr;
    QTabWidget *m_Tab1 = nullptr;
    VerbindungTab *m_verbindung = nullptr;
    ErweitertTab *m_erweitert = nullptr;
    ProxyTab *m_proxy = nullptr;
};
