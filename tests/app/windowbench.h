#pragma once

#include "app/frm_tarvelo.h"
#include "common/globals.h"
#include "common/settingsstore.h"
#include "common/workingfolders.h"
#include "ftp/ftpcontrol.h"
#include "local/localpane.h"
#include "remote/paneview.h"
#include "remote/remotepane.h"
#include "support/scriptedprompts.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>
#include <array>
#include <gtest/gtest.h>
#include <memory>

/// The real main window with scripted boxes, a settings file of its own and an empty home folder.
class WindowBench : public testing::Test {
protected:
    WindowBench()
        : store(home.filePath(QStringLiteral("settings.ini")))
    {
        qputenv("HOME", home.path().toLocal8Bit());
        globals.folders.desktop = home.path();
        globals.folders.profiles = home.filePath(QStringLiteral("mo_def"));
        globals.folders.temporary = home.filePath(QStringLiteral("temp/"));
        QDir(home.path()).mkpath(QStringLiteral("temp"));
        open();
    }

    void open(const QString &commandLine = {})
    {
        window.reset();
        window = std::make_unique<frm_tarvelo>(
            WindowServices { globals, ftp, prompts, store, addresses, commandLine });
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([this] { return !window->localPane().isReading(); }));
    }

    template <class Widget> Widget *find(const char *name) const
    {
        auto *found = window->findChild<Widget *>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QAction *item(const char *name) const { return find<QAction>(name); }
    /// A button of one of the tool bars.
    QAction *button(const char *bar, const char *key) const
    {
        auto *found = find<QToolBar>(bar)->findChild<QAction *>(QString::fromLatin1(key));
        EXPECT_NE(found, nullptr) << key;
        return found;
    }
    bool enabled(const char *name) const { return item(name)->isEnabled(); }
    /// Makes a file in the local pane's folder.
    void file(const char *name, const QByteArray &content = "x")
    {
        QFile made(home.filePath(QString::fromUtf8(name)));
        ASSERT_TRUE(made.open(QIODevice::WriteOnly));
        made.write(content);
    }
    void refreshLocal()
    {
        window->localPane().refresh();
        ASSERT_TRUE(QTest::qWaitFor([this] { return !window->localPane().isReading(); }));
    }
    static int rowOf(FilePane &pane, const char *name)
    {
        return pane.model().findRow(QString::fromUtf8(name));
    }
    static void select(FilePane &pane, const std::vector<const char *> &names)
    {
        QList<int> rows;
        for (const char *name : names) {
            rows.append(rowOf(pane, name));
            ASSERT_GE(rows.last(), 0) << name;
        }
        std::sort(rows.begin(), rows.end());
        pane.view().selectRowNumbers(rows);
        pane.view().selectionModel()->setCurrentIndex(pane.model().index(rows.last(), 0),
                                                      QItemSelectionModel::NoUpdate);
    }
    /// Drags a row with the mouse; the view's drag runner does the rest.
    static void dragRow(FilePane &pane, const char *name)
    {
        QWidget *viewport = pane.view().viewport();
        const QPoint from
            = pane.view().visualRect(pane.model().index(rowOf(pane, name), 0)).center();
        QTest::mousePress(viewport, Qt::LeftButton, {}, from);
        for (const int distance : { 20, 40 }) {
            const QPoint to = from + QPoint(0, distance);
            QMouseEvent move(QEvent::MouseMove, to, viewport->mapToGlobal(to), Qt::LeftButton,
                             Qt::LeftButton, {});
            QCoreApplication::sendEvent(viewport, &move);
        }
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, from);
    }
    void focus(QWidget &widget)
    {
        widget.setFocus();
        ASSERT_TRUE(QTest::qWaitFor([&widget] { return widget.hasFocus(); }));
    }

    static constexpr std::array bars { "tbToolBar", "tbToolBar_rem" };
    /// Buttons of both bars, in their order.
    static constexpr std::array keys { "NewFolder", "ViewFile",   "DeleteFiles", "Refresh",
                                       "SelectAll", "RenameFile", "Cdup" };

    QTemporaryDir home;
    Globals globals;
    SettingsStore store;
    /// Others than the built-in ones.
    const Addresses addresses {
        QStringLiteral("https://a.example/"),     QStringLiteral("https://b.example/"),
        QStringLiteral("https://c.example/"),     QStringLiteral("https://d.example/"),
        QStringLiteral("hilfe@morlanda.example"), QStringLiteral("buero@morlanda.example")
    };
    ScriptedPrompts prompts;
    FtpControl ftp;
    std::unique_ptr<frm_tarvelo> window;
};
