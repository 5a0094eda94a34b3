// Leaving the connection dialog with Login: what was changed, what is valid, and where it goes.
#include "connections/frmConnect.h"

#include "common/globals.h"
#include "common/mo_standard.h"
#include "common/prompts.h"
#include "common/settingsstore.h"
#include "connections/connectionsettings.h"
#include "connections/connecttabs.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTabWidget>

using namespace Qt::StringLiterals;

void frmConnect::onLogin()
{
    const bool save = fields() != m_unchanged
        && m_services.prompts.question(
            u"Möchten Sie die Änderungen an der Verbindung speichern?"_s);
    if (save && !WriteProfile()) {
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
