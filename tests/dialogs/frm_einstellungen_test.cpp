#include "dialogs/frm_einstellungen.h"

#include "common/globals.h"
#include "common/settingsstore.h"
#include "ftp/truststore.h"
#include "support/accesskeys.h"
#include "support/helpkeys.h"
#include "support/storedkeys.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

struct SettingsDialog : ::testing::Test {
    QTemporaryDir base;
    Globals globals;
    SettingsStore store { base.filePath(u"settings.ini"_s) };
    std::optional<QString> picked;
    QString pickerStart;
    QStringList trusted { u"eins"_s, u"zwei"_s, u"drei"_s };
    std::unique_ptr<frm_einstellungen> dialog;

    SettingsDialog()
    {
        globals.folders.profiles = u"/prog/mo_def"_s;
        globals.settings.LogFolder = u"/prog/mo_def/"_s;
        globals.settings.HtmlRoot = u"/html"_s;
    }
    void open()
    {
        dialog = std::make_unique<frm_einstellungen>(SettingsDialogServices {
            globals,
            store,
            [this](QWidget *) {
                pickerStart = globals.folderChoice.PickedFolder;
                globals.folderChoice.FolderPicked = picked.has_value();
                globals.folderChoice.PickedFolder = picked.value_or(pickerStart);
            },
            { [this] { return trusted; },
              [this](const QString &text) { trusted.removeOne(text); } } });
        dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    template <class T> T *find(const char *name) const
    {
        auto *found = dialog->findChild<T *>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    void press(const char *name) const { find<QPushButton>(name)->click(); }
    QString saved(const QString &key) const { return store.text(u"Properties"_s, key, u"fehlt"_s); }
};

} // namespace

TEST_F(SettingsDialog, NoTwoPartsShareAnAccessKey)
{
    open();
    auto *tabs = find<QTabWidget>("Tab1");
    for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        EXPECT_EQ(sharedAccessKeys(*dialog), QStringList());
    }
}

TEST_F(SettingsDialog, FertigSavesInTheGivenOrder)
{
    open();
    const StoredKeys saved(store, u"Properties"_s);
    press("cmd_ok");
    EXPECT_EQ(saved.keys,
              (QStringList { u"LogFolder"_s, u"LogName"_s, u"ErrorMsg"_s, u"HtmlRoot"_s,
                             u"HiddenFile"_s }));
}

TEST_F(SettingsDialog, CaptionsAreTheGivenOnes)
{
    open();
    EXPECT_EQ(dialog->objectName(), u"frm_einstellungen"_s);
    EXPECT_EQ(dialog->windowTitle(), u"Programmeinstellungen"_s);
    const auto *tabs = find<QTabWidget>("Tab1");
    EXPECT_EQ(tabs->tabText(0), u"Logdatei"_s);
    EXPECT_EQ(tabs->tabText(1), u"Sonstiges"_s);
    EXPECT_EQ(tabs->tabText(2), u"Sicherheit"_s);
    EXPECT_EQ(find<QCheckBox>("chk_logname")->text(),
              u"Namen für die Logdateien automatisch vergeben."_s);
    EXPECT_EQ(find<QCheckBox>("chk_hidden")->text(),
              u"Versteckte-Dateien und System-Dateien anzeigen"_s);
    EXPECT_EQ(find<QRadioButton>("op_fehlermeldungen_0")->text(), u"Fehlermeldungen (Deutsch)"_s);
    EXPECT_EQ(find<QRadioButton>("op_fehlermeldungen_1")->text(),
              u"Detailierte Fehlermeldungen (Englisch)"_s);
    EXPECT_EQ(find<QPushButton>("cmd_ordner_log_def")->text(), u"Standard Ordner"_s);
    EXPECT_EQ(find<QPushButton>("cmd_ok")->text(), u"Fertig"_s);
    EXPECT_EQ(find<QPushButton>("cmd_abbrechen")->text(), u"&Abbrechen"_s);
    EXPECT_EQ(find<QPushButton>("cmd_hilfe")->text(), u"&Hilfe"_s);
    bool labelled = false;
    for (const auto *label : dialog->findChildren<QLabel *>()) {
        labelled = labelled
            || (label->buddy() == find<QLineEdit>("tx_logfolder")
                && label->text().remove(u'&')
                    == u"Ordner in dem die LOG-Dateien gespeichert werden."_s);
    }
    EXPECT_TRUE(labelled);
}

