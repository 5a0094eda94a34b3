#include "app/startup.h"

#include "common/mo_standard.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct StartUp : ::testing::Test {
    QTemporaryDir base;
    FolderSources sources {
        base.filePath(u"bin"_s), base.filePath(u"data"_s), base.filePath(u"tmp"_s), {}, base.path()
    };
    QString file = base.filePath(u"config/Tarvelo FTP.ini"_s);
    SettingsStore store { file };
    Globals globals;

    void SetUp() override { QDir(base.path()).mkpath(u"bin"_s); }
};

} // namespace

TEST_F(StartUp, AnEmptyStoreGivesTheDefaults)
{
    globals.session.DialogCancelled = false;
    globals.session.ConnectionLost = true;
    ASSERT_TRUE(loadProgramState(store, sources, globals));
    EXPECT_EQ(globals.settings.LogFolder, base.filePath(u"bin/mo_def/"_s));
    EXPECT_TRUE(globals.settings.LogName);
    EXPECT_FALSE(globals.settings.ErrorMsg);
    EXPECT_EQ(globals.settings.HtmlRoot, QString());
    EXPECT_FALSE(globals.settings.HiddenFile);
    const ConnectionProfile &connection = globals.connection;
    EXPECT_EQ(connection.RemoteHost + connection.UserName + connection.Password
                  + connection.RemoteDir + connection.LocalDir + connection.Account
                  + connection.Bemerkungen + connection.ProxyHost + connection.ProxyUsername
                  + connection.ProxyPassword,
              QString());
    EXPECT_EQ(connection.TransferType, 1);
    EXPECT_TRUE(connection.Passive);
    EXPECT_EQ(connection.Timeout, 30);
    EXPECT_EQ(connection.RemotePort, 21);
    EXPECT_EQ(connection.ProxyType, 0);
    EXPECT_EQ(connection.Proxyport, 2121);
    EXPECT_EQ(connection.encryption, -1);
    EXPECT_EQ(globals.settings.encryption, 0);
    EXPECT_EQ(globals.settings.connections, 4);
    EXPECT_EQ(globals.session.Lastconnect, QString());
    EXPECT_TRUE(globals.session.DialogCancelled);
    EXPECT_FALSE(globals.session.ConnectionLost);
}

TEST_F(StartUp, TheWorkingFoldersAreMade)
{
    ASSERT_TRUE(loadProgramState(store, sources, globals));
    EXPECT_TRUE(QFileInfo(base.filePath(u"bin/mo_def"_s)).isDir());
    EXPECT_TRUE(QFileInfo(base.filePath(u"tmp/tarvelo_ftp_temp"_s)).isDir());
    EXPECT_EQ(globals.folders.temporary, base.filePath(u"tmp/tarvelo_ftp_temp/"_s));
    EXPECT_EQ(globals.folders.profiles, base.filePath(u"bin/mo_def"_s));
}

