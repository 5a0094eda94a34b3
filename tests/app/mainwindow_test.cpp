#include "app/windowbench.h"

#include "app/commands.h"
#include "app/transfercolumn.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frm_hilfe.h"
#include "dialogs/frm_info.h"
#include "dialogs/helpkeyfilter.h"
#include "dialogs/helppages.h"
#include "remote/itemkind.h"
#include "support/modalbox.h"

#include <QApplication>
#include <QComboBox>
#include <QDesktopServices>
#include <QFile>
#include <QGroupBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSplitter>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

namespace {

class MainWindow : public WindowBench {
protected:
    void file(const char *name, const QByteArray &content = "x")
    {
        QFile made(home.filePath(QString::fromUtf8(name)));
        ASSERT_TRUE(made.open(QIODevice::WriteOnly));
        made.write(content);
    }
    std::string menu(const char *name) const
    {
        QStringList texts;
        for (const QAction *action : find<QMenu>(name)->actions()) {
            texts << action->objectName() + u'='
                    + (action->isSeparator() ? QStringLiteral("-") : action->text());
        }
        return texts.join(u'|').toStdString();
    }
    bool enabled(const char *name) const { return item(name)->isEnabled(); }
};

/// Stands in for the desktop's opener.
class UrlCatcher : public QObject {
    Q_OBJECT

public:
    explicit UrlCatcher(const QString &scheme = QStringLiteral("https"))
        : m_scheme(scheme)
    {
        QDesktopServices::setUrlHandler(m_scheme, this, "open");
    }
    ~UrlCatcher() override { QDesktopServices::unsetUrlHandler(m_scheme); }
    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url); }

private:
    QString m_scheme;
};

const char *const bars[] { "tbToolBar", "tbToolBar_rem" };
const char *const keys[] { "NewFolder", "ViewFile",   "DeleteFiles", "Refresh",
                           "SelectAll", "RenameFile", "Cdup" };

} // namespace

TEST_F(MainWindow, HasItsMenus)
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

TEST_F(MainWindow, TheQueueStartsEmptyAndIsNeverSaved)
{
    const auto rows = [this] { return find<QTreeView>("lvwStatus")->model()->rowCount(); };
    EXPECT_EQ(rows(), 0);
    window->AddQueueRow(QueueRow());
    EXPECT_EQ(rows(), 1);
    open();
    EXPECT_EQ(rows(), 0);
}

TEST_F(MainWindow, TheLogIsNeitherKeptNorSavedAtTheEnd)
{
    const auto log = [this] { return find<QPlainTextEdit>("txtLog")->toPlainText(); };
    globals.settings.LogFolder = home.filePath(QStringLiteral("temp"));
    window->AppendLog(QStringLiteral("Zeile"));
    EXPECT_EQ(log(), QStringLiteral("Zeile"));
    open();
    EXPECT_EQ(log(), QString());
    EXPECT_TRUE(QDir(globals.settings.LogFolder).entryList(QDir::Files).isEmpty());
}

TEST_F(MainWindow, TheFamiliarKeysStandInTheMenus)
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

TEST_F(MainWindow, BothToolBarsHaveTheSameSevenButtons)
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

TEST_F(MainWindow, HasTheTransferModeOptions)
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

TEST_F(MainWindow, StartsWithoutAConnection)
{
    EXPECT_TRUE(enabled("mnuLogin"));
    EXPECT_FALSE(enabled("mnuLogout"));
    EXPECT_TRUE(find<QMenu>("mnuActions")->menuAction()->isEnabled());
    EXPECT_TRUE(find<QWidget>("img_ampel_rot")->isVisible());
    EXPECT_FALSE(find<QWidget>("img_ampel_gruen")->isVisible());
    EXPECT_EQ(find<QWidget>("img_ampel_rot")->toolTip(),
              QStringLiteral("Keine Verbindung zum Server hergestellt"));
    EXPECT_EQ(find<QWidget>("img_ampel_gruen")->toolTip(),
              QStringLiteral("Verbindung zum Server hergestellt"));
    EXPECT_FALSE(find<QWidget>("cmdAbort")->isEnabled());
    for (const char *key : keys) {
        EXPECT_FALSE(button("tbToolBar_rem", key)->isEnabled()) << key;
    }
    for (const char *key : { "NewFolder", "Refresh", "SelectAll", "Cdup" }) {
        EXPECT_TRUE(button("tbToolBar", key)->isEnabled()) << key;
    }
    for (const char *key : { "ViewFile", "DeleteFiles", "RenameFile" }) {
        EXPECT_FALSE(button("tbToolBar", key)->isEnabled()) << key;
    }
    EXPECT_EQ(find<QComboBox>("cmbLocalDir")->currentText(), home.path() + u'/');
    EXPECT_EQ(window->remotePane().view().hint(),
              QStringLiteral("Nicht mit einem Server verbunden."));
}

