#include "app/windowbench.h"
#include "ftp/ftplocalnames.h"
#include "support/urlcatcher.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDrag>
#include <QFile>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTreeView>

#include <filesystem>
#include <numeric>

using WindowCommands = WindowBench;

TEST_F(WindowCommands, TheRememberButtonsWriteTheFoldersOfTheBoxes)
{
    QDir(home.path()).mkdir(QStringLiteral("mo_def"));
    globals.session.Lastconnect = QStringLiteral("Heim");
    globals.connection.RemoteDir = QStringLiteral("/html");
    open();
    const auto lines = [this] {
        QFile written(home.filePath(QStringLiteral("mo_def/Heim.login")));
        return written.open(QIODevice::ReadOnly)
            ? QString::fromLatin1(written.readAll()).split(QStringLiteral("\r\n"))
            : QStringList();
    };
    find<QComboBox>("cmbLocalDir")->setEditText(home.path() + QStringLiteral(" [mein]"));
    find<QAbstractButton>("cmd_dir_merken_lokal")->click();
    EXPECT_EQ(lines().value(3), home.path() + QStringLiteral(" [mein]"));
    EXPECT_EQ(lines().value(4), QStringLiteral("/html"));
    find<QAbstractButton>("cmd_dir_merken_remote")->click();
    EXPECT_EQ(lines().value(4), QStringLiteral("/html")) << "the box is empty";
    find<QComboBox>("cmbRemoteDir")->setEditText(QStringLiteral("/neu"));
    find<QAbstractButton>("cmd_dir_merken_remote")->click();
    EXPECT_EQ(lines().value(4), QStringLiteral("/neu"));

    globals.session.Lastconnect = QStringLiteral("a/b"); // cannot be written
    prompts.expectMessage(QStringLiteral("Der Name der Verbindung ist nicht erlaubt: a/b"));
    find<QAbstractButton>("cmd_dir_merken_lokal")->click();
}

TEST_F(WindowCommands, MenuCommandsFollowTheActiveList)
{
    file("a.txt");
    focus(*find<QTreeView>("lvwStatus"));
    item("mnuRefresh")->trigger();
    EXPECT_GE(rowOf(window->localPane(), "a.txt"), 0) << "the queue counts as the local pane";
    item("mnuSelectall")->trigger();
    EXPECT_EQ(window->localPane().selectedRows().size(), window->localPane().model().rowCount());
    prompts.expectConfirm(QStringLiteral("Delete queue items selected?"), false,
                          QStringLiteral("Confirm Delete Queue Items"));
    item("mnuDelete")->trigger();
}

TEST_F(WindowCommands, ControlASelectsWhatHasTheFocus)
{
    file("a.txt");
    refreshLocal();
    const auto select = [this](QWidget &widget) {
        focus(widget);
        QTest::keyClick(&widget, Qt::Key_A, Qt::ControlModifier);
    };
    window->AddQueueRow(QueueRow());
    window->AddQueueRow(QueueRow());
    auto *queue = find<QTreeView>("lvwStatus");
    select(*queue);
    EXPECT_EQ(queue->selectionModel()->selectedRows().size(), 2);
    auto *log = find<QPlainTextEdit>("txtLog");
    log->setPlainText(QStringLiteral("220 bereit"));
    select(*log);
    EXPECT_EQ(log->textCursor().selectedText(), QStringLiteral("220 bereit"));
    QLineEdit *folder = find<QComboBox>("cmbLocalDir")->lineEdit();
    select(*folder);
    EXPECT_EQ(folder->selectedText(), folder->text());
    LocalPane &local = window->localPane();
    EXPECT_TRUE(local.selectedRows().isEmpty());
    select(local.view());
    EXPECT_EQ(local.selectedRows().size(), local.model().rowCount());
}

