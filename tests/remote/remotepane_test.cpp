#include "remote/remotepane.h"

#include "common/globals.h"
#include "remote/itemkind.h"
#include "remote/paneview.h"
#include "support/fakeftp.h"
#include "support/fakeshell.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

/// A session whose next listing can be set.
class ListingFtp : public FakeFtp {
public:
    std::optional<RemoteListing> fixed;

    [[nodiscard]] const RemoteListing &listing() const override
    {
        return fixed ? *fixed : FakeFtp::listing();
    }
};

class RemotePaneTest : public testing::Test {
protected:
    RemotePaneTest()
        : m_pane(m_ftp, m_globals, m_shell)
    {
        m_ftp.addFile(QStringLiteral("/www/index.html"), "12345");
        m_ftp.addFile(QStringLiteral("/www/b.txt"), "1");
        m_ftp.addFolder(QStringLiteral("/www/cgi-bin"));
        m_ftp.addFolder(QStringLiteral("/www/leer"));
        m_ftp.addLink(QStringLiteral("/www/verweis"), QStringLiteral("/www/cgi-bin"));
        m_ftp.addLink(QStringLiteral("/www/kaputt"), QStringLiteral("/nirgends"));
        m_ftp.current = QStringLiteral("/www");
        m_pane.DoRemoteRefresh(QStringLiteral("/www"));
        clearNotes();
    }

    void clearNotes()
    {
        m_ftp.commands.clear();
        m_shell.calls.clear();
        m_shell.log.clear();
    }
    std::string names()
    {
        QStringList list;
        for (const PaneRow &row : m_pane.model().rows()) {
            list << (row.kind == ItemKind::Cdup ? QStringLiteral("<up>") : row.name);
        }
        return list.join(u' ').toStdString();
    }
    int row(const char *name) { return m_pane.model().findRow(QString::fromUtf8(name)); }
    QString kind(const char *name) { return m_pane.model().row(row(name)).kind; }
    std::string commands() const { return m_ftp.commands.join(u", ").toStdString(); }
    std::string history()
    {
        QStringList list;
        for (int entry = 0; entry < m_pane.box().count(); ++entry) {
            list << m_pane.box().itemText(entry);
        }
        return list.join(u' ').toStdString();
    }
    /// Commands off, perhaps other calls, commands on again.
    void expectPaused()
    {
        ASSERT_GE(m_shell.calls.size(), 2);
        EXPECT_EQ(m_shell.calls.first(), QStringLiteral("SetCommandsEnabled 0 0 0 0"));
        EXPECT_EQ(m_shell.calls.last(), QStringLiteral("SetCommandsEnabled 0 1 1 1"));
    }

    Globals m_globals;
    ListingFtp m_ftp;
    FakeShell m_shell;
    RemotePane m_pane;
};

} // namespace

TEST_F(RemotePaneTest, AListingShowsFoldersThenTheRestByName)
{
    EXPECT_EQ(names(), "<up> cgi-bin leer b.txt index.html kaputt verweis");
    EXPECT_EQ(m_pane.model().row(row("b.txt")).tag, QStringLiteral("/www/b.txt"));
    EXPECT_EQ(kind("b.txt"), ItemKind::TextFile);
    EXPECT_TRUE(m_pane.selectedRows().isEmpty());
    EXPECT_EQ(m_pane.currentRow(), -1);
}

TEST_F(RemotePaneTest, ARefreshOfTheSameFolderSendsNoChangeOfFolder)
{
    m_pane.selectAll();
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_TRUE(m_ftp.commandsOf(QStringLiteral("CWD")).isEmpty()) << commands();
    EXPECT_EQ(m_ftp.commandsOf(QStringLiteral("LIST")).size(), 1) << commands();
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www"));
    EXPECT_TRUE(m_pane.selectedRows().isEmpty()) << "no selection survives a listing";
    expectPaused();
}