TEST_F(MainWindow, SetCommandsEnabledSwitchesMenusBarsAndLights)
{
    struct Case {
        bool login, logout, commands, toolbars;
    };
    for (const Case &one : { Case { false, false, false, false }, Case { true, false, true, true },
                             Case { false, true, true, true }, Case { true, true, false, true } }) {
        for (const bool third : { false, true }) {
            window->SetCommandsEnabled(one.login, one.logout, third, one.commands, one.toolbars);
            EXPECT_EQ(enabled("mnuLogin"), one.login);
            EXPECT_EQ(enabled("mnuLogout"), one.logout);
            EXPECT_EQ(find<QMenu>("mnuActions")->menuAction()->isEnabled(), one.commands);
            for (const char *bar : bars) {
                for (const char *key : keys) {
                    EXPECT_EQ(button(bar, key)->isEnabled(), one.toolbars) << key;
                }
            }
            EXPECT_TRUE(find<QWidget>("img_ampel_rot")->isVisible()) << "nothing stands";
        }
    }
}

TEST_F(MainWindow, ACommandThatLostItsConnectionLeavesTheServersBarDisabled)
{
    window->SetToolbarsEnabled(false);
    for (const char *bar : bars) {
        EXPECT_FALSE(button(bar, "Refresh")->isEnabled());
    }
    window->SetToolbarsEnabled(true);
    for (const char *key : keys) {
        EXPECT_FALSE(button("tbToolBar_rem", key)->isEnabled()) << key;
    }
    EXPECT_TRUE(button("tbToolBar", "Refresh")->isEnabled());
    EXPECT_FALSE(button("tbToolBar", "DeleteFiles")->isEnabled()) << "nothing is selected";
}

TEST_F(MainWindow, TheRememberButtonsWriteTheFoldersOfTheBoxes)
{
    QDir(home.path()).mkdir(QStringLiteral("mo_def"));
    globals.session.Lastconnect = QStringLiteral("Heim");
    globals.connection.RemoteDir = QStringLiteral("/html");
    open();
    const auto lines = [this] {
        QFile written(home.filePath(QStringLiteral("mo_def/Heim.login")));
        return written.open(QIODevice::ReadOnly)
            ? QString::fromLatin1(written.readAll()).split(QStringLiteral("\r\n"))
            : QStringList();
    };
    find<QComboBox>("cmbLocalDir")->setEditText(home.path() + QStringLiteral(" [mein]"));
    find<QAbstractButton>("cmd_dir_merken_lokal")->click();
    EXPECT_EQ(lines().value(3), home.path() + QStringLiteral(" [mein]"));
    EXPECT_EQ(lines().value(4), QStringLiteral("/html"));
    find<QAbstractButton>("cmd_dir_merken_remote")->click();
    EXPECT_EQ(lines().value(4), QStringLiteral("/html")) << "the box is empty";
    find<QComboBox>("cmbRemoteDir")->setEditText(QStringLiteral("/neu"));
    find<QAbstractButton>("cmd_dir_merken_remote")->click();
    EXPECT_EQ(lines().value(4), QStringLiteral("/neu"));

    globals.session.Lastconnect = QStringLiteral("a/b"); // cannot be written
    prompts.expectMessage(QStringLiteral("Der Name der Verbindung ist nicht erlaubt: a/b"));
    find<QAbstractButton>("cmd_dir_merken_lokal")->click();
}

