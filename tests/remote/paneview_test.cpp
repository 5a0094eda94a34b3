#include "remote/icons.h"
#include "remote/itemkind.h"
#include "remote/panemodel.h"
#include "remote/paneview.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QMimeData>
#include <QRubberBand>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

class PaneViewTest : public testing::Test {
protected:
    PaneViewTest()
        : m_model({ QStringLiteral("Name"), QStringLiteral("Size"), QStringLiteral("Date") })
    {
        QList<PaneRow> rows { upRow() };
        for (const char *name : { "alpha", "beta", "gamma" }) {
            PaneRow row;
            row.name = QString::fromUtf8(name);
            row.kind = ItemKind::File;
            row.size = QStringLiteral("1");
            rows.append(row);
        }
        m_model.setRows(rows);
        m_view.setModel(&m_model);
        m_view.resize(500, 300);
        m_view.header()->resizeSection(0, 200);
        m_view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_view));
        m_view.activateWindow();
        m_view.setFocus();
        EXPECT_TRUE(QTest::qWaitFor([this] { return m_view.hasFocus(); }));
    }

    QPoint at(int row, int column = 0) const
    {
        return m_view.visualRect(m_model.index(row, column)).center();
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&m_view, key, modifiers);
    }
    void move(const QPoint &to)
    {
        QMouseEvent event(QEvent::MouseMove, to, m_view.viewport()->mapToGlobal(to), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_view.viewport(), &event);
    }
    QLineEdit *editor() const { return m_view.viewport()->findChild<QLineEdit *>(); }

    PaneModel m_model;
    PaneView m_view;
};

} // namespace

TEST_F(PaneViewTest, EnterAndDoubleClickOpenTheRow)
{
    QSignalSpy opened(&m_view, &PaneView::rowOpened);
    m_view.selectRowNumbers({ 2 });
    m_view.setCurrentIndex(m_model.index(2, 0));
    key(Qt::Key_Return);
    key(Qt::Key_Enter, Qt::KeypadModifier);
    ASSERT_EQ(opened.count(), 2);
    EXPECT_EQ(opened.at(0).at(0).toInt(), 2);
    EXPECT_FALSE(opened.at(1).at(1).toBool());
    QTest::mouseDClick(m_view.viewport(), Qt::LeftButton, {}, at(3));
    ASSERT_EQ(opened.count(), 3);
    EXPECT_EQ(opened.at(2).at(0).toInt(), 3);
    EXPECT_TRUE(opened.at(2).at(1).toBool());
    EXPECT_EQ(m_view.selectedRowNumbers(), QList<int> { 3 });
}

TEST_F(PaneViewTest, ADoubleClickOnOneOfSeveralSelectedRowsKeepsThemAll)
{
    QList<int> handed;
    QObject::connect(&m_view, &PaneView::rowOpened, [&] { handed = m_view.selectedRowNumbers(); });
    m_view.selectRowNumbers({ 1, 3 });
    QMouseEvent event(QEvent::MouseButtonDblClick, at(3), m_view.viewport()->mapToGlobal(at(3)),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_view.viewport(), &event);
    EXPECT_EQ(handed, (QList<int> { 1, 3 }));
    EXPECT_EQ(m_view.currentIndex().row(), 3);
}

TEST_F(PaneViewTest, EnterOpensOnlyARowThatIsSelected)
{
    QSignalSpy opened(&m_view, &PaneView::rowOpened);
    m_view.selectionModel()->setCurrentIndex(m_model.index(2, 0), QItemSelectionModel::NoUpdate);
    key(Qt::Key_Return);
    m_view.clearSelection();
    m_view.selectionModel()->clearCurrentIndex();
    key(Qt::Key_Return);
    EXPECT_EQ(opened.count(), 0);
}

