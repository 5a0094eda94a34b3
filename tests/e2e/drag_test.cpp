#include "e2e/onlinebench.h"

#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

namespace {

class OnlineDrag : public OnlineBench {
protected:
    static QPoint centre(FilePane &pane, int row)
    {
        return pane.view().visualRect(pane.model().index(row, 0)).center();
    }
    static QPoint emptySpace(FilePane &pane)
    {
        return { 60, pane.view().viewport()->height() - 6 };
    }
    /// What the platform does while the mouse is moved to a place of a pane and let go there.
    /// @param hover  called while the mouse rests there
    static Qt::DropAction carry(const QMimeData *dragged, FilePane &target, const QPoint &to,
                                const std::function<void()> &hover)
    {
        QWidget *viewport = target.view().viewport();
        QDragEnterEvent enter(to, Qt::CopyAction, dragged, Qt::LeftButton, {});
        QCoreApplication::sendEvent(viewport, &enter);
        if (!enter.isAccepted()) {
            return Qt::IgnoreAction;
        }
        QDragMoveEvent over(to, Qt::CopyAction, dragged, Qt::LeftButton, {});
        QCoreApplication::sendEvent(viewport, &over);
        if (hover) {
            hover();
        }
        QDropEvent drop(to, Qt::CopyAction, dragged, Qt::LeftButton, {});
        QCoreApplication::sendEvent(viewport, &drop);
        return drop.isAccepted() ? drop.dropAction() : Qt::IgnoreAction;
    }
    /// Drags a row with the mouse; run does the rest.
    void drag(FilePane &pane, const char *name, const PaneView::DragRunner &run)
    {
        bool dragged = false;
        pane.view().setDragRunner([&](QDrag &drag) {
            dragged = true;
            return run(drag);
        });
        dragRow(pane, name);
        EXPECT_TRUE(dragged);
    }
    void drag(FilePane &pane, const char *name, FilePane &target, const QPoint &to,
              const std::function<void()> &hover = {})
    {
        drag(pane, name, [&](QDrag &drag) { return carry(drag.mimeData(), target, to, hover); });
    }
    static int marked(FilePane &pane)
    {
        int count = 0;
        for (const PaneRow &row : pane.model().rows()) {
            count += row.marked ? 1 : 0;
        }
        return count;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Servers, OnlineDrag, testing::Values(servers::Kind::PyFtpd),
                         servers::parameterName);

TEST_P(OnlineDrag, ADragToTheServerUploadsAfterAQuestion)
{
    LocalPane &pane = window->localPane();
    select(pane, { "gross.bin" });
    bool marks = false;
    prompts.expectConfirm(QStringLiteral("1 Dateien oder Ordner Uploaden?"), true,
                          QStringLiteral("Store..."));
    drag(pane, "gross.bin", window->remotePane(), emptySpace(window->remotePane()),
         [&] { marks = marked(pane) == 1; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return prompts.finished(); }));
    settle();
    EXPECT_TRUE(marks);
    EXPECT_EQ(servers::difference(localPath("gross.bin"), remote("gross.bin")), "");
    EXPECT_EQ(marked(pane), 0);
}

TEST_P(OnlineDrag, ADropOnAFolderRowGoesIntoThatFolder)
{
    LocalPane &pane = window->localPane();
    FilePane &target = window->remotePane();
    select(pane, { "gross.bin" });
    int highlighted = -1;
    const int row = rowOf(target, "Fotos [2020]");
    prompts.expectConfirm(QStringLiteral("1 Dateien oder Ordner Uploaden?"), true,
                          QStringLiteral("Store..."));
    drag(pane, "gross.bin", target, centre(target, row),
         [&] { highlighted = target.view().dropRow(); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return prompts.finished(); }));
    settle();
    EXPECT_EQ(highlighted, row);
    EXPECT_EQ(servers::difference(localPath("gross.bin"), remote("Fotos [2020]") / "gross.bin"),
              "");
}

TEST_P(OnlineDrag, ADragFromTheServerDownloads)
{
    FilePane &pane = window->remotePane();
    select(pane, { "Fotos [2020]" });
    prompts.expectConfirm(QStringLiteral("1 Dateien oder Ordner Downloaden?"), true,
                          QStringLiteral("Retrieve..."));
    drag(pane, "Fotos [2020]", window->localPane(), emptySpace(window->localPane()));
    ASSERT_TRUE(QTest::qWaitFor([&] { return prompts.finished(); }));
    settle();
    EXPECT_EQ(servers::readFile(localPath("Fotos [2020]") / "eins.jpg"), "ein Bild");
}

TEST_P(OnlineDrag, ACancelledDragUnmarks)
{
    FilePane &pane = window->remotePane();
    select(pane, { "Fotos [2020]" });
    drag(pane, "Fotos [2020]", [](QDrag &) { return Qt::IgnoreAction; });
    EXPECT_EQ(marked(pane), 0);
    EXPECT_EQ(queue(), "");
}

TEST_P(OnlineDrag, ADropOnItsOwnPaneDoesNothing)
{
    for (FilePane *pane : { static_cast<FilePane *>(&window->remotePane()),
                            static_cast<FilePane *>(&window->localPane()) }) {
        const char *name = pane == &window->remotePane() ? "Fotos [2020]" : "seite";
        select(*pane, { name });
        Qt::DropAction taken = Qt::CopyAction;
        drag(*pane, name, [&](QDrag &drag) {
            return taken = carry(drag.mimeData(), *pane, emptySpace(*pane), {});
        });
        EXPECT_EQ(taken, Qt::IgnoreAction) << name;
        EXPECT_EQ(marked(*pane), 0);
        EXPECT_EQ(queue(), "");
    }
}

TEST_P(OnlineDrag, FilesOfTheDesktopAreNotForTheLocalPane)
{
    QMimeData data;
    data.setUrls({ QUrl::fromLocalFile(home.path()) });
    LocalPane &pane = window->localPane();
    EXPECT_EQ(carry(&data, pane, emptySpace(pane), {}), Qt::IgnoreAction);
    // Nothing of it is left for the next drag.
    select(pane, { "gross.bin" });
    prompts.expectConfirm(QStringLiteral("1 Dateien oder Ordner Uploaden?"), true,
                          QStringLiteral("Store..."));
    drag(pane, "gross.bin", window->remotePane(), emptySpace(window->remotePane()));
    ASSERT_TRUE(QTest::qWaitFor([&] { return prompts.finished(); }));
    settle();
    EXPECT_EQ(queue(), "Upload --> gross.bin");
}

TEST_P(OnlineDrag, FilesOfTheDesktopAreUploadedAfterTheSameQuestion)
{
    QMimeData data;
    data.setUrls(
        { QUrl::fromLocalFile(QString::fromStdString(local) + QStringLiteral("/gross.bin")),
          QUrl::fromLocalFile(QString::fromStdString(local) + QStringLiteral("/seite")) });
    prompts.expectConfirm(QStringLiteral("2 Dateien oder Ordner Uploaden?"), true,
                          QStringLiteral("Store..."));
    FilePane &target = window->remotePane();
    // Another program may refuse to hand over its data a second time.
    EXPECT_EQ(carry(&data, target, emptySpace(target), [&data] { data.clear(); }), Qt::CopyAction);
    ASSERT_TRUE(QTest::qWaitFor([&] { return prompts.finished(); }));
    settle();
    EXPECT_EQ(servers::difference(localPath("gross.bin"), remote("gross.bin")), "") << log();
    EXPECT_EQ(servers::difference(localPath("seite"), remote("seite")), "");
}
