#include "app/windowbench.h"

#include "dialogs/frmAbout.h"
#include "dialogs/frm_hilfe.h"
#include "dialogs/frm_info.h"
#include "dialogs/helpkeyfilter.h"
#include "dialogs/helppages.h"
#include "support/modalbox.h"
#include "support/urlcatcher.h"

#include <QApplication>
#include <QDesktopServices>
#include <QGroupBox>
#include <QMenuBar>
#include <QRadioButton>

namespace {

class WindowParts : public WindowBench {
protected:
    std::string menu(const char *name) const
    {
        QStringList texts;
        for (const QAction *action : find<QMenu>(name)->actions()) {
            texts << action->objectName() + u'='
                    + (action->isSeparator() ? QStringLiteral("-") : action->text());
        }
        return texts.join(u'|').toStdString();
    }
};

} // namespace

TEST_F(WindowParts, HasItsMenus)
{
    EXPECT_EQ(window->objectName(), QStringLiteral("frm_tarvelo"));
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Tarvelo FTP"));
    EXPECT_EQ(menu("mnuFile"), "mnuExit=&Beenden|mnuLogin=&Login|mnuLogout=Log&out");
    EXPECT_EQ(menu("mnuActions"),
              "mnuRename=&Umbenennen|mnuMakeDirectory=&Verzeichnis erstellen|mnuDelete=&Löschen|"
              "mnuView=&Ansehen|mnuRefresh=&Aktualisieren|mnuSelectall=Alles &Markieren|mnu_line=-|"
              "mnu_rechte=Dateirechte vergeben Unix chmod");
    EXPECT_EQ(menu("mnu_einstellungen"), "mnu_einstell=Programm&einstellungen");
    EXPECT_EQ(find<QMenu>("mnuHelp")->actions().size(), 10);
    QStringList titles;
    for (const QAction *action : window->menuBar()->actions()) {
        titles << action->text();
    }
    EXPECT_EQ(titles.join(u'|'), QStringLiteral("&Datei|&Befehle|&Einstellungen|&Hilfe"));
}

TEST_F(WindowParts, TheFamiliarKeysStandInTheMenus)
{
    const std::pair<const char *, const char *> expected[] { { "mnuRename", "F2" },
                                                             { "mnuRefresh", "F5" },
                                                             { "mnuMakeDirectory", "F7" },
                                                             { "mnuSelectall", "Ctrl+A" } };
    for (const auto &[name, key] : expected) {
        EXPECT_EQ(item(name)->shortcut(), QKeySequence(QString::fromLatin1(key))) << name;
        EXPECT_FALSE(item(name)->text().contains(u'\t')) << name;
    }
}

TEST_F(WindowParts, BothToolBarsHaveTheSameSevenButtons)
{
    const char *const texts[] { "New Folder", "View File",   "Delete Files",    "Refresh",
                                "Select All", "Rename File", "Change Directory" };
    const char *const tips[] { "Neuer Ordner",
                               "Datei ansehen",
                               "Löschen der markierten Dateien",
                               "Aktualisieren",
                               "Alles markieren",
                               "Datei oder Ordner umbenennen",
                               "Zum übergeordneten Ordner" };
    for (const char *bar : bars) {
        const QList<QAction *> actions = find<QToolBar>(bar)->actions();
        ASSERT_EQ(actions.size(), 7);
        for (int i = 0; i < 7; ++i) {
            EXPECT_EQ(actions.at(i)->objectName(), QString::fromLatin1(keys[i]));
            EXPECT_EQ(actions.at(i)->text(), QString::fromLatin1(texts[i]));
            EXPECT_EQ(actions.at(i)->toolTip(), QString::fromUtf8(tips[i]));
            EXPECT_FALSE(actions.at(i)->icon().isNull());
            EXPECT_EQ(find<QToolBar>(bar)->widgetForAction(actions.at(i))->focusPolicy(),
                      Qt::NoFocus)
                << "a click must not take the focus from the lists";
        }
    }
}

