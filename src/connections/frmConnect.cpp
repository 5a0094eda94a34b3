#include "connections/frmConnect.h"

#include "common/globals.h"
#include "common/mo_standard.h"
#include "common/prompts.h"
#include "common/settingsstore.h"
#include "connections/connectionsettings.h"
#include "connections/connecttabs.h"
#include "connections/formparts.h"

#include <QComboBox>
#include <QCompleter>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTabWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QPushButton *button(const QString &name, const QString &caption)
{
    auto *made = new QPushButton(caption);
    made->setObjectName(name);
    made->setAutoDefault(false); // Enter is for Login
    return made;
}

} // namespace

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
    // Leaving the line would choose the entry of that name: typing a name only names what is to be
    // saved, and must not load the old fields over the typed ones.
    QObject::disconnect(m_cbo_profil->lineEdit(), &QLineEdit::editingFinished, m_cbo_profil,
                        nullptr);
    m_cbo_profil->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_cbo_profil->setMinimumContentsLength(16);
    connect(m_cbo_profil->lineEdit(), &QLineEdit::textEdited, this, &frmConnect::filterName);
    connect(m_cbo_profil, &QComboBox::currentIndexChanged, this, &frmConnect::onChosen);
    connect(m_cbo_profil, &QComboBox::activated, this, &frmConnect::onChosen);

    auto *label = new QLabel(u"&Verbindungen"_s);
    label->setBuddy(m_cbo_profil);
    auto *neu = button(u"cmd_profil_neu"_s, u"&Neu"_s);
    auto *save = button(u"cmd_profil_speichern"_s, u"&Speichern"_s);
    auto *remove = button(u"cmd_profil_loeschen"_s, u"Löschen"_s);
    connect(neu, &QPushButton::clicked, this, &frmConnect::onNew);
    connect(save, &QPushButton::clicked, this, [this] { (void)writeProfile(); });
    connect(remove, &QPushButton::clicked, this, &frmConnect::onDelete);

    auto *row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(label);
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
    connect(help, &QPushButton::clicked, this, [this] {
        QCoreApplication::postEvent(this,
                                    new QKeyEvent(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier));
    });
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

void frmConnect::fillProfiles()
{
    {
        const QSignalBlocker quiet(m_cbo_profil);
        m_cbo_profil->addItems(m_profiles.names());
        m_cbo_profil->setCurrentIndex(-1);
        m_cbo_profil->clearEditText();
    }
    m_cbo_profil->setCurrentIndex(m_cbo_profil->findText(
        m_globals.session.Lastconnect, Qt::MatchExactly | Qt::MatchCaseSensitive));
}

void frmConnect::filterName(const QString &typed)
{
    const QString filtered = filteredProfileName(typed);
    if (filtered != typed) {
        QLineEdit *edit = m_cbo_profil->lineEdit();
        const int caret = edit->cursorPosition();
        edit->setText(filtered);
        edit->setCursorPosition(caret);
    }
}

void frmConnect::onChosen(int index)
{
    if (index >= 0) {
        readProfile();
    }
}

void frmConnect::readProfile()
{
    const QString name = m_cbo_profil->currentText();
    ProfileFields shown = fields();
    if (m_profiles.read(name, shown) == 0) {
        return;
    }
    // A short file fills some fields only; the others keep what they show and what they were.
    ProfileFields unchanged = m_unchanged;
    m_profiles.read(name, unchanged);
    setFields(unchanged);
    showFields(shown);
}

bool frmConnect::writeProfile()
{
    const QString name = m_cbo_profil->currentText();
    if (trimBlanks(name).isEmpty()) {
        m_services.prompts.message(
            u"Geben Sie einen Namen an, unter dem Sie die Verbindung speichern möchten."_s);
        m_cbo_profil->setFocus();
        return false;
    }
    if (const auto written = m_profiles.write(name, fields()); !written) {
        m_services.prompts.message(written.error());
        return false;
    }
    m_unchanged = fields();
    const QSignalBlocker quiet(m_cbo_profil);
    // A name in other case is the same profile, whose own spelling stays.
    if (m_cbo_profil->findText(name, Qt::MatchFixedString) < 0) {
        m_cbo_profil->addItem(name);
    }
    m_cbo_profil->setCurrentIndex(m_cbo_profil->findText(name, Qt::MatchFixedString));
    return true;
}

