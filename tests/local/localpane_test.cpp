#include "local/localpane.h"

#include "common/globals.h"
#include "common/workingfolders.h"
#include "remote/itemkind.h"
#include "remote/paneview.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

#include <semaphore>

namespace {

class LocalPaneTest : public testing::Test {
protected:
    LocalPaneTest()
        : m_pane(m_globals)
    {
        QDir(m_root.path()).mkpath(QStringLiteral("bilder/alt"));
        QFile file(m_root.filePath(QStringLiteral("a.txt")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        list(m_root.path());
    }

    QString path(const char *name) const { return m_root.filePath(QString::fromUtf8(name)); }
    void list(const QString &folder)
    {
        m_pane.box().setEditText(folder);
        settle();
    }
    void settle()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return !m_pane.isReading(); }));
    }
    void open(const char *name, bool byMouse)
    {
        m_pane.OpenLocalRow(m_pane.model().findRow(QString::fromUtf8(name)), byMouse);
        settle();
    }
    std::string names()
    {
        QStringList list;
        for (const PaneRow &row : m_pane.model().rows()) {
            list << (row.kind == ItemKind::Cdup ? QStringLiteral("<up>") : row.name);
        }
        return list.join(u' ').toStdString();
    }
    QString boxText() { return m_pane.box().currentText(); }

    QTemporaryDir m_root;
    Globals m_globals;
    LocalPane m_pane;
};

/// A reader that hangs on one folder until it is let go.
struct Hanging {
    std::binary_semaphore release { 0 };
    std::atomic_bool left = false;

    LocalListing read(const LocalRequest &request, const std::atomic_bool &stop)
    {
        if (request.path == u"/haengt") {
            release.acquire();
            left = true;
        }
        return readLocalFolder(request, stop);
    }
};

} // namespace

TEST_F(LocalPaneTest, HasItsThreeColumnsAndSelectsSeveralRows)
{
    QStringList headers;
    for (int column = 0; column < m_pane.model().columnCount(); ++column) {
        headers << m_pane.model().headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    }
    EXPECT_EQ(
        headers,
        (QStringList { QStringLiteral("Name"), QStringLiteral("Size"), QStringLiteral("Date") }));
    EXPECT_EQ(m_pane.view().selectionMode(), QAbstractItemView::ExtendedSelection);
    EXPECT_EQ(m_pane.view().objectName(), QStringLiteral("lvwLocal"));
}

TEST_F(LocalPaneTest, EveryChangeOfTheTextListsTheFolder)
{
    EXPECT_EQ(names(), "<up> bilder a.txt");
    m_pane.box().setFocus();
    QTest::keyClicks(m_pane.box().lineEdit(), QStringLiteral("/bilder"));
    settle();
    EXPECT_EQ(names(), "<up> alt");
    EXPECT_EQ(m_pane.folder(), path("bilder/"));
    EXPECT_EQ(m_pane.box().count(), 0) << "typing remembers nothing";
    QTest::keyClick(&m_pane.box(), Qt::Key_Return);
    EXPECT_EQ(m_pane.box().itemText(0), path("bilder/"));
}

TEST_F(LocalPaneTest, NothingIsSelectedAfterAListing)
{
    m_pane.selectAll();
    EXPECT_EQ(m_pane.selectedRows(), (QList<int> { 0, 1, 2 })) << "the up row too";
    m_pane.refresh();
    settle();
    EXPECT_TRUE(m_pane.selectedRows().isEmpty());
    EXPECT_EQ(m_pane.currentRow(), -1);
}

TEST_F(LocalPaneTest, ARowOfALinkToAFolderOpensWhatItLeadsTo)
{
    QSignalSpy wanted(&m_pane, &LocalPane::uploadWanted);
    PaneRow link;
    link.name = QStringLiteral("verweis");
    link.kind = ItemKind::FolderLink;
    link.tag = path("bilder");
    m_pane.model().appendRow(link);
    open("verweis", true);
    EXPECT_EQ(names(), "<up> alt");
    EXPECT_EQ(wanted.count(), 0);
    EXPECT_EQ(m_pane.box().itemText(0), path("bilder/"));
}

TEST_F(LocalPaneTest, OpeningRowsFollowsTheFolders)
{
    open("bilder", false);
    EXPECT_EQ(names(), "<up> alt");
    EXPECT_EQ(boxText(), path("bilder/"));
    EXPECT_EQ(m_globals.session.CurrentLocalDir, path("bilder/"));
    m_pane.OpenLocalRow(0, true);
    settle();
    EXPECT_EQ(names(), "<up> bilder a.txt");
    EXPECT_EQ(boxText(), m_root.path() + u'/');
    open("bilder", true);
    EXPECT_EQ(m_pane.box().count(), 2) << "a folder is remembered only once";
}