TEST_F(SettingsDialog, EveryControlStandsOnItsTab)
{
    open();
    auto *tabs = find<QTabWidget>("Tab1");
    const QStringList controls[] {
        { u"tx_logfolder"_s, u"cmd_ordner_log"_s, u"cmd_ordner_log_def"_s, u"chk_logname"_s },
        { u"op_fehlermeldungen_0"_s, u"op_fehlermeldungen_1"_s, u"chk_hidden"_s }
    };
    for (int chosen = 0; chosen < 2; ++chosen) {
        tabs->setCurrentIndex(chosen);
        for (int tab = 0; tab < 2; ++tab) {
            for (const QString &name : controls[tab]) {
                const auto *control = dialog->findChild<QWidget *>(name);
                ASSERT_NE(control, nullptr) << name.toStdString();
                EXPECT_TRUE(tabs->widget(tab)->isAncestorOf(control)) << name.toStdString();
                EXPECT_EQ(control->isVisible(), tab == chosen) << name.toStdString();
            }
        }
    }
}

TEST_F(SettingsDialog, SettingsThatCannotBeStoredHoldForThisRun)
{
    QFile::remove(store.file());
    ASSERT_TRUE(QDir().mkpath(store.file())); // a folder in the file's place
    ASSERT_FALSE(store.save(u"Properties"_s, {}));
    open();
    find<QCheckBox>("chk_hidden")->click();
    find<QComboBox>("cbo_verschluesselung")->setCurrentIndex(1);
    press("cmd_ok");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(globals.settings.HiddenFile);
    EXPECT_EQ(globals.settings.encryption, 1);
}

TEST_F(SettingsDialog, ShowsTheSettingsButNotTheWebRoot)
{
    globals.settings.LogName = false;
    globals.settings.ErrorMsg = true;
    globals.settings.HiddenFile = true;
    globals.settings.encryption = 2;
    globals.settings.connections = 7;
    open();
    EXPECT_EQ(find<QLineEdit>("tx_logfolder")->text(), u"/prog/mo_def/"_s);
    EXPECT_FALSE(find<QCheckBox>("chk_logname")->isChecked());
    EXPECT_TRUE(find<QRadioButton>("op_fehlermeldungen_1")->isChecked());
    EXPECT_TRUE(find<QCheckBox>("chk_hidden")->isChecked());
    EXPECT_EQ(find<QComboBox>("cbo_verschluesselung")->currentText(), u"Nie"_s);
    EXPECT_EQ(find<QSpinBox>("spn_verbindungen")->value(), 7);
    for (const auto *edit : dialog->findChildren<QLineEdit *>()) {
        EXPECT_NE(edit->text(), u"/html"_s);
    }
    globals.settings = ProgramSettings {};
    open();
    EXPECT_TRUE(find<QCheckBox>("chk_logname")->isChecked());
    EXPECT_TRUE(find<QRadioButton>("op_fehlermeldungen_0")->isChecked());
    EXPECT_FALSE(find<QCheckBox>("chk_hidden")->isChecked());
    EXPECT_EQ(find<QComboBox>("cbo_verschluesselung")->currentText(), u"Automatisch"_s);
    EXPECT_EQ(find<QSpinBox>("spn_verbindungen")->value(), 4);
}

TEST_F(SettingsDialog, ConfirmingWithoutChangesRewritesAllAndClearsTheWebRoot)
{
    open();
    press("cmd_ok");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(saved(u"LogFolder"_s), u"/prog/mo_def/"_s);
    EXPECT_EQ(saved(u"LogName"_s), u"True"_s);
    EXPECT_EQ(saved(u"ErrorMsg"_s), u"False"_s);
    EXPECT_EQ(saved(u"HtmlRoot"_s), QString());
    EXPECT_EQ(saved(u"HiddenFile"_s), u"False"_s);
    EXPECT_EQ(globals.settings.HtmlRoot, QString());
}

