#include "support/scriptedprompts.h"
#include "transfer/queueview.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QTextDocument>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QueueRow row(const QString &status, const QString &local, const QString &size = {})
{
    return { status, local, size, u"<--"_s, u"/www/x"_s, u"files01"_s, {}, false };
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
            view.AddQueueRow(row(u"Download"_s, u"/a/%1"_s.arg(at)));
        }
    }
    void select(const QList<int> &rows)
    {
        view.clearSelection();
        for (const int at : rows) {
            view.selectionModel()->select(model.index(at, 0),
                                          QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
    }
    /// Opens the context menu over a row and triggers an entry.
    void chooseFromMenu(int at, const QString &text, const std::function<void()> &meanwhile = {})
    {
        QTimer::singleShot(0, [&] {
            if (meanwhile) {
                meanwhile();
            }
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
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(model.rowCount(), 0);
    QStringList headers;
    for (int at = 0; at < model.columnCount(); ++at) {
        headers.append(model.headerData(at, Qt::Horizontal).toString());
    }
    EXPECT_EQ(headers,
              (QStringList { u"Status"_s, u"Lokal"_s, u"Größe"_s, u"Richtung"_s,
                             u"Server Verzeichnis"_s, u"Server"_s }));
    model.append(row(u"Download"_s, u"/b"_s, u"9"_s));
    model.append(row(u"Upload"_s, u"/a"_s, u"10"_s));
    model.sort(1);
    model.removeRowsAt({ 0 });
    EXPECT_EQ(column(model, 1), QStringList { u"/b"_s });
}

TEST(QueueModel, ShowsWhatHappenedAsToolTip)
{
    QueueModel model;
    QueueRow failed = row(u"Download"_s, u"/a/x"_s);
    failed.failed = true;
    failed.detail = u"550 No such file."_s;
    model.append(failed);
    model.append(row(u"Download"_s, u"/a/y"_s));
    EXPECT_EQ(model.index(0, 0).data(Qt::ToolTipRole).toString(), failed.detail);
    EXPECT_EQ(model.index(0, 1).data(Qt::ToolTipRole).toString(), u"/a/x"_s);
    EXPECT_TRUE(model.index(0, 0).data(QueueModel::FailedRole).toBool());
    EXPECT_FALSE(model.index(1, 0).data(QueueModel::FailedRole).toBool());
    EXPECT_FALSE(model.index(0, 0).data(Qt::DecorationRole).isNull());
}

TEST(QueueModel, AServersTextIsNoMarkupInAToolTip)
{
    const QString text = u"550 <img src='file:///dev/zero'> & <b>fett</b>"_s;
    QueueModel model;
    QueueRow hostile = row(u"Download"_s, u"/a/<b>x</b>"_s);
    hostile.detail = text;
    model.append(hostile);
    for (const auto &[column, expected] :
         { std::pair { int(QueueModel::Status), text },
           std::pair { int(QueueModel::Local), u"/a/<b>x</b>"_s } }) {
        const QString tip = model.index(0, column).data(Qt::ToolTipRole).toString();
        ASSERT_TRUE(Qt::mightBeRichText(tip));
        QTextDocument shown;
        shown.setHtml(tip);
        EXPECT_EQ(shown.toPlainText(), expected);
        EXPECT_FALSE(tip.contains(u"<img"_s) || tip.contains(u"<b>"_s));
    }
}

TEST(QueueModel, KeepsFailedTransfersUntilTheyAreTriedAgain)
{
    QueueModel model;
    QueueRow failed = row(u"Download"_s, u"/a/x"_s);
    failed.failed = true;
    QueueRow other = failed;
    other.webSpace = u"b@files01:21"_s; // another user of the same host
    QueueRow removal = failed;
    removal.direction.clear(); // a refused deletion
    for (const QueueRow &each : { failed, other, row(u"Download"_s, u"/a/y"_s), removal }) {
        model.append(each);
    }
    EXPECT_EQ(model.failedTransfers().size(), 2);
    EXPECT_EQ(model.failedTransfers().size(), 2); // asking is not trying
    model.append(failed); // tried again in vain: one row to repeat, the new one
    EXPECT_FALSE(model.row(0).failed);
    EXPECT_EQ(model.failedTransfers().size(), 2);
    failed.failed = false;
    model.append(failed);
    ASSERT_EQ(model.failedTransfers().size(), 1);
    EXPECT_EQ(model.failedTransfers().first().webSpace, u"b@files01:21"_s);
    EXPECT_TRUE(model.row(3).failed);
    EXPECT_EQ(model.rowCount(), 6);
    EXPECT_TRUE(model.hasFailedTransfers());
    model.removeRowsAt({ 0, 1 });
    EXPECT_FALSE(model.hasFailedTransfers());
}

TEST(QueueModel, ARefusedNameIsNoFailedTransferToRepeat)
{
    QueueModel model;
    QueueRow refused = row(u"Download"_s, u"/a/../boese"_s);
    refused.failed = true;
    refused.repeatable = false;
    model.append(refused);
    EXPECT_FALSE(model.hasFailedTransfers());
    EXPECT_TRUE(model.index(0, 0).data(QueueModel::FailedRole).toBool());
}

TEST_F(QueueViewTest, AppendsAndScrollsToTheLastRow)
{
    view.resize(400, 120);
    view.show();
    fill(200);
    EXPECT_EQ(model.row(199).local, u"/a/199"_s);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return view.viewport()->rect().intersects(view.visualRect(model.index(199, 0))); }));
}

TEST_F(QueueViewTest, DeleteAsksAlsoWithNothingSelected)
{
    fill(2);
    view.clearSelection();
    prompts.expectConfirm(u"Delete queue items selected?"_s, true, u"Confirm Delete Queue Items"_s);
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(model.rowCount(), 2);
}

TEST_F(QueueViewTest, DeleteRemovesTheSelectedRowsAndNoOther)
{
    fill(7);
    select({ 1, 2, 5 });
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    prompts.expectConfirm(u"Delete queue items selected?"_s, true, u"Confirm Delete Queue Items"_s);
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(column(model, 1), (QStringList { u"/a/0"_s, u"/a/3"_s, u"/a/4"_s, u"/a/6"_s }));
    EXPECT_EQ(removed.count(), 2) << "neighbours go together";
}

TEST_F(QueueViewTest, CancelKeepsTheRows)
{
    fill(3);
    select({ 0, 1, 2 });
    prompts.expectConfirm(u"Delete queue items selected?"_s, false,
                          u"Confirm Delete Queue Items"_s);
    view.DeleteSelectedQueueRows();
    EXPECT_EQ(model.rowCount(), 3);
}

TEST_F(QueueViewTest, AHeaderClickSortsAscendingEveryTime)
{
    view.resize(800, 200);
    view.show();
    view.AddQueueRow(row(u"Upload"_s, u"/c"_s, u"9"_s));
    view.AddQueueRow(row(u"Download"_s, u"/A"_s, u"10"_s));
    view.AddQueueRow(row(u"Download"_s, u"/b"_s, u"10"_s));
    const QStringList bySize { u"10"_s, u"10"_s, u"9"_s };
    for (int clicks = 0; clicks < 2; ++clicks) {
        const QPoint at(view.header()->sectionViewportPosition(QueueModel::Size) + 5, 5);
        QTest::mouseClick(view.header()->viewport(), Qt::LeftButton, {}, at);
        EXPECT_EQ(column(model, QueueModel::Size), bySize);
    }
    EXPECT_EQ(column(model, QueueModel::Local), (QStringList { u"/A"_s, u"/b"_s, u"/c"_s }));
}

TEST_F(QueueViewTest, TheMenuCopiesARow)
{
    fill(2);
    view.show();
    chooseFromMenu(1, u"Zeile kopieren"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"Download\t/a/1\t\t<--\t/www/x\tfiles01"_s);
}

TEST_F(QueueViewTest, TheMenuMeansTheRowThatItWasOpenedFor)
{
    fill(2);
    view.show();
    chooseFromMenu(1, u"Zeile kopieren"_s, [this] { model.removeRowsAt({ 0 }); });
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"Download\t/a/1\t\t<--\t/www/x\tfiles01"_s);
    chooseFromMenu(0, u"Zeile kopieren"_s, [this] { model.removeRowsAt({ 0 }); });
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(QueueViewTest, TheMenuOpensTheLocalFolder)
{
    fill(1);
    view.show();
    QString opened;
    QObject::connect(&view, &QueueView::openFolderRequested,
                     [&opened](const QString &folder) { opened = folder; });
    chooseFromMenu(0, u"Lokalen Ordner öffnen"_s);
    EXPECT_EQ(opened, u"/a/"_s);
}

TEST_F(QueueViewTest, TheMenuRepeatsFailedTransfers)
{
    QueueRow failed = row(u"Download"_s, u"/a/x"_s);
    failed.failed = true;
    view.AddQueueRow(failed);
    fill(1);
    view.show();
    QList<QueueRow> again;
    QObject::connect(&view, &QueueView::retryRequested,
                     [&again](const QList<QueueRow> &rows) { again = rows; });
    chooseFromMenu(1, u"Fehlgeschlagene erneut übertragen"_s);
    ASSERT_EQ(again.size(), 1);
    EXPECT_EQ(again.first().local, u"/a/x"_s);
}

TEST_F(QueueViewTest, TheMenuRepeatsOnlyWhatCouldBeTriedJustNow)
{
    QueueRow failed = row(u"Download"_s, u"/a/x"_s);
    failed.failed = true;
    view.AddQueueRow(failed);
    view.show();
    QList<QueueRow> asked;
    view.setRetryCheck([&asked](const QList<QueueRow> &rows) {
        asked = rows;
        return false;
    });
    QTimer::singleShot(0, [] {
        QWidget *menu = QApplication::activePopupWidget();
        ASSERT_NE(menu, nullptr);
        for (const QAction *action : menu->actions()) {
            if (action->text() == u"Fehlgeschlagene erneut übertragen"_s) {
                EXPECT_FALSE(action->isEnabled());
            }
        }
        menu->close();
    });
    Q_EMIT view.customContextMenuRequested(QPoint());
    EXPECT_EQ(asked.size(), 1);
}
