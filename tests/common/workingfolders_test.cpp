#include "common/workingfolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

struct Folders : ::testing::Test {
    QTemporaryDir base;
    FolderSources sources { base.filePath(u"bin"_s), base.filePath(u"data/Tarvelo FTP"_s),
                            base.filePath(u"tmp"_s), base.filePath(u"Schreibtisch"_s),
                            base.path() };

    void SetUp() override { QDir(base.path()).mkpath(u"bin"_s); }
};

constexpr QFile::Permissions owner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
constexpr QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
    | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;

} // namespace

TEST_F(Folders, ProfilesStandBesideAProgramThatMayBeWrittenBeside)
{
    const WorkingFolders folders = workingFolders(sources);
    EXPECT_EQ(folders.program, base.filePath(u"bin/"_s));
    EXPECT_EQ(folders.profiles, base.filePath(u"bin/mo_def"_s));
}

TEST_F(Folders, BelowUsrTheUsersDataFolderTakesItsPlace)
{
    sources.executableFolder = u"/usr/bin"_s; // writable for root
    const WorkingFolders folders = workingFolders(sources);
    EXPECT_EQ(folders.program, base.filePath(u"data/Tarvelo FTP/"_s));
    EXPECT_EQ(folders.profiles, base.filePath(u"data/Tarvelo FTP/mo_def"_s));
}

TEST_F(Folders, AnExecutableFolderThatCannotBeWrittenIsNotUsed)
{
    if (::geteuid() == 0) { // whom permissions do not stop
        sources.executableFolder = base.filePath(u"verschwunden"_s);
    } else {
        QFile::setPermissions(sources.executableFolder, QFile::ReadOwner | QFile::ExeOwner);
    }
    EXPECT_EQ(workingFolders(sources).program, base.filePath(u"data/Tarvelo FTP/"_s));
}

TEST_F(Folders, TheTemporaryFolderStandsBelowTempAndEndsInTheSeparator)
{
    EXPECT_EQ(workingFolders(sources).temporary, base.filePath(u"tmp/tarvelo_ftp_temp/"_s));
    sources.temporary += u'/';
    EXPECT_EQ(workingFolders(sources).temporary, base.filePath(u"tmp/tarvelo_ftp_temp/"_s));
}

TEST_F(Folders, TempIsTakenFromTheEnvironment)
{
    EXPECT_EQ(FolderSources::ofThisUser().temporary, qEnvironmentVariable("TEMP"));
    const QByteArray temp = qgetenv("TEMP");
    qunsetenv("TEMP");
    EXPECT_EQ(FolderSources::ofThisUser().temporary, QDir::tempPath());
    qputenv("TEMP", temp);
}

TEST_F(Folders, AMissingDesktopIsTheHomeFolder)
{
    EXPECT_EQ(workingFolders(sources).desktop, base.path());
    QDir(base.path()).mkdir(u"Schreibtisch"_s);
    EXPECT_EQ(workingFolders(sources).desktop, base.filePath(u"Schreibtisch"_s));
    sources.desktop.clear();
    EXPECT_EQ(workingFolders(sources).desktop, base.path());
}

TEST_F(Folders, TheProfileFolderIsForItsOwnerAlone)
{
    sources.executableFolder = u"/usr/bin"_s;
    const WorkingFolders folders = workingFolders(sources);
    makeProfileFolder(folders);
    ASSERT_TRUE(QFileInfo(folders.profiles).isDir());
    EXPECT_EQ(QFile(folders.profiles).permissions() & others, QFile::Permissions());
    EXPECT_EQ(QFile(folders.profiles).permissions() & owner, owner);
}

TEST_F(Folders, MakingThemCreatesMissingFoldersAboveTemp)
{
    const QString folder = workingFolders(sources).temporary;
    EXPECT_EQ(makeTemporaryFolder(folder), folder);
    EXPECT_TRUE(QFileInfo(base.filePath(u"tmp/tarvelo_ftp_temp"_s)).isDir());
    EXPECT_EQ(QFile(folder).permissions() & others, QFile::Permissions());
    // What is in it stays when the next run takes it again.
    QDir(folder).mkdir(u"bleibt"_s);
    QFile fetched(folder + u"bleibt/impressum.html"_s);
    ASSERT_TRUE(fetched.open(QIODevice::WriteOnly));
    QFile::setPermissions(folder, owner | others);
    EXPECT_EQ(makeTemporaryFolder(folder), folder);
    EXPECT_TRUE(fetched.exists());
    EXPECT_EQ(QFile(folder).permissions() & others, QFile::Permissions());
}

