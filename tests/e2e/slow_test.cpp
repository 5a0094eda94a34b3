// Commands that keep the user waiting, and how they are given up.
#include "e2e/wiredwindow.h"

#include "transfer/progresspanel.h"

#include <QTimer>
#include <QTreeView>

namespace {

class SlowWindow : public WiredWindow {
protected:
    /// From now on a command is slow as soon as the window gets round to looking at it.
    void hurry() { find<ProgressPanel>("frame_transfer")->setPatience(0); }
    bool mayAbort() const { return find<QWidget>("cmdAbort")->isEnabled(); }
    /// Aborts what runs as soon as that is possible.
    void abortSoon()
    {
        hurry();
        prompts.expectConfirm(QStringLiteral("Beim Abbrechen wird die Verbindung getrennt."), true,
                              QStringLiteral("Abbrechen"));
        QObject::connect(&m_user, &QTimer::timeout, &m_user, [this] {
            if (mayAbort()) {
                m_user.stop();
                EXPECT_FALSE(enabled("mnu_einstell")) << "it would do nothing";
                click("cmdAbort");
            }
        });
        m_user.start(5);
        // Otherwise the time-out of the connection would end it, and the test would hang so long.
        QTimer::singleShot(5000, &m_user, [this] { ftp.close(); });
    }
    void expectReady()
    {
        EXPECT_TRUE(prompts.finished()) << "it could not be aborted";
        EXPECT_EQ(ftp.state(), FtpControl::Closed);
        EXPECT_FALSE(ftp.isBusy());
        EXPECT_FALSE(mayAbort());
        EXPECT_TRUE(enabled("mnuLogin"));
        EXPECT_TRUE(enabled("mnu_einstell"));
        EXPECT_TRUE(button("tbToolBar", "Refresh")->isEnabled());
        EXPECT_FALSE(button("tbToolBar_rem", "Refresh")->isEnabled());
    }
    void expectDeletion(int count)
    {
        const QString text
            = QStringLiteral("Sind Sie sicher, dass Sie %1 Dateien oder Ordner löschen möchten?");
        prompts.expectConfirm(text.arg(count), true, QStringLiteral("Confirm Delete"));
    }
    /// Deletes many local files and acts when the first of them have gone.
    void deleteLocalFiles(const std::function<void()> &action)
    {
        for (int number = 0; number < Many; ++number) {
            servers::writeFile(localPath(("datei" + std::to_string(number)).c_str()), "x");
        }
        refreshLocal();
        window->localPane().selectAll();
        expectDeletion(Many + 1);
        bool acted = false;
        const QObject here;
        QObject::connect(&window->localPane().model(), &QAbstractItemModel::rowsRemoved, &here,
                         [&] {
                             if (!std::exchange(acted, true)) {
                                 action();
                             }
                         });
        button("tbToolBar", "DeleteFiles")->trigger();
        EXPECT_TRUE(acted);
    }
    int filesLeft() const
    {
        return static_cast<int>(
            QDir(home.filePath(QStringLiteral("lokal"))).entryList(QDir::Files).size());
    }

    static constexpr int Many = 500;

private:
    QTimer m_user;
};

} // namespace

TEST_F(SlowWindow, ALoginWithoutAnAnswerCanBeAborted)
{
    server.on({ .verb = "USER", .action = servers::Rule::Stall });
    open(fields());
    abortSoon();
    window->load_commands();
    expectReady();
}

TEST_F(SlowWindow, AListingWithoutAnAnswerCanBeAborted)
{
    login();
    server.on({ .verb = "MLSD", .action = servers::Rule::Stall });
    abortSoon();
    button("tbToolBar_rem", "Refresh")->trigger();
    expectReady();
}

TEST_F(SlowWindow, ADeletionOnTheServerCanBeAborted)
{
    login();
    server.on({ .verb = "DELE", .action = servers::Rule::Stall });
    select(window->remotePane(), { "da.txt" });
    expectDeletion(1);
    abortSoon();
    button("tbToolBar_rem", "DeleteFiles")->trigger();
    expectReady();
    EXPECT_TRUE(std::filesystem::exists(server.root() / "da.txt"));
}

TEST_F(SlowWindow, ARenamingWithoutAnAnswerCanBeAborted)
{
    login();
    server.on({ .verb = "RNFR", .action = servers::Rule::Stall });
    Q_EMIT window->remotePane().model().captionEdited(rowOf(window->remotePane(), "da.txt"),
                                                      QStringLiteral("dort.txt"));
    abortSoon();
    ASSERT_TRUE(QTest::qWaitFor([this] { return ftp.state() == FtpControl::Closed; }));
    expectReady();
}

TEST_F(SlowWindow, ADeletionOnThisComputerIsStoppedAndTheConnectionStays)
{
    login();
    hurry();
    deleteLocalFiles([this] {
        EXPECT_TRUE(mayAbort());
        click("cmdAbort");
    });
    EXPECT_GT(filesLeft(), 0);
    EXPECT_EQ(ftp.state(), FtpControl::Connected);
    EXPECT_FALSE(mayAbort());
    EXPECT_TRUE(button("tbToolBar_rem", "Refresh")->isEnabled());
}

TEST_F(SlowWindow, ALostLineLeavesTheBarsOffUntilALocalDeletionEnds)
{
    login();
    deleteLocalFiles([this] {
        ftp.close();
        ASSERT_TRUE(QTest::qWaitFor([this] { return enabled("mnuLogin"); }));
        for (const char *bar : bars) {
            for (const char *key : keys) {
                EXPECT_FALSE(button(bar, key)->isEnabled()) << bar << key;
            }
        }
    });
    EXPECT_EQ(filesLeft(), 0);
    EXPECT_TRUE(button("tbToolBar", "Refresh")->isEnabled());
    EXPECT_FALSE(button("tbToolBar_rem", "Refresh")->isEnabled());
}
