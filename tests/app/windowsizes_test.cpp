#include "app/windowbench.h"
#include "transfer/queueview.h"

#include <QHeaderView>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QTreeView>

#include <cstdlib>

namespace {

class WindowSizes : public WindowBench {
protected:
    [[nodiscard]] QRect place(const char *name) const
    {
        const auto *widget = find<QWidget>(name);
        return { widget->mapTo(window.get(), QPoint()), widget->size() };
    }
};

} // namespace

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
        EXPECT_TRUE(window->rect().contains(place(name))) << name;
        EXPECT_GE(place(name).height(), 20) << name;
    }
    for (const char *name : { "img_ampel_rot", "op_transfer_2", "Progress", "lblFileSize",
                              "img_logo_links", "img_logo_rechts" }) {
        EXPECT_TRUE(window->rect().contains(place(name))) << name;
    }
    EXPECT_GE(find<QWidget>("lvwLocal")->height(), 60);
}

TEST_F(WindowSizes, PanesQueueAndLogFillABiggerWindow)
{
    constexpr std::array grown { "lvwLocal", "lvwRemote", "lvwStatus", "txtLog" };
    window->resize(667, 467);
    QHash<QString, QRect> small;
    for (const char *name : grown) {
        small[QString::fromLatin1(name)] = place(name);
    }
    window->resize(1267, 967);
    for (const char *name : grown) {
        const QSize gain = place(name).size() - small[QString::fromLatin1(name)].size();
        EXPECT_GE(gain.width(), 200) << name;
        EXPECT_GE(gain.height(), 100) << name;
    }
    EXPECT_NEAR(place("lvwLocal").left(), window->width() - place("lvwRemote").right(), 2)
        << "the margins are one";
    EXPECT_NEAR(place("txtLog").right(), place("lvwRemote").right(), 2);
}

TEST_F(WindowSizes, QueueAndLogBeginAtOneHeight)
{
    const auto top = [this](const char *name) {
        return find<QWidget>(name)->mapTo(window.get(), QPoint()).y();
    };
    EXPECT_EQ(top("lvwStatus"), top("txtLog"));
}

TEST_F(WindowSizes, BarLabelsAndButtonOfATransferShareTheirMiddle)
{
    window->ShowTransferItem(QStringLiteral("Datei: a.txt"), QStringLiteral("2048"));
    const auto middle = [this](const char *name) {
        const auto *part = find<QWidget>(name);
        return 2 * part->y() + part->height();
    };
    for (const char *name : { "lblFileName", "lblRate", "lblFileSize", "cmdAbort" }) {
        EXPECT_LE(std::abs(middle(name) - middle("Progress")), 1) << name; // of half pixels
    }
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

TEST_F(WindowSizes, TheQueuesFirstColumnsShowTheirFixedWordsWhole)
{
    auto *queue = find<QTreeView>("lvwStatus");
    for (const char *status : { "Löschen verweigert", "Upload verweigert", "Dateirechte" }) {
        QueueRow row;
        row.status = QString::fromUtf8(status);
        row.size = QStringLiteral("12345678901");
        window->AddQueueRow(row);
    }
    QFont big = queue->font();
    for (const int size : { big.pointSize(), 2 * big.pointSize() }) {
        big.setPointSize(size);
        queue->setFont(big);
        find<QueueView>("lvwStatus")->sizeColumns();
        for (const int column : { QueueModel::Status, QueueModel::Size, QueueModel::Direction }) {
            EXPECT_GE(queue->columnWidth(column),
                      static_cast<QAbstractItemView *>(queue)->sizeHintForColumn(column))
                << column << " at " << size;
            EXPECT_GE(queue->columnWidth(column), queue->header()->sectionSizeHint(column));
        }
    }
}

TEST_F(WindowSizes, TheQueuesColumnsAreRemembered)
{
    const auto width = [this] { return find<QTreeView>("lvwStatus")->columnWidth(0); };
    EXPECT_GT(width(), 77);
    find<QTreeView>("lvwStatus")->setColumnWidth(0, 77);
    open();
    EXPECT_EQ(width(), 77);
}