TEST_F(PaneViewTest, KeysBecomeSignals)
{
    QSignalSpy deleted(&m_view, &PaneView::deletePressed);
    QSignalSpy up(&m_view, &PaneView::upPressed);
    QSignalSpy other(&m_view, &PaneView::otherPaneWanted);
    QSignalSpy box(&m_view, &PaneView::folderBoxWanted);
    key(Qt::Key_Delete);
    key(Qt::Key_Backspace);
    key(Qt::Key_Tab);
    key(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(deleted.count(), 1);
    EXPECT_EQ(up.count(), 1);
    EXPECT_EQ(other.count(), 1);
    EXPECT_EQ(box.count(), 1);
    key(Qt::Key_Delete, Qt::ShiftModifier);
    EXPECT_EQ(deleted.count(), 1) << "only the bare key";
}

TEST_F(PaneViewTest, WhileACaptionIsEditedKeysBelongToIt)
{
    QSignalSpy opened(&m_view, &PaneView::rowOpened);
    QSignalSpy deleted(&m_view, &PaneView::deletePressed);
    QSignalSpy edited(&m_model, &PaneModel::captionEdited);
    m_view.editCaption(2);
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(editor()->text(), QStringLiteral("beta"));
    EXPECT_EQ(editor()->selectedText(), QStringLiteral("beta"));
    QTest::keyClick(editor(), Qt::Key_Delete);
    QTest::keyClicks(editor(), QStringLiteral("neu"));
    QTest::keyClick(editor(), Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return edited.count() == 1; }));
    EXPECT_EQ(edited.at(0).at(1).toString(), QStringLiteral("neu"));
    EXPECT_EQ(opened.count(), 0);
    EXPECT_EQ(deleted.count(), 0);
}

TEST_F(PaneViewTest, TheRowWhoseCaptionIsEditedIsTheOneSelected)
{
    m_view.selectRowNumbers({ 1, 3 });
    m_view.editCaption(2);
    EXPECT_EQ(m_view.selectedRowNumbers(), QList<int> { 2 });
    EXPECT_EQ(m_view.currentIndex().row(), 2);
}

TEST_F(PaneViewTest, AnAbandonedEditSendsNothing)
{
    QSignalSpy edited(&m_model, &PaneModel::captionEdited);
    m_view.editCaption(2);
    ASSERT_NE(editor(), nullptr);
    QTest::keyClicks(editor(), QStringLiteral("neu"));
    QTest::keyClick(editor(), Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_view.isEditing(); }));
    EXPECT_EQ(edited.count(), 0);
    m_view.editCaption(0);
    EXPECT_FALSE(m_view.isEditing()) << "the up row has no caption";
}

TEST_F(PaneViewTest, SelectionFollowsClicksWithShiftAndCtrl)
{
    QTest::mouseClick(m_view.viewport(), Qt::LeftButton, {}, at(1));
    QTest::mouseClick(m_view.viewport(), Qt::LeftButton, Qt::ShiftModifier, at(3));
    EXPECT_EQ(m_view.selectedRowNumbers(), (QList<int> { 1, 2, 3 }));
    QTest::mouseClick(m_view.viewport(), Qt::LeftButton, Qt::ControlModifier, at(2));
    EXPECT_EQ(m_view.selectedRowNumbers(), (QList<int> { 1, 3 }));
    m_view.selectRowNumbers({ 0, 1, 3 });
    EXPECT_EQ(m_view.selectedRowNumbers(), (QList<int> { 0, 1, 3 }));
}

TEST_F(PaneViewTest, ARubberBandSelectsTheRowsThatItTouches)
{
    const QPoint empty(m_view.viewport()->width() - 5, m_view.viewport()->height() - 5);
    QTest::mousePress(m_view.viewport(), Qt::LeftButton, {}, empty);
    move(at(2));
    EXPECT_EQ(m_view.selectedRowNumbers(), (QList<int> { 2, 3 }));
    move(at(3));
    EXPECT_EQ(m_view.selectedRowNumbers(), (QList<int> { 3 }));
    QTest::mouseRelease(m_view.viewport(), Qt::LeftButton, {}, at(3));
    EXPECT_EQ(m_view.selectedRowNumbers(), (QList<int> { 3 }));
}

TEST_F(PaneViewTest, ARubberBandWhoseReleaseWentElsewhereIsEnded)
{
    const QPoint empty(m_view.viewport()->width() - 5, m_view.viewport()->height() - 5);
    const auto bands = [this] {
        const auto all = m_view.findChildren<QRubberBand *>();
        return std::count_if(all.begin(), all.end(),
                             [](const QRubberBand *band) { return band->isVisible(); });
    };
    QTest::mousePress(m_view.viewport(), Qt::LeftButton, {}, empty);
    move(at(2));
    EXPECT_EQ(bands(), 1);
    m_view.clearFocus(); // as when a box comes up
    EXPECT_EQ(bands(), 0);
    QTest::mousePress(m_view.viewport(), Qt::LeftButton, {}, empty);
    move(at(2));
    m_view.setDragSource([] { return nullptr; });
    QTest::mousePress(m_view.viewport(), Qt::LeftButton, {}, at(1));
    move(at(3));
    EXPECT_EQ(bands(), 0) << "this press drags a row";
}