TEST_F(LocalPaneTest, AFileIsUploadedByDoubleClickOnly)
{
    QSignalSpy wanted(&m_pane, &LocalPane::uploadWanted);
    open("a.txt", false);
    EXPECT_EQ(wanted.count(), 0);
    open("a.txt", true);
    EXPECT_EQ(wanted.count(), 1);
    m_pane.OpenLocalRow(99, true);
    EXPECT_EQ(wanted.count(), 1) << "a row that is gone";
}

TEST_F(LocalPaneTest, UpStaysAtTheRootAndIsRemembered)
{
    list(path("bilder/alt"));
    m_pane.goUp();
    settle();
    EXPECT_EQ(boxText(), path("bilder/"));
    EXPECT_EQ(m_pane.box().findText(path("bilder/")), 0) << "not in the history";
    list(path("bilder/alt"));
    m_pane.goUp();
    settle();
    EXPECT_EQ(m_pane.box().count(), 1);
    list(QStringLiteral("/"));
    m_pane.goUp();
    settle();
    EXPECT_EQ(m_pane.folder(), QStringLiteral("/"));
}

TEST_F(LocalPaneTest, TheDesktopButtonShowsAndRemembersTheDesktop)
{
    m_globals.folders.desktop = path("bilder");
    auto *button = m_pane.findChild<QToolButton *>(QStringLiteral("cmd_desktop"));
    ASSERT_NE(button, nullptr);
    button->click();
    settle();
    EXPECT_EQ(names(), "<up> alt");
    EXPECT_EQ(boxText(), path("bilder"));
    EXPECT_EQ(m_pane.box().itemText(0), path("bilder"));
}

TEST_F(LocalPaneTest, DrivesStandInTheListInFolderForm)
{
    m_pane.addDrives({ { QStringLiteral("/home/anna"), {} },
                       { QStringLiteral("/"), {} },
                       { QStringLiteral("/media/anna/STICK [1]"), QStringLiteral("STICK") } });
    ASSERT_EQ(m_pane.box().count(), 3);
    EXPECT_EQ(m_pane.box().itemText(0), QStringLiteral("/home/anna/"));
    EXPECT_EQ(m_pane.box().itemText(1), QStringLiteral("/"));
    EXPECT_EQ(m_pane.box().itemText(2), QStringLiteral("/media/anna/STICK [1]/"));
}

TEST_F(LocalPaneTest, ChoosingAnEntryListsItAgain)
{
    m_pane.RememberLocalFolder(m_root.path() + u'/');
    QFile file(path("neu.txt"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    Q_EMIT m_pane.box().activated(0);
    settle();
    EXPECT_EQ(names(), "<up> bilder a.txt neu.txt");
}

TEST_F(LocalPaneTest, ForgettingComparesFolders)
{
    m_pane.RememberLocalFolder(path("bilder/"));
    m_pane.RememberLocalFolder(m_root.path());
    m_pane.forgetFolder(path("bilder"));
    ASSERT_EQ(m_pane.box().count(), 1);
    EXPECT_EQ(m_pane.box().itemText(0), m_root.path());
    EXPECT_EQ(boxText(), m_root.path());
}

TEST_F(LocalPaneTest, AFolderWithANewRowIsNotCalledEmpty)
{
    list(path("bilder/alt"));
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Dieser Ordner ist leer."));
    m_pane.model().appendRow({ QStringLiteral("neu"), ItemKind::FolderClose, {}, {}, {}, {} });
    EXPECT_EQ(m_pane.view().hint(), QString());
}

TEST_F(LocalPaneTest, AVanishedFolderShowsTheUpRowAndIsNotMistaken)
{
    QDir(m_root.path()).mkpath(QStringLiteral("bilder [2020]"));
    list(path("bilder [2020]"));
    ASSERT_TRUE(QDir(m_root.path()).rmdir(QStringLiteral("bilder [2020]")));
    m_pane.refresh();
    settle();
    EXPECT_EQ(names(), "<up>");
    EXPECT_EQ(m_pane.folder(), path("bilder [2020]/"));
    EXPECT_EQ(m_pane.view().hint(), QStringLiteral("Dieser Ordner lässt sich nicht öffnen."));
}

TEST_F(LocalPaneTest, ColumnsSortByTextInTheirFixedOrder)
{
    for (const auto &[name, size] :
         { std::pair("n", 10), std::pair("m", 9), std::pair("o", 100) }) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(size, 'x'));
    }
    m_pane.refresh();
    settle();
    Q_EMIT m_pane.view().columnClicked(ColumnSize);
    EXPECT_EQ(names(), "<up> bilder m o n a.txt");
    Q_EMIT m_pane.view().columnClicked(ColumnName);
    EXPECT_EQ(names(), "<up> bilder a.txt m n o");
}

