#include "fileops/localtree.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const std::atomic_bool never = false;
constexpr const char *stubborn = "bleibt stehen"; ///< an entry that nothing removes

} // namespace

/// Takes the place of the C library's: root, who may run the tests, is refused nothing otherwise.
extern "C" int unlinkat(int folder, const char *name, int flags) noexcept
{
    if (std::strcmp(name, stubborn) == 0) {
        errno = EBUSY;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_unlinkat, folder, name, flags));
}

namespace {

class LocalTree : public ::testing::Test {
protected:
    ~LocalTree() override
    {
        // Folders without rights would outlive the test.
        QDirIterator it(root.path(), QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            ::chmod(QFile::encodeName(it.next()).constData(), 0700);
        }
    }

    [[nodiscard]] QString at(const QString &name) const { return root.path() + u'/' + name; }
    void folder(const QString &name) const { ASSERT_TRUE(QDir().mkpath(at(name))); }
    void file(const QString &name) const
    {
        QFile file(at(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("x");
    }
    void link(const QString &target, const QString &name) const
    {
        ASSERT_EQ(::symlink(QFile::encodeName(target).constData(),
                            QFile::encodeName(at(name)).constData()),
                  0);
    }
    void mode(const QString &name, mode_t bits) const
    {
        ASSERT_EQ(::chmod(QFile::encodeName(at(name)).constData(), bits), 0);
    }
    [[nodiscard]] bool there(const QString &name) const
    {
        struct stat info { };
        return ::lstat(QFile::encodeName(at(name)).constData(), &info) == 0;
    }

    QTemporaryDir root;
};

} // namespace

TEST_F(LocalTree, RemovesFilesAndFoldersOfEveryKind)
{
    folder(u"baum/tief/tiefer"_s);
    file(u"baum/.verborgen"_s);
    file(u"baum/tief/-rf"_s);
    file(u"baum/tief/neue\nzeile"_s);
    file(u"baum/tief/tiefer/ä ö #%?*[x]"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(at(u"baum/rohr"_s)).constData(), 0600), 0);
    EXPECT_EQ(RemoveLocalTree(at(u"baum"_s), never), std::nullopt);
    EXPECT_FALSE(there(u"baum"_s));
}

TEST_F(LocalTree, APathThatEndsInTheSeparatorIsEmptiedOnly)
{
    folder(u"baum/tief"_s);
    file(u"baum/a"_s);
    EXPECT_EQ(RemoveLocalTree(at(u"baum/"_s), never), std::nullopt);
    EXPECT_TRUE(QDir(at(u"baum"_s)).isEmpty());
    EXPECT_TRUE(there(u"baum"_s));
}

TEST_F(LocalTree, LinksAreRemovedAndNeverFollowed)
{
    folder(u"aussen/tief"_s);
    file(u"aussen/tief/wichtig"_s);
    folder(u"baum/tief"_s);
    link(at(u"aussen"_s), u"baum/verweis"_s);
    link(u"../../aussen/tief"_s, u"baum/tief/verweis"_s);
    link(at(u"aussen/tief/wichtig"_s), u"baum/datei"_s);
    link(u"."_s, u"baum/selbst"_s);
    link(u"/nirgends"_s, u"baum/leer"_s);
    EXPECT_EQ(RemoveLocalTree(at(u"baum"_s), never), std::nullopt);
    EXPECT_FALSE(there(u"baum"_s));
    EXPECT_TRUE(there(u"aussen/tief/wichtig"_s));
}

TEST_F(LocalTree, ALinkAtTheTopIsRemovedAsALink)
{
    folder(u"aussen"_s);
    file(u"aussen/wichtig"_s);
    link(at(u"aussen"_s), u"verweis"_s);
    EXPECT_EQ(RemoveLocalTree(at(u"verweis"_s), never), std::nullopt);
    EXPECT_FALSE(there(u"verweis"_s));
    EXPECT_TRUE(there(u"aussen/wichtig"_s));
    link(at(u"aussen"_s), u"verweis"_s);
    EXPECT_NE(RemoveLocalTree(at(u"verweis/"_s), never), std::nullopt);
    EXPECT_TRUE(there(u"aussen/wichtig"_s));
}

TEST_F(LocalTree, FoldersAndFilesWithoutRightsAreRemovedAllTheSame)
{
    folder(u"baum/zu/tief"_s);
    file(u"baum/zu/tief/a"_s);
    file(u"baum/nurlesen"_s);
    mode(u"baum/nurlesen"_s, 0444);
    mode(u"baum/zu/tief"_s, 0);
    mode(u"baum/zu"_s, 0500);
    mode(u"baum"_s, 0);
    EXPECT_EQ(RemoveLocalTree(at(u"baum"_s), never), std::nullopt);
    EXPECT_FALSE(there(u"baum"_s));
}

TEST_F(LocalTree, RightsOutsideTheTreeStayAsTheyAre)
{
    folder(u"aussen"_s);
    file(u"aussen/wichtig"_s);
    mode(u"aussen/wichtig"_s, 0400);
    mode(u"aussen"_s, 0500);
    folder(u"baum"_s);
    link(at(u"aussen"_s), u"baum/verweis"_s);
    link(at(u"aussen/wichtig"_s), u"baum/datei"_s);
    EXPECT_EQ(RemoveLocalTree(at(u"baum"_s), never), std::nullopt);
    struct stat info { };
    ASSERT_EQ(::stat(QFile::encodeName(at(u"aussen"_s)).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0500U);
    ASSERT_EQ(::stat(QFile::encodeName(at(u"aussen/wichtig"_s)).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0400U);
}

TEST_F(LocalTree, SixtyFourLevelsAreNoTrouble)
{
    QString path = u"baum"_s;
    for (int level = 0; level < 64; ++level) {
        path += u"/ebene"_s;
    }
    folder(path);
    file(path + u"/a"_s);
    EXPECT_EQ(RemoveLocalTree(at(u"baum"_s), never), std::nullopt);
    EXPECT_FALSE(there(u"baum"_s));
}

TEST_F(LocalTree, NamesOf255BytesAreNoTrouble)
{
    folder(u"baum/"_s + QString(255, u'x'));
    file(u"baum/"_s + QString(255, u'x') + u'/' + QString(255, u'y'));
    EXPECT_EQ(RemoveLocalTree(at(u"baum"_s), never), std::nullopt);
    EXPECT_FALSE(there(u"baum"_s));
}

TEST_F(LocalTree, WhatIsMissingIsReported)
{
    const auto reason = RemoveLocalTree(at(u"nichts"_s), never);
    ASSERT_TRUE(reason);
    EXPECT_TRUE(reason->startsWith(at(u"nichts"_s)));
}

TEST_F(LocalTree, AStopLeavesTheRestStanding)
{
    folder(u"baum"_s);
    file(u"baum/a"_s);
    const std::atomic_bool stop = true;
    EXPECT_NE(RemoveLocalTree(at(u"baum"_s), stop), std::nullopt);
    EXPECT_TRUE(there(u"baum/a"_s));
}

TEST_F(LocalTree, WhatStaysIsReportedAndTheRestGoes)
{
    const QString name = QString::fromLatin1(stubborn);
    for (const bool isFolder : { false, true }) {
        folder(u"baum/tief"_s);
        file(u"baum/a"_s);
        file(u"baum/tief/b"_s);
        isFolder ? folder(u"baum/tief/"_s + name) : file(u"baum/tief/"_s + name);
        const auto reason = RemoveLocalTree(at(u"baum"_s), never);
        EXPECT_TRUE(reason && reason->startsWith(at(u"baum/tief/"_s + name) + u": "_s))
            << reason.value_or(QString()).toStdString();
        EXPECT_TRUE(there(u"baum/tief/"_s + name));
        EXPECT_FALSE(there(u"baum/a"_s) || there(u"baum/tief/b"_s));
        QDir(at(u"baum/tief"_s)).rmdir(name);
        QFile::remove(at(u"baum/tief/"_s + name));
    }
}

TEST_F(LocalTree, AFolderThatFillsMeanwhileIsEmptiedOrReported)
{
    folder(u"baum"_s);
    std::atomic_bool done = false;
    const std::unique_ptr<QThread> writer(QThread::create([&] {
        for (int number = 0; number < 3000 && !done; ++number) {
            QFile file(at(u"baum/datei%1"_s.arg(number)));
            if (!file.open(QIODevice::WriteOnly)) {
                break; // the folder is gone
            }
        }
    }));
    writer->start();
    const auto reason = RemoveLocalTree(at(u"baum"_s), never);
    done = true;
    writer->wait();
    EXPECT_EQ(there(u"baum"_s), reason.has_value());
}

TEST_F(LocalTree, FilesAreRemovedAlsoWhenReadOnly)
{
    file(u"a"_s);
    mode(u"a"_s, 0400);
    EXPECT_EQ(removeLocalFile(at(u"a"_s)), std::nullopt);
    EXPECT_FALSE(there(u"a"_s));
    EXPECT_NE(removeLocalFile(at(u"a"_s)), std::nullopt);
    folder(u"ordner"_s);
    EXPECT_NE(removeLocalFile(at(u"ordner"_s)), std::nullopt);
    EXPECT_TRUE(there(u"ordner"_s));
}

TEST_F(LocalTree, CountsWithoutFollowingLinks)
{
    folder(u"aussen/tief"_s);
    folder(u"baum/tief"_s);
    file(u"baum/a"_s);
    file(u"baum/tief/.b"_s);
    link(at(u"aussen"_s), u"baum/verweis"_s);
    const FtpFolderContent count = countLocalTree(at(u"baum"_s), never);
    EXPECT_EQ(count.files, 3);
    EXPECT_EQ(count.folders, 1);
    EXPECT_TRUE(count.complete);
    const std::atomic_bool stop = true;
    EXPECT_FALSE(countLocalTree(at(u"baum"_s), stop).complete);
}

/// Trees grown at random, with links to everywhere and rights taken away: whatever is removed, only
/// the marked tree goes, and everything beside it stays as it was.
class LocalTreeProperty : public LocalTree, public ::testing::WithParamInterface<unsigned> {
protected:
    /// Every entry outside the doomed tree with its type, rights and content.
    [[nodiscard]] QMap<QString, QByteArray> outside() const
    {
        QMap<QString, QByteArray> result;
        QDirIterator it(root.path(),
                        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            if (path == at(u"opfer"_s) || path.startsWith(at(u"opfer/"_s))) {
                continue;
            }
            struct stat info { };
            ::lstat(QFile::encodeName(path).constData(), &info);
            QFile file(path);
            result.insert(path,
                          QByteArray::number(info.st_mode, 8) + ' '
                              + (S_ISREG(info.st_mode) && file.open(QIODevice::ReadOnly)
                                     ? file.readAll()
                                     : QByteArray()));
        }
        return result;
    }
    void grow(std::mt19937 &random)
    {
        const auto pick = [&random](const QStringList &list) {
            return list.at(static_cast<qsizetype>(random() % static_cast<unsigned>(list.size())));
        };
        QStringList folders { u"opfer"_s, u"daneben"_s, u"daneben/tief"_s };
        QStringList everything = folders;
        for (const QString &name : std::as_const(folders)) {
            folder(name);
        }
        for (int number = 0; number < 60; ++number) {
            const QString name = pick(folders) + u"/e%1"_s.arg(number);
            switch (random() % 4) {
            case 0:
                folder(name);
                folders.append(name);
                break;
            case 1:
                link(at(pick(everything)), name);
                break;
            case 2:
                link(u"../"_s.repeated(static_cast<qsizetype>(random() % 4)) + pick(everything),
                     name);
                break;
            default:
                file(name);
            }
            everything.append(name);
        }
        // The innermost first: later ones could not be reached any more.
        std::reverse(folders.begin(), folders.end());
        for (const QString &name : std::as_const(folders)) {
            if (name.startsWith(u"opfer"_s) && random() % 3 == 0) {
                mode(name, random() % 512);
            }
        }
    }
};

TEST_P(LocalTreeProperty, OnlyTheMarkedTreeGoes)
{
    std::mt19937 random(GetParam());
    grow(random);
    const auto before = outside();
    EXPECT_EQ(RemoveLocalTree(at(u"opfer"_s), never), std::nullopt);
    EXPECT_FALSE(there(u"opfer"_s));
    EXPECT_EQ(outside(), before);
}

INSTANTIATE_TEST_SUITE_P(Random, LocalTreeProperty, ::testing::Range(1U, 41U));
