#include "connections/connectdialog.h"

#include "support/accesskeys.h"
#include "support/helpkeys.h"

using namespace Qt::StringLiterals;

namespace {

const QString saveQuestion
    = QStringLiteral("Möchten Sie die Änderungen an der Verbindung speichern?");

} // namespace

TEST_F(ConnectDialog, CaptionsAreTheGivenOnes)
{
    open();
    const QList<std::pair<const char *, QString>> buttons {
        { "cmd_profil_neu", u"&Neu"_s },
        { "cmd_profil_speichern", u"&Speichern"_s },
        { "cmd_profil_loeschen", u"Löschen"_s },
        { "cmd_hilfe", u"&Hilfe"_s },
        { "cmdOK", u"&Login"_s },
        { "cmdCancel", u"&Abbrechen"_s },
        { "cmd_reset", u"Reset"_s },
    };
    for (const auto &[name, caption] : buttons) {
        EXPECT_EQ(find<QPushButton>(name)->text(), caption);
    }
    EXPECT_EQ(find<QCheckBox>("chkPassive")->text(), u"Passiver Transfer"_s);
    auto *tabs = find<QTabWidget>("Tab1");
    ASSERT_EQ(tabs->count(), 3);
    EXPECT_EQ(tabs->tabText(0), u"Verbindung"_s);
    EXPECT_EQ(tabs->tabText(1), u"Erweiterte Einstellungen"_s);
    EXPECT_EQ(tabs->tabText(2), u"Proxy / Firewall"_s);
    const QStringList options { u"Kein Proxyserver bzw. Firewall verwenden"_s,
                                u"Proxy Socks4"_s,
                                u"Proxy Socks5"_s,
                                u"SITE hostname"_s,
                                u"Proxy UserLogin"_s,
                                u"Proxy UserNoLogin"_s,
                                u"Proxy OPEN"_s,
                                u"Proxy PIPE"_s };
    for (int type = 0; type < options.size(); ++type) {
        EXPECT_EQ(find<QRadioButton>(qPrintable(u"op_proxy_%1"_s.arg(type)))->text(),
                  options.at(type));
    }
    find<QTabWidget>("Tab1")->setCurrentIndex(2);
    const auto labels = dialog->findChildren<QLabel *>();
    const auto line = std::find_if(labels.begin(), labels.end(), [](const QLabel *label) {
        return label->text() == u"oder Proxy bzw. Firewall-Type festlegen"_s;
    });
    ASSERT_NE(line, labels.end());
    const auto top
        = [this](const QWidget *widget) { return widget->mapTo(dialog.get(), QPoint()).y(); };
    EXPECT_TRUE((*line)->isVisible());
    EXPECT_FALSE(edit("txtRemoteHost")->isVisible()) << "one tab's fields at a time";
    EXPECT_FALSE(edit("txtTimeout")->isVisible());
    EXPECT_GT(top(*line), top(find<QRadioButton>("op_proxy_0")));
    EXPECT_LT(top(*line), top(find<QRadioButton>("op_proxy_1")));
    const auto *types = find<QComboBox>("lstTransferType");
    EXPECT_EQ(types->itemText(0) + types->itemText(1) + types->itemText(2),
              u"BinaryAsciiEBCIDIC"_s);
    EXPECT_EQ(find<QPlainTextEdit>("txt_bemerkungen")->toolTip(),
              u"In diesem Feld können Sie einen beliebigen Text eingeben."_s);
    EXPECT_TRUE(dialog->isModal());
}

