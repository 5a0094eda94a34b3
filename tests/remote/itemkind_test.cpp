#include "remote/itemkind.h"

#include "remote/icons.h"

#include <gtest/gtest.h>

TEST(ItemKind, ImageListHasItsKeysInTheFixedOrder)
{
    EXPECT_EQ(
        ItemKind::imageKeys().join(u','),
        QStringLiteral("FolderClose,Cdup,Nope,RemoteHost,Drive,Localhost,FolderLinkOpen,File,"
                       "FileLink,Link,FolderLink,ExeFile,TextFile,ZipFile,FolderOpen,ViewFile,"
                       "DeleteFiles,Refresh,SelectAll,nameFile,HelpFile,ImageFile"));
}

TEST(ItemKind, LastFourCharactersDecide)
{
    struct Case {
        const char *name;
        const QString &kind;
    };
    const Case cases[] {
        { "a.txt", ItemKind::TextFile },  { "a.Txt", ItemKind::TextFile },
        { ".txt", ItemKind::TextFile },   { "a.zip", ItemKind::ZipFile },
        { "a.arj", ItemKind::ZipFile },   { "x.tgz", ItemKind::ZipFile },
        { "a.tar", ItemKind::ZipFile },   { "a.lzh", ItemKind::ZipFile },
        { "a.LZA", ItemKind::ZipFile },   { "a.exe", ItemKind::ExeFile },
        { "a.com", ItemKind::ExeFile },   { "a.bat", ItemKind::ExeFile },
        { "a.JPG", ItemKind::ImageFile }, { "a.bmp", ItemKind::ImageFile },
        { "a.img", ItemKind::ImageFile }, { "a.gif", ItemKind::ImageFile },
        { "a.hlp", ItemKind::HelpFile },  { "bild.jpeg", ItemKind::File },
        { "seite.html", ItemKind::File }, { "archiv.tar.gz", ItemKind::File },
        { "README", ItemKind::File },     { "txt", ItemKind::File },
        { "", ItemKind::File },           { "a.txt ", ItemKind::File },
        { "a.png", ItemKind::File },
    };
    for (const Case &one : cases) {
        EXPECT_EQ(ItemKind::byExtension(QString::fromUtf8(one.name)), one.kind) << one.name;
    }
}

TEST(ItemKind, FoldersAndLinksCountAsFolders)
{
    for (const QString &key : ItemKind::imageKeys()) {
        const bool expected = key == QStringLiteral("FolderClose")
            || key == QStringLiteral("FolderLink") || key == QStringLiteral("Link");
        EXPECT_EQ(ItemKind::isFolderLike(key), expected) << key.toStdString();
    }
    EXPECT_FALSE(ItemKind::isFolderLike(QStringLiteral("folderclose"))) << "keys compare exactly";
}

TEST(ItemKind, EveryKeyHasItsPicture)
{
    for (const QString &key : ItemKind::imageKeys()) {
        EXPECT_FALSE(Icons::icon(key).pixmap(16).isNull()) << key.toStdString();
        EXPECT_FALSE(Icons::ghosted(key).pixmap(16).isNull()) << key.toStdString();
    }
    EXPECT_TRUE(Icons::icon(QStringLiteral("gibtesnicht")).isNull());
}
