#include "app/logins.h"

#include "common/globals.h"
#include "common/mo_standard.h"
#include "common/settingsstore.h"
#include "ftp/ftpconnection.h"
#include "support/fakepane.h"
#include "support/fakeshell.h"
#include "support/scriptedprompts.h"
#include "support/storedkeys.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Plays the main window: the dialog and the connect are told how to end.
class FakeLoginWindow : public LoginWindow {
public:
    explicit FakeLoginWindow(Globals &globals)
        : m_globals(globals)
    {
    }
    bool loginPressed = true;
    bool connects = true;
    std::function<void()> whileConnecting;
    FtpProxy proxy;
    QStringList calls;

    void showConnectDialog(bool connectionStands) override
    {
        calls << u"dialog %1"_s.arg(connectionStands);
        m_globals.session.DialogCancelled = !loginPressed;
    }
    void ConnectSequence() override
    {
        calls << u"connect"_s;
        m_connected = connects;
        if (whileConnecting) {
            whileConnecting();
        }
    }
    void setProxy(const FtpProxy &given) override
    {
        calls << u"proxy"_s;
        proxy = given;
    }
    void EnterRemoteFolder(const QString &folder) override { calls << u"enter "_s + folder; }
    void showTransferType() override
    {
        calls << u"type %1"_s.arg(m_globals.connection.TransferType);
    }
    void setRememberButtonsEnabled(bool enabled) override
    {
        calls << u"remember %1"_s.arg(enabled);
    }
    [[nodiscard]] bool isLogoutEnabled() const override { return m_connected; }
    void selectLocalRowsFromSecond() override { calls << u"select"_s; }

private:
    Globals &m_globals;
    bool m_connected = false;
};

struct LoginPaths : ::testing::Test {
    QTemporaryDir base;
    Globals globals;
    SettingsStore store { base.filePath(u"settings.ini"_s) };
    ScriptedPrompts prompts;
    FakeShell shell;
    FakePane local { FakePane::disk() };
    FakeLoginWindow window { globals };
    Logins logins { globals, store, prompts, shell, local, window };

    QString fields(const QString &localDir, const QString &remoteDir)
    {
        return u"files01\tweb01\tgeheim\t"_s + localDir + u'\t' + remoteDir
            + u"\t45\t2121\t0\t0\tkonto\tBemerkung"_s;
    }
    void expectFinalMessage()
    {
        prompts.expectMessage(
            u"Überprüfen Sie ob auf der rechten Seite (dem Server), das richtige Verzeichnis "
            "eingestellt ist.\nWenn ja, drücken Sie den Übertragenbutton -> um mit dem "
            "Kopiervorgang "
            "zu beginnen."_s);
    }
};

} // namespace

TEST_F(LoginPaths, ACancelledDialogConnectsNothing)
{
    window.loginPressed = false;
    logins.show_login();
    EXPECT_EQ(window.calls, (QStringList { u"dialog 0"_s, u"remember 0"_s }));
}

TEST_F(LoginPaths, LoginConnectsAndEntersTheStartFolders)
{
    globals.connection.RemoteDir = u"/html"_s;
    globals.connection.LocalDir = base.path();
    globals.session.Lastconnect = u"Heim"_s;
    logins.show_login();
    EXPECT_EQ(window.calls,
              (QStringList { u"dialog 0"_s, u"remember 1"_s, u"type 1"_s, u"connect"_s,
                             u"enter /html"_s }));
    EXPECT_EQ(local.text, base.path());
    EXPECT_TRUE(local.calls.contains(u"list "_s + base.path()));
}

TEST_F(LoginPaths, BlankOrMissingStartFoldersAreLeftAlone)
{
    globals.connection.RemoteDir = u"   "_s;
    globals.connection.LocalDir = base.filePath(u"weg"_s);
    logins.show_login();
    EXPECT_FALSE(window.calls.join(u' ').contains(u"enter"_s));
    EXPECT_TRUE(local.calls.isEmpty());
}

TEST_F(LoginPaths, TheStartFolderIsTheOneAfterConnecting)
{
    globals.connection.RemoteDir = u"/html"_s;
    window.whileConnecting = [this] { globals.connection.RemoteDir = u"/srv"_s; };
    logins.show_login();
    EXPECT_TRUE(window.calls.contains(u"enter /srv"_s));
}

TEST_F(LoginPaths, WithoutAProfileNothingCanBeRemembered)
{
    logins.show_login();
    EXPECT_TRUE(window.calls.contains(u"remember 0"_s));
}