TEST_F(ConnectDialog, EveryFieldHasItsLabel)
{
    open();
    const QList<std::pair<const char *, QString>> expected {
        { "cbo_profil", u"Verbindungen"_s },
        { "txtRemoteHost", u"Server - Name / Adresse"_s },
        { "txtUserName", u"Username"_s },
        { "txtPassword", u"Passwort"_s },
        { "txt_bemerkungen", u"Bemerkungen"_s },
        { "txtRemotePort", u"Port"_s },
        { "lstTransferType", u"Transfer Typ"_s },
        { "txtTimeout", u"Timeout in Sekunden"_s },
        { "txtLocalDir", u"Zu diesem Verzeichnis auf Ihrem Computer automatisch wechseln"_s },
        { "txtRemoteDir", u"Zu diesem Verzeichnis auf dem Server automatisch wechseln"_s },
        { "txtAccount", u"Account"_s },
        { "txtProxyHost", u"Server - Name / Adresse"_s },
        { "txtProxyUsername", u"Username"_s },
        { "txtProxyPasswort", u"Passwort"_s },
        { "txtProxyPort", u"Port"_s },
        { "cbo_verschluesselung", u"Verschlüsselung"_s },
    };
    const auto labels = dialog->findChildren<QLabel *>();
    for (const auto &[name, text] : expected) {
        const auto *field = find<QWidget>(name);
        const auto label = std::find_if(labels.begin(), labels.end(),
                                        [&](const QLabel *each) { return each->buddy() == field; });
        ASSERT_NE(label, labels.end()) << name;
        EXPECT_EQ((*label)->text().remove(u'&'), text);
        EXPECT_TRUE((*label)->text().contains(u'&')) << name;
    }
}

TEST_F(ConnectDialog, NoTwoPartsShareAnAccessKey)
{
    open();
    auto *tabs = find<QTabWidget>("Tab1");
    for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        EXPECT_EQ(sharedAccessKeys(*dialog), QStringList());
    }
}

TEST_F(ConnectDialog, TabLeadsFromTopToBottom)
{
    open();
    const QStringList expected { u"cbo_profil"_s,
                                 u"cmd_profil_neu"_s,
                                 u"cmd_profil_speichern"_s,
                                 u"cmd_profil_loeschen"_s,
                                 u"qt_tabwidget_tabbar"_s,
                                 u"txtRemoteHost"_s,
                                 u"txtUserName"_s,
                                 u"txtPassword"_s,
                                 u"txt_bemerkungen"_s,
                                 u"cmd_hilfe"_s,
                                 u"cmdOK"_s,
                                 u"cmdCancel"_s };
    names()->setFocus();
    QStringList walked;
    for (int i = 0; i < expected.size(); ++i) {
        const QWidget *focus = QApplication::focusWidget();
        walked << (focus == names()->lineEdit() ? names()->objectName() : focus->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(walked, expected);
}

TEST_F(ConnectDialog, OfALongNameTheBeginningIsSeen)
{
    const QString name = QString(50, u'a') + QString(50, u'b');
    ASSERT_TRUE(profiles.write(name, ProfileFields {}));
    globals.session.Lastconnect = name;
    open();
    EXPECT_EQ(names()->lineEdit()->cursorPosition(), 0);
    EXPECT_EQ(names()->toolTip(), name);
    names()->setEditText(name + u'c');
    press("cmd_profil_speichern");
    EXPECT_EQ(names()->lineEdit()->cursorPosition(), 0);
}

TEST_F(ConnectDialog, OpeningShowsTheCurrentConnection)
{
    globals.session.DialogCancelled = false;
    globals.connection.RemoteDir = u"/html"_s;
    globals.connection.LocalDir = u"/home/anna"_s;
    globals.connection.RemotePort = 2121;
    globals.connection.Account = u"konto"_s;
    globals.connection.Bemerkungen = u"x\r\ny"_s;
    globals.connection.TransferType = 0;
    globals.connection.Passive = false;
    globals.connection.Timeout = 12;
    globals.connection.ProxyType = 4;
    globals.connection.ProxyHost = u"proxy"_s;
    globals.connection.ProxyUsername = u"pu"_s;
    globals.connection.ProxyPassword = u"pp"_s;
    globals.connection.Proxyport = 1080;
    globals.connection.encryption = 2;
    open();
    EXPECT_TRUE(globals.session.DialogCancelled);
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"alt01"_s);
    EXPECT_EQ(edit("txtUserName")->text(), u"altuser"_s);
    EXPECT_EQ(edit("txtPassword")->text(), u"altpass"_s);
    EXPECT_EQ(edit("txtPassword")->echoMode(), QLineEdit::Password);
    EXPECT_EQ(edit("txtRemoteDir")->text(), u"/html"_s);
    EXPECT_EQ(edit("txtLocalDir")->text(), u"/home/anna"_s);
    EXPECT_EQ(edit("txtRemotePort")->text(), u"2121"_s);
    EXPECT_EQ(edit("txtTimeout")->text(), u"12"_s);
    EXPECT_EQ(edit("txtAccount")->text(), u"konto"_s);
    EXPECT_EQ(find<QPlainTextEdit>("txt_bemerkungen")->toPlainText(), u"x\ny"_s);
    EXPECT_EQ(find<QComboBox>("lstTransferType")->currentText(), u"Ascii"_s);
    EXPECT_FALSE(find<QCheckBox>("chkPassive")->isChecked());
    EXPECT_TRUE(find<QRadioButton>("op_proxy_4")->isChecked());
    EXPECT_EQ(edit("txtProxyHost")->text(), u"proxy"_s);
    EXPECT_EQ(edit("txtProxyUsername")->text(), u"pu"_s);
    EXPECT_EQ(edit("txtProxyPasswort")->text(), u"pp"_s);
    EXPECT_EQ(edit("txtProxyPort")->text(), u"1080"_s);
    EXPECT_EQ(find<QComboBox>("cbo_verschluesselung")->currentText(), u"Nie"_s);
    EXPECT_EQ(names()->currentText(), QString());
}

TEST_F(ConnectDialog, ProxyTypesOutsideTheListAreNone)
{
    for (const int type : { -1, 8, 99 }) {
        globals.connection.ProxyType = type;
        open();
        EXPECT_TRUE(find<QRadioButton>("op_proxy_0")->isChecked()) << type;
    }
}

TEST_F(ConnectDialog, AnUnknownLastProfileSelectsNone)
{
    writeHome();
    globals.session.Lastconnect = u"heim"_s; // compared exactly
    open();
    EXPECT_EQ(names()->currentIndex(), -1);
    EXPECT_EQ(names()->currentText(), QString());
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"alt01"_s);
}

