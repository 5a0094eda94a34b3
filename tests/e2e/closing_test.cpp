// Closing the window and aborting in the middle of a transfer, on real servers.
#include "e2e/onlinebench.h"

#include "transfer/queuemodel.h"

#include <QLabel>
#include <QProgressBar>

namespace {

class BusyWindow : public OnlineBench {
protected:
    static constexpr std::int64_t Size = 1'500'000'000;

    /// Starts moving a big file and runs an action as soon as its bytes flow.
    void during(bool download, const std::function<void()> &action)
    {
        const std::filesystem::path source = download ? remote("riesig") : localPath("riesig");
        QFile file(QString::fromStdString(source.string()));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(Size)); // a hole
        file.close();
        server->adoptFiles();
        button(download ? "tbToolBar_rem" : "tbToolBar", "Refresh")->trigger();
        settle();
        select(download ? static_cast<FilePane &>(window->remotePane())
                        : static_cast<FilePane &>(window->localPane()),
               { "riesig" });
        QObject::connect(&ftp, &FtpControl::replyEvent, window.get(), [&](const FtpEvent &event) {
            if (event.bytes > 0 && !std::exchange(m_acted, true)) {
                action();
            }
        });
        find<QAbstractButton>(download ? "cmd_download" : "cmd_upload")->click();
        EXPECT_TRUE(m_acted);
    }
    QString label(const char *name) const { return find<QLabel>(name)->text(); }
    /// The one row says that the file did not come, and what came is a part of it.
    void expectBroken(bool download)
    {
        const QAbstractItemModel *rows = find<QTreeView>("lvwStatus")->model();
        ASSERT_EQ(rows->rowCount(), 1) << log();
        EXPECT_TRUE(rows->index(0, 0).data(QueueModel::FailedRole).toBool());
        const auto target = download ? localPath("riesig") : remote("riesig");
        EXPECT_LT(std::filesystem::file_size(target), static_cast<std::uintmax_t>(Size));
    }

private:
    bool m_acted = false;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Servers, BusyWindow,
                         testing::Values(servers::Kind::Vsftpd, servers::Kind::PyFtpd),
                         servers::parameterName);

TEST_P(BusyWindow, ClosingItEndsTheDownloadFirst)
{
    during(true, [this] { EXPECT_FALSE(window->close()) << "its callers are on the stack"; });
    expectBroken(true);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window->isVisible(); }));
    EXPECT_EQ(ftp.state(), FtpControl::Closed);
}

TEST_P(BusyWindow, ClosingItEndsTheUploadFirst)
{
    during(false, [this] { EXPECT_FALSE(window->close()); });
    expectBroken(false);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window->isVisible(); }));
    EXPECT_EQ(ftp.state(), FtpControl::Closed);
}

TEST_P(BusyWindow, AbortingLeavesItReady)
{
    const QString title = window->windowTitle();
    during(true, [this, title] {
        EXPECT_TRUE(window->windowTitle().endsWith(QStringLiteral(" % - ") + title));
        EXPECT_TRUE(find<QWidget>("cmdAbort")->isEnabled());
        EXPECT_FALSE(find<QWidget>("cmbLocalDir")->isEnabled());
        EXPECT_FALSE(find<QWidget>("cmbRemoteDir")->isEnabled());
        EXPECT_EQ(label("lblFileName"), QStringLiteral("Datei: riesig"));
        EXPECT_EQ(label("lblFileSize"), QStringLiteral("von 1430,5 MB"));
        EXPECT_NE(label("lblRate"), QString());
        EXPECT_GT(find<QProgressBar>("Progress")->maximum(), 0);
        prompts.expectConfirm(QStringLiteral("Beim Abbrechen wird die Verbindung getrennt."), true,
                              QStringLiteral("Abbrechen"));
        find<QAbstractButton>("cmdAbort")->click();
    });
    expectBroken(true);
    settle();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Tarvelo FTP"));
    for (const char *name : { "lblFileName", "lblFileSize", "lblRate" }) {
        EXPECT_EQ(label(name), QString()) << name;
    }
    EXPECT_TRUE(find<QWidget>("cmbLocalDir")->isEnabled());
    EXPECT_TRUE(find<QWidget>("cmbRemoteDir")->isEnabled());
    EXPECT_FALSE(find<QWidget>("cmdAbort")->isEnabled());
    EXPECT_TRUE(item("mnuLogin")->isEnabled());
    for (const char *key : { "NewFolder", "Refresh", "SelectAll" }) {
        EXPECT_TRUE(button("tbToolBar", key)->isEnabled()) << key;
    }
}