TEST_F(LoginPaths, TheCommandLineConnectsAndSelectsEverythingBelowTheUpRow)
{
    globals.connection.ProxyType = 2;
    globals.connection.ProxyHost = u"proxy"_s;
    globals.connection.ProxyUsername = u"pu"_s;
    globals.connection.ProxyPassword = u"pp"_s;
    globals.connection.Proxyport = 1080;
    globals.session.Lastconnect = u"Heim"_s;
    expectFinalMessage();
    logins.load_commands(fields(base.path(), u"/html"_s));
    EXPECT_EQ(window.calls,
              (QStringList { u"type 0"_s, u"proxy"_s, u"remember 0"_s, u"connect"_s,
                             u"enter /html"_s, u"select"_s }));
    EXPECT_EQ(shell.log, fields(base.path(), u"/html"_s));
    EXPECT_EQ(globals.connection.RemoteHost, u"files01"_s);
    EXPECT_EQ(globals.connection.Password, u"geheim"_s);
    EXPECT_EQ(globals.session.CurrentLocalDir, base.path());
    EXPECT_EQ(globals.session.CurrentRemoteDir, u"/html"_s);
    EXPECT_EQ(globals.session.Lastconnect, QString());
    EXPECT_EQ(local.text, base.path());
    EXPECT_TRUE(local.calls.contains(u"list "_s + base.path()));
    EXPECT_EQ(window.proxy.type, 2);
    EXPECT_EQ(window.proxy.host, u"proxy"_s);
    EXPECT_EQ(window.proxy.user, u"pu"_s);
    EXPECT_EQ(window.proxy.password, u"pp"_s);
    EXPECT_EQ(window.proxy.port, 1080);
}

TEST_F(LoginPaths, TheCommandLinesConnectionIsSaved)
{
    store.setText(u"Settings"_s, u"Lastconnect"_s, u"Heim"_s);
    expectFinalMessage();
    logins.load_commands(fields({}, u"/html"_s));
    const auto saved
        = [this](const QString &key) { return store.text(u"Settings"_s, key, u"fehlt"_s); };
    EXPECT_EQ(saved(u"RemoteDir"_s), u"/html"_s);
    EXPECT_EQ(saved(u"LocalDir"_s), QString());
    EXPECT_EQ(saved(u"RemoteHost"_s), u"files01"_s);
    EXPECT_EQ(saved(u"UserName"_s), u"web01"_s);
    EXPECT_EQ(saved(u"Password"_s), ScramblePassword(u"geheim"_s, true));
    EXPECT_EQ(saved(u"TransferType"_s), u"0"_s);
    EXPECT_EQ(saved(u"Passive"_s), u"False"_s);
    EXPECT_EQ(saved(u"Timeout"_s), u"45"_s);
    EXPECT_EQ(saved(u"RemotePort"_s), u"2121"_s);
    EXPECT_EQ(saved(u"Account"_s), u"konto"_s);
    EXPECT_EQ(saved(u"Bemerkungen"_s), u"Bemerkung"_s);
    EXPECT_EQ(saved(u"Lastconnect"_s), QString());
    EXPECT_EQ(saved(u"ProxyHost"_s), u"fehlt"_s);
}

TEST_F(LoginPaths, TheCommandLinesConnectionIsSavedInTheGivenOrder)
{
    expectFinalMessage();
    const StoredKeys saved(store, u"Settings"_s);
    logins.load_commands(fields({}, u"/html"_s));
    EXPECT_EQ(saved.keys,
              (QStringList { u"RemoteDir"_s, u"LocalDir"_s, u"RemoteHost"_s, u"UserName"_s,
                             u"Password"_s, u"TransferType"_s, u"Passive"_s, u"Timeout"_s,
                             u"RemotePort"_s, u"Account"_s, u"Bemerkungen"_s, u"Lastconnect"_s }));
}

TEST_F(LoginPaths, WithoutALocalFolderNothingIsSelected)
{
    expectFinalMessage();
    logins.load_commands(fields(base.filePath(u"weg"_s), {}));
    EXPECT_FALSE(window.calls.contains(u"select"_s));
    EXPECT_TRUE(local.calls.isEmpty());
}

TEST_F(LoginPaths, NoFinalMessageWhenTheConnectionFailed)
{
    window.connects = false;
    logins.load_commands(fields(base.path(), u"/html"_s));
    EXPECT_TRUE(window.calls.contains(u"connect"_s));
}

TEST_F(LoginPaths, TooFewFieldsAreToldAndChangeNothing)
{
    globals.connection.RemoteHost = u"vorher"_s;
    prompts.expectMessage(u"Fehler beim Ferngesteuerten Login. Es werden 11 durch Tabulatoren "
                          "getrennte Felder erwartet, übergeben wurden 2."_s);
    logins.load_commands(u"files01\tweb01"_s);
    EXPECT_EQ(shell.log, u"files01\tweb01"_s);
    EXPECT_EQ(globals.connection.RemoteHost, u"vorher"_s);
    EXPECT_TRUE(window.calls.isEmpty());
    EXPECT_EQ(store.text(u"Settings"_s, u"RemoteHost"_s, u"fehlt"_s), u"fehlt"_s);
}

TEST_F(LoginPaths, SettingsThatCannotBeSavedAreToldBehindTheConnect)
{
    QFile file(base.filePath(u"datei"_s)); // a file where the settings' folder should be
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    SettingsStore unwritable(file.fileName() + u"/settings.ini"_s);
    const QString told
        = u"Die Einstellungen konnten nicht gespeichert werden: "_s + unwritable.file() + u"\r\n"_s;
    Logins unlucky(globals, unwritable, prompts, shell, local, window);
    window.whileConnecting = [this] { shell.log.clear(); }; // each connect begins a new log

    expectFinalMessage();
    unlucky.load_commands(fields({}, u"/html"_s));
    EXPECT_EQ(shell.log, told);

    unwritable.setText(u"Settings"_s, u"RemoteHost"_s, u"files02"_s); // as the dialog does
    unlucky.show_login();
    EXPECT_EQ(shell.log, told);
}