TEST_F(ConnectDialog, AVanishedProfileLeavesTheFields)
{
    writeHome();
    open();
    ASSERT_TRUE(profiles.remove(u"Heim"_s));
    names()->setCurrentIndex(0);
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"alt01"_s);
}

TEST_F(ConnectDialog, AShortProfileFillsWhatItHas)
{
    QFile out(base.filePath(u"Kurz.login"_s));
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write("files09\r\nweb09\r\n");
    out.close();
    open();
    edit("txtRemotePort")->setText(u"99"_s); // a change that is not saved
    names()->setCurrentIndex(0);
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"files09"_s);
    EXPECT_EQ(edit("txtUserName")->text(), u"web09"_s);
    EXPECT_EQ(edit("txtPassword")->text(), u"altpass"_s);
    EXPECT_EQ(edit("txtRemotePort")->text(), u"99"_s);
    prompts.expectQuestion(saveQuestion, false); // the port still counts as changed
    press("cmdOK");
}

TEST_F(ConnectDialog, AStandingConnectionLocksItsFields)
{
    open(true);
    for (const char *name : { "txtRemoteHost", "txtUserName", "txtPassword", "txtRemoteDir",
                              "txtLocalDir", "txtRemotePort", "chkPassive", "txtTimeout" }) {
        EXPECT_FALSE(find<QWidget>(name)->isEnabled()) << name;
    }
    for (const char *name :
         { "txtAccount", "txt_bemerkungen", "lstTransferType", "txtProxyHost", "txtProxyUsername",
           "txtProxyPasswort", "txtProxyPort", "op_proxy_0" }) {
        EXPECT_TRUE(find<QWidget>(name)->isEnabled()) << name;
    }
    open(false);
    EXPECT_TRUE(edit("txtRemoteHost")->isEnabled());
}