TEST_F(RemotePaneTest, AListingIsTextWhateverTheModeIs)
{
    m_ftp.setTransferType(TypeBinary);
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(m_ftp.transferType(), TypeAscii);
}

TEST_F(RemotePaneTest, WithoutAnIdleSessionNothingHappens)
{
    for (const bool busy : { true, false }) {
        m_ftp.busy = busy;
        m_ftp.connectionState = busy ? FtpOperations::Connected : FtpOperations::Closed;
        m_pane.DoRemoteRefresh(QStringLiteral("/"));
        m_pane.EnterRemoteFolder(QStringLiteral("cgi-bin"));
        m_pane.GoUpRemote();
        m_pane.OpenRemoteRow(row("cgi-bin"), true);
        m_pane.SortRemoteByName();
        Q_EMIT m_pane.view().columnClicked(ColumnSize);
        EXPECT_EQ(commands(), "");
        EXPECT_TRUE(m_shell.calls.isEmpty());
        EXPECT_EQ(m_shell.log, QString());
        EXPECT_EQ(names(), "<up> cgi-bin leer b.txt index.html kaputt verweis");
    }
}

TEST_F(RemotePaneTest, OpeningAFolderEntersItByNameAndRemembersIt)
{
    m_pane.OpenRemoteRow(row("cgi-bin"), true);
    EXPECT_EQ(m_ftp.commands.first(), QStringLiteral("CWD cgi-bin"));
    EXPECT_EQ(names(), "<up>");
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/cgi-bin"));
    EXPECT_EQ(m_globals.session.CurrentRemoteDir, QStringLiteral("/www/cgi-bin"));
    EXPECT_EQ(history(), "/www/cgi-bin");
    expectPaused();
    EXPECT_TRUE(m_shell.calls.contains(QStringLiteral("SetFtpProperties")));
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Dieser Ordner ist leer."));
}

TEST_F(RemotePaneTest, TheUpRowGoesToTheParent)
{
    m_pane.OpenRemoteRow(0, false);
    EXPECT_EQ(names(), "<up> www");
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/"));
    EXPECT_EQ(history(), "/");
    expectPaused();
}

TEST_F(RemotePaneTest, AFolderIsRememberedOnlyOnce)
{
    m_pane.OpenRemoteRow(row("cgi-bin"), true);
    m_pane.OpenRemoteRow(0, true);
    m_pane.OpenRemoteRow(row("cgi-bin"), true);
    EXPECT_EQ(history(), "/www/cgi-bin /www");
    m_pane.forgetFolder(QStringLiteral("/www/cgi-bin"));
    EXPECT_EQ(history(), "/www");
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/cgi-bin")) << "the box goes on showing it";
}

TEST_F(RemotePaneTest, ALinkIsOnlyClassifiedByItsFirstOpening)
{
    m_pane.OpenRemoteRow(row("verweis"), false);
    EXPECT_EQ(kind("verweis"), ItemKind::FolderLink);
    EXPECT_EQ(m_ftp.current, QStringLiteral("/www"));
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www"));
    EXPECT_EQ(m_shell.log, QString());
    expectPaused();

    m_ftp.commands.clear();
    m_pane.OpenRemoteRow(row("verweis"), false);
    EXPECT_EQ(m_ftp.commands.first(), QStringLiteral("CWD /www/verweis")) << "by its full path";
}

TEST_F(RemotePaneTest, ALinkToAnythingElseBecomesAFileAndIsNotTriedAgain)
{
    m_pane.OpenRemoteRow(row("kaputt"), false);
    EXPECT_EQ(kind("kaputt"), ItemKind::File);
    EXPECT_EQ(m_shell.log, QStringLiteral("550 No such folder.\r\n"));
    expectPaused();
    clearNotes();
    m_pane.OpenRemoteRow(row("kaputt"), false);
    EXPECT_EQ(commands(), "");
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(kind("kaputt"), ItemKind::Link) << "a fresh listing knows nothing of it";
}