TEST_F(PaneViewTest, WithCtrlARubberBandAddsToTheSelection)
{
    m_view.selectRowNumbers({ 1 });
    const QPoint empty(m_view.viewport()->width() - 5, m_view.viewport()->height() - 5);
    QTest::mousePress(m_view.viewport(), Qt::LeftButton, Qt::ControlModifier, empty);
    move(at(3));
    QTest::mouseRelease(m_view.viewport(), Qt::LeftButton, Qt::ControlModifier, at(3));
    EXPECT_EQ(m_view.selectedRowNumbers(), (QList<int> { 1, 3 }));
}

TEST_F(PaneViewTest, OnlyWhatTheFilterTakesCanBeDropped)
{
    m_view.setDropFilter([](const QMimeData &data) { return data.hasText(); });
    QMimeData good;
    good.setText(QStringLiteral("x"));
    const QMimeData bad;
    const auto enter = [this](const QMimeData &data) {
        QDragEnterEvent event(at(1), Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(m_view.viewport(), &event);
        return event.isAccepted();
    };
    EXPECT_TRUE(enter(good));
    EXPECT_FALSE(enter(bad));
}

TEST_F(PaneViewTest, TheRowUnderADragIsHighlightedAndTakesTheDrop)
{
    int asked = 0;
    m_view.setDropFilter([&asked](const QMimeData &data) {
        ++asked;
        return data.hasText();
    });
    QMimeData data;
    data.setText(QStringLiteral("x"));
    QList<int> rows;
    QObject::connect(&m_view, &PaneView::dropped, &m_view,
                     [&rows](const QMimeData &, int row) { rows.append(row); });
    QDragEnterEvent enter(at(2), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_view.viewport(), &enter);
    QDragMoveEvent over(at(2), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_view.viewport(), &over);
    EXPECT_EQ(m_view.dropRow(), 2);
    QDropEvent drop(at(2), Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_view.viewport(), &drop);
    EXPECT_EQ(rows, QList<int> { 2 });
    EXPECT_EQ(m_view.dropRow(), -1);
    EXPECT_EQ(asked, 1) << "what is dragged may be thousands of files";

    QCoreApplication::sendEvent(m_view.viewport(), &over);
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(m_view.viewport(), &leave);
    EXPECT_EQ(m_view.dropRow(), -1);
}

TEST_F(PaneViewTest, ADragShowsTheFilePicture)
{
    m_view.setDragSource([] { return new QMimeData; });
    QImage shown;
    m_view.setDragRunner([&shown](QDrag &drag) {
        shown = drag.pixmap().toImage();
        return Qt::IgnoreAction;
    });
    QTest::mousePress(m_view.viewport(), Qt::LeftButton, {}, at(1));
    move(at(1) + QPoint(0, 30));
    move(at(1) + QPoint(0, 60));
    QTest::mouseRelease(m_view.viewport(), Qt::LeftButton, {}, at(1));
    ASSERT_FALSE(shown.isNull());
    EXPECT_EQ(
        shown,
        Icons::icon(ItemKind::File).pixmap(QSize(32, 32), m_view.devicePixelRatioF()).toImage());
}

TEST_F(PaneViewTest, NothingIsDraggedWithoutASource)
{
    QSignalSpy ended(&m_view, &PaneView::dragEnded);
    bool asked = false;
    m_view.setDragSource([&asked] {
        asked = true;
        return nullptr;
    });
    QTest::mousePress(m_view.viewport(), Qt::LeftButton, {}, at(1));
    move(at(1) + QPoint(0, 30));
    move(at(1) + QPoint(0, 60));
    QTest::mouseRelease(m_view.viewport(), Qt::LeftButton, {}, at(1));
    EXPECT_TRUE(asked);
    EXPECT_EQ(ended.count(), 0);
}

TEST_F(PaneViewTest, AHintIsTextForScreenReadersToo)
{
    m_view.setHint(QStringLiteral("Dieser Ordner ist leer."));
    EXPECT_EQ(m_view.accessibleDescription(), QStringLiteral("Dieser Ordner ist leer."));
}
