#include "connections/frmConnect.h"

#include "common/globals.h"
#include "common/mo_standard.h"
#include "common/settingsstore.h"
#include "ftp/ftpconnection.h"
#include "support/scriptedprompts.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct ConnectDialog : ::testing::Test {
    QTemporaryDir base;
    Globals globals;
    SettingsStore store { base.filePath(u"settings.ini"_s) };
    ScriptedPrompts prompts;
    ProfileFolder profiles { base.path() };
    std::optional<FtpProxy> proxy;
    std::optional<QString> picked; ///< what the folder picker answers
    QString pickerStart;
    std::unique_ptr<frmConnect> dialog;

    ConnectDialog()
    {
        globals.folders.profiles = base.path();
        globals.connection.RemoteHost = u"alt01"_s;
        globals.connection.UserName = u"altuser"_s;
        globals.connection.Password = u"altpass"_s;
    }
    void open(bool connectionStands = false)
    {
        dialog = std::make_unique<frmConnect>(
            ConnectDialogServices {
                globals, store, prompts, [this](const FtpProxy &given) { proxy = given; },
                [this](QWidget *) {
                    pickerStart = globals.folderChoice.PickedFolder;
                    globals.folderChoice.FolderPicked = picked.has_value();
                    globals.folderChoice.PickedFolder = picked.value_or(pickerStart);
                } },
            connectionStands);
        dialog->QWidget::show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    template <class T> T *find(const char *name) const
    {
        auto *found = dialog->findChild<T *>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QLineEdit *edit(const char *name) const { return find<QLineEdit>(name); }
    void press(const char *name) const { find<QPushButton>(name)->click(); }
    QComboBox *names() const { return find<QComboBox>("cbo_profil"); }
    static ProfileFields homeProfile()
    {
        ProfileFields fields;
        fields.RemoteHost = u"files01"_s;
        fields.UserName = u"web01"_s;
        fields.Password = u"geheim"_s;
        fields.LocalDir = u"/home/anna"_s;
        fields.RemoteDir = u"/html"_s;
        fields.Timeout = u"45"_s;
        fields.RemotePort = u"2121"_s;
        fields.Passive = false;
        fields.TransferPosition = 2;
        fields.Account = u"konto"_s;
        fields.Bemerkungen = u"a\r\nb"_s;
        fields.encryption = 1;
        return fields;
    }
    void writeHome() { ASSERT_TRUE(profiles.write(u"Heim"_s, homeProfile())); }
    QString saved(const QString &key) const { return store.text(u"Settings"_s, key, u"fehlt"_s); }
    QByteArray file(const QString &name) const
    {
        QFile in(base.filePath(name));
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray("missing");
    }
};

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

TEST_F(ConnectDialog, TheLastProfileIsSelectedAndLoaded)
{
    writeHome();
    ASSERT_TRUE(profiles.write(u"Arbeit"_s, {}));
    globals.session.Lastconnect = u"Heim"_s;
    open();
    EXPECT_EQ(names()->count(), 2);
    EXPECT_EQ(names()->itemText(0), u"Arbeit"_s);
    EXPECT_EQ(names()->currentText(), u"Heim"_s);
    EXPECT_EQ(dialog->fields(), homeProfile());
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

TEST_F(ConnectDialog, ChoosingAnEntryLoadsIt)
{
    writeHome();
    ASSERT_TRUE(profiles.write(u"Arbeit"_s, {}));
    open();
    names()->setFocus();
    QTest::keyClick(names(), Qt::Key_Down);
    QTest::keyClick(names(), Qt::Key_Down);
    EXPECT_EQ(names()->currentText(), u"Heim"_s);
    EXPECT_EQ(dialog->fields(), homeProfile());
    EXPECT_EQ(find<QComboBox>("cbo_verschluesselung")->currentText(), u"Immer"_s);
}

TEST_F(ConnectDialog, ChoosingTheSameEntryAgainReloadsIt)
{
    writeHome();
    globals.session.Lastconnect = u"Heim"_s;
    open();
    edit("txtRemoteHost")->setText(u"vertippt"_s);
    Q_EMIT names()->activated(names()->currentIndex());
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"files01"_s);
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

TEST_F(ConnectDialog, SavingWritesTheProfileAndListsItOnce)
{
    open();
    names()->setEditText(u"Neu_1"_s);
    edit("txtRemoteHost")->setText(u"files07"_s);
    press("cmd_profil_speichern");
    EXPECT_TRUE(file(u"Neu_1.login"_s).startsWith("files07\r\naltuser\r\n"));
    EXPECT_EQ(names()->count(), 1);
    EXPECT_EQ(names()->currentText(), u"Neu_1"_s);
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"files07"_s);
    press("cmd_profil_speichern");
    EXPECT_EQ(names()->count(), 1);
    press("cmdOK"); // the saved values are the unchanged ones: no question
    EXPECT_FALSE(globals.session.DialogCancelled);
}

TEST_F(ConnectDialog, SavingNeedsAName)
{
    open();
    for (const QString &name : { QString(), u"   "_s }) {
        edit("txtPassword")->setFocus();
        names()->setEditText(name);
        prompts.expectMessage(
            u"Geben Sie einen Namen an, unter dem Sie die Verbindung speichern möchten."_s);
        press("cmd_profil_speichern");
        EXPECT_TRUE(names()->hasFocus());
    }
    EXPECT_TRUE(profiles.names().isEmpty());
}

TEST_F(ConnectDialog, SavingIntoAReadOnlyFolderIsTold)
{
    globals.folders.profiles = base.filePath(u"weg"_s);
    open();
    names()->setEditText(u"Heim"_s);
    prompts.expectMessage(u"Die Verbindung konnte nicht gespeichert werden.\n"_s
                          + base.filePath(u"weg/Heim.login"_s) + u": No such file or directory"_s);
    press("cmd_profil_speichern");
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(ConnectDialog, DeletingAsksAndRemovesFileAndEntry)
{
    writeHome();
    globals.session.Lastconnect = u"Heim"_s;
    open();
    const QString question = u"Sind Sie sicher, dass Sie die Verbindung löschen möchten."_s;
    prompts.expectQuestion(question, false);
    press("cmd_profil_loeschen");
    EXPECT_TRUE(QFile::exists(base.filePath(u"Heim.login"_s)));
    EXPECT_EQ(names()->count(), 1);
    prompts.expectQuestion(question, true);
    press("cmd_profil_loeschen");
    EXPECT_FALSE(QFile::exists(base.filePath(u"Heim.login"_s)));
    EXPECT_FALSE(QFile::exists(base.filePath(u"Heim.extra"_s)));
    EXPECT_EQ(names()->count(), 0);
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"files01"_s);
}

TEST_F(ConnectDialog, DeletingNeedsAnExistingName)
{
    open();
    prompts.expectMessage(u"Sie müssen eine Verbindung aus der Liste wählen"_s);
    press("cmd_profil_loeschen");
    names()->setEditText(u"fehlt"_s);
    press("cmd_profil_loeschen"); // asks nothing
}

TEST_F(ConnectDialog, DeletingOneProfileDoesNotLoadAnother)
{
    writeHome();
    ASSERT_TRUE(profiles.write(u"Arbeit"_s, {}));
    globals.session.Lastconnect = u"Heim"_s;
    open();
    prompts.expectQuestion(u"Sind Sie sicher, dass Sie die Verbindung löschen möchten."_s, true);
    press("cmd_profil_loeschen");
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"files01"_s);
    EXPECT_EQ(names()->currentText(), QString());
    EXPECT_EQ(names()->count(), 1);
}

