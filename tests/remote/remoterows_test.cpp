#include "remote/itemkind.h"
#include "remote/remoterows.h"

#include <gtest/gtest.h>

namespace {

ListingEntry entry(const char *name, const char *type = "-", qint64 size = 0, int permissions = 644)
{
    return { QString::fromUtf8(name),
             QString::fromUtf8(type),
             size,
             QStringLiteral("2026-11-20 10:00"),
             permissions,
             {} };
}

RemoteListing listing(const QList<ListingEntry> &entries) { return { entries, 0, {} }; }

std::string shape(const QList<PaneRow> &rows)
{
    QStringList texts;
    for (const PaneRow &row : rows) {
        texts << row.kind + u':' + row.name;
    }
    return texts.join(u' ').toStdString();
}

} // namespace

TEST(BuildRemoteRows, FoldersComeFirstThenLinksAndFilesInListingOrder)
{
    const auto rows = buildRemoteRows(
        listing({ entry("index.html"), entry("cgi-bin", "d"), entry("current", "l"),
                  entry("alt", "L"), entry("bilder", "d"), entry("a.txt") }),
        QStringLiteral("/www/"));
    EXPECT_EQ(shape(rows),
              "Cdup: FolderClose:cgi-bin FolderClose:bilder File:index.html Link:current Link:alt "
              "TextFile:a.txt");
}

TEST(BuildRemoteRows, OnlyLowerCaseDIsAFolder)
{
    const auto rows
        = buildRemoteRows(listing({ entry("gross", "D"), entry("pipe", "p"), entry("leer", "") }),
                          QStringLiteral("/"));
    EXPECT_EQ(shape(rows), "Cdup: File:gross File:pipe File:leer");
}

TEST(BuildRemoteRows, DotAndDotDotNeverBecomeRows)
{
    const auto rows
        = buildRemoteRows(listing({ entry(".", "d"), entry("..", "d"), entry(".", "-"),
                                    entry("..", "l"), entry(".htaccess"), entry("...", "d") }),
                          QStringLiteral("/"));
    EXPECT_EQ(shape(rows), "Cdup: FolderClose:... File:.htaccess");
}

TEST(BuildRemoteRows, EveryValueGoesIntoItsColumnUnchanged)
{
    QList<PaneRow> rows;
    for (const char *type : { "d", "l", "-" }) {
        rows = buildRemoteRows(listing({ entry("big.iso", type, 5368709120, 755) }),
                               QStringLiteral("/pub/"));
        ASSERT_EQ(rows.size(), 2);
        const PaneRow &row = rows.at(1);
        EXPECT_EQ(row.size, QStringLiteral("5368709120")) << "never in KB or MB, never grouped";
        EXPECT_EQ(row.date, QStringLiteral("2026-11-20 10:00"));
        EXPECT_EQ(row.permissions, QStringLiteral("755"));
        EXPECT_EQ(row.tag, QStringLiteral("/pub/big.iso"));
    }
    EXPECT_TRUE(rows.at(0).tag.isEmpty());
    EXPECT_TRUE(rows.at(0).size.isEmpty());
}

TEST(BuildRemoteRows, AnUninterpretableListingLeavesTheUpRowAlone)
{
    RemoteListing broken { { entry("rest") }, RemoteListing::Uninterpretable, {} };
    EXPECT_EQ(shape(buildRemoteRows(broken, QStringLiteral("/"))), "Cdup:");
}

TEST(BuildRemoteRows, AwkwardNamesStayAsTheyAre)
{
    for (const char *name :
         { " leading", "trailing ", "a [b]", "ümlaut", "a\\b", "tab\tname", "-rf" }) {
        const auto rows = buildRemoteRows(listing({ entry(name) }), QStringLiteral("/x [y]/"));
        EXPECT_EQ(rows.at(1).name, QString::fromUtf8(name));
        EXPECT_EQ(rows.at(1).tag, QStringLiteral("/x [y]/") + QString::fromUtf8(name));
    }
}

TEST(ListingFailureText, ExplainsAnEmptyListing)
{
    const QString expected
        = QStringLiteral("Die Auflösung der gelieferten Dateiliste schlug fehl.\r\n"
                         "Dieser Fehler tritt häufig auf wenn ein leeres Verzeichnis aufgerufen "
                         "wird und kann in den "
                         "meisten Fällen ignoriert werden.");
    EXPECT_EQ(listingFailureText({}), expected);
    EXPECT_EQ(listingFailureText(QStringLiteral("   ")), expected);
}

TEST(ListingFailureText, ShowsAListingThatNobodyCanRead)
{
    EXPECT_EQ(listingFailureText(QStringLiteral(" VOL SER\r\nNN ")),
              QStringLiteral("Die Auflösung der gelieferten Dateiliste schlug fehl.\r\n"
                             "Vermutlich haben Sie sich nicht mit einem Unixserver verbunden.\r\n"
                             "Zur Information wird ein Teil der Liste gezeigt.\r\n"
                             " VOL SER\r\nNN "));
}
