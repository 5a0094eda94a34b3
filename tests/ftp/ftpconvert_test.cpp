#include "ftp/ftpconvert.h"

#include <gtest/gtest.h>

#include <ctime>

using namespace Qt::StringLiterals;

namespace {

ftp::FolderEntry entry(char type, int permissions)
{
    ftp::FolderEntry made;
    made.name = "seite.html";
    made.type = type;
    made.permissions = permissions;
    return made;
}

/// The only entry of a listing that the program gets of it.
ListingEntry converted(const ftp::FolderEntry &made)
{
    ftp::Folder folder;
    folder.understood = true;
    folder.entries = { made };
    return ftpListing(folder).entries.value(0);
}

/// Local time as long as it lives.
class TimeZone {
public:
    explicit TimeZone(const char *zone) { set(zone); }
    ~TimeZone() { set(m_before.constData()); }
    TimeZone(const TimeZone &) = delete;
    TimeZone &operator=(const TimeZone &) = delete;

private:
    static void set(const char *zone)
    {
        qputenv("TZ", zone);
        ::tzset();
    }
    QByteArray m_before = qgetenv("TZ");
};

constexpr std::int64_t noon = 1772366400; // 2026-03-01 12:00 UTC

} // namespace

TEST(FtpListing, PermissionsAreTheOctalDigitsAsANumber)
{
    for (const auto &[bits, number] :
         { std::pair { 0755, 755 }, std::pair { 0644, 644 }, std::pair { 04755, 755 },
           std::pair { 0, 0 }, std::pair { 0007, 7 }, std::pair { -1, 0 } }) {
        EXPECT_EQ(converted(entry('-', bits)).permissions, number) << bits;
    }
}

TEST(FtpListing, DatesAreLocalAndSortAsText)
{
    const TimeZone berlin("CET-1");
    ftp::FolderEntry made = entry('-', 0644);
    EXPECT_EQ(converted(made).date, QString()) << "the listing has none";
    made.time = noon;
    EXPECT_EQ(converted(made).date, u"2026-03-01 13:00"_s);
    made.time = noon - 12 * 3600;
    made.dayOnly = true;
    EXPECT_EQ(converted(made).date, u"2026-03-01 00:00"_s) << "a day stays that day everywhere";
}

TEST(FtpListing, NeighboursKeepTheirOwnDates)
{
    ftp::Folder folder;
    for (const std::int64_t time : { noon, noon, noon + 60, noon }) {
        folder.entries.push_back(entry('-', 0644));
        folder.entries.back().time = time;
    }
    folder.entries.back().dayOnly = true;
    QStringList dates;
    const TimeZone berlin("CET-1");
    for (const ListingEntry &each : ftpListing(folder).entries) {
        dates << each.date;
    }
    EXPECT_EQ(dates,
              (QStringList { u"2026-03-01 13:00"_s, u"2026-03-01 13:00"_s, u"2026-03-01 13:01"_s,
                             u"2026-03-01 12:00"_s }));
}

TEST(FtpListing, KindsAreOneLetter)
{
    EXPECT_EQ(converted(entry('d', 0)).type, u"d"_s);
    EXPECT_EQ(converted(entry('l', 0)).type, u"l"_s);
    EXPECT_EQ(converted(entry('-', 0)).type, u"-"_s);
    EXPECT_EQ(converted(entry('s', 0)).type, u"-"_s) << "anything else counts as a file";
}

TEST(FtpListing, NamesTargetsAndSizesComeAsTheyAre)
{
    ftp::FolderEntry made = entry('l', 0777);
    made.name = "Gr\xc3\xb6\xc3\x9f"
                "e [1].txt";
    made.target = "\xe4lter"; // Windows-1252
    made.size = 5'000'000'000;
    EXPECT_EQ(converted(made).name, u"Größe [1].txt"_s);
    made.name = "\xef\xbb\xbfmarke";
    EXPECT_EQ(converted(made).name, u"\ufeffmarke"_s);
    EXPECT_EQ(converted(made).target, u"älter"_s);
    EXPECT_EQ(converted(made).size, 5'000'000'000);
    EXPECT_EQ(converted(entry('l', 0777)).target, QString());
}

TEST(FtpListing, AnUnknownFormatKeepsItsText)
{
    ftp::Folder folder;
    folder.rawText = "H\xe4?\r\n";
    EXPECT_EQ(ftpListing(folder).format, RemoteListing::Uninterpretable);
    EXPECT_EQ(ftpListing(folder).rawText, u"Hä?\r\n"_s);
    folder.understood = true;
    folder.rawText.clear();
    EXPECT_EQ(ftpListing(folder).format, 1);
    EXPECT_EQ(ftpListing(folder).rawText, QString());
}

TEST(FtpConvert, TypesProxiesAndPatternsOfTheProgram)
{
    EXPECT_EQ(engineType(TypeAscii), ftp::Type::Ascii);
    EXPECT_EQ(engineType(TypeEbcdic), ftp::Type::Ebcdic);
    for (const int type : { int(TypeBinary), -1, 99 }) {
        EXPECT_EQ(engineType(type), ftp::Type::Binary) << type;
    }
    FtpProxy proxy;
    for (const int type : { 1, 4, 7 }) {
        proxy.type = type;
        EXPECT_EQ(engineProxy(proxy).kind, static_cast<ftp::ProxyKind>(type));
    }
    for (const int type : { 0, -1, 8 }) {
        proxy.type = type;
        EXPECT_EQ(engineProxy(proxy).kind, ftp::ProxyKind::None) << type;
    }
    EXPECT_EQ(folderOfPattern(u"\"/a b/*\""_s), u"/a b"_s);
    EXPECT_EQ(folderOfPattern(u"c:\\a\\*"_s), u"c:\\a"_s);
    EXPECT_EQ(folderOfPattern(u"/a*b/x?"_s), u"/a*b/x?"_s);
}
