#include "ftp/ftplocalnames.h"
#include "local/locallisting.h"
#include "remote/itemkind.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class LocalListingTest : public testing::Test {
protected:
    QTemporaryDir m_root;

    QString path(const char *name) const { return m_root.filePath(QString::fromUtf8(name)); }
    void folder(const char *name) const { ASSERT_TRUE(QDir().mkpath(path(name))); }
    void file(const char *name, int size = 0) const
    {
        QFile made(path(name));
        ASSERT_TRUE(made.open(QIODevice::WriteOnly));
        made.write(QByteArray(size, 'x'));
    }
    LocalListing read(bool hidden = false) const
    {
        return readLocalFolder({ m_root.path(), FolderSource::Derived, hidden }, false);
    }
    static std::string shape(const LocalListing &listing)
    {
        QStringList texts;
        for (const PaneRow &row : listing.rows) {
            texts << row.kind + u':' + row.name;
        }
        return texts.join(u' ').toStdString();
    }
};

} // namespace

TEST_F(LocalListingTest, UpRowThenFoldersThenFilesEachByName)
{
    folder("x.txt");
    folder("Alpha");
    file("b.txt");
    file("A.zip");
    file("10");
    file("9");
    EXPECT_EQ(
        shape(read()),
        "Cdup: FolderClose:Alpha FolderClose:x.txt File:10 File:9 ZipFile:A.zip TextFile:b.txt");
}

TEST_F(LocalListingTest, RowsCarrySizeDateAndFullPath)
{
    file("seite.html", 1234);
    ASSERT_EQ(truncate(QFile::encodeName(path("seite.html")).constData(), 5368709120), 0);
    QFile made(path("seite.html"));
    ASSERT_TRUE(made.open(QIODevice::ReadWrite));
    ASSERT_TRUE(
        made.setFileTime(QDateTime({ 2026, 3, 9 }, { 8, 7, 6 }), QFile::FileModificationTime));
    const LocalListing listing = read();
    ASSERT_EQ(listing.rows.size(), 2);
    EXPECT_EQ(listing.rows.at(1).size, QStringLiteral("5368709120"));
    EXPECT_EQ(listing.rows.at(1).date, QStringLiteral("09.03.2026 08:07:06"));
    EXPECT_EQ(listing.rows.at(1).tag, m_root.path() + QStringLiteral("/seite.html"));
    EXPECT_EQ(listing.folder, m_root.path() + u'/');
}

TEST_F(LocalListingTest, AFolderHasItsDateAndNoSize)
{
    folder("bilder");
    const timespec then { 1773043626, 0 };
    const timespec times[2] { then, then };
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(path("bilder")).constData(), times, 0), 0);
    const LocalListing listing = read();
    ASSERT_EQ(listing.rows.size(), 2);
    EXPECT_EQ(listing.rows.at(1).size, QString());
    EXPECT_EQ(listing.rows.at(1).date, QStringLiteral("09.03.2026 08:07:06"));
    EXPECT_EQ(listing.rows.at(1).tag, m_root.path() + QStringLiteral("/bilder"));
}

