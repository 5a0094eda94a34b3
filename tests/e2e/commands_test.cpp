// Commands of the main window that need both panes, a server and real dialogs.
#include "e2e/onlinebench.h"

#include "fileops/frm_rechte.h"
#include "support/modalbox.h"
#include "support/urlcatcher.h"
#include "transfer/frmRename.h"
#include "transfer/frmTransfer.h"

#include <QLineEdit>

namespace {

class OnlineCommands : public OnlineBench {
protected:
    template <class Dialog> static void press(Dialog &dialog, const char *name)
    {
        auto *pressed = dialog.template findChild<QAbstractButton *>(QString::fromLatin1(name));
        ASSERT_NE(pressed, nullptr) << name;
        pressed->click();
    }
    using OnlineBench::press;
    void expectDeletion(int count, bool answer = false)
    {
        prompts.expectConfirm(
            QStringLiteral("Sind Sie sicher, dass Sie %1 Dateien oder Ordner löschen möchten?")
                .arg(count),
            answer, QStringLiteral("Confirm Delete"));
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Servers, OnlineCommands,
                         testing::Values(servers::Kind::Vsftpd, servers::Kind::PyFtpd),
                         servers::parameterName);

TEST_P(OnlineCommands, AConflictIsSolvedInTheRealDialogs)
{
    servers::writeFile(remote("gross.bin"), "die alte Fassung");
    server->adoptFiles();
    button("tbToolBar_rem", "Refresh")->trigger();
    settle();
    select(window->localPane(), { "gross.bin" });
    QString asked;
    const WhenModalOpens<frmTransfer> first([&asked](frmTransfer &dialog) {
        asked = dialog.findChild<QWidget *>(QStringLiteral("lblMessage"))
                    ->property("text")
                    .toString();
        press(dialog, "cmdRename");
    });
    std::unique_ptr<WhenModalOpens<frmTransfer>> again;
    const WhenModalOpens<frmRename> rename([&again](frmRename &dialog) {
        auto *name = dialog.findChild<QLineEdit *>(QStringLiteral("txtRename"));
        EXPECT_EQ(name->text(), QStringLiteral("gross.bin"));
        name->setText(QStringLiteral("gross.alt"));
        again = std::make_unique<WhenModalOpens<frmTransfer>>(
            [](frmTransfer &back) { press(back, "cmdTransfer"); });
        press(dialog, "cmdOK");
    });
    press("cmd_upload");
    EXPECT_TRUE(asked.startsWith(QStringLiteral("Überschreiben /web/gross.bin(16) mit ")));
    EXPECT_EQ(servers::readFile(remote("gross.alt")), "die alte Fassung") << log();
    EXPECT_EQ(servers::difference(localPath("gross.bin"), remote("gross.bin")), "");
    EXPECT_EQ(queue(), "Upload --> gross.bin");
}

TEST_P(OnlineCommands, DeletingGoesToTheListUsedLast)
{
    servers::writeFile(remote("fern.txt"), "x");
    servers::writeFile(localPath("nah.txt"), "x");
    server->adoptFiles();
    button("tbToolBar_rem", "Refresh")->trigger();
    settle();
    refreshLocal();
    select(window->remotePane(), { "fern.txt" });
    select(window->localPane(), { "nah.txt", "gross.bin" });
    focus(window->remotePane().view());
    window->UpdateRemoteCommandStates();
    expectDeletion(1);
    item("mnuDelete")->trigger();
    EXPECT_TRUE(prompts.finished());
    select(window->localPane(), { "nah.txt", "gross.bin" });
    focus(window->localPane().view());
    expectDeletion(2);
    item("mnuDelete")->trigger();
    EXPECT_TRUE(prompts.finished());
    // No list was used: no question comes, although rows are selected on both sides.
    select(window->localPane(), { "nah.txt" });
    globals.active = {};
    item("mnuDelete")->trigger();
    EXPECT_TRUE(std::filesystem::exists(remote("fern.txt")));
    EXPECT_TRUE(std::filesystem::exists(localPath("nah.txt")));
}

TEST_P(OnlineCommands, TheServersToolBarNeedsNoActiveList)
{
    servers::writeFile(remote("fern.txt"), "x");
    server->adoptFiles();
    button("tbToolBar_rem", "Refresh")->trigger();
    settle();
    FilePane &pane = window->remotePane();
    focus(window->localPane().view()); // the other list is the active one
    select(pane, { "fern.txt" });
    expectDeletion(1);
    button("tbToolBar_rem", "DeleteFiles")->trigger();
    EXPECT_TRUE(prompts.finished());
    select(pane, { "fern.txt" });
    UrlCatcher desktop(QStringLiteral("file"));
    const QUrl fetched
        = QUrl::fromLocalFile(globals.folders.temporary + QStringLiteral("fern.txt"));
    button("tbToolBar_rem", "ViewFile")->trigger();
    settle();
    EXPECT_EQ(desktop.opened, QList<QUrl> { fetched }) << log();
    focus(pane.view());
    window->UpdateRemoteCommandStates();
    item("mnuView")->trigger();
    settle();
    EXPECT_EQ(desktop.opened, (QList<QUrl> { fetched, fetched })) << log();
    focus(window->localPane().view());
    button("tbToolBar_rem", "NewFolder")->trigger();
    settle();
    EXPECT_TRUE(std::filesystem::is_directory(remote("Ordner"))) << log();
    EXPECT_NE(pane.view().viewport()->findChild<QLineEdit *>(), nullptr) << "its name is edited";
}

TEST_P(OnlineCommands, AFolderThatCannotBeEnteredIsToldInTheLogAlone)
{
    auto *box = find<QComboBox>("cmbRemoteDir");
    focus(*box);
    box->setEditText(QStringLiteral("/geheim"));
    QTest::keyClick(box, Qt::Key_Return);
    settle();
    EXPECT_NE(log().find("550"), std::string::npos) << log();
    EXPECT_GE(rowOf(window->remotePane(), "Fotos [2020]"), 0);
}

TEST_P(OnlineCommands, NoTransferStartsWhileADeletionRuns)
{
    servers::writeFile(localPath("nah.txt"), "x");
    refreshLocal();
    select(window->localPane(), { "nah.txt" });
    focus(window->localPane().view());
    expectDeletion(1);
    prompts.meanwhile([this] {
        Q_EMIT window->localPane().uploadWanted();
        window->remotePane().selectAll();
        Q_EMIT window->remotePane().downloadWanted();
    });
    item("mnuDelete")->trigger();
    settle();
    EXPECT_EQ(queue(), "");
    EXPECT_FALSE(std::filesystem::exists(remote("nah.txt")));
}

TEST_P(OnlineCommands, AbortingStaysPossibleThroughARunOfFiles)
{
    QDir(QString::fromStdString(local)).mkdir(QStringLiteral("viele"));
    for (int number = 0; number < 20; ++number) {
        servers::writeFile(localPath("viele") / ("datei" + std::to_string(number)), "inhalt");
    }
    find<QComboBox>("cmbLocalDir")
        ->setEditText(QString::fromStdString(localPath("viele").string()));
    settle();
    window->localPane().selectAll();
    int meanwhile = 0;
    int off = 0;
    const auto look = [&] {
        if (ftp.isBusy() && ++meanwhile > 1) {
            off += find<QWidget>("cmdAbort")->isEnabled() ? 0 : 1;
        }
    };
    QObject::connect(find<QTreeView>("lvwStatus")->model(), &QAbstractItemModel::rowsInserted,
                     window.get(), look);
    press("cmd_upload");
    EXPECT_GT(meanwhile, 5) << "rows come while the others are on their way";
    EXPECT_EQ(off, 0);
    EXPECT_FALSE(find<QWidget>("cmdAbort")->isEnabled());
    EXPECT_EQ(find<QTreeView>("lvwStatus")->model()->rowCount(), 20);
}

TEST_P(OnlineCommands, PermissionsGoThroughTheRealDialog)
{
    const std::filesystem::path file = remote("skript.cgi");
    servers::writeFile(file, "#!/bin/sh\n");
    server->adoptFiles();
    std::filesystem::permissions(file, std::filesystem::perms(0644));
    FilePane &pane = window->remotePane();
    button("tbToolBar_rem", "Refresh")->trigger();
    settle();
    select(pane, { "skript.cgi" });
    focus(pane.view());
    window->UpdateRemoteCommandStates();
    {
        const WhenModalOpens<frm_rechte> cancelled(
            [](frm_rechte &dialog) { press(dialog, "cmd_abbrechen"); });
        item("mnu_rechte")->trigger();
        settle();
    }
    EXPECT_EQ(queue(), "");
    const WhenModalOpens<frm_rechte> confirmed(
        [](frm_rechte &dialog) { press(dialog, "cmd_chmod"); });
    item("mnu_rechte")->trigger();
    settle();
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0755)) << log();
    EXPECT_EQ(pane.model().row(rowOf(pane, "skript.cgi")).permissions, QStringLiteral("755"));
    EXPECT_EQ(queue(), "Dateirechte > setzen auf");
    EXPECT_TRUE(item("mnu_rechte")->isEnabled() && item("mnuRename")->isEnabled())
        << "the row is still selected";
}