TEST_F(WindowParts, HasTheTransferModeOptions)
{
    const char *const captions[] { "Binär", "ASCII", "EBCIDIC" };
    const char *const tips[] {
        "Die Dateien werden Binär übertragen. (Empfohlen)",
        "Die Dateien werden im ASCII Modus übertragen. (Erforderlich für CGI-Scripte)",
        "Dieser Modus wird normalerweise nicht benötigt.",
    };
    const int types[] { TypeBinary, TypeAscii, TypeEbcdic };
    int below = -1;
    for (int i = 0; i < 3; ++i) {
        auto *option = find<QRadioButton>(qPrintable(QStringLiteral("op_transfer_%1").arg(i)));
        EXPECT_EQ(option->text(), QString::fromUtf8(captions[i]));
        EXPECT_EQ(option->toolTip(), QString::fromUtf8(tips[i]));
        EXPECT_EQ(qobject_cast<QGroupBox *>(option->parentWidget())->title(),
                  QStringLiteral("Übertragungsmodus"));
        EXPECT_GT(option->y(), below);
        below = option->y();
        option->click();
        EXPECT_EQ(globals.connection.TransferType, types[i]);
    }
    globals.connection.TransferType = TypeAscii;
    open();
    EXPECT_TRUE(find<QRadioButton>("op_transfer_1")->isChecked());
}

TEST_F(WindowParts, EveryControlHasANameForScreenReaders)
{
    for (const char *name :
         { "lvwLocal", "lvwRemote", "lvwStatus", "cmbLocalDir", "cmbRemoteDir", "txtLog",
           "cmd_desktop", "cmd_dir_merken_lokal", "cmd_dir_merken_remote", "cmd_download",
           "cmd_upload", "img_ampel_rot", "img_ampel_gruen", "Progress", "tbToolBar",
           "tbToolBar_rem" }) {
        EXPECT_FALSE(find<QWidget>(name)->accessibleName().isEmpty()) << name;
    }
    EXPECT_EQ(find<QWidget>("cmd_download")->toolTip(),
              QStringLiteral("Download der markierten Objekte"));
    EXPECT_EQ(find<QWidget>("cmd_upload")->toolTip(),
              QStringLiteral("Upload der markierten Objekte"));
}

TEST_F(WindowParts, TheHelpMenuOpensTheHelpAtItsBeginning)
{
    const HelpKeyFilter filter;
    const auto help = []() -> frm_hilfe * {
        for (QWidget *each : QApplication::topLevelWidgets()) {
            if (auto *found = qobject_cast<frm_hilfe *>(each); found && found->isVisible()) {
                return found;
            }
        }
        return nullptr;
    };
    focus(window->localPane().view()); // whose own page F1 opens
    item("m_h_0")->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return help() != nullptr; }));
    EXPECT_EQ(help()->currentPage(), contentsPage());
}

TEST_F(WindowParts, TheHelpMenuOpensBoxesAndPages)
{
    {
        UrlCatcher desktop;
        const WhenModalOpens<frm_info> info([](frm_info &opened) {
            opened.findChild<QAbstractButton *>(QStringLiteral("cmd_auswahl_0"))->click();
            opened.close();
        });
        item("m_h_1")->trigger();
        EXPECT_EQ(desktop.opened, QList<QUrl> { QUrl(addresses.secondHomePage) });
    }
    {
        const WhenModalOpens<frmAbout> about([](frmAbout &opened) { opened.close(); });
        item("m_h_2")->trigger();
    }
    UrlCatcher desktop;
    for (const char *name : { "m_h_4", "m_h_7", "m_h_10" }) {
        item(name)->trigger();
    }
    EXPECT_EQ(
        desktop.opened,
        (QList<QUrl> { QUrl(addresses.homePage), QUrl(addresses.faq), QUrl(addresses.update) }));
}

TEST_F(WindowParts, TheHelpMenuWritesToTheSupportAfterAHint)
{
    globals.ProgramVersion = 220; // as the info screen leaves it
    UrlCatcher desktop(QStringLiteral("mailto"));
    prompts.expectMessage(QStringLiteral(
        "Es ist oft hilfreich, wenn Sie uns den Inhalt des LogFensters zusammen mit Ihrer Anfrage "
        "senden. Kopieren Sie dazu den Inhalt des LogFensters in die Zwischenablage und fügen Sie "
        "den Text dann in die e-Mail ein."));
    item("m_h_6")->trigger();
    ASSERT_EQ(desktop.opened.size(), 1);
    EXPECT_EQ(desktop.opened.first().toString(QUrl::FullyEncoded),
              QStringLiteral("mailto:hilfe@morlanda.example?subject=Tarvelo%20FTP%20V220&body="
                             "Hallo,%0A%0Aich%20habe%20folgende%20Probleme/Fragen:"));
}

TEST_F(WindowParts, TheMakersLogoOpensTheHomePage)
{
    EXPECT_TRUE(find<QWidget>("img_logo_links")->isVisible());
    UrlCatcher desktop;
    find<QAbstractButton>("img_logo_rechts")->click();
    EXPECT_EQ(desktop.opened, QList<QUrl> { QUrl(addresses.homePage) });
}