TEST_F(WindowCommands, TheFolderBoxIsOpenedAndChosenFromByKeys)
{
    for (const char *name : { "a", "b" }) {
        QDir(home.path()).mkdir(QString::fromLatin1(name));
    }
    LocalPane &local = window->localPane();
    QComboBox *box = find<QComboBox>("cmbLocalDir");
    const QString top = home.path() + u'/';
    for (const char *name : { "/a/", "/b/" }) {
        box->setEditText(home.path() + QString::fromLatin1(name));
        local.RememberLocalFolder(box->currentText());
    }
    const auto open = [&] {
        focus(local.view());
        QTest::keyClick(&local.view(), Qt::Key_Down, Qt::AltModifier);
        ASSERT_TRUE(QTest::qWaitFor([box] { return box->view()->isVisible(); }));
    };
    const auto entry
        = [&](const char *name) { return box->findText(home.path() + QString::fromLatin1(name)); };
    ASSERT_EQ(entry("/b/"), entry("/a/") + 1);

    open();
    QTest::keyClick(box->view(), Qt::Key_Up);
    EXPECT_EQ(local.folder(), home.path() + QStringLiteral("/b/")) << "not chosen yet";
    QTest::keyClick(box->view(), Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !local.isReading(); }));
    EXPECT_EQ(local.folder(), home.path() + QStringLiteral("/a/"));
    EXPECT_EQ(box->currentText(), home.path() + QStringLiteral("/a/"));

    open();
    QTest::keyClick(box->view(), Qt::Key_Down);
    QTest::keyClick(box->view(), Qt::Key_Escape);
    EXPECT_EQ(local.folder(), home.path() + QStringLiteral("/a/")) << "given up";

    focus(*box);
    QTest::keyClick(box, Qt::Key_Down); // without the list
    ASSERT_TRUE(QTest::qWaitFor([&] { return !local.isReading(); }));
    EXPECT_EQ(local.folder(), home.path() + QStringLiteral("/b/"));
    box->lineEdit()->setText(top);
    QTest::keyClick(box, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !local.isReading(); }));
    EXPECT_EQ(local.folder(), top);
}

TEST_F(WindowCommands, WithoutAConnectionNothingIsDragged)
{
    file("a.txt");
    refreshLocal();
    for (FilePane *pane : { static_cast<FilePane *>(&window->localPane()),
                            static_cast<FilePane *>(&window->remotePane()) }) {
        if (pane == &window->remotePane()) { // rows may still be shown
            PaneRow row;
            row.name = QStringLiteral("a.txt");
            pane->model().setRows({ upRow(), row });
        }
        bool dragged = false;
        pane->view().setDragRunner([&dragged](QDrag &) {
            dragged = true;
            return Qt::IgnoreAction;
        });
        dragRow(*pane, "a.txt");
        EXPECT_FALSE(dragged);
        EXPECT_FALSE(pane->model().row(rowOf(*pane, "a.txt")).marked);
        EXPECT_EQ(globals.marked.MarkedCount, 1);
    }
}

TEST_F(WindowCommands, AFolderWhoseNameIsNoTextIsNotRememberedInAProfile)
{
    const QString folder = home.path() + u'/' + textOfName("Bilder \xe4");
    ASSERT_TRUE(makeLocalFolder(folder));
    QDir(home.path()).mkdir(QStringLiteral("mo_def"));
    globals.session.Lastconnect = QStringLiteral("Heim");
    globals.connection.LocalDir = home.path();
    open();
    LocalPane &local = window->localPane();
    focus(local.view());
    local.view().setCurrentIndex(
        local.model().index(local.model().findRow(textOfName("Bilder \xe4")), 0));
    QTest::keyClick(&local.view(), Qt::Key_Return);
    ASSERT_EQ(local.folder(), folder + u'/');
    // The file holds text: what it would name is another folder or none.
    prompts.expectMessage(QStringLiteral(
        "Der Name dieses Ordners enthält Zeichen, die sich nicht in der Verbindung speichern "
        "lassen."));
    find<QAbstractButton>("cmd_dir_merken_lokal")->click();
    EXPECT_EQ(globals.connection.LocalDir, home.path());
    EXPECT_TRUE(QDir(globals.folders.profiles).isEmpty());
    // Left and chosen from the history again, it is the same folder.
    local.goUp();
    find<QComboBox>("cmbLocalDir")
        ->setCurrentIndex(find<QComboBox>("cmbLocalDir")->findText(folder + u'/'));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !local.isReading(); }));
    EXPECT_EQ(local.folder(), folder + u'/');
    EXPECT_EQ(local.view().hint(), QStringLiteral("Dieser Ordner ist leer."));
    local.goUp();
    std::filesystem::remove_all(bytesOfName(folder).toStdString()); // QTemporaryDir cannot
}

