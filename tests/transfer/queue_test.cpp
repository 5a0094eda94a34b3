#include "support/scriptedprompts.h"
#include "transfer/queueview.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

QueueRow row(const QString &status, const QString &local, const QString &size = {})
{
    return { status, local, size, QStringLiteral("<--"), QStringLiteral("/www/x"),
             QStringLiteral("files01"), {}, false };
}

QStringList column(const QueueModel &model, int number)
{
    QStringList result;
    for (int at = 0; at < model.rowCount(); ++at) {
        result.append(model.index(at, number).data().toString());
    }
    return result;
}

class QueueViewTest : public ::testing::Test {
protected:
    void fill(int rows)
    {
        for (int at = 0; at < rows; ++at) {
            view.AddQueueRow(row(QStringLiteral("Download"), QStringLiteral("/a/%1").arg(at)));
        }
    }
    void select(const QList<int> &rows)
    {
        view.clearSelection();
        for (const int at : rows) {
            view.selectionModel()->select(model.index(at, 0), QItemSelectionModel::Select
                                              | QItemSelectionModel::Rows);
        }
    }
    /// Opens the context menu over a row and triggers an entry.
    void chooseFromMenu(int at, const QString &text)
    {
        QTimer::singleShot(0, [&] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            for (QAction *action : menu->actions()) {
                if (action->text() == text && action->isEnabled()) {
                    menu->setActiveAction(action);
                    QTest::keyClick(menu, Qt::Key_Return);
                    return;
                }
            }
            ADD_FAILURE() << "no entry " << text.toStdString();
            menu->close();
        });
        Q_EMIT view.customContextMenuRequested(view.visualRect(model.index(at, 0)).center());
    }

    QueueModel model;
    ScriptedPrompts prompts;
    QueueView view { model, prompts };
};

} // namespace

TEST(QueueModel, IsAnOrderlyModelWithSixColumns)
{
    QueueModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(model.rowCount(), 0);
    QStringList headers;
    for (int at = 0; at < model.columnCount(); ++at) {
        headers.append(model.headerData(at, Qt::Horizontal).toString());
    }
    EXPECT_EQ(headers, (QStringList { QStringLiteral("Status"), QStringLiteral("Lokal"),
                                      QStringLiteral("Größe"), QStringLiteral("Richtung"),
                                      QStringLiteral("Server Verzeichnis"), QStringLiteral("Server") }));
    model.append(row(QStringLiteral("Download"), QStringLiteral("/b"), QStringLiteral("9")));
    model.append(row(QStringLiteral("Upload"), QStringLiteral("/a"), QStringLiteral("10")));
    model.sort(1);
    model.removeRowsAt({ 0 });
    EXPECT_EQ(column(model, 1), QStringList { QStringLiteral("/b") });
}

TEST(QueueModel, ShowsWhatHappenedAsToolTip)
{
    QueueModel model;
    QueueRow failed = row(QStringLiteral("Download"), QStringLiteral("/a/x"));
    failed.failed = true;
    failed.detail = QStringLiteral("550 No such file.");
    model.append(failed);
    model.append(row(QStringLiteral("Download"), QStringLiteral("/a/y")));
    EXPECT_EQ(model.index(0, 0).data(Qt::ToolTipRole).toString(), failed.detail);
    EXPECT_EQ(model.index(0, 1).data(Qt::ToolTipRole).toString(), QStringLiteral("/a/x"));
    EXPECT_TRUE(model.index(0, 0).data(QueueModel::FailedRole).toBool());
    EXPECT_FALSE(model.index(1, 0).data(QueueModel::FailedRole).toBool());
    EXPECT_FALSE(model.index(0, 0).data(Qt::DecorationRole).isNull());
}

TEST(QueueModel, GivesFailedTransfersOutOnce)
{
    QueueModel model;
    QueueRow failed = row(QStringLiteral("Download"), QStringLiteral("/a/x"));
    failed.failed = true;
    model.append(failed);
    model.append(row(QStringLiteral("Download"), QStringLiteral("/a/y")));
    failed.direction.clear(); // a refused deletion
    failed.status = QStringLiteral("Löschen verweigert");
    model.append(failed);
    EXPECT_TRUE(model.hasFailedTransfers());
    EXPECT_EQ(model.takeFailedTransfers().size(), 1);
    EXPECT_FALSE(model.hasFailedTransfers());
    EXPECT_EQ(model.rowCount(), 3);
}

