#pragma once

#include <QAction>
#include <QMenu>

class QMenuBar;
class QToolBar;
class QWidget;
struct PaneCommands;

/// The menu bar's menus and items; the help menu is filled elsewhere.
struct MainMenu {
    QMenu *mnuFile = nullptr;
    QMenu *mnuActions = nullptr;
    QMenu *mnu_einstellungen = nullptr;
    QMenu *mnuHelp = nullptr;

    QAction *mnuExit = nullptr;
    QAction *mnuLogin = nullptr;
    QAction *mnuLogout = nullptr;
    QAction *mnuRename = nullptr;
    QAction *mnuMakeDirectory = nullptr;
    QAction *mnuDelete = nullptr;
    QAction *mnuView = nullptr;
    QAction *mnuRefresh = nullptr;
    QAction *mnuSelectall = nullptr;
    QAction *mnu_rechte = nullptr;
    QAction *mnu_einstell = nullptr;

    /// Builds the menus into a menu bar.
    explicit MainMenu(QMenuBar &bar);
    /// Enables the items that a pane's selection decides about.
    void apply(const PaneCommands &commands) const;
};

/// One of the two tool bars with its seven buttons.
struct PaneToolBar {
    QToolBar *bar = nullptr;
    QAction *NewFolder = nullptr;
    QAction *ViewFile = nullptr;
    QAction *DeleteFiles = nullptr;
    QAction *Refresh = nullptr;
    QAction *SelectAll = nullptr;
    QAction *RenameFile = nullptr;
    QAction *Cdup = nullptr;

    /// @param label  name for screen readers
    PaneToolBar(const QString &name, const QString &label, QWidget *parent);
    void apply(const PaneCommands &commands) const;
    void setEnabled(bool enabled) const; ///< all seven
};