TEST_F(MainWindow, TheLightsRunOnlyCommandsThatAreEnabled)
{
    const auto click = [this](const char *light) { find<QToolButton>(light)->click(); };
    QComboBox *box = find<QComboBox>("cmbRemoteDir");
    box->setEditText(QStringLiteral("/html"));
    window->SetCommandsEnabled(false, false, false, true, true);
    click("img_ampel_gruen");
    click("img_ampel_rot"); // would stay here as long as the dialog is open
    EXPECT_EQ(box->currentText(), QStringLiteral("/html"));

    window->SetCommandsEnabled(true, true, false, true, true);
    click("img_ampel_gruen"); // logging out without a connection only empties the box
    EXPECT_EQ(box->currentText(), QString());
    QString opened;
    QTimer::singleShot(0, window.get(), [&opened] {
        opened = QApplication::activeModalWidget()->objectName();
        QApplication::activeModalWidget()->close();
    });
    click("img_ampel_rot");
    EXPECT_EQ(opened, QStringLiteral("frmConnect"));
}

TEST_F(MainWindow, SelectionInTheLocalPaneDecidesAboutTheCommands)
{
    file("seite.html");
    QDir(home.path()).mkdir(QStringLiteral("bilder"));
    refreshLocal();
    FilePane &local = window->localPane();
    select(local, { "seite.html" });
    EXPECT_TRUE(enabled("mnuView") && enabled("mnuRename") && enabled("mnuDelete"));
    EXPECT_TRUE(button("tbToolBar", "ViewFile")->isEnabled());
    EXPECT_FALSE(enabled("mnu_rechte"));
    select(local, { "bilder" });
    EXPECT_TRUE(enabled("mnuRename") && enabled("mnuDelete"));
    EXPECT_FALSE(enabled("mnuView"));
    EXPECT_FALSE(button("tbToolBar", "ViewFile")->isEnabled());
    local.view().selectRowNumbers({ 0 });
    EXPECT_FALSE(enabled("mnuRename") || enabled("mnuDelete") || enabled("mnuView"));
    local.selectAll();
    EXPECT_TRUE(button("tbToolBar", "DeleteFiles")->isEnabled());
    local.clearSelection();
    EXPECT_FALSE(button("tbToolBar", "DeleteFiles")->isEnabled());
}

TEST_F(MainWindow, MenuAndBarFollowTheSelectedKindInBothPanes)
{
    // What a kind allows is a table of its own; here it has to reach every control.
    const QString kinds[] { ItemKind::Cdup,    ItemKind::FolderClose, ItemKind::FolderLink,
                            ItemKind::Link,    ItemKind::File,        ItemKind::TextFile,
                            ItemKind::ZipFile, ItemKind::ExeFile,     ItemKind::ImageFile,
                            ItemKind::HelpFile };
    for (FilePane *pane : { static_cast<FilePane *>(&window->localPane()),
                            static_cast<FilePane *>(&window->remotePane()) }) {
        QList<PaneRow> rows;
        for (const QString &kind : kinds) {
            PaneRow row;
            row.kind = kind;
            row.name = kind == ItemKind::Cdup ? QString() : kind;
            rows.append(row);
        }
        pane->model().setRows(rows);
        const bool remote = pane == &window->remotePane();
        const char *bar = remote ? "tbToolBar_rem" : "tbToolBar";
        for (int row = 0; row < rows.size(); ++row) {
            pane->view().selectRowNumbers({ row });
            const DecidingRow deciding { true, rows.at(row).name, rows.at(row).kind };
            const PaneCommands expected
                = remote ? remoteCommands(false, deciding) : localCommands(deciding);
            const struct {
                const char *menuItem, *key;
                bool enabled;
            } controls[] { { "mnuRename", "RenameFile", expected.rename },
                           { "mnuDelete", "DeleteFiles", expected.remove },
                           { "mnuView", "ViewFile", expected.view },
                           { "mnuRefresh", "Refresh", expected.refresh },
                           { "mnuMakeDirectory", "NewFolder", expected.makeFolder } };
            for (const auto &control : controls) {
                EXPECT_EQ(enabled(control.menuItem), control.enabled) << control.menuItem << row;
                EXPECT_EQ(button(bar, control.key)->isEnabled(), control.enabled) << bar << row;
            }
            EXPECT_EQ(enabled("mnu_rechte"), expected.rights) << bar << row;
            EXPECT_EQ(button(bar, "Cdup")->isEnabled(), expected.up) << bar << row;
            EXPECT_EQ(button(bar, "SelectAll")->isEnabled(), expected.selectAll) << bar << row;
        }
    }
}