TEST_F(WindowCommands, TheLocalToolBarWorksOnTheLocalPane)
{
    file("a.txt");
    button("tbToolBar", "Refresh")->trigger();
    LocalPane &local = window->localPane();
    EXPECT_GE(rowOf(local, "a.txt"), 0);
    button("tbToolBar", "SelectAll")->trigger();
    EXPECT_EQ(local.selectedRows().size(), local.model().rowCount());
    EXPECT_EQ(local.selectedRows().first(), 0);
    button("tbToolBar", "Cdup")->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !local.isReading(); }));
    EXPECT_EQ(find<QComboBox>("cmbLocalDir")->currentText(), QFileInfo(home.path()).path() + u'/');
    EXPECT_EQ(globals.session.CurrentLocalDir, QFileInfo(home.path()).path() + u'/');
}

TEST_F(WindowCommands, TheLocalToolBarNeedsNoActiveList)
{
    file("a.txt");
    refreshLocal();
    LocalPane &local = window->localPane();
    select(local, { "a.txt" });
    focus(window->remotePane().view()); // the other list is the active one
    UrlCatcher desktop(QStringLiteral("file"));
    const QUrl shown = QUrl::fromLocalFile(home.filePath(QStringLiteral("a.txt")));
    window->UpdateLocalCommandStates();
    button("tbToolBar", "ViewFile")->trigger();
    EXPECT_EQ(desktop.opened, QList<QUrl> { shown });
    focus(local.view());
    item("mnuView")->trigger();
    EXPECT_EQ(desktop.opened, (QList<QUrl> { shown, shown }));
    focus(window->remotePane().view());
    window->UpdateLocalCommandStates();
    button("tbToolBar", "NewFolder")->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !local.isReading(); }));
    EXPECT_TRUE(QFileInfo(home.filePath(QStringLiteral("Ordner"))).isDir());
    EXPECT_NE(local.view().viewport()->findChild<QLineEdit *>(), nullptr) << "its name is edited";
}

TEST_F(WindowCommands, KeysOfThePanesReachTheCommands)
{
    QDir(home.path()).mkdir(QStringLiteral("bilder"));
    refreshLocal();
    LocalPane &local = window->localPane();
    focus(local.view());
    select(local, { "bilder" });
    QTest::keyClick(&local.view(), Qt::Key_Return);
    EXPECT_EQ(local.folder(), home.path() + QStringLiteral("/bilder/"));
    QTest::keyClick(&local.view(), Qt::Key_Backspace);
    EXPECT_EQ(local.folder(), home.path() + u'/');
    select(local, { "bilder" });
    prompts.expectConfirm(
        QStringLiteral("Sind Sie sicher, dass Sie 1 Dateien oder Ordner löschen möchten?"), false,
        QStringLiteral("Confirm Delete"),
        QStringLiteral("In den Ordnern: 0 Dateien und 0 Ordner."));
    QTest::keyClick(&local.view(), Qt::Key_Delete);
    QTest::keyClick(&local.view(), Qt::Key_Tab);
    EXPECT_TRUE(window->remotePane().view().hasFocus());
    QTest::keyClick(&window->remotePane().view(), Qt::Key_Tab);
    EXPECT_TRUE(local.view().hasFocus());
}

namespace {

/// A folder that takes longer to read than the pane waits: links to themselves by long ways.
/// @return its rows without the up row
int makeSlowFolder(const QString &path)
{
    constexpr int links = 200;
    EXPECT_TRUE(QDir().mkpath(path + QStringLiteral("/s")));
    for (int i = 0; i < links; ++i) {
        const QString name = QStringLiteral("l%1").arg(i);
        EXPECT_TRUE(QFile::link(QStringLiteral("s/../").repeated(800) + name, path + u'/' + name));
    }
    return links + 1;
}

class SlowStartFolder : public WindowBench {
protected:
    /// Starts as another program would start it, with the slow folder as its folder here.
    void SetUp() override
    {
        globals.settings.HiddenFile = true; // broken links count as hidden
        rows = makeSlowFolder(slow);
        const QStringList fields { QStringLiteral("127.0.0.1"),
                                   {},
                                   {},
                                   slow,
                                   {},
                                   QStringLiteral("1"),
                                   QStringLiteral("0"), // no port: no login
                                   {},
                                   {},
                                   {},
                                   {} };
        prompts.expectMessage(
            QStringLiteral("Allgemeiner Fehler! Versuchen Sie den Vorgang zu einem späteren "
                           "Zeitpunkt nochmals zu starten."));
        open(fields.join(u'\t'));
        window->load_commands();
        ASSERT_TRUE(window->localPane().isReading());
    }
    bool waitForRows()
    {
        return QTest::qWaitFor([this] { return !window->localPane().isReading(); });
    }