TEST_F(RemotePaneTest, ALinkWithoutAWayBackIsShown)
{
    m_ftp.addFile(QStringLiteral("/www/cgi-bin/a.pl"), "1");
    m_ftp.refuse = [](const QString &command) -> std::optional<FtpError> {
        return command == u"CWD /www" ? std::optional(FtpError {
                   ftp::ErrorKind::Refused, 550, QStringLiteral("550 Permission denied.") })
                                      : std::nullopt;
    };
    m_pane.OpenRemoteRow(row("verweis"), true);
    EXPECT_EQ(m_ftp.current, QStringLiteral("/www/cgi-bin"));
    EXPECT_EQ(names(), "<up> a.pl") << "the rows are those of the server's folder";
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/cgi-bin"));
}

TEST_F(RemotePaneTest, AFileIsDownloadedByDoubleClickOnly)
{
    QSignalSpy wanted(&m_pane, &RemotePane::downloadWanted);
    m_pane.OpenRemoteRow(row("b.txt"), false);
    EXPECT_EQ(wanted.count(), 0);
    m_pane.OpenRemoteRow(row("b.txt"), true);
    EXPECT_EQ(wanted.count(), 1);
}

TEST_F(RemotePaneTest, AFolderThatCannotBeEnteredLeavesTheTruthInPaneAndBox)
{
    m_ftp.refuseAll(QStringLiteral("CWD"), QStringLiteral("550 Permission denied."));
    m_pane.DoRemoteRefresh(QStringLiteral("/geheim"));
    EXPECT_EQ(names(), "<up> cgi-bin leer b.txt index.html kaputt verweis");
    EXPECT_EQ(m_pane.model().row(row("b.txt")).tag, QStringLiteral("/www/b.txt"));
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/"));
    expectPaused();
}

TEST_F(RemotePaneTest, ARefusedListingShowsNoRowsOfAnotherFolder)
{
    m_ftp.refuseAll(QStringLiteral("LIST"), QStringLiteral("550 Not allowed."));
    m_pane.DoRemoteRefresh(QStringLiteral("/www/leer"));
    EXPECT_EQ(names(), "<up>");
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/leer"));
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Die Dateiliste konnte nicht gelesen werden."));
}

TEST_F(RemotePaneTest, ARefusedRefreshOfTheSameFolderKeepsItsRows)
{
    m_ftp.refuseAll(QStringLiteral("LIST"), QStringLiteral("425 No data connection."));
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(names(), "<up> cgi-bin leer b.txt index.html kaputt verweis");
    m_pane.DoRemoteRefresh(QStringLiteral("/www/leer"));
    EXPECT_EQ(names(), "<up>");
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(names(), "<up>") << "what was held is not remembered for ever";
}

TEST_F(RemotePaneTest, OnlyAnEmptyFolderIsCalledEmpty)
{
    m_ftp.fixed = RemoteListing { {}, RemoteListing::Uninterpretable, QStringLiteral("Hä?") };
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Die Dateiliste konnte nicht gelesen werden."));
    m_ftp.fixed = RemoteListing { {}, RemoteListing::Uninterpretable, QStringLiteral("\r\n") };
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Dieser Ordner ist leer."));
    m_pane.model().appendRow({ QStringLiteral("neu"), ItemKind::FolderClose, {}, {}, {}, {} });
    EXPECT_EQ(m_pane.view().hint(), QString()) << "it holds a new folder now";
}

TEST_F(RemotePaneTest, AConnectionLostMeanwhileLeavesAnEmptyPaneAndNoCommands)
{
    m_ftp.during = [this](const QString &) { m_ftp.close(); };
    m_pane.DoRemoteRefresh(QStringLiteral("/www/leer"));
    EXPECT_EQ(names(), "");
    EXPECT_EQ(m_shell.calls.last(), QStringLiteral("SetFtpProperties"))
        << "the commands were enabled for a connection that is gone";
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Nicht mit einem Server verbunden."));
}

