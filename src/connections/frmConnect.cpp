// The connection dialog: its rows, and the fields as a whole.
#include "connections/frmConnect.h"

#include "common/globals.h"
#include "connections/connecttabs.h"
#include "connections/formparts.h"
#include "dialogs/dialogparts.h"
#include "dialogs/helpkey.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using DialogParts::button;

frmConnect::frmConnect(const ConnectDialogServices &services, bool connectionStands,
                       QWidget *parent)
    : QDialog(parent)
    , m_services(services)
    , m_globals(services.globals)
    , m_profiles(services.globals.folders.profiles)
    , m_cbo_profil(new QComboBox)
    , m_Tab1(new QTabWidget)
    , m_verbindung(new VerbindungTab)
    , m_erweitert(new ErweitertTab)
    , m_proxy(new ProxyTab)
{
    setObjectName(u"frmConnect"_s);
    setWindowTitle(u"Verbindung"_s);
    setModal(true);
    m_globals.session.DialogCancelled = true;
    buildLayout();
    if (connectionStands) {
        m_verbindung->lock();
        m_erweitert->lock();
    }
    setFields(fieldsOf(m_globals.connection));
    m_proxy->show(m_globals.connection);
    fillProfiles();
}

void frmConnect::buildLayout()
{
    m_Tab1->setObjectName(u"Tab1"_s);
    m_Tab1->addTab(m_verbindung, u"Verbindung"_s);
    m_Tab1->addTab(m_erweitert, u"Erweiterte Einstellungen"_s);
    m_Tab1->addTab(m_proxy, u"Proxy / Firewall"_s);
    connect(m_erweitert, &ErweitertTab::browsePressed, this, &frmConnect::onBrowse);
    connect(m_erweitert, &ErweitertTab::resetPressed, this, &frmConnect::onReset);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(12);
    column->addLayout(profileRow());
    column->addWidget(m_Tab1);
    column->addLayout(buttonRow());
}

QLayout *frmConnect::profileRow()
{
    m_cbo_profil->setObjectName(u"cbo_profil"_s);
    m_cbo_profil->setEditable(true);
    FormParts::ignoreWheel(m_cbo_profil); // it would load a profile over unsaved fields
    m_cbo_profil->setInsertPolicy(QComboBox::NoInsert);
    m_cbo_profil->setCompleter(nullptr); // it would finish a new name as an old one
    // Leaving the line, with Enter too, would choose the entry of that name: typing a name only
    // names what is to be saved, and must not load the old fields over the typed ones.
    QObject::disconnect(m_cbo_profil->lineEdit(), &QLineEdit::editingFinished, m_cbo_profil,
                        nullptr);
    m_cbo_profil->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_cbo_profil->setMinimumContentsLength(28);
    connect(m_cbo_profil, &QComboBox::editTextChanged, m_cbo_profil, &QComboBox::setToolTip);
    connect(m_cbo_profil->lineEdit(), &QLineEdit::textEdited, this, &frmConnect::filterName);
    connect(m_cbo_profil, &QComboBox::currentIndexChanged, this, &frmConnect::onChosen);
    connect(m_cbo_profil, &QComboBox::activated, this, &frmConnect::onChosen);

    auto *neu = button(u"cmd_profil_neu"_s, u"&Neu"_s);
    auto *save = button(u"cmd_profil_speichern"_s, u"&Speichern"_s);
    auto *remove = button(u"cmd_profil_loeschen"_s, u"Löschen"_s);
    connect(neu, &QPushButton::clicked, this, &frmConnect::onNew);
    connect(save, &QPushButton::clicked, this, [this] { (void)WriteProfile(); });
    connect(remove, &QPushButton::clicked, this, &frmConnect::onDelete);

    auto *row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(DialogParts::labelFor(m_cbo_profil, u"&Verbindungen"_s));
    row->addSpacing(6);
    row->addWidget(m_cbo_profil, 1);
    for (QPushButton *command : { neu, save, remove }) {
        row->addWidget(command);
    }
    return row;
}

QLayout *frmConnect::buttonRow()
{
    auto *help = button(u"cmd_hilfe"_s, u"&Hilfe"_s);
    auto *login = button(u"cmdOK"_s, u"&Login"_s);
    auto *cancel = button(u"cmdCancel"_s, u"&Abbrechen"_s);
    login->setDefault(true);
    connect(help, &QPushButton::clicked, this, [this] { postHelpKey(this); });
    connect(login, &QPushButton::clicked, this, &frmConnect::onLogin);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    auto *row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(help);
    row->addStretch();
    row->addWidget(login);
    row->addWidget(cancel);
    return row;
}

void frmConnect::setFields(const ProfileFields &fields)
{
    showFields(fields);
    m_unchanged = this->fields();
}

void frmConnect::showFields(const ProfileFields &fields)
{
    m_verbindung->show(fields);
    m_erweitert->show(fields);
}

ProfileFields frmConnect::fields() const
{
    ProfileFields fields;
    m_verbindung->collect(fields);
    m_erweitert->collect(fields);
    return fields;
}

void frmConnect::onReset()
{
    const ProfileFields before = fields();
    ProfileFields reset;
    reset.RemoteHost = before.RemoteHost;
    reset.UserName = before.UserName;
    reset.Password = before.Password;
    reset.Bemerkungen = before.Bemerkungen;
    showFields(reset);
}

void frmConnect::onBrowse()
{
    m_globals.folderChoice.PickedFolder = m_erweitert->txtLocalDir()->text();
    m_services.pickFolder(this);
    if (m_globals.folderChoice.FolderPicked) {
        m_erweitert->txtLocalDir()->setText(m_globals.folderChoice.PickedFolder);
    }
}