TEST_F(SettingsDialog, ChangesHoldAtOnce)
{
    open();
    find<QLineEdit>("tx_logfolder")->setText(u"/gibt/es/nicht"_s); // not checked
    find<QCheckBox>("chk_logname")->click();
    find<QRadioButton>("op_fehlermeldungen_1")->click();
    find<QCheckBox>("chk_hidden")->click();
    find<QComboBox>("cbo_verschluesselung")->setCurrentIndex(1);
    find<QSpinBox>("spn_verbindungen")->setValue(2);
    press("cmd_ok");
    EXPECT_EQ(globals.settings.LogFolder, u"/gibt/es/nicht"_s);
    EXPECT_FALSE(globals.settings.LogName);
    EXPECT_TRUE(globals.settings.ErrorMsg);
    EXPECT_TRUE(globals.settings.HiddenFile);
    EXPECT_EQ(globals.settings.encryption, 1);
    EXPECT_EQ(globals.settings.connections, 2);
    EXPECT_EQ(saved(u"LogFolder"_s), u"/gibt/es/nicht"_s);
    EXPECT_EQ(saved(u"LogName"_s), u"False"_s);
    EXPECT_EQ(saved(u"ErrorMsg"_s), u"True"_s);
    EXPECT_EQ(saved(u"HiddenFile"_s), u"True"_s);
    EXPECT_EQ(store.text(OwnSettings::Security, u"Encryption"_s), u"1"_s);
    EXPECT_EQ(store.text(OwnSettings::Security, u"Connections"_s), u"2"_s);
}

TEST_F(SettingsDialog, CancelAndEscapeSaveNothing)
{
    for (const bool escape : { false, true }) {
        open();
        find<QLineEdit>("tx_logfolder")->setText(u"/anders"_s);
        find<QRadioButton>("op_fehlermeldungen_1")->click();
        if (escape) {
            QTest::keyClick(dialog.get(), Qt::Key_Escape);
        } else {
            press("cmd_abbrechen");
        }
        EXPECT_FALSE(dialog->isVisible());
        EXPECT_EQ(globals.settings.LogFolder, u"/prog/mo_def/"_s);
        EXPECT_FALSE(globals.settings.ErrorMsg);
        EXPECT_EQ(globals.settings.HtmlRoot, u"/html"_s);
        EXPECT_EQ(saved(u"LogFolder"_s), u"fehlt"_s);
    }
}

TEST_F(SettingsDialog, TheStandardFolderOnlyHoldsAfterConfirming)
{
    globals.settings.LogFolder = u"/var/logs"_s;
    open();
    press("cmd_ordner_log_def");
    EXPECT_EQ(find<QLineEdit>("tx_logfolder")->text(), u"/prog/mo_def"_s);
    EXPECT_EQ(globals.settings.LogFolder, u"/var/logs"_s);
    press("cmd_ok");
    EXPECT_EQ(globals.settings.LogFolder, u"/prog/mo_def"_s);
}

TEST_F(SettingsDialog, BrowsingStartsAtTheLogFolderAndTakesAChoice)
{
    open();
    find<QLineEdit>("tx_logfolder")->setText(u"/getippt"_s);
    press("cmd_ordner_log");
    EXPECT_EQ(pickerStart, u"/prog/mo_def/"_s);
    EXPECT_EQ(find<QLineEdit>("tx_logfolder")->text(), u"/getippt"_s);
    picked = u"/gewählt"_s;
    press("cmd_ordner_log");
    EXPECT_EQ(find<QLineEdit>("tx_logfolder")->text(), u"/gewählt"_s);
}

