#include "fileops/editwatch.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

class EditWatchTest : public ::testing::Test {
protected:
    EditWatchTest()
    {
        watch.setQuietTime(20);
        write(path, "alt");
        watch.watch(path);
    }
    static void write(const QString &name, const QByteArray &content)
    {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    /// Reports that have come once a change that was made last is known.
    int reports(int expected)
    {
        return QTest::qWaitFor([&] { return spy.size() >= expected; })
            ? static_cast<int>(spy.size())
            : -1;
    }

    QTemporaryDir folder;
    QString path = folder.filePath(u"a.txt"_s);
    EditWatch watch;
    QSignalSpy spy { &watch, &EditWatch::saved };
};

TEST_F(EditWatchTest, TellsOfEverySaving)
{
    write(path, "neu");
    ASSERT_EQ(reports(1), 1);
    EXPECT_EQ(spy.first().first().toString(), path);
    write(path, "neuer");
    EXPECT_EQ(reports(2), 2);
}

TEST_F(EditWatchTest, TellsOfAFileThatTookThePlaceOfTheOther)
{
    for (const char *content : { "neu", "neuer" }) {
        const int before = static_cast<int>(spy.size());
        write(path + u"~"_s, content);
        QFile::remove(path);
        ASSERT_TRUE(QFile::rename(path + u"~"_s, path));
        ASSERT_EQ(reports(before + 1), before + 1);
    }
}

TEST_F(EditWatchTest, TheSameContentIsNoChange)
{
    write(path, "alt");
    write(folder.filePath(u"anderes"_s), "x");
    const QString other = folder.filePath(u"b.txt"_s);
    write(other, "1");
    watch.watch(other);
    write(other, "2");
    ASSERT_EQ(reports(1), 1); // both were looked at by then
    EXPECT_EQ(spy.first().first().toString(), other);
}

TEST_F(EditWatchTest, AForgottenFileIsNotTold)
{
    watch.forget(path);
    write(path, "neu");
    const QString other = folder.filePath(u"b.txt"_s);
    write(other, "1");
    watch.watch(other);
    write(other, "2");
    ASSERT_EQ(reports(1), 1);
    EXPECT_EQ(spy.first().first().toString(), other);
}
