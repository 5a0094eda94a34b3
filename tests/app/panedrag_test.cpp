#include "app/panedrag.h"
#include "common/globals.h"
#include "remote/itemkind.h"

#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>
#include <gtest/gtest.h>
#include <memory>

TEST(PaneDrag, ADragKnowsItsPane)
{
    const std::unique_ptr<QMimeData> data(PaneDrag::rowsOf(QStringLiteral("lvwRemote")));
    EXPECT_TRUE(PaneDrag::isFrom(*data, QStringLiteral("lvwRemote")));
    EXPECT_FALSE(PaneDrag::isFrom(*data, QStringLiteral("lvwLocal")));
    EXPECT_FALSE(PaneDrag::isFrom(QMimeData(), QStringLiteral("lvwLocal")));
    QMimeData foreign;
    foreign.setData(data->formats().value(0), "lvwRemote 1");
    EXPECT_FALSE(PaneDrag::isFrom(foreign, QStringLiteral("lvwRemote"))) << "of another process";
}

TEST(PaneDrag, OtherProgramsGetTheLocalFiles)
{
    const std::unique_ptr<QMimeData> data(
        PaneDrag::rowsOf(QStringLiteral("lvwLocal"), { QStringLiteral("/a/b #1%.txt") }));
    ASSERT_EQ(data->urls().size(), 1);
    EXPECT_EQ(data->urls().at(0).toLocalFile(), QStringLiteral("/a/b #1%.txt"));
    EXPECT_TRUE(PaneDrag::localFiles(*data).isEmpty())
        << "the panes' own drags are no foreign files";
}

TEST(PaneDrag, FilesOfTheDesktopBecomeMarkedItems)
{
    const QTemporaryDir root;
    ASSERT_TRUE(QDir(root.path()).mkpath(QStringLiteral("bilder [alt]")));
    QFile file(root.filePath(QStringLiteral("a#b.txt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("12345");
    file.close();
    QMimeData data;
    data.setUrls({ QUrl::fromLocalFile(file.fileName()),
                   QUrl::fromLocalFile(root.filePath(QStringLiteral("bilder [alt]/"))),
                   QUrl::fromLocalFile(root.filePath(QStringLiteral("weg"))),
                   QUrl(QStringLiteral("https://example.invalid/x")),
                   QUrl::fromLocalFile(QStringLiteral("/")) });
    const MarkedItemList marked = PaneDrag::markedFiles(PaneDrag::localFiles(data));
    ASSERT_EQ(marked.count(), 2);
    const MarkedItem &first = marked.MarkedItems.at(1);
    EXPECT_EQ(first.name, QStringLiteral("a#b.txt"));
    EXPECT_EQ(first.folder, root.path() + u'/');
    EXPECT_EQ(first.kind, ItemKind::TextFile);
    EXPECT_EQ(first.sizeText, QStringLiteral("5"));
    const MarkedItem &second = marked.MarkedItems.at(2);
    EXPECT_EQ(second.name, QStringLiteral("bilder [alt]"));
    EXPECT_EQ(second.folder, root.path() + u'/');
    EXPECT_EQ(second.kind, ItemKind::FolderClose);
    EXPECT_TRUE(second.sizeText.isEmpty());
}