TEST_F(LocalListingTest, HiddenAndSystemEntriesNeedTheSetting)
{
    file(".htaccess");
    folder(".git");
    ASSERT_EQ(mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    ASSERT_TRUE(QFile::link(path("nirgends"), path("kaputt")));
    file("offen");
    EXPECT_EQ(shape(read(false)), "Cdup: File:offen");
    EXPECT_EQ(shape(read(true)),
              "Cdup: FolderClose:.git File:.htaccess File:kaputt File:offen File:pipe");
}

TEST_F(LocalListingTest, ALinkIsWhatItLeadsTo)
{
    folder("ziel");
    file("datei.txt", 3);
    ASSERT_TRUE(QFile::link(path("ziel"), path("l1")));
    ASSERT_TRUE(QFile::link(path("datei.txt"), path("l2.txt")));
    const LocalListing listing = read();
    EXPECT_EQ(shape(listing),
              "Cdup: FolderClose:l1 FolderClose:ziel TextFile:datei.txt TextFile:l2.txt");
    EXPECT_EQ(listing.rows.at(4).size, QStringLiteral("3"));
}

TEST_F(LocalListingTest, WildcardsAreOrdinaryCharacters)
{
    folder("a*");
    file("a*/nur hier");
    folder("ab");
    file("ab/nicht hier");
    const LocalListing listing = readLocalFolder({ path("a*"), FolderSource::Box, false }, false);
    EXPECT_EQ(shape(listing), "Cdup: File:nur hier");
}

TEST_F(LocalListingTest, AMissingFolderShowsTheUpRow)
{
    const LocalListing listing = readLocalFolder({ path("weg"), FolderSource::Box, false }, false);
    EXPECT_EQ(shape(listing), "Cdup:");
    EXPECT_FALSE(listing.readable);
}

TEST_F(LocalListingTest, AFolderWithoutPermissionShowsTheUpRow)
{
    if (geteuid() == 0) {
        // The superuser may read everything; a file in place of the folder fails the same way.
        file("zu");
    } else {
        folder("zu");
        ASSERT_EQ(chmod(QFile::encodeName(path("zu")).constData(), 0), 0);
    }
    const LocalListing listing
        = readLocalFolder({ path("zu"), FolderSource::Derived, false }, false);
    EXPECT_EQ(shape(listing), "Cdup:");
    EXPECT_FALSE(listing.readable);
}

TEST_F(LocalListingTest, TextOfTheBoxIsNormalisedUnlessSuchAFolderExists)
{
    folder("Fotos [2020]");
    folder("Fotos");
    folder("blank ");
    const auto of = [&](const QString &text, FolderSource source) {
        return localFolderOf({ text, source, false });
    };
    EXPECT_EQ(of(path("Fotos [2020]"), FolderSource::Box), path("Fotos [2020]/"));
    EXPECT_EQ(of(path("Fotos [alt]"), FolderSource::Box), path("Fotos/"));
    EXPECT_EQ(of(path("Fotos [alt]"), FolderSource::Derived), path("Fotos [alt]/"));
    EXPECT_EQ(of(path("blank "), FolderSource::Box), path("blank /"));
    EXPECT_EQ(of(path("Fotos "), FolderSource::Box), path("Fotos/"));
    EXPECT_EQ(of({}, FolderSource::Box), QStringLiteral("/"));
}

TEST_F(LocalListingTest, NamesThatAreNoUtf8AreListedAndEnteredByTheirBytes)
{
    const std::string raw = m_root.path().toStdString() + "/Bilder \xe4";
    ASSERT_EQ(::mkdir(raw.c_str(), 0755), 0);
    std::ofstream(raw + "/\xf6.txt") << "x";
    std::ofstream(raw + "/\xfc.txt") << "xyz";
    const LocalListing above = read();
    ASSERT_EQ(above.rows.size(), 2);
    EXPECT_EQ(bytesOfName(above.rows.at(1).tag).toStdString(), raw);
    const LocalListing inside
        = readLocalFolder({ above.rows.at(1).tag, FolderSource::Derived, false }, false);
    EXPECT_TRUE(inside.readable);
    ASSERT_EQ(inside.rows.size(), 3);
    EXPECT_NE(inside.rows.at(1).name, inside.rows.at(2).name);
    EXPECT_EQ(inside.rows.at(1).kind, ItemKind::TextFile);
    std::filesystem::remove_all(raw); // QTemporaryDir cannot
}

TEST_F(LocalListingTest, StoppedReadingEndsAtOnce)
{
    file("a");
    const LocalListing listing
        = readLocalFolder({ m_root.path(), FolderSource::Derived, false }, true);
    EXPECT_TRUE(listing.rows.isEmpty()) << "not even sorted and grouped";
}

TEST(LocalDatesTest, FollowTheLocaleWithFourDigitYearAndSeconds)
{
    const QLocale before;
    struct Case {
        QLocale locale;
        QString text;
    };
    for (const Case &one : { Case { QLocale(QLocale::German, QLocale::Germany),
                                    QStringLiteral("01.02.2026 03:04:05") },
                             Case { QLocale(QLocale::English, QLocale::UnitedKingdom),
                                    QStringLiteral("01/02/2026 03:04:05") },
                             Case { QLocale(QLocale::Finnish, QLocale::Finland),
                                    QStringLiteral("1.2.2026 3.04.05") } }) {
        QLocale::setDefault(one.locale);
        LocalDates dates;
        const QDateTime when({ 2026, 2, 1 }, { 3, 4, 5 });
        EXPECT_EQ(dates.text(when.toSecsSinceEpoch()), one.text);
        EXPECT_EQ(dates.text(when.toSecsSinceEpoch()), one.text) << "also from memory";
    }
    QLocale::setDefault(before);
}

TEST(LocalDatesTest, EveryHourMinuteAndSecondReadsAsTheLocaleWritesIt)
{
    const QLocale before;
    const QLocale american(QLocale::English, QLocale::UnitedStates);
    QLocale::setDefault(american);
    const QString timeFormat = american.timeFormat(QLocale::ShortFormat)
                                   .replace(QStringLiteral("mm"), QStringLiteral("mm:ss"));
    LocalDates dates;
    for (qint64 at = 0; at < 172800; at += 1777) {
        const QDateTime when = QDateTime::fromSecsSinceEpoch(1772000000 + at);
        EXPECT_TRUE(
            dates.text(1772000000 + at).endsWith(american.toString(when.time(), timeFormat)));
    }
    QLocale::setDefault(before);
}

TEST(AbsoluteFolder, WhatIsNoWholePathCountsFromTheHomeFolder)
{
    const QString home = QDir::homePath();
    EXPECT_EQ(absoluteFolder(QStringLiteral("~")), home);
    EXPECT_EQ(absoluteFolder(QStringLiteral("~/Bilder ")), home + QStringLiteral("/Bilder"));
    EXPECT_EQ(absoluteFolder(QStringLiteral("Bilder")), home + QStringLiteral("/Bilder"));
    EXPECT_EQ(absoluteFolder(QStringLiteral("~anna")), home + QStringLiteral("/~anna"));
    for (const char *whole : { "/tmp", " /tmp", "/tmp/a ", "", " " }) {
        EXPECT_EQ(absoluteFolder(QLatin1String(whole)), QLatin1String(whole));
    }
}