TEST_F(SettingsDialog, TrustedServersCanBeForgotten)
{
    open();
    auto *list = find<QListWidget>("lst_vertraut");
    auto *remove = find<QPushButton>("cmd_vertrauen_entfernen");
    EXPECT_EQ(list->count(), 3);
    EXPECT_FALSE(remove->isEnabled());
    list->setCurrentRow(1);
    EXPECT_TRUE(remove->isEnabled());
    remove->click();
    EXPECT_EQ(list->count(), 2);
    EXPECT_EQ(trusted.size(), 3) << "not before it is confirmed";
    press("cmd_abbrechen");
    EXPECT_EQ(trusted.size(), 3);
    open();
    list = find<QListWidget>("lst_vertraut");
    remove = find<QPushButton>("cmd_vertrauen_entfernen");
    list->setCurrentRow(0);
    remove->click();
    list->setCurrentRow(1);
    remove->click();
    press("cmd_ok");
    EXPECT_EQ(trusted, QStringList { u"zwei"_s });
    open();
    list = find<QListWidget>("lst_vertraut");
    remove = find<QPushButton>("cmd_vertrauen_entfernen");
    list->setCurrentRow(0);
    remove->click();
    EXPECT_FALSE(remove->isEnabled());
    press("cmd_ok");
    EXPECT_TRUE(trusted.isEmpty());
}

TEST_F(SettingsDialog, TheEnginesFileIsShownAndChanged)
{
    const QString file = base.filePath(u"trusted"_s);
    {
        ftp::TrustStore written(file.toStdString());
        ASSERT_TRUE(written.trust("files01.example.net", 21, "AA:BB"));
        ASSERT_TRUE(written.remember("files02.example.net", 2121));
    }
    QStringList told;
    const TrustedServers servers
        = trustedServersIn(file, [&told](const QString &text) { told << text; });
    EXPECT_EQ(servers.list(),
              (QStringList { u"files01.example.net - Zertifikat bestätigt"_s,
                             u"files02.example.net:2121 - nur noch verschlüsselt"_s }));
    servers.remove(u"files01.example.net:2121 - Zertifikat bestätigt"_s);
    EXPECT_EQ(servers.list().size(), 2);
    const QString first = servers.list().value(0);
    // Another window has trusted a server meanwhile: the places are others now.
    ASSERT_TRUE(ftp::TrustStore(file.toStdString()).trust("aaa.example.net", 21, "CC:DD"));
    servers.remove(first);
    EXPECT_EQ(servers.list().size(), 2);
    EXPECT_TRUE(told.isEmpty());
    EXPECT_FALSE(ftp::TrustStore(file.toStdString()).seen("files01.example.net", 21));
    EXPECT_TRUE(trustedServersIn(base.filePath(u"fehlt"_s), {}).list().isEmpty());
}

TEST_F(SettingsDialog, AServerThatCannotBeForgottenIsTold)
{
    const QString file = base.filePath(u"trusted"_s);
    ASSERT_TRUE(ftp::TrustStore(file.toStdString()).trust("files01.example.net", 21, "AA:BB"));
    ASSERT_TRUE(ftp::TrustStore(file.toStdString()).remember("files02.example.net", 21));
    QStringList told;
    const TrustedServers servers
        = trustedServersIn(file, [&told](const QString &text) { told << text; });
    const QString shown = servers.list().value(0);
    // No file may grow; that stops root, too.
    rlimit before {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit nothing { 0, before.rlim_max };
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &nothing), 0);
    servers.remove(shown);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told[0].startsWith(u"files01.example.net: Der Server bleibt vertraut"_s));
}

TEST_F(SettingsDialog, NonsenseValuesAreShownAsTheNearest)
{
    globals.settings.encryption = 99;
    globals.settings.connections = 5000;
    open();
    EXPECT_EQ(find<QComboBox>("cbo_verschluesselung")->currentIndex(), 0);
    EXPECT_EQ(find<QSpinBox>("spn_verbindungen")->value(), 10);
}

TEST_F(SettingsDialog, HelpSendsF1)
{
    open();
    const HelpKeys keys(*dialog);
    press("cmd_hilfe");
    EXPECT_TRUE(keys.one());
}
