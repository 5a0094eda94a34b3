#include "app/logins.h"

#include "app/commandline.h"
#include "common/globals.h"
#include "common/intime.h"
#include "common/mo_standard.h"
#include "common/prompts.h"
#include "common/settingsstore.h"
#include "common/shell.h"
#include "connections/connectionsettings.h"
#include "remote/pane.h"

using namespace Qt::StringLiterals;

Logins::Logins(Globals &globals, SettingsStore &store, Prompts &prompts, Shell &shell, Pane &local,
               LoginWindow &window)
    : m_globals(globals)
    , m_store(store)
    , m_prompts(prompts)
    , m_shell(shell)
    , m_local(local)
    , m_window(window)
{
}

void Logins::show_login()
{
    m_window.showConnectDialog(false);
    // Also when it was cancelled: an address of the command line belongs to no profile.
    m_window.setRememberButtonsEnabled(!m_globals.session.Lastconnect.isEmpty());
    if (m_globals.session.DialogCancelled) {
        return;
    }
    m_window.showTransferType();
    (void)connect(); // a start folder that is missing leaves the one that is shown
}

bool Logins::connect()
{
    m_window.ConnectSequence();
    if (const auto saved = m_store.sync(); !saved) {
        m_shell.AppendLog(saved.error().text() + u"\r\n"_s);
    }
    return enterStartFolders();
}

bool Logins::enterStartFolders()
{
    const QString remote = m_globals.connection.RemoteDir;
    const QString local = m_globals.connection.LocalDir;
    if (!trimBlanks(remote).isEmpty()) {
        m_window.EnterRemoteFolder(remote);
    }
    const bool there = !trimBlanks(local).isEmpty() && isFolderInTime(local);
    if (there) {
        m_local.setFolderText(local);
        m_local.listFolder(local);
    }
    return there;
}

void Logins::load_commands(const QString &commandLine)
{
    m_shell.AppendLog(commandLine);
    const auto connection = connectionFromFields(commandLine, m_globals.connection);
    if (!connection) {
        m_prompts.message(u"Fehler beim Ferngesteuerten Login. "_s + connection.error());
        return;
    }
    m_globals.connection = *connection;
    m_globals.session.CurrentLocalDir = connection->LocalDir;
    m_globals.session.CurrentRemoteDir = connection->RemoteDir;
    m_window.showTransferType();
    saveConnection();
    m_window.setProxy(proxyOf(m_globals.connection));
    m_globals.session.Lastconnect.clear();
    save({ { u"Lastconnect"_s, {} } });
    m_window.setRememberButtonsEnabled(false); // there is no profile to write into

    if (connect()) {
        m_window.selectLocalRowsFromSecond();
    }
    if (m_window.isLogoutEnabled()) {
        m_prompts.message(u"Überprüfen Sie ob auf der rechten Seite (dem Server), das richtige "
                          "Verzeichnis eingestellt ist.\nWenn ja, drücken Sie den "
                          "Übertragenbutton -> um mit dem Kopiervorgang zu beginnen."_s);
    }
}

void Logins::saveConnection()
{
    const ConnectionProfile &connection = m_globals.connection;
    m_store.setInteger(OwnSettings::Connection, u"Encryption"_s, connection.encryption);
    save(connectionSettings(connection));
}

void Logins::save(const SettingsValues &values)
{
    ignoreError(m_store.save(u"Settings"_s, values),
                "told after the connect, which begins a new log");
}