TEST_F(RemotePaneTest, TheNextServersFolderNeverShowsTheFilesOfTheOneBefore)
{
    m_ftp.close();
    m_pane.model().clear(); // as every end of a session does
    m_ftp.connectionState = FtpOperations::Connected;
    m_ftp.refuseAll(QStringLiteral("LIST"), QStringLiteral("425 Cannot open data connection."));
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(names(), "<up>");
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Die Dateiliste konnte nicht gelesen werden."));
    EXPECT_TRUE(m_pane.isUnread());
    m_ftp.refuse = nullptr;
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_FALSE(m_pane.isUnread());
}

TEST_F(RemotePaneTest, TextOfTheBoxIsNormalised)
{
    m_pane.box().setEditText(QStringLiteral(" /www/leer [Archiv] "));
    QTest::keyClick(&m_pane.box(), Qt::Key_Return);
    EXPECT_EQ(commands(), "CWD /www/leer/, LIST");
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/leer/"));
    expectPaused();
}

TEST_F(RemotePaneTest, ARelativeFolderOfTheBoxIsShownAsWhatItIs)
{
    m_ftp.addFile(QStringLiteral("/www/cgi-bin/a.pl"), "1");
    m_pane.box().setEditText(QStringLiteral("cgi-bin"));
    QTest::keyClick(&m_pane.box(), Qt::Key_Return);
    EXPECT_EQ(m_ftp.commands.first(), QStringLiteral("CWD cgi-bin/"));
    EXPECT_EQ(m_pane.model().row(row("a.pl")).tag, QStringLiteral("/www/cgi-bin/a.pl"));
}

TEST_F(RemotePaneTest, ABracketedFolderNeverBecomesAShorterOne)
{
    m_ftp.addFile(QStringLiteral("/Fotos [2020]/a.jpg"), "1");
    m_ftp.addFolder(QStringLiteral("/Fotos "));
    m_pane.EnterRemoteFolder(QStringLiteral("/Fotos [2020]"));
    EXPECT_EQ(m_pane.model().row(row("a.jpg")).tag, QStringLiteral("/Fotos [2020]/a.jpg"));
    clearNotes();
    QTest::keyClick(&m_pane.box(), Qt::Key_Return);
    EXPECT_EQ(commands(), "LIST") << "the text of the box is the current folder";
    m_pane.EnterRemoteFolder(QStringLiteral("/Fotos "));
    EXPECT_EQ(m_ftp.current, QStringLiteral("/Fotos "));
}

TEST_F(RemotePaneTest, ABracketedFolderOfTheHistoryIsFoundAgain)
{
    m_ftp.addFile(QStringLiteral("/Fotos [2020]/a.jpg"), "1");
    m_ftp.addFile(QStringLiteral("/Fotos/falsch.jpg"), "1");
    m_pane.EnterRemoteFolder(QStringLiteral("/Fotos [2020]"));
    m_pane.RememberRemoteFolder();
    m_pane.EnterRemoteFolder(QStringLiteral("/www"));
    clearNotes();
    m_pane.box().setCurrentIndex(0);
    Q_EMIT m_pane.box().activated(0);
    EXPECT_EQ(names(), "<up> a.jpg");
    EXPECT_EQ(m_ftp.commands.first(), QStringLiteral("CWD /Fotos [2020]/"));

    m_pane.EnterRemoteFolder(QStringLiteral("/www"));
    m_pane.box().setEditText(QStringLiteral("/Fotos [2020]"));
    QTest::keyClick(&m_pane.box(), Qt::Key_Return);
    EXPECT_EQ(names(), "<up> a.jpg") << "typed, it is the same folder";

    m_pane.box().addItem(QStringLiteral("/www/leer [Archiv]"));
    m_pane.box().setCurrentIndex(1);
    clearNotes();
    Q_EMIT m_pane.box().activated(1);
    EXPECT_EQ(m_ftp.commands.first(), QStringLiteral("CWD /www/leer/"))
        << "an entry that the program did not make may be annotated";
}

