#include "e2e/onlinebench.h"

#include "ftp/ftplocalnames.h"
#include "remote/itemkind.h"

#include <QLineEdit>
#include <QMenu>

#include <numeric>

namespace {

class OnlineWindow : public OnlineBench { };

std::string kinds(FilePane &pane)
{
    QStringList texts;
    for (const PaneRow &row : pane.model().rows()) {
        if (!texts.contains(row.kind)) {
            texts << row.kind;
        }
    }
    return texts.join(u' ').toStdString();
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Servers, OnlineWindow, testing::ValuesIn(servers::allKinds()),
                         servers::parameterName);

TEST_P(OnlineWindow, ShowsBothSidesAfterTheLogin)
{
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Tarvelo FTP (Connected to: 127.0.0.1)"));
    EXPECT_TRUE(find<QWidget>("img_ampel_gruen")->isVisible());
    EXPECT_FALSE(find<QWidget>("img_ampel_rot")->isVisible());
    EXPECT_TRUE(item("mnuLogout")->isEnabled());
    EXPECT_FALSE(item("mnuLogin")->isEnabled());
    EXPECT_FALSE(find<QWidget>("cmd_dir_merken_lokal")->isEnabled()) << "there is no profile";
    FilePane &pane = window->remotePane();
    EXPECT_EQ(remoteFolder(), QStringLiteral("/web"));
    EXPECT_TRUE(kinds(pane).starts_with("Cdup FolderClose")) << kinds(pane);
    const int folder = rowOf(pane, "Fotos [2020]");
    ASSERT_GE(folder, 0) << log();
    EXPECT_EQ(pane.model().row(folder).kind, ItemKind::FolderClose);
    EXPECT_EQ(pane.model().row(folder).tag, QStringLiteral("/web/Fotos [2020]"));
    const int row = rowOf(window->localPane(), "gross.bin");
    ASSERT_GE(row, 0);
    EXPECT_EQ(window->localPane().model().row(row).size, QStringLiteral("3000000"));
    QList<int> allButTheUpRow(window->localPane().model().rowCount() - 1);
    std::iota(allButTheUpRow.begin(), allButTheUpRow.end(), 1);
    EXPECT_EQ(window->localPane().selectedRows(), allButTheUpRow) << "ready to be sent";
}

TEST_P(OnlineWindow, MovesFilesAndFoldersBothWays)
{
    select(window->localPane(), { "gross.bin", "seite" });
    press("cmd_upload");
    EXPECT_EQ(queue(), "Upload --> seite|Upload --> gross.bin") << log();
    EXPECT_EQ(servers::difference(localPath("gross.bin"), remote("gross.bin")), "");
    EXPECT_EQ(servers::difference(localPath("seite"), remote("seite")), "");
    EXPECT_GE(rowOf(window->remotePane(), "gross.bin"), 0) << "the server's side is listed again";

    QDir(home.path()).mkdir(QStringLiteral("ziel"));
    find<QComboBox>("cmbLocalDir")->setEditText(home.filePath(QStringLiteral("ziel")));
    settle();
    select(window->remotePane(), { "gross.bin", "seite" });
    press("cmd_download");
    const std::filesystem::path target = home.filePath(QStringLiteral("ziel")).toStdString();
    EXPECT_EQ(servers::difference(localPath("gross.bin"), target / "gross.bin"), "");
    EXPECT_EQ(servers::difference(localPath("seite"), target / "seite"), "");
    EXPECT_GE(rowOf(window->localPane(), "seite"), 0) << "this side is listed again";
    EXPECT_EQ(queue(),
              "Upload --> seite|Upload --> gross.bin|Download <-- seite|Download <-- gross.bin");
    EXPECT_TRUE(find<QComboBox>("cmbRemoteDir")->isEnabled());
    EXPECT_FALSE(find<QWidget>("cmdAbort")->isEnabled());
}

TEST_P(OnlineWindow, AFileWhoseNameIsNoUtf8IsSentAndRenamed)
{
    const std::filesystem::path file = localPath("\xe4pfel.txt");
    servers::writeFile(file, "rot");
    refreshLocal();
    LocalPane &pane = window->localPane();
    const QString name = textOfName("\xe4pfel.txt");
    const auto selectIt = [&] {
        ASSERT_GE(pane.model().findRow(name), 0);
        pane.view().selectRowNumbers({ pane.model().findRow(name) });
    };
    selectIt();
    press("cmd_upload");
    const int arrived = rowOf(window->remotePane(), "äpfel.txt");
    ASSERT_GE(arrived, 0) << log();
    EXPECT_EQ(window->remotePane().model().row(arrived).size, QStringLiteral("3"));
    const QModelIndex caption = pane.model().index(pane.model().findRow(name), 0);
    pane.model().setData(caption, QStringLiteral("Äpfel.txt"));
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(servers::readFile(localPath("Äpfel.txt")), "rot");
}

TEST_P(OnlineWindow, AFolderWhoseNameIsNoUtf8IsFilledAndSentWithItsFolders)
{
    const std::filesystem::path folder = localPath("Bilder \xe4");
    servers::writeFile(folder / "\xf6" / "größer.txt", "mehr");
    refreshLocal();
    LocalPane &pane = window->localPane();
    pane.OpenLocalRow(pane.model().findRow(textOfName("Bilder \xe4")), true);
    settle();
    ASSERT_EQ(bytesOfName(pane.folder()).toStdString(), folder.string() + '/');
    select(window->remotePane(), { "index.html" });
    press("cmd_download");
    EXPECT_EQ(servers::readFile(folder / "index.html"), servers::readFile(remote("index.html")));
    pane.view().selectRowNumbers({ pane.model().findRow(textOfName("\xf6")) });
    press("cmd_upload");
    EXPECT_EQ(queue(), "Download <-- index.html|Upload --> ?") << log();
    EXPECT_EQ(servers::readFile(remote("ö") / "größer.txt"), "mehr");
    std::filesystem::remove_all(folder); // QTemporaryDir cannot
}

TEST_P(OnlineWindow, WalksThroughTheFolders)
{
    FilePane &pane = window->remotePane();
    doubleClick(pane, "Fotos [2020]");
    EXPECT_EQ(remoteFolder(), QStringLiteral("/web/Fotos [2020]"));
    EXPECT_GE(rowOf(pane, "eins.jpg"), 0);
    doubleClick(pane, nullptr);
    EXPECT_EQ(remoteFolder(), QStringLiteral("/web"));
    button("tbToolBar_rem", "Cdup")->trigger();
    EXPECT_EQ(remoteFolder(), QStringLiteral("/"));
    EXPECT_GE(rowOf(pane, "web"), 0);
    auto *box = find<QComboBox>("cmbRemoteDir");
    ASSERT_GE(box->findText(QStringLiteral("/web/Fotos [2020]")), 0) << "the history knows it";
    focus(*box);
    box->setEditText(QStringLiteral("/web/ [Startseite]"));
    QTest::keyClick(box, Qt::Key_Return);
    settle();
    EXPECT_EQ(remoteFolder(), QStringLiteral("/web/"));
    for (const char *key : { "NewFolder", "Refresh", "SelectAll", "Cdup", "DeleteFiles" }) {
        EXPECT_TRUE(button("tbToolBar_rem", key)->isEnabled()) << key;
    }
}

TEST_P(OnlineWindow, RefreshSelectAllAndUpWorkByBarMenuAndKey)
{
    FilePane &pane = window->remotePane();
    const auto selectOne = [&] {
        select(pane, { "Fotos [2020]" });
        window->UpdateRemoteCommandStates();
        EXPECT_TRUE(enabled("mnuDelete"));
    };
    const auto expectNothingToDelete = [&] {
        EXPECT_FALSE(enabled("mnuDelete") || button("tbToolBar_rem", "DeleteFiles")->isEnabled());
        EXPECT_TRUE(button("tbToolBar_rem", "Refresh")->isEnabled());
    };
    servers::writeFile(remote("neu1.txt"), "x");
    selectOne();
    find<QComboBox>("cmbRemoteDir")->setEditText(QStringLiteral("/gibt es nicht")); // no Enter
    button("tbToolBar_rem", "Refresh")->trigger();
    settle();
    EXPECT_GE(rowOf(pane, "neu1.txt"), 0);
    EXPECT_EQ(remoteFolder(), QStringLiteral("/web"));
    expectNothingToDelete();
    selectOne();
    focus(pane.view());
    servers::writeFile(remote("neu2.txt"), "x");
    find<QMenu>("mnuActions")->popup(window->pos());
    EXPECT_TRUE(globals.active.RemoteListActive) << "a menu is no list";
    find<QMenu>("mnuActions")->close();
    item("mnuRefresh")->trigger();
    settle();
    EXPECT_GE(rowOf(pane, "neu2.txt"), 0);
    expectNothingToDelete();
    EXPECT_TRUE(pane.selectedRows().isEmpty());
    item("mnuSelectall")->trigger();
    EXPECT_EQ(pane.selectedRows().size(), pane.model().rowCount());
    pane.clearSelection();
    button("tbToolBar_rem", "SelectAll")->trigger();
    EXPECT_EQ(pane.selectedRows().size(), pane.model().rowCount());
    QTest::keyClick(&pane.view(), Qt::Key_Backspace);
    settle();
    EXPECT_EQ(remoteFolder(), QStringLiteral("/"));
}

TEST_P(OnlineWindow, AVanishedFolderCannotBeEntered)
{
    FilePane &pane = window->remotePane();
    std::filesystem::remove_all(remote("Fotos [2020]"));
    doubleClick(pane, "Fotos [2020]");
    EXPECT_EQ(remoteFolder(), QStringLiteral("/web"));
    EXPECT_EQ(rowOf(pane, "Fotos [2020]"), -1) << "what is shown is what is there";
    EXPECT_TRUE(window->remotePane().isReady());
}

TEST_P(OnlineWindow, DoubleClickOnAFileTransfersIt)
{
    QDir(home.path()).mkdir(QStringLiteral("ziel"));
    find<QComboBox>("cmbLocalDir")->setEditText(home.filePath(QStringLiteral("ziel")));
    settle();
    doubleClick(window->remotePane(), "Fotos [2020]");
    doubleClick(window->remotePane(), "eins.jpg");
    EXPECT_EQ(servers::readFile(home.filePath(QStringLiteral("ziel/eins.jpg")).toStdString()),
              "ein Bild");
    EXPECT_EQ(queue(), "Download <-- eins.jpg");

    servers::writeFile(home.filePath(QStringLiteral("ziel/zwei.txt")).toStdString(), "zwei");
    refreshLocal();
    doubleClick(window->localPane(), "zwei.txt");
    EXPECT_EQ(servers::readFile(remote("Fotos [2020]") / "zwei.txt"), "zwei");
}

TEST_P(OnlineWindow, SelectionOnTheServersSideDecidesAboutTheCommands)
{
    FilePane &pane = window->remotePane();
    select(pane, { "Fotos [2020]" });
    EXPECT_TRUE(item("mnu_rechte")->isEnabled() && item("mnuRename")->isEnabled());
    EXPECT_FALSE(item("mnuView")->isEnabled());
    pane.view().selectRowNumbers({ 0 });
    EXPECT_FALSE(item("mnu_rechte")->isEnabled() || item("mnuRename")->isEnabled());
    window->UpdateLocalCommandStates();
    EXPECT_FALSE(item("mnu_rechte")->isEnabled()) << "the pane that was updated last decides";
}

TEST_P(OnlineWindow, MakesRenamesAndDeletesOnTheServer)
{
    FilePane &pane = window->remotePane();
    focus(pane.view());
    item("mnuMakeDirectory")->trigger();
    settle();
    auto *editor = pane.view().viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr) << log();
    editor->setText(QStringLiteral("entwürfe"));
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_EQ(rowOf(pane, "entwürfe"), -1) << "the server was asked below the open editor";
    ASSERT_TRUE(QTest::qWaitFor([&] { return rowOf(pane, "entwürfe") >= 0; })) << log();
    settle();
    EXPECT_TRUE(std::filesystem::is_directory(remote("entwürfe")));

