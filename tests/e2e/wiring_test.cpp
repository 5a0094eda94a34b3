// What the window hears from its session, on a server that can be told to fail.
#include "connections/frmConnect.h"
#include "dialogs/frm_einstellungen.h"
#include "e2e/wiredwindow.h"
#include "support/modalbox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QPushButton>
#include <QRadioButton>

namespace {

/// Takes the files that would be opened with the desktop's programs.
class DesktopStandIn : public QObject {
    Q_OBJECT

public:
    DesktopStandIn() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open"); }
    ~DesktopStandIn() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

public Q_SLOTS:
    void open(const QUrl & /*address*/) { }
};

} // namespace

TEST_F(WiredWindow, ConnectingEmptiesTheLogWithThePasswordOfTheCommandLine)
{
    login();
    EXPECT_TRUE(log().startsWith(QStringLiteral("Connecting ..."))) << log().toStdString();
    EXPECT_FALSE(log().contains(QString::fromStdString(server.password()))) << log().toStdString();
}

TEST_F(WiredWindow, TheOptionsFollowTheConnection)
{
    login(QStringLiteral("0"));
    EXPECT_TRUE(find<QRadioButton>("op_transfer_1")->isChecked());
    EXPECT_FALSE(find<QWidget>("cmd_dir_merken_lokal")->isEnabled());
    EXPECT_FALSE(find<QWidget>("cmd_dir_merken_remote")->isEnabled()) << "there is no profile";
}

TEST_F(WiredWindow, RepliesAboutSpaceAreExplained)
{
    login();
    server.fault.diskFullAfter = 0;
    server.fault.diskFullReply = "552 Quota exceeded";
    select(window->localPane(), { "neu.txt" });
    click("cmd_upload");
    EXPECT_TRUE(
        log().contains(QStringLiteral("Ihr Speicherplatz auf dem Server reicht nicht aus.")))
        << log().toStdString();
}

TEST_F(WiredWindow, AnEditThatFoundNoLineIsOfferedAfterTheNextLogin)
{
    login();
    DesktopStandIn desktop;
    select(window->remotePane(), { "da.txt" });
    button("tbToolBar_rem", "ViewFile")->trigger();
    ftp.close();
    file("temp/da.txt", "neu");
    ASSERT_TRUE(
        QTest::qWaitFor([this] { return log().contains(QStringLiteral("nicht zurückgespielt")); }));
    expectAdvice();
    window->load_commands();
    prompts.expectQuestion(QStringLiteral("/da.txt\r\nwurde geändert – zum Server zurückspielen?"),
                           true);
    EXPECT_TRUE(QTest::qWaitFor([this] { return prompts.finished() && !ftp.isBusy(); }));
    EXPECT_EQ(servers::readFile(server.root() / "da.txt"), "neu");
}

TEST_F(WiredWindow, WhatIsSelectedStaysSoWhenAnEditGoesBack)
{
    for (const char *name : { "eins.txt", "zwei.txt" }) {
        servers::writeFile(server.root() / name, "x");
    }
    login();
    DesktopStandIn desktop;
    select(window->remotePane(), { "da.txt" });
    button("tbToolBar_rem", "ViewFile")->trigger();
    select(window->remotePane(), { "eins.txt", "zwei.txt" });
    prompts.expectQuestion(QStringLiteral("/da.txt\r\nwurde geändert – zum Server zurückspielen?"),
                           true);
    file("temp/da.txt", "länger als zuvor");
    ASSERT_TRUE(QTest::qWaitFor([this] { return prompts.finished() && !ftp.isBusy(); }));
    RemotePane &pane = window->remotePane();
    EXPECT_EQ(pane.model().row(rowOf(pane, "da.txt")).size, QStringLiteral("17"));
    EXPECT_EQ(pane.selectedRows(),
              (QList<int> { rowOf(pane, "eins.txt"), rowOf(pane, "zwei.txt") }));
}

TEST_F(WiredWindow, BeendenClosesItAlsoWhileConnected)
{
    login();
    item("mnuExit")->trigger();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(ftp.state(), FtpControl::Closed);
}

TEST_F(WiredWindow, ClosingItWhileConnectingShowsNoBox)
{
    server.on({ .verb = "USER", .action = servers::Rule::Stall });
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, &closer, [&] {
        if (!server.lines("USER").empty()) {
            closer.stop();
            EXPECT_FALSE(window->close()) << "the login is on the stack";
        }
    });
    closer.start(5);
    start();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window->isVisible(); }));
    EXPECT_EQ(ftp.state(), FtpControl::Closed);
}