TEST_F(StartUp, StoredValuesAreRead)
{
    const QString secret = u"gehéim"_s;
    ASSERT_TRUE(store.save(u"Properties"_s,
                           { { u"LogFolder"_s, u"/var/logs"_s },
                             { u"LogName"_s, u"False"_s },
                             { u"ErrorMsg"_s, u"1"_s },
                             { u"HtmlRoot"_s, u"/html"_s },
                             { u"HiddenFile"_s, u"TRUE"_s } }));
    ASSERT_TRUE(store.save(u"Settings"_s,
                           { { u"RemoteHost"_s, u"files01"_s },
                             { u"UserName"_s, u"web01"_s },
                             { u"Password"_s, ScramblePassword(secret, true) },
                             { u"RemoteDir"_s, u"/html"_s },
                             { u"LocalDir"_s, u"/home/anna"_s },
                             { u"TransferType"_s, u"2"_s },
                             { u"Passive"_s, u"False"_s },
                             { u"Timeout"_s, u"45"_s },
                             { u"RemotePort"_s, u"2100"_s },
                             { u"Lastconnect"_s, u"Heim"_s },
                             { u"Account"_s, u"konto"_s },
                             { u"Bemerkungen"_s, u"a\r\nb"_s },
                             { u"ProxyType"_s, u"3"_s },
                             { u"ProxyHost"_s, u"proxy"_s },
                             { u"ProxyUsername"_s, u"pu"_s },
                             { u"ProxyPassword"_s, u"^_`"_s },
                             { u"ProxyPort"_s, u"1080"_s } }));
    store.setInteger(OwnSettings::Security, u"Encryption"_s, 1);
    store.setInteger(OwnSettings::Security, u"Connections"_s, 2);
    store.setInteger(OwnSettings::Connection, u"Encryption"_s, 2);

    ASSERT_TRUE(readSettings(store, globals));
    EXPECT_EQ(globals.settings.LogFolder, u"/var/logs"_s);
    EXPECT_FALSE(globals.settings.LogName);
    EXPECT_TRUE(globals.settings.ErrorMsg);
    EXPECT_EQ(globals.settings.HtmlRoot, u"/html"_s);
    EXPECT_TRUE(globals.settings.HiddenFile);
    EXPECT_EQ(globals.settings.encryption, 1);
    EXPECT_EQ(globals.settings.connections, 2);
    const ConnectionProfile &connection = globals.connection;
    EXPECT_EQ(connection.RemoteHost, u"files01"_s);
    EXPECT_EQ(connection.UserName, u"web01"_s);
    EXPECT_EQ(connection.Password, secret);
    EXPECT_EQ(connection.RemoteDir, u"/html"_s);
    EXPECT_EQ(connection.LocalDir, u"/home/anna"_s);
    EXPECT_EQ(connection.TransferType, 2);
    EXPECT_FALSE(connection.Passive);
    EXPECT_EQ(connection.Timeout, 45);
    EXPECT_EQ(connection.RemotePort, 2100);
    EXPECT_EQ(globals.session.Lastconnect, u"Heim"_s);
    EXPECT_EQ(connection.Account, u"konto"_s);
    EXPECT_EQ(connection.Bemerkungen, u"a\r\nb"_s);
    EXPECT_EQ(connection.ProxyType, 3);
    EXPECT_EQ(connection.ProxyHost, u"proxy"_s);
    EXPECT_EQ(connection.ProxyUsername, u"pu"_s);
    EXPECT_EQ(connection.Proxyport, 1080);
    EXPECT_EQ(connection.encryption, 2);
}

TEST_F(StartUp, TheProxyPasswordIsNotUnscrambled)
{
    store.setText(u"Settings"_s, u"ProxyPassword"_s, u"^_`"_s); // "abc" as the dialog saved it
    ASSERT_TRUE(readSettings(store, globals));
    EXPECT_EQ(globals.connection.ProxyPassword, u"^_`"_s);
}

TEST_F(StartUp, TheFirstValueThatCannotBeReadEndsIt)
{
    // In file order the other way round: sections and keys have an order of their own.
    store.setText(u"Settings"_s, u"RemotePort"_s, u"ftp"_s);
    store.setText(u"Settings"_s, u"Timeout"_s, u"bald"_s);
    auto result = readSettings(store, globals);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().key, u"Settings/Timeout"_s);
    EXPECT_EQ(globals.connection.RemotePort, 21);

    store.setText(u"Properties"_s, u"HiddenFile"_s, u"vielleicht"_s);
    result = readSettings(store, globals);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().key, u"Properties/HiddenFile"_s);
    EXPECT_EQ(store.text(u"Properties"_s, u"HiddenFile"_s), u"vielleicht"_s);
}

TEST_F(StartUp, FoldersSettingsAndFlagsHaveTheirOrder)
{
    // A value that cannot be read stops it behind the profile folder and before all the rest.
    store.setText(u"Settings"_s, u"Timeout"_s, u"bald"_s);
    globals.session.DialogCancelled = false;
    globals.session.ConnectionLost = true;
    ASSERT_FALSE(loadProgramState(store, sources, globals));
    EXPECT_TRUE(QFileInfo(base.filePath(u"bin/mo_def"_s)).isDir());
    EXPECT_FALSE(QFileInfo::exists(base.filePath(u"tmp/tarvelo_ftp_temp"_s)));
    EXPECT_FALSE(globals.session.DialogCancelled);
    EXPECT_TRUE(globals.session.ConnectionLost);
}

