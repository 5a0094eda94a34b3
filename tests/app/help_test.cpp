#include "app/windowbench.h"

#include "connections/frmConnect.h"
#include "connections/frm_zertifikat.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frm_einstellungen.h"
#include "dialogs/frm_get_folder.h"
#include "dialogs/frm_hilfe.h"
#include "dialogs/frm_info.h"
#include "dialogs/helpkeyfilter.h"
#include "fileops/frm_rechte.h"
#include "transfer/frmRename.h"
#include "transfer/frmTransfer.h"

#include <QPushButton>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace {

/// The pages that F1 opens in the controls of a window that can be seen and can have the focus.
QStringList pagesIn(const QWidget &window)
{
    QStringList pages;
    for (const QWidget *each : window.findChildren<QWidget *>()) {
        if (each->isVisibleTo(&window) && each->focusPolicy() != Qt::NoFocus) {
            pages += helpPageFor(each);
        }
    }
    pages.removeDuplicates();
    pages.sort();
    return pages;
}

class HelpEverywhere : public WindowBench {
protected:
    const HelpKeyFilter filter;

    /// The page that the help key opens in a window or control.
    QString pageOpenedIn(QWidget &widget)
    {
        sendHelpKey(&widget);
        QString page;
        EXPECT_TRUE(QTest::qWaitFor([&page] {
            for (QWidget *each : QApplication::topLevelWidgets()) {
                if (auto *help = qobject_cast<frm_hilfe *>(each); help && help->isVisible()) {
                    page = help->currentPage();
                    help->close();
                }
            }
            return !page.isEmpty();
        }));
        return page;
    }
    void expectOwnPage(QWidget &dialog)
    {
        dialog.show();
        EXPECT_EQ(pagesIn(dialog), QStringList(dialog.objectName()));
        EXPECT_EQ(pageOpenedIn(dialog), dialog.objectName());
    }
    ConnectDialogServices connectServices()
    {
        return { globals, store, prompts, [](const FtpProxy &) {}, [](QWidget *) {} };
    }
};

} // namespace

TEST_F(HelpEverywhere, EachPartOfTheWindowHasItsPage)
{
    const std::pair<const char *, QString> expected[] {
        { "lvwLocal", u"lokal"_s },
        { "cmbLocalDir", u"lokal"_s },
        { "cmd_desktop", u"lokal"_s },
        { "cmd_dir_merken_lokal", u"lokal"_s },
        { "tbToolBar", u"lokal"_s },
        { "lvwRemote", u"server"_s },
        { "cmbRemoteDir", u"server"_s },
        { "cmd_dir_merken_remote", u"server"_s },
        { "tbToolBar_rem", u"server"_s },
        { "cmd_download", u"uebertragen"_s },
        { "cmd_upload", u"uebertragen"_s },
        { "op_transfer_0", u"uebertragen"_s },
        { "op_transfer_1", u"uebertragen"_s },
        { "op_transfer_2", u"uebertragen"_s },
        { "lvwStatus", u"liste"_s },
        { "Progress", u"liste"_s },
        { "cmdAbort", u"liste"_s },
        { "txtLog", u"protokoll"_s },
        { "cmd_log_clipboard", u"protokoll"_s },
        { "cmd_log_loeschen", u"protokoll"_s },
        { "cmd_log_speichern", u"protokoll"_s },
        { "img_ampel_rot", u"frm_tarvelo"_s },
        { "mnuFile", u"frm_tarvelo"_s },
        { "mnuHelp", u"index"_s },
    };
    for (const auto &[name, page] : expected) {
        EXPECT_EQ(helpPageFor(find<QWidget>(name)), page) << name;
    }
    EXPECT_EQ(pageOpenedIn(*window), u"frm_tarvelo"_s);
}

TEST_F(HelpEverywhere, EachDialogHasItsPage)
{
    FtpCertificate certificate;
    frm_zertifikat trust(certificate);
    expectOwnPage(trust);
    frmTransfer conflict(ConflictQuestion { u"Dateitransfer"_s, { u"?"_s }, true });
    expectOwnPage(conflict);
    frmRename rename(u"a.txt"_s, prompts);
    expectOwnPage(rename);
    frm_rechte rights(globals.permissions);
    expectOwnPage(rights);
    frm_get_folder folder(globals, prompts, drives(), {});
    expectOwnPage(folder);
    frm_info info(globals, Addresses(), prompts, [](const QString &) { return 0; });
    expectOwnPage(info);
    frmAbout network;
    expectOwnPage(network);
    frm_hilfe help;
    EXPECT_EQ(pagesIn(help), QStringList(u"frm_hilfe"_s));
}

TEST_F(HelpEverywhere, EveryTabOfTheSettingsHasTheirPage)
{
    frm_einstellungen settings(
        { globals, store, [](QWidget *) {}, trustedServersIn(home.filePath(u"trust"_s), {}) });
    auto *tabs = settings.findChild<QTabWidget *>();
    for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        expectOwnPage(settings);
    }
}

TEST_F(HelpEverywhere, TheProxyTabHasAPageOfItsOwn)
{
    frmConnect dialog(connectServices(), false);
    auto *tabs = dialog.findChild<QTabWidget *>();
    ASSERT_EQ(tabs->count(), 3);
    for (const int tab : { 0, 1 }) {
        tabs->setCurrentIndex(tab);
        expectOwnPage(dialog);
    }
    tabs->setCurrentIndex(2);
    EXPECT_EQ(pageOpenedIn(dialog), u"proxy"_s);
    for (const QWidget *field : tabs->currentWidget()->findChildren<QWidget *>()) {
        EXPECT_EQ(helpPageFor(field), u"proxy"_s) << field->objectName().toStdString();
    }
    for (const char *name : { "Tab1", "cmd_hilfe", "cmdOK", "cmdCancel" }) {
        EXPECT_EQ(helpPageFor(dialog.findChild<QWidget *>(QLatin1StringView(name))), u"proxy"_s)
            << name;
    }
    for (const char *name : { "cbo_profil", "cmd_profil_neu", "cmd_profil_speichern" }) {
        EXPECT_EQ(helpPageFor(dialog.findChild<QWidget *>(QLatin1StringView(name))),
                  u"frmConnect"_s)
            << name;
    }
    dialog.findChild<QPushButton *>(u"cmd_hilfe"_s)->click();
    QWidget *help = nullptr;
    EXPECT_TRUE(QTest::qWaitFor([&help] {
        for (QWidget *each : QApplication::topLevelWidgets()) {
            help = qobject_cast<frm_hilfe *>(each) && each->isVisible() ? each : help;
        }
        return help != nullptr;
    }));
    EXPECT_EQ(qobject_cast<frm_hilfe *>(help)->currentPage(), u"proxy"_s);
}