TEST_F(MainWindow, TheListThatHadTheFocusLastIsTheActiveOne)
{
    EXPECT_FALSE(globals.active.RemoteListActive || globals.active.LocalListActive
                 || globals.active.QueueListActive);
    const auto flags = [this] {
        return std::tuple(globals.active.RemoteListActive, globals.active.LocalListActive,
                          globals.active.QueueListActive);
    };
    focus(window->remotePane().view());
    EXPECT_EQ(flags(), std::tuple(true, false, false));
    focus(window->localPane().view());
    EXPECT_EQ(flags(), std::tuple(false, true, false));
    focus(*find<QTreeView>("lvwStatus"));
    EXPECT_EQ(flags(), std::tuple(false, false, true));
    focus(*find<QWidget>("txtLog"));
    EXPECT_EQ(flags(), std::tuple(false, false, true)) << "only lists count";
}

TEST_F(MainWindow, TheSharedMenuFollowsTheListThatIsTakenUpAgain)
{
    file("a.txt");
    refreshLocal();
    FilePane &local = window->localPane();
    FilePane &remote = window->remotePane();
    PaneRow folder;
    folder.kind = ItemKind::FolderClose;
    folder.name = QStringLiteral("ordner");
    remote.model().setRows({ upRow(), folder });
    const auto click = [](FilePane &pane, const char *name) {
        const QModelIndex row = pane.model().index(rowOf(pane, name), 0);
        QTest::mouseClick(pane.view().viewport(), Qt::LeftButton, {},
                          pane.view().visualRect(row).center());
    };
    click(local, "a.txt");
    EXPECT_TRUE(enabled("mnuView"));
    click(remote, "ordner");
    EXPECT_FALSE(enabled("mnuView"));
    click(local, "a.txt"); // selected already
    EXPECT_TRUE(enabled("mnuView"));
    QTest::keyClick(&local.view(), Qt::Key_Tab);
    EXPECT_FALSE(enabled("mnuView")) << "Tab changes the list, too";
    window->SetToolbarsEnabled(false); // a command runs
    click(local, "a.txt");
    EXPECT_FALSE(enabled("mnuView") || button("tbToolBar", "ViewFile")->isEnabled());
}

TEST_F(MainWindow, MenuCommandsFollowTheActiveList)
{
    file("a.txt");
    focus(*find<QTreeView>("lvwStatus"));
    item("mnuRefresh")->trigger();
    EXPECT_GE(rowOf(window->localPane(), "a.txt"), 0) << "the queue counts as the local pane";
    item("mnuSelectall")->trigger();
    EXPECT_EQ(window->localPane().selectedRows().size(), window->localPane().model().rowCount());
    prompts.expectConfirm(QStringLiteral("Delete queue items selected?"), false,
                          QStringLiteral("Confirm Delete Queue Items"));
    item("mnuDelete")->trigger();
}

TEST_F(MainWindow, TheLocalToolBarWorksOnTheLocalPane)
{
    file("a.txt");
    button("tbToolBar", "Refresh")->trigger();
    LocalPane &local = window->localPane();
    EXPECT_GE(rowOf(local, "a.txt"), 0);
    button("tbToolBar", "SelectAll")->trigger();
    EXPECT_EQ(local.selectedRows().size(), local.model().rowCount());
    EXPECT_EQ(local.selectedRows().first(), 0);
    button("tbToolBar", "Cdup")->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !local.isReading(); }));
    EXPECT_EQ(find<QComboBox>("cmbLocalDir")->currentText(), QFileInfo(home.path()).path() + u'/');
    EXPECT_EQ(globals.session.CurrentLocalDir, QFileInfo(home.path()).path() + u'/');
}