TEST_F(ConnectDialog, NewEmptiesAllButAccountAndRemarks)
{
    writeHome();
    globals.session.Lastconnect = u"Heim"_s;
    open();
    press("cmd_profil_neu");
    EXPECT_EQ(names()->currentText(), QString());
    ProfileFields expected;
    expected.Account = u"konto"_s;
    expected.Bemerkungen = u"a\r\nb"_s;
    EXPECT_EQ(dialog->fields(), expected);
    EXPECT_EQ(expected.RemotePort + expected.Timeout, u"2130"_s);
}

TEST_F(ConnectDialog, ResetKeepsNameServerLoginAndRemarks)
{
    writeHome();
    globals.session.Lastconnect = u"Heim"_s;
    open();
    press("cmd_reset");
    EXPECT_EQ(names()->currentText(), u"Heim"_s);
    ProfileFields expected;
    expected.RemoteHost = u"files01"_s;
    expected.UserName = u"web01"_s;
    expected.Password = u"geheim"_s;
    expected.Bemerkungen = u"a\r\nb"_s;
    EXPECT_EQ(dialog->fields(), expected);
}

TEST_F(ConnectDialog, EnteringAFieldSelectsItsText)
{
    open();
    for (const char *name : { "txtRemoteHost", "txtUserName", "txtPassword" }) {
        QTest::mouseClick(edit(name), Qt::LeftButton, {}, QPoint(5, 5));
        EXPECT_TRUE(QTest::qWaitFor([&] { return edit(name)->hasSelectedText(); })) << name;
        EXPECT_EQ(edit(name)->selectedText().size(), edit(name)->text().size()) << name;
    }
    find<QTabWidget>("Tab1")->setCurrentIndex(1);
    edit("txtRemoteDir")->setText(u"/html"_s);
    QTest::mouseClick(edit("txtRemoteDir"), Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return edit("txtRemoteDir")->selectedText() == u"/html"_s; }));
}

TEST_F(ConnectDialog, BrowsingTakesAChosenFolder)
{
    globals.connection.LocalDir = u"/home/anna"_s;
    open();
    picked.reset();
    press("Command1");
    EXPECT_EQ(pickerStart, u"/home/anna"_s);
    EXPECT_EQ(edit("txtLocalDir")->text(), u"/home/anna"_s);
    picked = u"/home/anna/Bilder"_s;
    press("Command1");
    EXPECT_EQ(edit("txtLocalDir")->text(), u"/home/anna/Bilder"_s);
}

TEST_F(ConnectDialog, HelpSendsF1)
{
    open();
    const HelpKeys keys(*dialog);
    press("cmd_hilfe");
    EXPECT_TRUE(keys.one());
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(ConnectDialog, TypingTheNameOfAProfileNamesWhatIsSavedAndLoadsNothing)
{
    writeHome();
    open();
    press("cmd_profil_neu");
    edit("txtRemoteHost")->setText(u"neu01"_s);
    edit("txtUserName")->setText(u"neuer"_s);
    names()->setFocus();
    QTest::keyClicks(names()->lineEdit(), u"Heim"_s);
    auto *save = find<QPushButton>("cmd_profil_speichern");
    save->setFocus(); // as a click with the mouse does first
    QTest::mouseClick(save, Qt::LeftButton);
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"neu01"_s);
    ProfileFields saved;
    ASSERT_GT(profiles.read(u"Heim"_s, saved), 0);
    EXPECT_EQ(saved.RemoteHost, u"neu01"_s);
    EXPECT_EQ(saved.UserName, u"neuer"_s);
}

TEST_F(ConnectDialog, RemarksComeBackAsTheyWere)
{
    globals.connection.Bemerkungen = u"10\u00a0MB\r\n\r\n  zwei"_s;
    open();
    EXPECT_EQ(dialog->fields().Bemerkungen, globals.connection.Bemerkungen);
}
