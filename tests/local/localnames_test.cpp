#include "ftp/ftplocalnames.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

TEST(LocalNames, EveryNameComesOutAsTheBytesThatWentIn)
{
    for (const char *name : { "", "index.html",
                              "\xc3\x9c"
                              "ber uns.html",
                              "\xf0\x9f\x8c\xb7", "\xe4pfel.txt", "\xff\xfe", "halb\xc3",
                              "halb\xe2\x82", "\xed\xb3\xa4", "\xc0\xaf", "\xef\xbb\xbfindex.html",
                              "z\xef\xbb\xbf\xe4", "a\x80\xc3\xa4\x80z" }) {
        EXPECT_EQ(bytesOfName(textOfName(name)), QByteArray(name)) << name;
    }
    std::mt19937 random(7);
    std::uniform_int_distribution<int> byte(1, 255);
    for (int round = 0; round < 2000; ++round) {
        QByteArray name;
        for (int at = 0; at < 12; ++at) {
            name += static_cast<char>(byte(random));
        }
        ASSERT_EQ(bytesOfName(textOfName(name)), name) << name.toHex().constData();
    }
}

TEST(LocalNames, NamesInUtf8AreOrdinaryText)
{
    const QString name = QStringLiteral("Übersicht 🌷.html");
    EXPECT_EQ(textOfName(name.toUtf8()), name);
    EXPECT_FALSE(holdsRawBytes(name));
    EXPECT_EQ(shownName(name), name);
    EXPECT_EQ(nameForServer(name), name);
}

TEST(LocalNames, OtherBytesStayDistinctAndAreShownAsReplaced)
{
    const QString one = textOfName("\xe4.txt");
    const QString two = textOfName("\xf6.txt");
    EXPECT_TRUE(holdsRawBytes(one));
    EXPECT_NE(one, two);
    EXPECT_NE(one, QStringLiteral("\uFFFD.txt")) << "a file of that very name may stand beside it";
    EXPECT_EQ(shownName(one), QStringLiteral("\uFFFD.txt"));
    EXPECT_EQ(nameForServer(one), QStringLiteral("ä.txt"));
}

TEST(LocalNames, PathsAreAddressesForOtherProgramsAndBack)
{
    const QString path = QStringLiteral("/tmp/50% für #1?/") + textOfName("\xe4.txt");
    EXPECT_TRUE(urlOfPath(path).toEncoded().endsWith("%E4.txt"));
    for (const QString &one : { path, QStringLiteral("/tmp/50% für #1?/ä;.txt") }) {
        EXPECT_EQ(pathOfUrl(QUrl::fromEncoded(urlOfPath(one).toEncoded())), one);
    }
    EXPECT_EQ(pathOfUrl(QUrl(QStringLiteral("https://example.org/a.txt"))), QString());
}

TEST(LocalNames, TheDiskIsAskedByTheVeryBytes)
{
    const QTemporaryDir root;
    const QString folder = root.path() + u'/' + textOfName("Bilder \xe4");
    EXPECT_TRUE(makeLocalFolder(folder));
    EXPECT_FALSE(makeLocalFolder(folder)) << "it is there";
    EXPECT_TRUE(localEntry(folder).isFolder);
    EXPECT_FALSE(localEntry(root.path() + QStringLiteral("/Bilder \uFFFD")).exists);
    QFile file(root.filePath(QStringLiteral("a.txt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("fünf");
    file.close();
    EXPECT_TRUE(localEntry(file.fileName()).isFile);
    EXPECT_EQ(localEntry(file.fileName()).size, 5);
    std::filesystem::remove_all(bytesOfName(folder).toStdString()); // QTemporaryDir cannot
}
