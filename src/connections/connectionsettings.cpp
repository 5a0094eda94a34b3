#include "connections/connectionsettings.h"

#include "common/mo_standard.h"

using namespace Qt::StringLiterals;

SettingsValues connectionSettings(const ConnectionProfile &connection)
{
    return {
        { u"RemoteDir"_s, connection.RemoteDir },
        { u"LocalDir"_s, connection.LocalDir },
        { u"RemoteHost"_s, connection.RemoteHost },
        { u"UserName"_s, connection.UserName },
        { u"Password"_s, ScramblePassword(connection.Password, true) },
        { u"TransferType"_s, QString::number(connection.TransferType) },
        { u"Passive"_s, SettingsStore::fromBoolean(connection.Passive) },
        { u"Timeout"_s, QString::number(connection.Timeout) },
        { u"RemotePort"_s, QString::number(connection.RemotePort) },
        { u"Account"_s, connection.Account },
        { u"Bemerkungen"_s, connection.Bemerkungen },
    };
}

SettingsValues proxySettings(const ConnectionProfile &connection)
{
    return {
        { u"ProxyType"_s, QString::number(connection.ProxyType) },
        { u"ProxyHost"_s, connection.ProxyHost },
        { u"ProxyUsername"_s, connection.ProxyUsername },
        // Intended: scrambled here and not unscrambled by the next start.
        { u"ProxyPassword"_s, ScramblePassword(connection.ProxyPassword, true) },
        // Intended: start-up reads it as "Proxyport"; keys match in any case.
        { u"ProxyPort"_s, QString::number(connection.Proxyport) },
    };
}

FtpProxy proxyOf(const ConnectionProfile &connection)
{
    FtpProxy proxy;
    proxy.type = connection.ProxyType;
    proxy.host = connection.ProxyHost;
    proxy.user = connection.ProxyUsername;
    proxy.password = connection.ProxyPassword;
    proxy.port = connection.Proxyport;
    return proxy;
}