TEST_F(WiredWindow, WhileACommandRunsTheOthersDoNothing)
{
    servers::writeFile(server.root() / "ordner/x", "x");
    login();
    focus(window->remotePane().view());
    select(window->remotePane(), { "da.txt" });
    server.clearCommands();
    bool tried = false;
    const auto tryAll = [&] {
        tried = true;
        for (const char *name :
             { "mnuRename", "mnuMakeDirectory", "mnuDelete", "mnuView", "mnu_rechte", "mnuRefresh",
               "mnuLogout", "mnuLogin", "mnu_einstell" }) {
            item(name)->setEnabled(true);
            item(name)->trigger();
        }
        for (const char *bar : { "tbToolBar", "tbToolBar_rem" }) {
            for (const char *key : { "NewFolder", "ViewFile", "DeleteFiles", "Refresh", "Cdup" }) {
                button(bar, key)->setEnabled(true);
                button(bar, key)->trigger();
            }
        }
        click("cmd_upload");
        click("cmd_download");
        for (FilePane *pane : { static_cast<FilePane *>(&window->localPane()),
                                static_cast<FilePane *>(&window->remotePane()) }) {
            QTest::keyClick(&pane->view(), Qt::Key_Delete);
            QTest::keyClick(&pane->view(), Qt::Key_Backspace);
            Q_EMIT pane->model().captionEdited(1, QStringLiteral("anders"));
        }
    };
    server.fault.replyDelay = 300;
    QTimer::singleShot(0, window.get(), [&] {
        EXPECT_TRUE(ftp.isBusy());
        tryAll();
    });
    window->DoRemoteRefresh(ftp.currentFolder());
    server.fault.replyDelay = 0;
    EXPECT_TRUE(tried);
    for (const char *verb : { "MKD", "DELE", "RETR", "STOR", "RNFR", "SITE", "CDUP", "QUIT" }) {
        EXPECT_TRUE(server.lines(verb).empty()) << verb;
    }
    EXPECT_EQ(rowOf(window->localPane(), "Ordner"), -1);
    EXPECT_EQ(window->localPane().folder(), home.filePath(QStringLiteral("lokal/")));
}

TEST_F(WiredWindow, ADoubleClickStartsNoTransferInsideADeletion)
{
    login();
    select(window->localPane(), { "neu.txt" });
    server.clearCommands();
    prompts
        .expectConfirm(
            QStringLiteral("Sind Sie sicher, dass Sie 1 Dateien oder Ordner löschen möchten?"),
            false, QStringLiteral("Confirm Delete"))
        .meanwhile([this] {
            Q_EMIT window->localPane().uploadWanted();
            Q_EMIT window->remotePane().downloadWanted();
        });
    button("tbToolBar", "DeleteFiles")->trigger();
    EXPECT_TRUE(server.lines("STOR").empty());
    EXPECT_FALSE(std::filesystem::exists(server.root() / "neu.txt"));
    EXPECT_TRUE(std::filesystem::exists(localPath("neu.txt")));
}

TEST_F(WiredWindow, TheRedLightAndLoginOpenTheDialog)
{
    for (const bool light : { true, false }) {
        const WhenModalOpens<frmConnect> dialog([](frmConnect &opened) { opened.close(); });
        light ? click("img_ampel_rot") : item("mnuLogin")->trigger();
    }
    EXPECT_EQ(server.sessions(), 0) << "cancelled, it changes nothing";
}

TEST_F(WiredWindow, ShowingHiddenFilesListsTheLocalPaneAgain)
{
    servers::writeFile(std::filesystem::path(home.path().toStdString()) / ".versteckt", "x");
    refreshLocal();
    EXPECT_EQ(rowOf(window->localPane(), ".versteckt"), -1);
    const WhenModalOpens<frm_einstellungen> dialog([](frm_einstellungen &opened) {
        opened.findChild<QCheckBox *>(QStringLiteral("chk_hidden"))->setChecked(true);
        opened.findChild<QPushButton *>(QStringLiteral("cmd_ok"))->click();
    });
    item("mnu_einstell")->trigger();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !window->localPane().isReading(); }));
    EXPECT_GE(rowOf(window->localPane(), ".versteckt"), 0);
}

#include "wiring_test.moc"