TEST_F(QueueViewTest, AppendsAndScrollsToTheLastRow)
{
    view.resize(400, 120);
    view.show();
    fill(200);
    EXPECT_EQ(model.row(199).local, QStringLiteral("/a/199"));
    EXPECT_TRUE(view.viewport()->rect().intersects(view.visualRect(model.index(199, 0))));
}

TEST_F(QueueViewTest, DeleteAsksAlsoWithNothingSelected)
{
    fill(2);
    view.clearSelection();
    prompts.expectConfirm(QStringLiteral("Delete queue items selected?"), true,
                          QStringLiteral("Confirm Delete Queue Items"));
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(model.rowCount(), 2);
}

TEST_F(QueueViewTest, DeleteRemovesTheSelectedRowsAndNoOther)
{
    fill(7);
    select({ 1, 2, 5 });
    prompts.expectConfirm(QStringLiteral("Delete queue items selected?"), true,
                          QStringLiteral("Confirm Delete Queue Items"));
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(column(model, 1), (QStringList { QStringLiteral("/a/0"), QStringLiteral("/a/3"),
                                               QStringLiteral("/a/4"), QStringLiteral("/a/6") }));
}

TEST_F(QueueViewTest, CancelKeepsTheRows)
{
    fill(3);
    select({ 0, 1, 2 });
    prompts.expectConfirm(QStringLiteral("Delete queue items selected?"), false,
                          QStringLiteral("Confirm Delete Queue Items"));
    view.DeleteSelectedQueueRows();
    EXPECT_EQ(model.rowCount(), 3);
}

TEST_F(QueueViewTest, AHeaderClickSortsAscendingEveryTime)
{
    view.resize(800, 200);
    view.show();
    view.AddQueueRow(row(QStringLiteral("Upload"), QStringLiteral("/c"), QStringLiteral("9")));
    view.AddQueueRow(row(QStringLiteral("Download"), QStringLiteral("/A"), QStringLiteral("10")));
    view.AddQueueRow(row(QStringLiteral("Download"), QStringLiteral("/b"), QStringLiteral("10")));
    const QStringList bySize { QStringLiteral("10"), QStringLiteral("10"), QStringLiteral("9") };
    for (int clicks = 0; clicks < 2; ++clicks) {
        const QPoint at(view.header()->sectionViewportPosition(QueueModel::Size) + 5, 5);
        QTest::mouseClick(view.header()->viewport(), Qt::LeftButton, {}, at);
        EXPECT_EQ(column(model, QueueModel::Size), bySize);
    }
    EXPECT_EQ(column(model, QueueModel::Local),
              (QStringList { QStringLiteral("/A"), QStringLiteral("/b"), QStringLiteral("/c") }));
}

TEST_F(QueueViewTest, TheMenuCopiesARow)
{
    fill(2);
    view.show();
    chooseFromMenu(1, QStringLiteral("Zeile kopieren"));
    EXPECT_EQ(QGuiApplication::clipboard()->text(),
              QStringLiteral("Download\t/a/1\t\t<--\t/www/x\tfiles01"));
}

TEST_F(QueueViewTest, TheMenuOpensTheLocalFolder)
{
    fill(1);
    view.show();
    QString opened;
    QObject::connect(&view, &QueueView::openFolderRequested,
                     [&opened](const QString &folder) { opened = folder; });
    chooseFromMenu(0, QStringLiteral("Lokalen Ordner öffnen"));
    EXPECT_EQ(opened, QStringLiteral("/a/"));
}

TEST_F(QueueViewTest, TheMenuRepeatsFailedTransfers)
{
    QueueRow failed = row(QStringLiteral("Download"), QStringLiteral("/a/x"));
    failed.failed = true;
    view.AddQueueRow(failed);
    fill(1);
    view.show();
    QList<QueueRow> again;
    QObject::connect(&view, &QueueView::retryRequested,
                     [&again](const QList<QueueRow> &rows) { again = rows; });
    chooseFromMenu(1, QStringLiteral("Fehlgeschlagene erneut übertragen"));
    ASSERT_EQ(again.size(), 1);
    EXPECT_EQ(again.first().local, QStringLiteral("/a/x"));
}
