#include "common/mo_standard.h"

#include "common/codepage.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <limits>

namespace {
QString text(const char *utf8) { return QString::fromUtf8(utf8); }
} // namespace

TEST(TrimBlanks, TrimsBlanksAndNothingElse)
{
    EXPECT_EQ(trimBlanks(text("  a b \t ")), text("a b \t"));
    EXPECT_EQ(trimBlanks(text(" \t a")), text("\t a"));
    EXPECT_EQ(trimBlanks(text("   ")), QString());
}

TEST(LenientNumber, ReadsAsFarAsItIsANumber)
{
    EXPECT_EQ(lenientInteger(text("30s")), 30);
    EXPECT_EQ(lenientInteger(text("abc")), 0);
    EXPECT_EQ(lenientInteger(text("  12 34")), 12);
    EXPECT_EQ(lenientInteger(text("2.5")), 2); // half to even
    EXPECT_EQ(lenientInteger(text("3.5")), 4);
    EXPECT_EQ(lenientInteger(text("-7x")), -7);
    EXPECT_EQ(lenientInteger(text("9007199254740993")), 9007199254740993);
    EXPECT_EQ(lenientInteger(text("99999999999999999999")), std::numeric_limits<qint64>::max());
    EXPECT_EQ(lenientNumber(text("1e3z")), 1000.0);
}

TEST(ScramblePassword, ShiftsEveryCodeByTheLength)
{
    const QString scrambled = ScramblePassword(text("abc"), true);
    EXPECT_EQ(CodePage::encode(scrambled), QByteArray("\x5E\x5F\x60"));
    EXPECT_EQ(ScramblePassword(scrambled, false), text("abc"));
    EXPECT_EQ(ScramblePassword(QString(), true), QString());
}

TEST(ScramblePassword, RoundTripsEveryCodeAtEveryLength)
{
    for (int length = 1; length <= 64; ++length) {
        for (int code = 0; code < 256; ++code) {
            const QString clear(length, CodePage::characterOf(code));
            EXPECT_EQ(ScramblePassword(ScramblePassword(clear, true), false), clear);
        }
    }
}

TEST(EnsureFolder, CreatesTheLastComponentOnlyBehindASeparator)
{
    const QTemporaryDir top;
    const QString path = top.path() + text("/a/b/c");
    EXPECT_FALSE(EnsureFolder(path, false));
    EXPECT_TRUE(EnsureFolder(path, true));
    EXPECT_TRUE(QDir(top.path() + text("/a/b")).exists());
    EXPECT_FALSE(QDir(path).exists());
    EXPECT_TRUE(EnsureFolder(path + text("/"), true));
    EXPECT_TRUE(EnsureFolder(path, false));
}

TEST(EnsureFolder, LooksForSeparatorsFromTheThirdCharacterOn)
{
    const QString before = QDir::currentPath();
    const auto made = [](const char *path) {
        const QTemporaryDir top;
        EXPECT_TRUE(QDir::setCurrent(top.path()));
        EXPECT_TRUE(EnsureFolder(text(path), true, u'\\'));
        return QDir().entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name).join(u' ');
    };
    EXPECT_EQ(made("a\\b\\c\\"), text("a\\b a\\b\\c"));
    EXPECT_EQ(made("ab\\c\\d"), text("ab ab\\c"));
    QDir::setCurrent(before);
}

TEST(JoinPath, AddsOneSeparatorWhereThereIsNone)
{
    EXPECT_EQ(joinPath(text("c:\\"), text("x"), u'\\'), text("c:\\x"));
    EXPECT_EQ(joinPath(text("c:\\a"), text("x"), u'\\'), text("c:\\a\\x"));
    EXPECT_EQ(joinPath(text("/"), text("x")), text("/x"));
    EXPECT_EQ(joinPath(text("/a"), text("x\\")), text("/a/x\\"));
}

TEST(NormalizeFolderPath, DropsTheAnnotationTrimsAndCompletes)
{
    const auto remote = [](const char *path) {
        QString changed = text(path);
        const QString result = NormalizeFolderPath(changed, u'/');
        EXPECT_EQ(result, changed);
        return result;
    };
    EXPECT_EQ(remote("/pub [Archiv]"), text("/pub/"));
    EXPECT_EQ(remote("pub"), text("pub/"));
    EXPECT_EQ(remote(""), text("/"));
    EXPECT_EQ(remote(" /a/ "), text("/a/"));
    EXPECT_EQ(remote("/a [b"), text("/a [b/"));
    EXPECT_EQ(remote("/a] b"), text("/a] b/"));
    EXPECT_EQ(remote("x]y[z"), text("x]yy[z/")); // "[" behind "]": no check
    QString drive = text("c: [System]");
    EXPECT_EQ(NormalizeFolderPath(drive, u'\\'), text("c:\\"));
}

TEST(LocalUpPath, StopsAtTheRoot)
{
    EXPECT_EQ(LocalUpPath(text("c:\\a\\b\\"), u'\\'), text("c:\\a\\"));
    EXPECT_EQ(LocalUpPath(text("c:\\"), u'\\'), text("c:\\"));
    EXPECT_EQ(LocalUpPath(text("/a/b/")), text("/a/"));
    EXPECT_EQ(LocalUpPath(text("/a/")), text("/"));
    EXPECT_EQ(LocalUpPath(text("/")), text("/"));
}

TEST(FormatSize, KeepsTheGivenBounds)
{
    EXPECT_EQ(FormatSize(-1), QString());
    EXPECT_EQ(FormatSize(0), QString());
    EXPECT_EQ(FormatSize(1), text("1 B"));
    EXPECT_EQ(FormatSize(1000), text("1000 B"));
    EXPECT_EQ(FormatSize(1001), text("1,0 KB"));
    EXPECT_EQ(FormatSize(1280), text("1,3 KB")); // half away from zero
    EXPECT_EQ(FormatSize(1536), text("1,5 KB"));
    EXPECT_EQ(FormatSize(1048576), text("1024,0 KB"));
    EXPECT_EQ(FormatSize(1048577), text("1,0 MB"));
    EXPECT_EQ(FormatSize(2147483647), text("2048,0 MB"));
    EXPECT_EQ(FormatSize(5368709120), text("5120,0 MB"));
}

TEST(MoStandard, OneSeparatorIsCutButTheRootStays)
{
    EXPECT_EQ(withoutSeparator(QStringLiteral("/home/anna/")), QStringLiteral("/home/anna"));
    EXPECT_EQ(withoutSeparator(QStringLiteral("/home/anna")), QStringLiteral("/home/anna"));
    EXPECT_EQ(withoutSeparator(QStringLiteral("/home//")), QStringLiteral("/home/"));
    EXPECT_EQ(withoutSeparator(QStringLiteral("/")), QStringLiteral("/"));
    EXPECT_EQ(withoutSeparator(QStringLiteral("D:\\"), u'\\'), QStringLiteral("D:"));
    EXPECT_EQ(withoutSeparator(QString()), QString());
}