TEST(LocalPaneHanging, AFolderThatNeverAnswersIsLeftAlone)
{
    Globals globals;
    const auto hanging = std::make_shared<Hanging>();
    LocalPane pane(globals, nullptr,
                   [hanging](const LocalRequest &request, const std::atomic_bool &stop) {
                       return hanging->read(request, stop);
                   });
    pane.box().setEditText(QStringLiteral("/haengt"));
    EXPECT_TRUE(pane.isReading());
    EXPECT_EQ(pane.model().rowCount(), 1) << "the up row leads out";
    EXPECT_EQ(pane.view().hint(), QStringLiteral("Der Ordner wird gelesen ..."));
    EXPECT_EQ(pane.folder(), QStringLiteral("/haengt/"));

    const QTemporaryDir other;
    ASSERT_TRUE(QDir(other.path()).mkdir(QStringLiteral("da")));
    pane.box().setEditText(other.path());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !pane.isReading(); }));
    EXPECT_EQ(pane.model().row(1).name, QStringLiteral("da"));

    hanging->release.release();
    ASSERT_TRUE(QTest::qWaitFor([&] { return hanging->left.load(); }));
    QCoreApplication::processEvents();
    EXPECT_EQ(pane.model().row(1).name, QStringLiteral("da")) << "a late answer changes nothing";
}

TEST(LocalPaneHanging, ASlowFolderShowsItsRowsWhenTheyCome)
{
    Globals globals;
    const auto hanging = std::make_shared<Hanging>();
    LocalPane pane(globals, nullptr,
                   [hanging](const LocalRequest &request, const std::atomic_bool &stop) {
                       return hanging->read(request, stop);
                   });
    QSignalSpy listed(&pane, &LocalPane::listed);
    pane.box().setEditText(QStringLiteral("/haengt"));
    EXPECT_EQ(listed.count(), 0);
    hanging->release.release();
    ASSERT_TRUE(QTest::qWaitFor([&] { return listed.count() == 1; }));
    EXPECT_EQ(pane.model().rowCount(), 1);
    EXPECT_EQ(pane.view().hint(), QStringLiteral("Dieser Ordner lässt sich nicht öffnen."));
}

TEST(LocalPaneHanging, ARefreshKeepsTheRowsUntilTheNewOnesCome)
{
    Globals globals;
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("da")));
    const auto gate = std::make_shared<std::binary_semaphore>(1);
    LocalPane pane(globals, nullptr,
                   [gate](const LocalRequest &request, const std::atomic_bool &stop) {
                       gate->acquire();
                       return readLocalFolder(request, stop);
                   });
    pane.box().setEditText(folder.path());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !pane.isReading(); }));
    ASSERT_TRUE(QDir(folder.path()).rmdir(QStringLiteral("da")));
    pane.refresh();
    EXPECT_TRUE(pane.isReading());
    EXPECT_EQ(pane.model().rowCount(), 2) << "nothing blinks";
    gate->release();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !pane.isReading(); }));
    EXPECT_EQ(pane.model().rowCount(), 1);
}

TEST(LocalPaneHanging, ThePaneMayGoBeforeItsReader)
{
    Globals globals;
    const auto hanging = std::make_shared<Hanging>();
    {
        LocalPane pane(globals, nullptr,
                       [hanging](const LocalRequest &request, const std::atomic_bool &stop) {
                           return hanging->read(request, stop);
                       });
        pane.box().setEditText(QStringLiteral("/haengt"));
    }
    hanging->release.release();
    EXPECT_TRUE(QTest::qWaitFor([&] { return hanging->left.load(); }));
}

TEST_F(LocalPaneTest, ANameWithoutItsFolderIsLookedForInTheHomeFolder)
{
    const QByteArray before = qgetenv("HOME");
    qputenv("HOME", m_root.path().toLocal8Bit());
    for (const char *text : { "bilder", "~/bilder" }) {
        list(QLatin1String(text));
        EXPECT_EQ(m_pane.folder(), path("bilder/"));
        EXPECT_EQ(names(), "<up> alt");
        m_pane.goUp();
        settle();
        EXPECT_EQ(m_pane.folder(), path("") + u'/');
    }
    qputenv("HOME", before);
}