TEST_P(OnlineCommands, ARowOfTheServerIsRenamedByTheMenu)
{
    FilePane &pane = window->remotePane();
    select(pane, { "Fotos [2020]" });
    focus(pane.view());
    window->UpdateRemoteCommandStates();
    item("mnuRename")->trigger();
    auto *editor = pane.view().viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    editor->setText(QStringLiteral("Fotos [2021]"));
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return rowOf(pane, "Fotos [2021]") >= 0; })) << log();
    settle();
    EXPECT_EQ(servers::readFile(remote("Fotos [2021]") / "eins.jpg"), "ein Bild");
}

TEST_P(OnlineCommands, AnEditThatIsGivenUpKeepsTheNewFoldersName)
{
    FilePane &pane = window->remotePane();
    focus(pane.view());
    item("mnuMakeDirectory")->trigger();
    settle();
    auto *editor = pane.view().viewport()->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr) << log();
    editor->setText(QStringLiteral("anders"));
    QTest::keyClick(editor, Qt::Key_Escape);
    settle();
    EXPECT_TRUE(std::filesystem::is_directory(remote("Ordner")));
    EXPECT_FALSE(std::filesystem::exists(remote("anders")));
    EXPECT_GE(rowOf(pane, "Ordner"), 0);
    EXPECT_EQ(rowOf(pane, "anders"), -1);
}