void frmConnect::onNew()
{
    {
        const QSignalBlocker quiet(m_cbo_profil);
        m_cbo_profil->setCurrentIndex(-1);
        m_cbo_profil->clearEditText();
    }
    const ProfileFields before = fields();
    ProfileFields fresh;
    // Intended: account and remarks stay.
    fresh.Account = before.Account;
    fresh.Bemerkungen = before.Bemerkungen;
    showFields(fresh);
    m_cbo_profil->setFocus();
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

void frmConnect::onDelete()
{
    const QString name = m_cbo_profil->currentText();
    if (trimBlanks(name).isEmpty()) {
        m_services.prompts.message(u"Sie müssen eine Verbindung aus der Liste wählen"_s);
        return;
    }
    if (!m_profiles.find(name)
        || !m_services.prompts.question(
            u"Sind Sie sicher, dass Sie die Verbindung löschen möchten."_s)) {
        return;
    }
    if (!m_profiles.remove(name)) {
        m_services.prompts.message(u"Die Verbindung konnte nicht gelöscht werden."_s);
        return;
    }
    const QSignalBlocker quiet(m_cbo_profil);
    m_cbo_profil->removeItem(m_cbo_profil->findText(name, Qt::MatchFixedString));
    m_cbo_profil->setCurrentIndex(-1);
    m_cbo_profil->clearEditText();
}

void frmConnect::onBrowse()
{
    m_globals.folderChoice.PickedFolder = m_erweitert->txtLocalDir()->text();
    m_services.pickFolder(this);
    if (m_globals.folderChoice.FolderPicked) {
        m_erweitert->txtLocalDir()->setText(m_globals.folderChoice.PickedFolder);
    }
}

void frmConnect::onLogin()
{
    const bool save = fields() != m_unchanged
        && m_services.prompts.question(
            u"Möchten Sie die Änderungen an der Verbindung speichern?"_s);
    if (save && !writeProfile()) {
        return;
    }
    ConnectionProfile proxy;
    m_proxy->collect(proxy);
    m_services.handProxy(proxyOf(proxy));
    if (!timeoutIsValid()) {
        return;
    }
    takeConnection();
    saveSettings();
    m_globals.session.DialogCancelled = false;
    accept();
}

bool frmConnect::timeoutIsValid()
{
    const double seconds = lenientNumber(m_erweitert->txtTimeout()->text());
    if (seconds >= 1 && seconds <= 9999) {
        return true;
    }
    // Intended: the text names 0 although 0 is refused.
    m_services.prompts.message(u"Invalid Timeout Value. \n\nEnter a value between 0 and 9999"_s,
                               u"Tarvelo FTP"_s, Prompts::Icon::Exclamation);
    m_Tab1->setCurrentWidget(m_erweitert);
    m_erweitert->txtTimeout()->setFocus();
    m_erweitert->txtTimeout()->selectAll();
    return false;
}

void frmConnect::takeConnection()
{
    const ProfileFields shown = fields();
    ConnectionProfile &connection = m_globals.connection;
    connection.RemoteHost = shown.RemoteHost;
    connection.UserName = shown.UserName;
    connection.Password = shown.Password;
    connection.RemoteDir = shown.RemoteDir;
    connection.LocalDir = shown.LocalDir;
    connection.RemotePort = lenientInt(shown.RemotePort);
    connection.TransferType = swappedTransferType(shown.TransferPosition);
    connection.Passive = shown.Passive;
    connection.Timeout = lenientInt(shown.Timeout);
    connection.Account = shown.Account;
    connection.Bemerkungen = shown.Bemerkungen;
    connection.encryption = shown.encryption;
    m_proxy->collect(connection);
    m_globals.session.Lastconnect = m_cbo_profil->currentText();
}

void frmConnect::saveSettings()
{
    const ConnectionProfile &connection = m_globals.connection;
    m_services.store.setInteger(OwnSettings::Connection, u"Encryption"_s, connection.encryption);
    ignoreError(m_services.store.save(
                    u"Settings"_s,
                    connectionSettings(connection) + proxySettings(connection)
                        + SettingsValues { { u"Lastconnect"_s, m_globals.session.Lastconnect } }),
                "told after the connect, which begins a new log");
}
