#include "remote/remotepanebench.h"

#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

TEST_F(RemotePaneTest, ColumnsSortInTheirFixedOrder)
{
    Q_EMIT m_pane.view().columnClicked(ColumnSize);
    EXPECT_EQ(names(), "<up> cgi-bin leer index.html b.txt kaputt verweis");
    Q_EMIT m_pane.view().columnClicked(ColumnSize);
    EXPECT_EQ(names(), "<up> cgi-bin leer index.html b.txt kaputt verweis") << "no turning round";
    Q_EMIT m_pane.view().columnClicked(ColumnName);
    EXPECT_EQ(names(), "<up> cgi-bin leer b.txt index.html kaputt verweis");
    EXPECT_EQ(columnOrder(ColumnName), Qt::AscendingOrder);
    EXPECT_EQ(columnOrder(ColumnSize), Qt::DescendingOrder);
    EXPECT_EQ(columnOrder(ColumnDate), Qt::DescendingOrder);
    EXPECT_EQ(columnOrder(ColumnPermission), Qt::AscendingOrder);
}

TEST_F(RemotePaneTest, LinksStandAmongTheFiles)
{
    m_ftp.addLink(QStringLiteral("/www/c-link"), QStringLiteral("/www/leer"));
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    const char *byName = "<up> cgi-bin leer b.txt c-link index.html kaputt verweis";
    EXPECT_EQ(names(), byName);
    Q_EMIT m_pane.view().columnClicked(ColumnSize);
    Q_EMIT m_pane.view().columnClicked(ColumnName);
    EXPECT_EQ(names(), byName);
    Q_EMIT m_pane.view().columnClicked(ColumnPermission);
    EXPECT_EQ(names(), byName) << "all have the same";
}

TEST_F(RemotePaneTest, SortingByNameNeedsAnIdleSession)
{
    const char *bySize = "<up> cgi-bin leer index.html b.txt kaputt verweis";
    Q_EMIT m_pane.view().columnClicked(ColumnSize);
    for (const bool busy : { true, false }) {
        m_ftp.busy = busy;
        m_ftp.connectionState = busy ? FtpOperations::Connected : FtpOperations::Closed;
        m_pane.SortRemoteByName();
        EXPECT_EQ(names(), bySize);
    }
    m_ftp.connectionState = FtpOperations::Connected;
    m_pane.SortRemoteByName();
    EXPECT_EQ(names(), "<up> cgi-bin leer b.txt index.html kaputt verweis");
}

TEST_F(RemotePaneTest, TheArrowStaysWhenAHeaderIsClickedTwice)
{
    m_pane.resize(600, 400);
    m_pane.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_pane));
    QList<PaneRow> rows { upRow() };
    for (const char *name : { "a", "b", "c" }) {
        PaneRow made;
        made.kind = ItemKind::File;
        made.name = made.tag = QString::fromLatin1(name);
        made.size = made.name == u"b" ? QStringLiteral("9") : QStringLiteral("10");
        made.date = QStringLiteral("2026-01-0%1 00:00").arg(made.name == u"c" ? 2 : 1);
        made.permissions = made.name == u"c" ? QStringLiteral("600") : QStringLiteral("644");
        rows.append(made);
    }
    m_pane.model().setRows(rows);
    QHeaderView *header = m_pane.view().header();
    const std::pair<int, const char *> clicks[] {
        { ColumnSize, "<up> b a c" },      { ColumnSize, "<up> b a c" },
        { ColumnDate, "<up> c b a" },      { ColumnDate, "<up> c b a" },
        { ColumnName, "<up> a b c" },      { ColumnPermission, "<up> c a b" },
        { ColumnPermission, "<up> c a b" }
    };
    for (const auto &[column, expected] : clicks) {
        const int x = header->sectionViewportPosition(column) + header->sectionSize(column) / 2;
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, { x, header->height() / 2 });
        EXPECT_EQ(header->sortIndicatorSection(), column);
        EXPECT_EQ(header->sortIndicatorOrder(), columnOrder(column)) << column;
        EXPECT_EQ(names(), expected) << column;
    }
}

TEST_F(RemotePaneTest, AnEmptyFolderIsNotSorted)
{
    m_pane.DoRemoteRefresh(QStringLiteral("/www/leer"));
    QSignalSpy resets(&m_pane.model(), &QAbstractItemModel::modelReset);
    QSignalSpy moves(&m_pane.model(), &QAbstractItemModel::layoutChanged);
    Q_EMIT m_pane.view().columnClicked(ColumnSize);
    EXPECT_EQ(resets.count() + moves.count(), 0);
    EXPECT_EQ(m_pane.view().header()->sortIndicatorSection(), ColumnName);
}

TEST_F(RemotePaneTest, SortingKeepsTheSelection)
{
    m_pane.view().selectRowNumbers({ row("b.txt") });
    Q_EMIT m_pane.view().columnClicked(ColumnSize);
    EXPECT_EQ(m_pane.selectedRows(), QList<int> { row("b.txt") });
}

TEST_F(RemotePaneTest, RemoteItemFindsTheRowOfAMarkedEntry)
{
    m_globals.marked.MarkedItems.append({ QStringLiteral("leer"), {}, {}, {}, 0 });
    m_globals.marked.MarkedItems.append({ QStringLiteral("weg"), {}, {}, {}, 0 });
    m_globals.marked.MarkedCount = 3;
    EXPECT_EQ(m_pane.RemoteItem(1), row("leer"));
    EXPECT_EQ(m_pane.RemoteItem(2), -1);
    EXPECT_EQ(m_pane.RemoteItem(0), -1);
    EXPECT_EQ(m_pane.RemoteItem(3), -1);
}

TEST_F(RemotePaneTest, RowsThatGoWhileTheyAreSortedDoNotComeBack)
{
    QList<PaneRow> rows { upRow() };
    for (int i = 0; i < 20000; ++i) {
        PaneRow row;
        row.kind = ItemKind::File;
        row.name = row.tag = QString::number(i);
        rows.append(row);
    }
    m_pane.model().setRows(rows);
    QTimer::singleShot(0, &m_pane, [this] { m_pane.model().clear(); }); // the line is lost
    Q_EMIT m_pane.view().columnClicked(ColumnSize);
    EXPECT_EQ(m_pane.model().rowCount(), 0);
}

TEST_F(RemotePaneTest, TheDecidingRowIsOneWithText)
{
    EXPECT_EQ(m_pane.decidingRow(), -1);
    m_pane.view().selectRowNumbers({ 0 });
    EXPECT_EQ(m_pane.decidingRow(), 0);
    m_pane.selectAll();
    EXPECT_EQ(m_pane.decidingRow(), 1);
    m_pane.view().selectRowNumbers({ 3 });
    EXPECT_EQ(m_pane.decidingRow(), 3);
}

TEST_F(RemotePaneTest, HasItsFourColumns)
{
    QStringList headers;
    for (int column = 0; column < m_pane.model().columnCount(); ++column) {
        headers << m_pane.model().headerData(column, Qt::Horizontal).toString();
    }
    EXPECT_EQ(headers.join(u'|'), QStringLiteral("Name|Size|Date|Permission"));
    EXPECT_EQ(m_pane.view().selectionMode(), QAbstractItemView::ExtendedSelection);
    EXPECT_EQ(m_pane.view().objectName(), QStringLiteral("lvwRemote"));
    EXPECT_EQ(m_pane.box().objectName(), QStringLiteral("cmbRemoteDir"));
}
