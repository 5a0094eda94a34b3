#include "app/startup.h"

#include "common/mo_standard.h"
#include "connections/ftpurl.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

/// Reads one section value by value into variables that hold the defaults; stops at the first
/// value that cannot be converted.
class Reader {
public:
    Reader(const SettingsStore &store, const QString &section)
        : m_store(store)
        , m_section(section)
    {
    }
    void text(const QString &key, QString &value)
    {
        if (m_result) {
            value = m_store.text(m_section, key, value);
        }
    }
    void number(const QString &key, int &value)
    {
        if (m_result) {
            take(m_store.integer(m_section, key, value), value);
        }
    }
    void truth(const QString &key, bool &value)
    {
        if (m_result) {
            take(m_store.boolean(m_section, key, value), value);
        }
    }
    [[nodiscard]] const SettingsResult<void> &result() const { return m_result; }

private:
    template <class T> void take(const SettingsResult<T> &read, T &value)
    {
        if (read) {
            value = *read;
        } else {
            m_result = tl::unexpected(read.error());
        }
    }

    const SettingsStore &m_store;
    QString m_section;
    SettingsResult<void> m_result;
};

SettingsResult<void> readProperties(const SettingsStore &store, Globals &globals)
{
    ProgramSettings settings;
    settings.LogFolder = globals.folders.profiles + LocalSeparator;
    Reader reader(store, u"Properties"_s);
    reader.text(u"LogFolder"_s, settings.LogFolder);
    reader.truth(u"LogName"_s, settings.LogName);
    reader.truth(u"ErrorMsg"_s, settings.ErrorMsg);
    reader.text(u"HtmlRoot"_s, settings.HtmlRoot);
    reader.truth(u"HiddenFile"_s, settings.HiddenFile);
    globals.settings = settings;
    return reader.result();
}

SettingsResult<void> readConnection(const SettingsStore &store, Globals &globals)
{
    ConnectionProfile connection;
    Reader reader(store, u"Settings"_s);
    reader.text(u"RemoteHost"_s, connection.RemoteHost);
    reader.text(u"UserName"_s, connection.UserName);
    reader.text(u"Password"_s, connection.Password);
    connection.Password = ScramblePassword(connection.Password, false);
    reader.text(u"RemoteDir"_s, connection.RemoteDir);
    reader.text(u"LocalDir"_s, connection.LocalDir);
    reader.number(u"TransferType"_s, connection.TransferType);
    reader.truth(u"Passive"_s, connection.Passive);
    reader.number(u"Timeout"_s, connection.Timeout);
    reader.number(u"RemotePort"_s, connection.RemotePort);
    reader.text(u"Lastconnect"_s, globals.session.Lastconnect);
    reader.text(u"Account"_s, connection.Account);
    reader.text(u"Bemerkungen"_s, connection.Bemerkungen);
    reader.number(u"ProxyType"_s, connection.ProxyType);
    reader.text(u"ProxyHost"_s, connection.ProxyHost);
    reader.text(u"ProxyUsername"_s, connection.ProxyUsername);
    // Intended: saved scrambled and read back as it stands, unlike Password.
    reader.text(u"ProxyPassword"_s, connection.ProxyPassword);
    reader.number(u"Proxyport"_s, connection.Proxyport);
    globals.connection = connection;
    return reader.result();
}

SettingsResult<void> readOwnSettings(const SettingsStore &store, Globals &globals)
{
    Reader security(store, OwnSettings::Security);
    security.number(u"Encryption"_s, globals.settings.encryption);
    security.number(u"Connections"_s, globals.settings.connections);
    Reader connection(store, OwnSettings::Connection);
    connection.number(u"Encryption"_s, globals.connection.encryption);
    return security.result() ? connection.result() : security.result();
}

} // namespace

SettingsResult<void> readSettings(const SettingsStore &store, Globals &globals)
{
    return store.readable()
        .and_then([&] { return readProperties(store, globals); })
        .and_then([&] { return readConnection(store, globals); })
        .and_then([&] { return readOwnSettings(store, globals); });
}

SettingsResult<void> loadProgramState(const SettingsStore &store, const FolderSources &sources,
                                      Globals &globals)
{
    globals.folders = workingFolders(sources);
    makeProfileFolder(globals.folders);
    if (const auto read = readSettings(store, globals); !read) {
        return read;
    }
    globals.folders.temporary = makeTemporaryFolder(globals.folders.temporary);
    globals.session.ConnectionLost = false;
    globals.session.DialogCancelled = true;
    return {};
}

bool takeAddress(const QString &address, Globals &globals)
{
    std::optional<ConnectionProfile> connection = profileFromUrl(address);
    if (!connection) {
        return false;
    }
    connection->ProxyType = globals.connection.ProxyType;
    connection->ProxyHost = globals.connection.ProxyHost;
    connection->ProxyUsername = globals.connection.ProxyUsername;
    connection->ProxyPassword = globals.connection.ProxyPassword;
    connection->Proxyport = globals.connection.Proxyport;
    globals.connection = *connection;
    // The dialog would load this profile over the address.
    globals.session.Lastconnect.clear();
    return true;
}

QString trustFile(const SettingsStore &store)
{
    return QFileInfo(store.file()).absolutePath() + u"/trusted-certificates"_s;
}