TEST_F(RemotePaneTest, ChoosingAnEntryListsItAtOnce)
{
    m_pane.EnterRemoteFolder(QStringLiteral("/"));
    m_pane.RememberRemoteFolder();
    m_pane.EnterRemoteFolder(QStringLiteral("/www/leer"));
    m_pane.RememberRemoteFolder();
    clearNotes();
    m_pane.box().setCurrentIndex(0);
    Q_EMIT m_pane.box().activated(0);
    EXPECT_EQ(commands(), "CWD /, LIST");
    EXPECT_EQ(names(), "<up> www");
}

TEST_F(RemotePaneTest, AnEntryChosenWhileSomethingRunsDoesNotStayInTheBox)
{
    m_pane.EnterRemoteFolder(QStringLiteral("/www/leer"));
    m_pane.RememberRemoteFolder();
    m_pane.EnterRemoteFolder(QStringLiteral("/www"));
    clearNotes();
    m_ftp.busy = true;
    m_pane.box().setCurrentIndex(0);
    Q_EMIT m_pane.box().activated(0);
    EXPECT_EQ(commands(), "");
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www")) << "uploads would go elsewhere";
    // Not while it is being listed, either: the box ends with what the rows are.
    m_ftp.busy = false;
    m_ftp.during = [this](const QString &command) {
        if (command == u"LIST") {
            m_ftp.busy = true;
            m_pane.box().setCurrentIndex(0);
            Q_EMIT m_pane.box().activated(0);
            m_ftp.busy = false;
        }
    };
    m_pane.DoRemoteRefresh(QStringLiteral("/www/cgi-bin"));
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/www/cgi-bin"));
}

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

TEST_F(RemotePaneTest, AnUnreadableListingIsExplainedOnlyWithDetailedMessages)
{
    m_ftp.fixed = RemoteListing { {}, RemoteListing::Uninterpretable, QStringLiteral("Hä?") };
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(names(), "<up>");
    EXPECT_EQ(m_shell.log, QString());
    m_globals.settings.ErrorMsg = true;
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_TRUE(m_shell.log.startsWith(QStringLiteral("Die Auflösung der gelieferten Dateiliste")));
    EXPECT_TRUE(m_shell.log.endsWith(QStringLiteral("\r\nHä?")));
    m_shell.log.clear();
    m_ftp.fixed = RemoteListing { {}, RemoteListing::Uninterpretable, {} };
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    EXPECT_EQ(
        m_shell.log,
        QStringLiteral("Die Auflösung der gelieferten Dateiliste schlug fehl.\r\n"
                       "Dieser Fehler tritt häufig auf wenn ein leeres Verzeichnis aufgerufen "
                       "wird und kann in den meisten Fällen ignoriert werden."));
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

TEST_F(RemotePaneTest, ABigFolderIsListedWhileTheWindowLives)
{
    RemoteListing big { {}, 0, {} };
    for (int i = 0; i < 20000; ++i) {
        big.entries.append({ QStringLiteral("datei %1").arg(i, 6, 10, QChar(u'0')),
                             QStringLiteral("-"),
                             i,
                             QStringLiteral("2026-11-20 10:00"),
                             644,
                             {} });
    }
    m_ftp.fixed = big;
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        ++ticks;
        EXPECT_FALSE(m_pane.isReady()) << "no command may begin in between";
    });
    timer.start(0);
    m_pane.DoRemoteRefresh(QStringLiteral("/www"));
    timer.stop();
    EXPECT_EQ(m_pane.model().rowCount(), 20001);
    EXPECT_EQ(m_pane.model().row(20000).name, QStringLiteral("datei 019999"));
    EXPECT_GT(ticks, 0);
    EXPECT_TRUE(m_pane.isReady());
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