TEST_F(ConnectDialog, TypedAndPastedNamesAreFiltered)
{
    open();
    QLineEdit *name = names()->lineEdit();
    name->setFocus();
    QTest::keyClicks(name, u"my site.1"_s);
    EXPECT_EQ(name->text(), u"my_site_1"_s);
    name->setCursorPosition(2);
    QTest::keyClicks(name, u"-"_s);
    EXPECT_EQ(name->text(), u"my__site_1"_s);
    EXPECT_EQ(name->cursorPosition(), 3);
    QTest::keyClick(name, Qt::Key_Backspace);
    EXPECT_EQ(name->text(), u"my_site_1"_s);
    name->clear();
    QGuiApplication::clipboard()->setText(u"Büro/../x"_s);
    name->paste();
    EXPECT_EQ(name->text(), u"B_ro____x"_s);
}

TEST_F(ConnectDialog, TypingANameIsNotCompletedToAnother)
{
    writeHome();
    open();
    QTest::keyClicks(names()->lineEdit(), u"He"_s);
    EXPECT_EQ(names()->currentText(), u"He"_s);
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"alt01"_s);
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

TEST_F(ConnectDialog, HelpSendsF1)
{
    struct Listener : QObject {
        int keys = 0;
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::KeyPress) {
                keys += static_cast<QKeyEvent *>(event)->key() == Qt::Key_F1 ? 1 : 0;
            }
            return false;
        }
    } listener;
    open();
    dialog->installEventFilter(&listener);
    press("cmd_hilfe");
    EXPECT_TRUE(QTest::qWaitFor([&] { return listener.keys == 1; }));
    EXPECT_TRUE(dialog->isVisible());
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
