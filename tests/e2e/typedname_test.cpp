// Names that are still being typed when something else begins.
#include "e2e/wiredwindow.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QTimer>

namespace {

class TypedName : public WiredWindow {
protected:
    /// Begins to rename a row and types, without Enter.
    void type(FilePane &pane, const char *name, const char *newName)
    {
        pane.editCaption(rowOf(pane, name));
        auto *editor = pane.view().findChild<QLineEdit *>();
        ASSERT_NE(editor, nullptr);
        editor->setText(QString::fromLatin1(newName));
    }
    bool isOnServer(const char *name) const
    {
        return std::filesystem::exists(server.root() / name);
    }
};

} // namespace

TEST_F(TypedName, CountsBeforeACommandListsItsFolder)
{
    login();
    type(window->remotePane(), "da.txt", "dort.txt");
    button("tbToolBar_rem", "Refresh")->trigger();
    EXPECT_TRUE(isOnServer("dort.txt")) << log().toStdString();
    EXPECT_GE(rowOf(window->remotePane(), "dort.txt"), 0);
    type(window->localPane(), "neu.txt", "alt.txt");
    button("tbToolBar", "Refresh")->trigger();
    EXPECT_TRUE(std::filesystem::exists(localPath("alt.txt")));
}

TEST_F(TypedName, CountsBeforeAnUploadBegins)
{
    login();
    select(window->localPane(), { "neu.txt" });
    type(window->remotePane(), "da.txt", "dort.txt");
    click("cmd_upload");
    EXPECT_TRUE(isOnServer("dort.txt")) << log().toStdString();
    EXPECT_TRUE(isOnServer("neu.txt"));
}

TEST_F(TypedName, CountsBeforeTheListIsSorted)
{
    login();
    for (const bool remote : { true, false }) {
        FilePane &pane
            = remote ? static_cast<FilePane &>(window->remotePane()) : window->localPane();
        type(pane, remote ? "da.txt" : "neu.txt", "anders.txt");
        Q_EMIT pane.view().columnClicked(ColumnSize);
        EXPECT_TRUE(QTest::qWaitFor([&] { return rowOf(pane, "anders.txt") > 0; })) << remote;
    }
    EXPECT_TRUE(isOnServer("anders.txt"));
    EXPECT_TRUE(std::filesystem::exists(localPath("anders.txt")));
}

TEST_F(TypedName, CountsInTheFolderThatIsLeft)
{
    login();
    type(window->localPane(), "neu.txt", "alt.txt");
    click("cmd_desktop"); // takes no focus from the list
    EXPECT_TRUE(std::filesystem::exists(localPath("alt.txt")));
}

TEST_F(TypedName, IsNotDroppedSilentlyWhenSomethingRuns)
{
    login();
    server.on({ .verb = "MLSD", .action = servers::Rule::Stall });
    const std::size_t before = server.lines("MLSD").size();
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, &user, [&] {
        if (server.lines("MLSD").size() == before) {
            return;
        }
        user.stop();
        for (FilePane *pane : { static_cast<FilePane *>(&window->remotePane()),
                                static_cast<FilePane *>(&window->localPane()) }) {
            Q_EMIT pane->model().captionEdited(1, QStringLiteral("anders.txt"));
        }
        QTimer::singleShot(0, &user, [&] { ftp.close(); });
    });
    user.start(5);
    button("tbToolBar_rem", "Refresh")->trigger();
    for (const char *name : { "da.txt", "neu.txt" }) {
        EXPECT_TRUE(log().contains(QLatin1String(name) + QStringLiteral(": Nicht umbenannt")))
            << log().toStdString();
    }
    EXPECT_TRUE(isOnServer("da.txt"));
    EXPECT_TRUE(std::filesystem::exists(localPath("neu.txt")));
}
