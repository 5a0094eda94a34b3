#include "app/mainmenu.h"

#include "app/commands.h"
#include "remote/icons.h"

#include <QLayout>
#include <QMenuBar>
#include <QToolBar>

using namespace Qt::StringLiterals;

namespace {

QMenu *addMenu(QMenuBar &bar, const QString &name, const QString &caption)
{
    QMenu *menu = bar.addMenu(caption);
    menu->setObjectName(name);
    menu->menuAction()->setObjectName(name);
    return menu;
}

QAction *addItem(QMenu *menu, const QString &name, const QString &caption, const QString &icon = {},
                 const QKeySequence &key = {})
{
    QAction *item = menu->addAction(caption);
    item->setObjectName(name);
    item->setMenuRole(QAction::NoRole);
    if (!icon.isEmpty()) {
        item->setIcon(Icons::icon(icon));
    }
    item->setShortcut(key);
    return item;
}

} // namespace

MainMenu::MainMenu(QMenuBar &bar)
    : mnuFile(addMenu(bar, u"mnuFile"_s, u"&Datei"_s))
    , mnuActions(addMenu(bar, u"mnuActions"_s, u"&Befehle"_s))
    , mnu_einstellungen(addMenu(bar, u"mnu_einstellungen"_s, u"&Einstellungen"_s))
    , mnuHelp(addMenu(bar, u"mnuHelp"_s, u"&Hilfe"_s))
{
    mnuExit = addItem(mnuFile, u"mnuExit"_s, u"&Beenden"_s);
    mnuLogin = addItem(mnuFile, u"mnuLogin"_s, u"&Login"_s, u"RemoteHost"_s);
    mnuLogout = addItem(mnuFile, u"mnuLogout"_s, u"Log&out"_s);

    mnuRename = addItem(mnuActions, u"mnuRename"_s, u"&Umbenennen"_s, u"nameFile"_s, Qt::Key_F2);
    mnuMakeDirectory = addItem(mnuActions, u"mnuMakeDirectory"_s, u"&Verzeichnis erstellen"_s,
                               u"FolderOpen"_s, Qt::Key_F7);
    mnuDelete = addItem(mnuActions, u"mnuDelete"_s, u"&Löschen"_s, u"DeleteFiles"_s);
    mnuView = addItem(mnuActions, u"mnuView"_s, u"&Ansehen"_s, u"ViewFile"_s);
    mnuRefresh
        = addItem(mnuActions, u"mnuRefresh"_s, u"&Aktualisieren"_s, u"Refresh"_s, Qt::Key_F5);
    mnuSelectall = addItem(mnuActions, u"mnuSelectall"_s, u"Alles &Markieren"_s, u"SelectAll"_s,
                           QKeySequence::SelectAll);
    mnuActions->addSeparator()->setObjectName(u"mnu_line"_s);
    mnu_rechte = addItem(mnuActions, u"mnu_rechte"_s, u"Dateirechte vergeben Unix chmod"_s);

    mnu_einstell = addItem(mnu_einstellungen, u"mnu_einstell"_s, u"Programm&einstellungen"_s);
}

void MainMenu::apply(const PaneCommands &commands) const
{
    mnuRename->setEnabled(commands.rename);
    mnuDelete->setEnabled(commands.remove);
    mnu_rechte->setEnabled(commands.rights);
    mnuView->setEnabled(commands.view);
    mnuRefresh->setEnabled(commands.refresh);
    mnuMakeDirectory->setEnabled(commands.makeFolder);
}

PaneToolBar::PaneToolBar(const QString &name, const QString &label, QWidget *parent)
    : bar(new QToolBar(parent))
{
    bar->setObjectName(name);
    bar->setAccessibleName(label);
    bar->setMovable(false);
    bar->setFloatable(false);
    bar->setIconSize(QSize(20, 20));
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    bar->layout()->setContentsMargins(0, 0, 0, 0); // flush with box and list
    const auto add = [this](const QString &key, const QString &icon, const QString &description,
                            const QString &toolTip) {
        QAction *action = bar->addAction(Icons::icon(icon), description);
        action->setObjectName(key);
        action->setToolTip(toolTip);
        bar->widgetForAction(action)->setAccessibleName(toolTip);
        return action;
    };
    NewFolder = add(u"NewFolder"_s, u"FolderOpen"_s, u"New Folder"_s, u"Neuer Ordner"_s);
    ViewFile = add(u"ViewFile"_s, u"ViewFile"_s, u"View File"_s, u"Datei ansehen"_s);
    DeleteFiles = add(u"DeleteFiles"_s, u"DeleteFiles"_s, u"Delete Files"_s,
                      u"Löschen der markierten Dateien"_s);
    Refresh = add(u"Refresh"_s, u"Refresh"_s, u"Refresh"_s, u"Aktualisieren"_s);
    SelectAll = add(u"SelectAll"_s, u"SelectAll"_s, u"Select All"_s, u"Alles markieren"_s);
    RenameFile
        = add(u"RenameFile"_s, u"nameFile"_s, u"Rename File"_s, u"Datei oder Ordner umbenennen"_s);
    Cdup = add(u"Cdup"_s, u"Cdup"_s, u"Change Directory"_s, u"Zum übergeordneten Ordner"_s);
}

void PaneToolBar::apply(const PaneCommands &commands) const
{
    RenameFile->setEnabled(commands.rename);
    DeleteFiles->setEnabled(commands.remove);
    ViewFile->setEnabled(commands.view);
    Refresh->setEnabled(commands.refresh);
    NewFolder->setEnabled(commands.makeFolder);
    Cdup->setEnabled(commands.up);
    SelectAll->setEnabled(commands.selectAll);
}

void PaneToolBar::setEnabled(bool enabled) const
{
    for (QAction *action : bar->actions()) {
        action->setEnabled(enabled);
    }
}