TEST_F(MainWindow, KeysOfThePanesReachTheCommands)
{
    QDir(home.path()).mkdir(QStringLiteral("bilder"));
    refreshLocal();
    LocalPane &local = window->localPane();
    focus(local.view());
    select(local, { "bilder" });
    QTest::keyClick(&local.view(), Qt::Key_Return);
    EXPECT_EQ(local.folder(), home.path() + QStringLiteral("/bilder/"));
    QTest::keyClick(&local.view(), Qt::Key_Backspace);
    EXPECT_EQ(local.folder(), home.path() + u'/');
    select(local, { "bilder" });
    prompts.expectConfirm(
        QStringLiteral("Sind Sie sicher, dass Sie 1 Dateien oder Ordner löschen möchten?"), false,
        QStringLiteral("Confirm Delete"),
        QStringLiteral("In den Ordnern: 0 Dateien und 0 Ordner."));
    QTest::keyClick(&local.view(), Qt::Key_Delete);
    QTest::keyClick(&local.view(), Qt::Key_Tab);
    EXPECT_TRUE(window->remotePane().view().hasFocus());
    QTest::keyClick(&window->remotePane().view(), Qt::Key_Tab);
    EXPECT_TRUE(local.view().hasFocus());
}

TEST_F(MainWindow, OnlyTheStartFolderOfTheCommandLineIsSelected)
{
    const QString slow = home.filePath(QStringLiteral("viele"));
    const QString other = home.filePath(QStringLiteral("andere"));
    ASSERT_TRUE(QDir().mkpath(slow) && QDir().mkpath(other + QStringLiteral("/b")));
    // Links to themselves by long ways: looking at each takes milliseconds, and all of them more
    // than the pane waits for.
    ASSERT_TRUE(QDir(slow).mkdir(QStringLiteral("s")));
    for (int i = 0; i < 200; ++i) {
        const QString name = QStringLiteral("l%1").arg(i);
        ASSERT_TRUE(QFile::link(QStringLiteral("s/../").repeated(800) + name, slow + u'/' + name));
    }
    const QStringList fields { QStringLiteral("127.0.0.1"), {}, {}, slow, {}, QStringLiteral("1"),
                               QStringLiteral("0"),         {}, {}, {},   {} }; // no port: no login
    prompts.expectMessage(
        QStringLiteral("Allgemeiner Fehler! Versuchen Sie den Vorgang zu einem späteren Zeitpunkt "
                       "nochmals zu starten."));
    open(fields.join(u'\t'));
    window->load_commands();
    LocalPane &local = window->localPane();
    ASSERT_TRUE(local.isReading());
    find<QComboBox>("cmbLocalDir")->setEditText(other); // the user does not wait
    ASSERT_TRUE(QTest::qWaitFor([&] { return !local.isReading(); }));
    ASSERT_EQ(rowOf(local, "b"), 1);
    EXPECT_TRUE(local.selectedRows().isEmpty());
}

TEST_F(MainWindow, F2RenamesInPlace)
{
    file("alt.txt");
    refreshLocal();
    LocalPane &local = window->localPane();
    focus(local.view());
    select(local, { "alt.txt" });
    item("mnuRename")->trigger();
    auto *editor = local.view().viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, QStringLiteral("neu.txt"));
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor(
        [this] { return QFile::exists(home.filePath(QStringLiteral("neu.txt"))); }));
    EXPECT_GE(rowOf(local, "neu.txt"), 0);
}

TEST_F(MainWindow, NeverGetsSmallerThanItsMinimum)
{
    window->resize(100, 100);
    EXPECT_EQ(window->size(), QSize(667, 467));
    for (const char *name : { "lvwLocal", "lvwRemote", "lvwStatus", "txtLog", "cmd_download",
                              "cmd_upload", "cmdAbort", "cmd_desktop" }) {
        auto *widget = find<QWidget>(name);
        const QRect place(widget->mapTo(window.get(), QPoint()), widget->size());
        EXPECT_TRUE(window->rect().contains(place)) << name;
        EXPECT_GE(widget->height(), 20) << name;
    }
    EXPECT_GE(find<QWidget>("lvwLocal")->height(), 60);
}

TEST_F(MainWindow, RemembersItsSizeAndSplitters)
{
    window->resize(900, 600);
    auto *splitter = find<QSplitter>("split_fenster");
    splitter->setSizes({ 500, 100, 200 });
    const QList<int> sizes = splitter->sizes();
    open();
    EXPECT_EQ(window->size(), QSize(900, 600));
    EXPECT_EQ(find<QSplitter>("split_fenster")->sizes(), sizes);
    EXPECT_TRUE(store.text(QStringLiteral("Settings"), QStringLiteral("Geometry")).isEmpty());
}