    select(pane, { "entwürfe" });
    prompts.expectConfirm(
        QStringLiteral("Sind Sie sicher, dass Sie 1 Dateien oder Ordner löschen möchten?"), true,
        QStringLiteral("Confirm Delete"),
        QStringLiteral("In den Ordnern: 0 Dateien und 0 Ordner."));
    QTest::keyClick(&pane.view(), Qt::Key_Delete);
    settle();
    EXPECT_FALSE(std::filesystem::exists(remote("entwürfe"))) << log();
    EXPECT_EQ(rowOf(pane, "entwürfe"), -1);
}

TEST_P(OnlineWindow, LogsOutByTheGreenLight)
{
    prompts.expectQuestion(QStringLiteral("Möchten Sie die Verbindung trennen?"), false);
    press("img_ampel_gruen");
    EXPECT_EQ(ftp.state(), FtpControl::Connected);
    prompts.expectQuestion(QStringLiteral("Möchten Sie die Verbindung trennen?"), true);
    press("img_ampel_gruen");
    EXPECT_EQ(ftp.state(), FtpControl::Closed);
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Tarvelo FTP"));
    EXPECT_EQ(window->remotePane().model().rowCount(), 0);
    EXPECT_TRUE(find<QWidget>("img_ampel_rot")->isVisible());
    EXPECT_EQ(remoteFolder(), QString());
    EXPECT_EQ(window->remotePane().view().hint(),
              QStringLiteral("Nicht mit einem Server verbunden."));
}

TEST_P(OnlineWindow, ClosingTheWindowEndsTheConnection)
{
    EXPECT_TRUE(window->close());
    EXPECT_EQ(ftp.state(), FtpControl::Closed);
}

TEST_P(OnlineWindow, AServerThatGoesAwayIsNoticed)
{
    select(window->remotePane(), { "Fotos [2020]" });
    EXPECT_TRUE(button("tbToolBar_rem", "DeleteFiles")->isEnabled());
    server->stop();
    ASSERT_TRUE(QTest::qWaitFor([this] { return ftp.state() == FtpControl::Closed; }, 10000));
    for (const char *key : keys) {
        EXPECT_FALSE(button("tbToolBar_rem", key)->isEnabled()) << key;
    }
    EXPECT_TRUE(find<QWidget>("img_ampel_rot")->isVisible());
    EXPECT_EQ(window->remotePane().model().rowCount(), 0);
    EXPECT_TRUE(item("mnuLogin")->isEnabled());
}
