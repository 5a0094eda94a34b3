#include "app/windowbench.h"

#include <QHeaderView>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QTreeView>

using WindowSizes = WindowBench;

TEST_F(WindowSizes, TheQueueStartsEmptyAndIsNeverSaved)
{
    const auto rows = [this] { return find<QTreeView>("lvwStatus")->model()->rowCount(); };
    EXPECT_EQ(rows(), 0);
    window->AddQueueRow(QueueRow());
    EXPECT_EQ(rows(), 1);
    open();
    EXPECT_EQ(rows(), 0);
}

TEST_F(WindowSizes, TheLogIsNeitherKeptNorSavedAtTheEnd)
{
    const auto log = [this] { return find<QPlainTextEdit>("txtLog")->toPlainText(); };
    globals.settings.LogFolder = home.filePath(QStringLiteral("temp"));
    window->AppendLog(QStringLiteral("Zeile"));
    EXPECT_EQ(log(), QStringLiteral("Zeile"));
    open();
    EXPECT_EQ(log(), QString());
    EXPECT_TRUE(QDir(globals.settings.LogFolder).entryList(QDir::Files).isEmpty());
}

TEST_F(WindowSizes, NeverGetsSmallerThanItsMinimum)
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

TEST_F(WindowSizes, RemembersItsSizeAndSplitters)
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

TEST_F(WindowSizes, TheNamesFillTheListWhateverItsWidth)
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