    QString slow = home.filePath(QStringLiteral("viele"));
    int rows = 0;
};

} // namespace

TEST_F(SlowStartFolder, AllItsRowsAreSelectedWhenTheyCome)
{
    ASSERT_TRUE(waitForRows());
    QList<int> expected(rows);
    std::iota(expected.begin(), expected.end(), 1);
    EXPECT_EQ(window->localPane().selectedRows(), expected) << "the up row is none of them";
}

TEST_F(SlowStartFolder, NoOtherFolderIsSelected)
{
    const QString other = home.filePath(QStringLiteral("andere"));
    ASSERT_TRUE(QDir().mkpath(other + QStringLiteral("/b")));
    LocalPane &local = window->localPane();
    find<QComboBox>("cmbLocalDir")->setEditText(other); // the user does not wait
    ASSERT_TRUE(waitForRows());
    ASSERT_EQ(rowOf(local, "b"), 1);
    EXPECT_TRUE(local.selectedRows().isEmpty());
}

TEST_F(SlowStartFolder, ARefreshIsFollowedByTheStatesWhenItsRowsCome)
{
    ASSERT_TRUE(waitForRows());
    EXPECT_TRUE(button("tbToolBar", "DeleteFiles")->isEnabled());
    button("tbToolBar", "Refresh")->trigger();
    ASSERT_TRUE(window->localPane().isReading());
    ASSERT_TRUE(waitForRows());
    ASSERT_TRUE(window->localPane().selectedRows().isEmpty());
    EXPECT_FALSE(button("tbToolBar", "DeleteFiles")->isEnabled() || enabled("mnuDelete"));
}

TEST_F(WindowCommands, F2RenamesInPlace)
{
    file("alt.txt");
    refreshLocal();
    LocalPane &local = window->localPane();
    focus(local.view());
    select(local, { "alt.txt" });
    item("mnuRename")->trigger();
    auto *editor = local.view().viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, QStringLiteral("neu.txt"));
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor(
        [this] { return QFile::exists(home.filePath(QStringLiteral("neu.txt"))); }));
    EXPECT_GE(rowOf(local, "neu.txt"), 0);
}

TEST_F(WindowCommands, ADoubleClickOnALocalFileNeedsAConnection)
{
    file("a.txt");
    refreshLocal();
    LocalPane &local = window->localPane();
    const QModelIndex row = local.model().index(rowOf(local, "a.txt"), 0);
    QTest::mouseDClick(local.view().viewport(), Qt::LeftButton, {},
                       local.view().visualRect(row).center());
    EXPECT_EQ(find<QTreeView>("lvwStatus")->model()->rowCount(), 0);
    EXPECT_EQ(local.model().findRow(QStringLiteral("a.txt")), row.row());
    EXPECT_EQ(find<QWidget>("txtLog")->property("plainText").toString(), QString());
}

TEST_F(WindowCommands, BeendenClosesIt)
{
    item("mnuExit")->trigger();
    EXPECT_FALSE(window->isVisible());
}

TEST_F(WindowCommands, CommandsWithoutAConnectionDoAndSayNothing)
{
    find<QAbstractButton>("cmd_download")->click();
    find<QAbstractButton>("cmd_upload")->click();
    find<QAbstractButton>("img_ampel_gruen")->click();
    for (const char *key : keys) {
        button("tbToolBar_rem", key)->setEnabled(true);
        button("tbToolBar_rem", key)->trigger();
    }
    focus(window->remotePane().view());
    for (const char *name : { "mnuRename", "mnuMakeDirectory", "mnuDelete", "mnuView", "mnuRefresh",
                              "mnuSelectall" }) {
        item(name)->setEnabled(true);
        item(name)->trigger();
    }
    window->DoRemoteRefresh(QStringLiteral("/"));
    EXPECT_EQ(window->remotePane().model().rowCount(), 0);
}