TEST_F(MainWindow, EveryControlHasANameForScreenReaders)
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

TEST_F(MainWindow, TheHelpMenuOpensTheHelpAtItsBeginning)
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

TEST_F(MainWindow, TheHelpMenuOpensBoxesAndPages)
{
    {
        const WhenModalOpens<frm_info> info([](frm_info &opened) { opened.close(); });
        item("m_h_1")->trigger();
    }
    {
        const WhenModalOpens<frmAbout> about([](frmAbout &opened) { opened.close(); });
        item("m_h_2")->trigger();
    }
    UrlCatcher desktop;
    const Addresses addresses;
    for (const char *name : { "m_h_4", "m_h_7", "m_h_10" }) {
        item(name)->trigger();
    }
    EXPECT_EQ(
        desktop.opened,
        (QList<QUrl> { QUrl(addresses.homePage), QUrl(addresses.faq), QUrl(addresses.update) }));
}

TEST_F(MainWindow, TheHelpMenuWritesToTheSupportAfterAHint)
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
              QStringLiteral("mailto:support@morlanda.example?subject=Tarvelo%20FTP%20V220&body="
                             "Hallo,%0A%0Aich%20habe%20folgende%20Probleme/Fragen:"));
}

TEST_F(MainWindow, ADoubleClickOnALocalFileNeedsAConnection)
{
    file("a.txt");
    refreshLocal();
    LocalPane &local = window->localPane();
    const QModelIndex row = local.model().index(rowOf(local, "a.txt"), 0);
    QTest::mouseDClick(local.view().viewport(), Qt::LeftButton, {},
                       local.view().visualRect(row).center());
    EXPECT_EQ(find<QTreeView>("lvwStatus")->model()->rowCount(), 0);
    EXPECT_EQ(local.model().findRow(QStringLiteral("a.txt")), row.row());
    EXPECT_EQ(find<QWidget>("txtLog")->property("plainText").toString(), QString());
}

TEST_F(MainWindow, BeendenClosesIt)
{
    item("mnuExit")->trigger();
    EXPECT_FALSE(window->isVisible());
}

TEST_F(MainWindow, TheMakersLogoOpensTheHomePage)
{
    EXPECT_TRUE(find<QWidget>("img_logo_links")->isVisible());
    UrlCatcher desktop;
    find<QAbstractButton>("img_logo_rechts")->click();
    EXPECT_EQ(desktop.opened, QList<QUrl> { QUrl(Addresses().homePage) });
}

TEST_F(MainWindow, TheNamesFillTheListWhateverItsWidth)
{
    for (const int width : { 1200, 700, 1500 }) {
        window->resize(width, 600);
        for (FilePane *pane : { static_cast<FilePane *>(&window->localPane()),
                                static_cast<FilePane *>(&window->remotePane()) }) {
            const QTreeView &list = pane->view();
            EXPECT_TRUE(list.header()->length() == list.viewport()->width()
                        || list.header()->sectionSize(0)
                            == 28 * list.fontMetrics().averageCharWidth())
                << width << ' ' << list.header()->length() << ' ' << list.viewport()->width();
        }
    }
    QHeaderView *header = window->localPane().view().header();
    header->resizeSection(0, 400); // by the user
    window->resize(1000, 600);
    EXPECT_EQ(header->sectionSize(0), 400);
}

TEST_F(MainWindow, CommandsWithoutAConnectionDoAndSayNothing)
{
    find<QAbstractButton>("cmd_download")->click();
    find<QAbstractButton>("cmd_upload")->click();
    find<QAbstractButton>("img_ampel_gruen")->click();
    for (const char *key : keys) {
        button("tbToolBar_rem", key)->setEnabled(true);
        button("tbToolBar_rem", key)->trigger();
    }
    focus(window->remotePane().view());
    for (const char *name : { "mnuRename", "mnuMakeDirectory", "mnuDelete", "mnuView", "mnuRefresh",
                              "mnuSelectall" }) {
        item(name)->setEnabled(true);
        item(name)->trigger();
    }
    window->DoRemoteRefresh(QStringLiteral("/"));
    EXPECT_EQ(window->remotePane().model().rowCount(), 0);
}

#include "mainwindow_test.moc"
