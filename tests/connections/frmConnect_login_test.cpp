#include "connections/connectdialog.h"

#include "support/storedkeys.h"

using namespace Qt::StringLiterals;

namespace {

const QString saveQuestion
    = QStringLiteral("Möchten Sie die Änderungen an der Verbindung speichern?");

} // namespace

TEST_F(ConnectDialog, LoginWithoutChangesAsksNothing)
{
    writeHome();
    globals.session.Lastconnect = u"Heim"_s;
    open();
    press("cmdOK");
    EXPECT_FALSE(globals.session.DialogCancelled);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(ConnectDialog, EveryChangedFieldIsNoticed)
{
    writeHome();
    globals.session.Lastconnect = u"Heim"_s;
    const QList<std::function<void()>> changes {
        [this] { edit("txtRemoteHost")->insert(u"x"_s); },
        [this] { edit("txtUserName")->insert(u"x"_s); },
        [this] { edit("txtPassword")->insert(u"x"_s); },
        [this] { edit("txtLocalDir")->insert(u"x"_s); },
        [this] { edit("txtRemoteDir")->insert(u"x"_s); },
        [this] { edit("txtTimeout")->setText(u"46"_s); },
        [this] { edit("txtRemotePort")->setText(u"22"_s); },
        [this] { find<QCheckBox>("chkPassive")->click(); },
        [this] { find<QComboBox>("lstTransferType")->setCurrentIndex(0); },
        [this] { edit("txtAccount")->insert(u"x"_s); },
        [this] { find<QPlainTextEdit>("txt_bemerkungen")->insertPlainText(u"x"_s); },
        [this] { find<QComboBox>("cbo_verschluesselung")->setCurrentIndex(0); },
    };
    for (int i = 0; i < changes.size(); ++i) {
        SCOPED_TRACE(i);
        globals.session.Lastconnect = u"Heim"_s;
        open();
        changes.at(i)();
        prompts.expectQuestion(saveQuestion, false);
        press("cmdOK");
        EXPECT_TRUE(prompts.finished());
        EXPECT_FALSE(dialog->isVisible());
    }
    EXPECT_EQ(file(u"Heim.login"_s), encodeProfile(homeProfile()).login);
}

TEST_F(ConnectDialog, YesSavesBeforeTheLogin)
{
    writeHome();
    globals.session.Lastconnect = u"Heim"_s;
    open();
    edit("txtRemoteHost")->setText(u"files02"_s);
    prompts.expectQuestion(saveQuestion, true);
    press("cmdOK");
    EXPECT_TRUE(file(u"Heim.login"_s).startsWith("files02\r\n"));
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(ConnectDialog, YesWithoutANameLeavesTheDialogOpen)
{
    open();
    edit("txtRemoteHost")->setText(u"files02"_s);
    prompts.expectQuestion(saveQuestion, true)
        .expectMessage(
            u"Geben Sie einen Namen an, unter dem Sie die Verbindung speichern möchten."_s);
    press("cmdOK");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(globals.session.DialogCancelled);
    EXPECT_TRUE(names()->hasFocus());
    EXPECT_EQ(globals.connection.RemoteHost, u"alt01"_s);
    EXPECT_FALSE(proxy);
}

TEST_F(ConnectDialog, TimeoutsOutsideOneTo9999AreRefused)
{
    struct Row {
        QString text;
        bool passes;
    };
    const QList<Row> table { { u"0"_s, false },   { u"abc"_s, false }, { u"10000"_s, false },
                             { u""_s, false },    { u"-5"_s, false },  { u"1"_s, true },
                             { u"9999"_s, true }, { u"30s"_s, true },  { u" 45 "_s, true },
                             { u"0.5"_s, false }, { u"1e9"_s, false } };
    for (const Row &row : table) {
        SCOPED_TRACE(row.text.toStdString());
        globals.session.Lastconnect.clear();
        open();
        edit("txtTimeout")->setText(row.text);
        prompts.expectQuestion(saveQuestion, false);
        if (!row.passes) {
            prompts.expectMessage(u"Invalid Timeout Value. \n\nEnter a value between 0 and 9999"_s,
                                  u"Tarvelo FTP"_s, Prompts::Icon::Exclamation);
        }
        press("cmdOK");
        EXPECT_TRUE(prompts.finished());
        EXPECT_EQ(dialog->isVisible(), !row.passes);
        EXPECT_EQ(globals.session.DialogCancelled, !row.passes);
    }
    EXPECT_EQ(globals.connection.Timeout, 45);
}

TEST_F(ConnectDialog, TheProxyIsHandedOverBeforeTheTimeoutIsChecked)
{
    open();
    find<QRadioButton>("op_proxy_3")->click();
    edit("txtProxyHost")->setText(u"proxy"_s);
    edit("txtProxyUsername")->setText(u"pu"_s);
    edit("txtProxyPasswort")->setText(u"pp"_s);
    edit("txtProxyPort")->setText(u"1080"_s);
    edit("txtTimeout")->setText(u"0"_s);
    prompts.expectQuestion(saveQuestion, false)
        .expectMessage(u"Invalid Timeout Value. \n\nEnter a value between 0 and 9999"_s,
                       u"Tarvelo FTP"_s, Prompts::Icon::Exclamation);
    press("cmdOK");
    ASSERT_TRUE(proxy);
    EXPECT_EQ(proxy->type, 3);
    EXPECT_EQ(proxy->host, u"proxy"_s);
    EXPECT_EQ(proxy->user, u"pu"_s);
    EXPECT_EQ(proxy->password, u"pp"_s);
    EXPECT_EQ(proxy->port, 1080);
    EXPECT_EQ(globals.connection.ProxyType, 0);
}

TEST_F(ConnectDialog, LoginTakesAndSavesEverything)
{
    writeHome();
    globals.session.Lastconnect = u"Heim"_s;
    open();
    find<QRadioButton>("op_proxy_7")->click();
    edit("txtProxyHost")->setText(u"proxy"_s);
    edit("txtProxyUsername")->setText(u"pu"_s);
    edit("txtProxyPasswort")->setText(u"abc"_s);
    edit("txtProxyPort")->setText(u"1080"_s);
    press("cmdOK");
    const ConnectionProfile &now = globals.connection;
    EXPECT_EQ(now.RemoteHost, u"files01"_s);
    EXPECT_EQ(now.UserName, u"web01"_s);
    EXPECT_EQ(now.Password, u"geheim"_s);
    EXPECT_EQ(now.RemoteDir, u"/html"_s);
    EXPECT_EQ(now.LocalDir, u"/home/anna"_s);
    EXPECT_EQ(now.RemotePort, 2121);
    EXPECT_EQ(now.TransferType, 2);
    EXPECT_FALSE(now.Passive);
    EXPECT_EQ(now.Timeout, 45);
    EXPECT_EQ(now.Account, u"konto"_s);
    EXPECT_EQ(now.Bemerkungen, u"a\r\nb"_s);
    EXPECT_EQ(now.encryption, 1);
    EXPECT_EQ(now.ProxyType, 7);
    EXPECT_EQ(now.ProxyPassword, u"abc"_s); // clear in memory
    EXPECT_EQ(now.Proxyport, 1080);

    EXPECT_EQ(saved(u"RemoteDir"_s), u"/html"_s);
    EXPECT_EQ(saved(u"LocalDir"_s), u"/home/anna"_s);
    EXPECT_EQ(saved(u"RemoteHost"_s), u"files01"_s);
    EXPECT_EQ(saved(u"UserName"_s), u"web01"_s);
    EXPECT_EQ(saved(u"Password"_s), ScramblePassword(u"geheim"_s, true));
    EXPECT_EQ(saved(u"TransferType"_s), u"2"_s);
    EXPECT_EQ(saved(u"Passive"_s), u"False"_s);
    EXPECT_EQ(saved(u"Timeout"_s), u"45"_s);
    EXPECT_EQ(saved(u"RemotePort"_s), u"2121"_s);
    EXPECT_EQ(saved(u"Account"_s), u"konto"_s);
    EXPECT_EQ(saved(u"Bemerkungen"_s), u"a\r\nb"_s);
    EXPECT_EQ(saved(u"ProxyType"_s), u"7"_s);
    EXPECT_EQ(saved(u"ProxyHost"_s), u"proxy"_s);
    EXPECT_EQ(saved(u"ProxyUsername"_s), u"pu"_s);
    EXPECT_EQ(saved(u"ProxyPassword"_s), u"^_`"_s); // scrambled as well
    EXPECT_EQ(saved(u"Proxyport"_s), u"1080"_s);
    EXPECT_EQ(saved(u"Lastconnect"_s), u"Heim"_s);
    EXPECT_EQ(store.text(OwnSettings::Connection, u"Encryption"_s), u"1"_s);
}

TEST_F(ConnectDialog, LoginSavesInTheGivenOrder)
{
    open();
    const StoredKeys saved(store, u"Settings"_s);
    press("cmdOK");
    EXPECT_EQ(
        saved.keys,
        (QStringList { u"RemoteDir"_s, u"LocalDir"_s, u"RemoteHost"_s, u"UserName"_s, u"Password"_s,
                       u"TransferType"_s, u"Passive"_s, u"Timeout"_s, u"RemotePort"_s, u"Account"_s,
                       u"Bemerkungen"_s, u"ProxyType"_s, u"ProxyHost"_s, u"ProxyUsername"_s,
                       u"ProxyPassword"_s, u"ProxyPort"_s, u"Lastconnect"_s }));
}

TEST_F(ConnectDialog, HostPortAndFoldersAreNotChecked)
{
    open();
    edit("txtRemoteHost")->setText(u" ftp://files01/ "_s);
    edit("txtRemotePort")->setText(u"99999"_s);
    edit("txtLocalDir")->setText(u"/gibt/es/nicht"_s);
    prompts.expectQuestion(saveQuestion, false);
    press("cmdOK");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(globals.connection.RemoteHost, u" ftp://files01/ "_s);
    EXPECT_EQ(globals.connection.RemotePort, 99999);
}

TEST_F(ConnectDialog, CancelEscapeAndTheFrameChangeNothing)
{
    const QList<std::function<void()>> ways {
        [this] { press("cmdCancel"); }, [this] { QTest::keyClick(dialog.get(), Qt::Key_Escape); },
        [this] { dialog->close(); }
    };
    for (const auto &leave : ways) {
        globals.session.DialogCancelled = false;
        open();
        edit("txtRemoteHost")->setText(u"anders"_s);
        leave();
        EXPECT_FALSE(dialog->isVisible());
        EXPECT_TRUE(globals.session.DialogCancelled);
        EXPECT_EQ(globals.connection.RemoteHost, u"alt01"_s);
        EXPECT_EQ(saved(u"RemoteHost"_s), u"fehlt"_s);
        EXPECT_FALSE(proxy);
    }
}

TEST_F(ConnectDialog, EnterIsLogin)
{
    open();
    edit("txtPassword")->setFocus();
    QTest::keyClick(edit("txtPassword"), Qt::Key_Return);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_FALSE(globals.session.DialogCancelled);
}

TEST_F(ConnectDialog, FieldsGivenFromOutsideCountAsUnchanged)
{
    open();
    ProfileFields fields = homeProfile();
    dialog->setFields(fields);
    EXPECT_EQ(dialog->fields(), fields);
    press("cmdOK");
    EXPECT_EQ(globals.connection.RemoteHost, u"files01"_s);
}

TEST_F(ConnectDialog, TheLastConnectionIsTheTextOfTheBox)
{
    writeHome();
    for (const bool chosen : { false, true }) {
        globals.session.Lastconnect = chosen ? u"Heim"_s : QString();
        open();
        names()->setEditText(u"Neu_9"_s); // no such profile
        edit("txtRemoteHost")->setText(u"files09"_s);
        prompts.expectQuestion(saveQuestion, false);
        press("cmdOK");
        EXPECT_EQ(globals.session.Lastconnect, u"Neu_9"_s);
        EXPECT_EQ(saved(u"Lastconnect"_s), u"Neu_9"_s);
    }
}
