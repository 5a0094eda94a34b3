#pragma once

#include <QSplitter>

class QMainWindow;
class QWidget;

/// The pieces of the main window, put together.
struct MainLayoutParts {
    QWidget *localPane = nullptr;
    QWidget *transferColumn = nullptr;
    QWidget *remotePane = nullptr;
    QWidget *progress = nullptr; ///< one row between panes and lower part
    QWidget *queue = nullptr;
    QWidget *log = nullptr;
};

/// Two panes above, progress, queue and log below, with splitters between them.
struct MainLayout {
    QSplitter *panes = nullptr; ///< local pane, column, remote pane
    QSplitter *lower = nullptr; ///< queue, log
    QSplitter *parts = nullptr; ///< upper and lower part

    MainLayout(QMainWindow &window, const MainLayoutParts &parts);
};
