#include "app/windowbench.h"

#include "app/commands.h"
#include "remote/itemkind.h"

#include <QApplication>
#include <QComboBox>
#include <QMenu>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

using WindowStates = WindowBench;

TEST_F(WindowStates, StartsWithoutAConnection)
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

TEST_F(WindowStates, SetCommandsEnabledSwitchesMenusBarsAndLights)
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

TEST_F(WindowStates, ACommandThatLostItsConnectionLeavesTheServersBarDisabled)
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

TEST_F(WindowStates, TheLightsRunOnlyCommandsThatAreEnabled)
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

TEST_F(WindowStates, SelectionInTheLocalPaneDecidesAboutTheCommands)
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

TEST_F(WindowStates, MenuAndBarFollowTheSelectedKindInBothPanes)
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

TEST_F(WindowStates, TheListThatHadTheFocusLastIsTheActiveOne)
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

TEST_F(WindowStates, OpeningAMenuLeavesTheActiveListAsItIs)
{
    focus(window->localPane().view());
    for (const char *name : { "mnuFile", "mnuActions", "mnu_einstellungen", "mnuHelp" }) {
        auto *menu = find<QMenu>(name);
        menu->popup(window->mapToGlobal(QPoint(10, 10)));
        ASSERT_TRUE(QTest::qWaitFor([menu] { return menu->isVisible(); })) << name;
        QTest::keyClick(menu, Qt::Key_Down);
        EXPECT_TRUE(globals.active.LocalListActive) << name;
        QTest::keyClick(menu, Qt::Key_Escape);
        EXPECT_FALSE(menu->isVisible()) << name;
        EXPECT_TRUE(globals.active.LocalListActive) << name;
        EXPECT_FALSE(globals.active.RemoteListActive || globals.active.QueueListActive) << name;
    }
}

TEST_F(WindowStates, ARefreshOfTheLocalPaneIsFollowedByItsStates)
{
    file("a.txt");
    refreshLocal();
    const auto selectIt = [this] {
        select(window->localPane(), { "a.txt" });
        EXPECT_TRUE(button("tbToolBar", "DeleteFiles")->isEnabled() && enabled("mnuDelete"));
    };
    selectIt();
    button("tbToolBar", "Refresh")->trigger();
    EXPECT_FALSE(button("tbToolBar", "DeleteFiles")->isEnabled() || enabled("mnuDelete"));
    EXPECT_TRUE(enabled("mnuRefresh") && enabled("mnuMakeDirectory"));
    focus(window->localPane().view());
    selectIt();
    item("mnuRefresh")->trigger();
    EXPECT_FALSE(button("tbToolBar", "DeleteFiles")->isEnabled() || enabled("mnuDelete"));
}

TEST_F(WindowStates, TheSharedMenuFollowsTheListThatIsTakenUpAgain)
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