TEST_F(Folders, TwoProcessesNeverShareTheTemporaryFolder)
{
    const QString folder = workingFolders(sources).temporary;
    QDir().mkpath(folder);
    // As another process would hold it.
    const int other = ::open(QFile::encodeName(folder).constData(), O_RDONLY);
    ASSERT_EQ(::flock(other, LOCK_EX), 0);
    const QString second = base.filePath(u"tmp/tarvelo_ftp_temp_%1"_s.arg(::geteuid()));
    EXPECT_EQ(makeTemporaryFolder(folder), second + u'/');
    const int another = ::open(QFile::encodeName(second).constData(), O_RDONLY);
    EXPECT_NE(::flock(another, LOCK_EX | LOCK_NB), 0) << "the second window does not hold its own";
    ::close(another);
    ::close(other);
    EXPECT_EQ(makeTemporaryFolder(folder), folder);
}

TEST_F(Folders, WithManyWindowsTheNamesGoOn)
{
    const QString folder = workingFolders(sources).temporary;
    QDir().mkpath(folder);
    const QString second = base.filePath(u"tmp/tarvelo_ftp_temp_%1"_s.arg(::geteuid()));
    QDir().mkpath(second);
    const int first = ::open(QFile::encodeName(folder).constData(), O_RDONLY);
    const int other = ::open(QFile::encodeName(second).constData(), O_RDONLY);
    ASSERT_EQ(::flock(first, LOCK_EX), 0);
    ASSERT_EQ(::flock(other, LOCK_EX), 0);
    EXPECT_EQ(makeTemporaryFolder(folder), second + u"_3/"_s);
    ::close(first);
    ::close(other);
}

TEST_F(Folders, ALinkInPlaceOfTheTemporaryFolderIsNotUsed)
{
    const QString folder = workingFolders(sources).temporary;
    QDir(base.path()).mkpath(u"tmp"_s);
    QDir(base.path()).mkpath(u"fremd"_s);
    QFile::link(base.filePath(u"fremd"_s), folder.chopped(1));
    const QString own = base.filePath(u"tmp/tarvelo_ftp_temp_%1/"_s.arg(::geteuid()));
    EXPECT_EQ(makeTemporaryFolder(folder), own);
    EXPECT_TRUE(QFileInfo(own).isDir());
}

TEST_F(Folders, WhenAllNamesAreTakenAnUnknownOneIsMade)
{
    const QString folder = workingFolders(sources).temporary;
    const QString second = base.filePath(u"tmp/tarvelo_ftp_temp_%1"_s.arg(::geteuid()));
    QDir(base.path()).mkpath(u"tmp"_s);
    QDir(base.path()).mkpath(u"fremd"_s);
    QFile::link(base.filePath(u"fremd"_s), folder.chopped(1));
    QFile::link(base.filePath(u"fremd"_s), second);
    for (int window = 3; window <= 9; ++window) {
        QFile::link(base.filePath(u"fremd"_s), second + u'_' + QString::number(window));
    }
    const QString made = makeTemporaryFolder(folder);
    EXPECT_TRUE(made.startsWith(second + u'_')) << made.toStdString();
    EXPECT_TRUE(made.endsWith(u'/'));
    EXPECT_TRUE(QFileInfo(made).isDir());
    EXPECT_TRUE(QDir(base.filePath(u"fremd"_s)).isEmpty());
}

TEST_F(Folders, DrivesAreHomeRootAndPluggedInVolumes)
{
    const QByteArray table = "22 1 8:1 / / rw,relatime - ext4 /dev/sda1 rw\n"
                             "30 22 0:5 / /proc rw - proc proc rw\n"
                             "40 22 8:17 / /media/anna/MEIN\\040STICK rw - vfat /dev/sdb1 rw\n"
                             "41 22 8:33 / /run/media/anna/Fotos rw - ext4 /dev/sdc1 rw\n"
                             "42 22 0:44 / /mnt/nas rw - nfs4 nas:/x rw\n"
                             "43 22 8:40 / /mediathek rw - ext4 /dev/sdd1 rw\n"
                             "44 22 8:49 / /mnt/nas rw - ext4 /dev/sde1 rw\n" // over the other
                             "45 22 8:50 / /mnt rw - ext4 /dev/sdf1 rw\n"
                             "broken line\n";
    QStringList shown;
    for (const Drive &drive : drives(u"/home/anna"_s, table)) {
        shown << drive.display();
    }
    EXPECT_EQ(
        shown,
        (QStringList { u"/home/anna"_s, u"/"_s, u"/media/anna/MEIN STICK [MEIN STICK]"_s,
                       u"/run/media/anna/Fotos [Fotos]"_s, u"/mnt/nas [nas]"_s, u"/mnt [mnt]"_s }));
    EXPECT_EQ(drives().at(0).path, QDir::homePath());
    EXPECT_EQ(drives().at(1).path, u"/"_s);
}