TEST_F(StartUp, ValuesAreReadInTheGivenOrder)
{
    const QStringList order { u"RemoteHost"_s,    u"UserName"_s,  u"Password"_s,
                              u"RemoteDir"_s,     u"LocalDir"_s,  u"TransferType"_s,
                              u"Passive"_s,       u"Timeout"_s,   u"RemotePort"_s,
                              u"Lastconnect"_s,   u"Account"_s,   u"Bemerkungen"_s,
                              u"ProxyType"_s,     u"ProxyHost"_s, u"ProxyUsername"_s,
                              u"ProxyPassword"_s, u"Proxyport"_s };
    for (const QString &key : order) {
        store.setText(u"Settings"_s, key, u"x"_s); // as a number or truth value it is nonsense
    }
    const QList<int> typed { 5, 6, 7, 8, 12, 16 };
    for (const int at : typed) {
        globals = {};
        const auto result = readSettings(store, globals);
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error().key, u"Settings/"_s + order.at(at));
        // The texts tell how far it came.
        const ConnectionProfile &read = globals.connection;
        EXPECT_EQ(read.RemoteHost + read.UserName + read.RemoteDir + read.LocalDir, u"xxxx"_s);
        const QString middle = globals.session.Lastconnect + read.Account + read.Bemerkungen;
        EXPECT_EQ(middle, at < 9 ? QString() : u"xxx"_s) << at;
        const QString proxy = read.ProxyHost + read.ProxyUsername + read.ProxyPassword;
        EXPECT_EQ(proxy, at < 13 ? QString() : u"xxx"_s) << at;
        store.setText(u"Settings"_s, order.at(at), u"1"_s);
    }
    EXPECT_TRUE(readSettings(store, globals));
}

TEST_F(StartUp, EveryTypedKeyIsChecked)
{
    const QList<std::pair<QString, QString>> typed {
        { u"Properties"_s, u"LogName"_s },    { u"Properties"_s, u"ErrorMsg"_s },
        { u"Properties"_s, u"HiddenFile"_s }, { u"Settings"_s, u"TransferType"_s },
        { u"Settings"_s, u"Passive"_s },      { u"Settings"_s, u"Timeout"_s },
        { u"Settings"_s, u"RemotePort"_s },   { u"Settings"_s, u"ProxyType"_s },
        { u"Settings"_s, u"Proxyport"_s },    { u"Security"_s, u"Encryption"_s },
        { u"Security"_s, u"Connections"_s },  { u"Connection"_s, u"Encryption"_s },
    };
    for (const auto &[section, key] : typed) {
        SettingsStore broken(base.filePath(section + key + u".ini"_s));
        broken.setText(section, key, u"Unsinn"_s);
        const auto result = readSettings(broken, globals);
        ASSERT_FALSE(result) << key.toStdString();
        EXPECT_EQ(result.error().key, section + u'/' + key);
        EXPECT_EQ(result.error().value, u"Unsinn"_s);
    }
}

TEST_F(StartUp, AFileThatCannotBeReadEndsIt)
{
    const QString folder = base.filePath(u"ordner.ini"_s);
    QDir().mkpath(folder);
    const SettingsStore broken(folder);
    const auto result = readSettings(broken, globals);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().file, folder);
}

TEST_F(StartUp, TrustedCertificatesStandBesideTheSettings)
{
    EXPECT_EQ(trustFile(store), base.filePath(u"config/trusted-certificates"_s));
}

TEST_F(StartUp, AnAddressIsShownWithTheProxyInPlaceOfAnyProfile)
{
    globals.session.Lastconnect = u"zuletzt"_s;
    globals.connection.RemoteHost = u"files01"_s;
    globals.connection.Bemerkungen = u"alt"_s;
    globals.connection.ProxyType = 2;
    globals.connection.ProxyHost = u"proxy01"_s;
    globals.connection.Proxyport = 1080;
    ASSERT_TRUE(takeAddress(u"ftpes://web01@neu.example/html/"_s, globals));
    EXPECT_EQ(globals.connection.RemoteHost, u"neu.example"_s);
    EXPECT_EQ(globals.connection.UserName, u"web01"_s);
    EXPECT_EQ(globals.connection.RemoteDir, u"html/"_s);
    EXPECT_EQ(globals.connection.Bemerkungen, QString());
    EXPECT_EQ(globals.connection.encryption, 1);
    EXPECT_EQ(globals.connection.ProxyType, 2);
    EXPECT_EQ(globals.connection.ProxyHost, u"proxy01"_s);
    EXPECT_EQ(globals.connection.Proxyport, 1080);
    EXPECT_EQ(globals.session.Lastconnect, QString());
}

TEST_F(StartUp, AnAddressThatCannotBeUsedChangesNothing)
{
    globals.session.Lastconnect = u"zuletzt"_s;
    globals.connection.RemoteHost = u"files01"_s;
    EXPECT_FALSE(takeAddress(u"ftp://web01%0D%0A@neu.example/"_s, globals));
    EXPECT_EQ(globals.connection.RemoteHost, u"files01"_s);
    EXPECT_EQ(globals.session.Lastconnect, u"zuletzt"_s);
}
