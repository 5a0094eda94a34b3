#pragma once

#include "dialogs/trustedservers.h"

#include <QDialog>
#include <functional>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class QSpinBox;
class SettingsStore;
struct Globals;

/// What the settings dialog works with; everything outlives it.
struct SettingsDialogServices {
    Globals &globals;
    SettingsStore &store;
    /// Shows the folder picker over the dialog; talks through Globals::folderChoice.
    std::function<void(QWidget *)> pickFolder;
    TrustedServers trusted;
};

/// The program settings. What is confirmed holds at once, in the program and in the store.
class frm_einstellungen : public QDialog {
    Q_OBJECT

public:
    explicit frm_einstellungen(const SettingsDialogServices &services, QWidget *parent = nullptr);

private:
    [[nodiscard]] QWidget *logTab();
    [[nodiscard]] QWidget *otherTab();
    [[nodiscard]] QWidget *securityTab();
    void buildSecurity();
    [[nodiscard]] QLayout *buttonRow();
    void load();
    void browse();
    void fillTrusted();
    void forgetSelected();
    void confirm();

    SettingsDialogServices m_services;
    Globals &m_globals;
    QLineEdit *m_tx_logfolder;
    QCheckBox *m_chk_logname, *m_chk_hidden;
    QRadioButton *m_op_fehlermeldungen_0, *m_op_fehlermeldungen_1;
    QComboBox *m_cbo_verschluesselung;
    QSpinBox *m_spn_verbindungen;
    QListWidget *m_lst_vertraut;
    QStringList m_forgotten; ///< trusted servers to forget on confirming, as list() names them
    QPushButton *m_cmd_vertrauen_entfernen;
};
