// The settings dialog: what it shows at first and what it saves.
#include "dialogs/frm_einstellungen.h"

#include "common/globals.h"
#include "common/settingsstore.h"
#include "dialogs/dialogparts.h"
#include "dialogs/helpkey.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include <memory>

using namespace Qt::StringLiterals;
using DialogParts::button;

frm_einstellungen::frm_einstellungen(const SettingsDialogServices &services, QWidget *parent)
    : QDialog(parent)
    , m_services(services)
    , m_globals(services.globals)
{
    setObjectName(u"frm_einstellungen"_s);
    setWindowTitle(u"Programmeinstellungen"_s);
    setModal(true);
    auto *tabs = new QTabWidget;
    tabs->setObjectName(u"Tab1"_s);
    tabs->addTab(logTab(), u"Logdatei"_s);
    tabs->addTab(otherTab(), u"Sonstiges"_s);
    tabs->addTab(securityTab(), u"Sicherheit"_s);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(12);
    column->addWidget(tabs);
    column->addLayout(buttonRow());
    load();
}

QLayout *frm_einstellungen::buttonRow()
{
    auto *help = button(u"cmd_hilfe"_s, u"&Hilfe"_s);
    auto *done = button(u"cmd_ok"_s, u"Fertig"_s);
    auto *cancel = button(u"cmd_abbrechen"_s, u"&Abbrechen"_s);
    done->setDefault(true);
    connect(help, &QPushButton::clicked, this, [this] { postHelpKey(this); });
    connect(done, &QPushButton::clicked, this, &frm_einstellungen::confirm);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(help);
    row->addStretch();
    row->addWidget(done);
    row->addWidget(cancel);
    return row;
}

void frm_einstellungen::load()
{
    const ProgramSettings &settings = m_globals.settings;
    m_tx_logfolder->setText(settings.LogFolder);
    m_chk_logname->setChecked(settings.LogName);
    (settings.ErrorMsg ? m_op_fehlermeldungen_1 : m_op_fehlermeldungen_0)->setChecked(true);
    m_chk_hidden->setChecked(settings.HiddenFile);
    const bool known = settings.encryption >= 0 && settings.encryption <= 2;
    m_cbo_verschluesselung->setCurrentIndex(known ? settings.encryption : 0);
    m_spn_verbindungen->setValue(settings.connections);
    fillTrusted();
}

void frm_einstellungen::browse()
{
    m_globals.folderChoice.PickedFolder = m_globals.settings.LogFolder;
    m_services.pickFolder(this);
    if (m_globals.folderChoice.FolderPicked) {
        m_tx_logfolder->setText(m_globals.folderChoice.PickedFolder);
    }
}

void frm_einstellungen::fillTrusted()
{
    m_lst_vertraut->addItems(m_services.trusted.list());
    m_cmd_vertrauen_entfernen->setEnabled(false);
}

void frm_einstellungen::forgetSelected()
{
    const int row = m_lst_vertraut->currentRow();
    if (row >= 0) {
        const std::unique_ptr<QListWidgetItem> gone(m_lst_vertraut->takeItem(row));
        m_forgotten.append(gone->text());
        m_lst_vertraut->setCurrentRow(qMin(row, m_lst_vertraut->count() - 1));
        m_cmd_vertrauen_entfernen->setEnabled(m_lst_vertraut->count() > 0);
    }
}

void frm_einstellungen::confirm()
{
    ProgramSettings &settings = m_globals.settings;
    settings.LogFolder = m_tx_logfolder->text();
    settings.HtmlRoot.clear(); // Intended: the dialog has no field for it and always clears it.
    settings.ErrorMsg = !m_op_fehlermeldungen_0->isChecked();
    settings.LogName = m_chk_logname->isChecked();
    settings.HiddenFile = m_chk_hidden->isChecked();
    settings.encryption = m_cbo_verschluesselung->currentIndex();
    settings.connections = m_spn_verbindungen->value();
    for (const QString &text : std::as_const(m_forgotten)) {
        m_services.trusted.remove(text);
    }

    SettingsStore &store = m_services.store;
    store.setInteger(OwnSettings::Security, u"Encryption"_s, settings.encryption);
    store.setInteger(OwnSettings::Security, u"Connections"_s, settings.connections);
    ignoreError(
        store.save(u"Properties"_s,
                   { { u"LogFolder"_s, settings.LogFolder },
                     { u"LogName"_s, SettingsStore::fromBoolean(settings.LogName) },
                     { u"ErrorMsg"_s, SettingsStore::fromBoolean(settings.ErrorMsg) },
                     { u"HtmlRoot"_s, settings.HtmlRoot },
                     { u"HiddenFile"_s, SettingsStore::fromBoolean(settings.HiddenFile) } }),
        "Intended: it is not told; the settings hold for this run");
    accept();
}
