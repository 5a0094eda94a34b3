#include "connections/profilefolder.h"

#include "common/globals.h"
#include "common/mo_standard.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

struct Profiles : ::testing::Test {
    QTemporaryDir base;
    ProfileFolder folder { base.path() };

    void put(const QString &file, const QByteArray &bytes) const
    {
        QFile out(base.filePath(file));
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes);
    }
    QByteArray bytes(const QString &file) const
    {
        QFile in(base.filePath(file));
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray("missing");
    }
    static ProfileFields withHost(const QString &host)
    {
        ProfileFields fields;
        fields.RemoteHost = host;
        return fields;
    }
};

} // namespace

TEST_F(Profiles, ListsEveryLoginFileSortedByName)
{
    for (const auto *name :
         { "zebra.login", "Alpha.login", "beta.LOGIN", "notiz.txt", ".login", "beta.extra" }) {
        put(QString::fromLatin1(name), "x\r\n");
    }
    QDir(base.path()).mkdir(u"ordner.login"_s);
    EXPECT_EQ(folder.names(), (QStringList { QString(), u"Alpha"_s, u"beta"_s, u"zebra"_s }));
    EXPECT_TRUE(ProfileFolder(base.filePath(u"weg"_s)).names().isEmpty());
}

TEST_F(Profiles, WrittenProfilesAreReadBack)
{
    ProfileFields fields = withHost(u"files01"_s);
    fields.Password = u"gehéim!"_s;
    fields.encryption = 1;
    ASSERT_TRUE(folder.write(u"Heim"_s, fields));
    EXPECT_TRUE(bytes(u"Heim.login"_s).startsWith("files01\r\n"));
    ProfileFields read;
    EXPECT_EQ(folder.read(u"Heim"_s, read), 11);
    EXPECT_EQ(read, fields);
}

TEST_F(Profiles, FilesAreForTheirOwnerAlone)
{
    put(u"Heim.login"_s, "alt");
    QFile::setPermissions(base.filePath(u"Heim.login"_s), QFile::ReadOwner | QFile::ReadOther);
    ProfileFields fields = withHost(u"files01"_s);
    fields.encryption = 2;
    ASSERT_TRUE(folder.write(u"Heim"_s, fields));
    for (const QString &name : { u"Heim.login"_s, u"Heim.extra"_s }) {
        struct stat status = {};
        ASSERT_EQ(::stat(QFile::encodeName(base.filePath(name)).constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0600U) << name.toStdString();
    }
}

TEST_F(Profiles, NamesMatchWithoutRegardToCase)
{
    put(u"HEIM.login"_s, encodeProfile(withHost(u"files01"_s)).login);
    ProfileFields read;
    EXPECT_EQ(folder.read(u"heim"_s, read), 11);
    EXPECT_EQ(read.RemoteHost, u"files01"_s);
    ASSERT_TRUE(folder.write(u"Heim"_s, withHost(u"files02"_s)));
    EXPECT_EQ(QDir(base.path()).entryList(QDir::Files), QStringList { u"HEIM.login"_s });
    EXPECT_TRUE(bytes(u"HEIM.login"_s).startsWith("files02"));
    EXPECT_TRUE(folder.remove(u"hEiM"_s));
    EXPECT_TRUE(QDir(base.path()).isEmpty());
}

TEST_F(Profiles, TheExactNameWinsOverOneThatDiffersInCase)
{
    put(u"heim.login"_s, encodeProfile(withHost(u"klein"_s)).login);
    put(u"HEIM.login"_s, encodeProfile(withHost(u"gross"_s)).login);
    ProfileFields read;
    folder.read(u"HEIM"_s, read);
    EXPECT_EQ(read.RemoteHost, u"gross"_s);
    folder.read(u"heim"_s, read);
    EXPECT_EQ(read.RemoteHost, u"klein"_s);
}

TEST_F(Profiles, WhatIsMissingChangesNothing)
{
    ProfileFields fields = withHost(u"vorher"_s);
    for (const QString &name : { u"fehlt"_s, QString(), u"../Heim"_s, u"."_s }) {
        EXPECT_EQ(folder.read(name, fields), 0);
        EXPECT_FALSE(folder.remove(name));
    }
    EXPECT_EQ(fields.RemoteHost, u"vorher"_s);
}

TEST_F(Profiles, NamesThatLeaveTheFolderAreRefused)
{
    for (const QString &name : { u"../x"_s, u"a/b"_s, QString() }) {
        EXPECT_FALSE(folder.write(name, {}));
    }
    EXPECT_FALSE(QFile::exists(base.path() + u"/../x.login"_s));
}

TEST_F(Profiles, TheSideFileGoesWhenItIsNotNeeded)
{
    ProfileFields fields = withHost(u"files01"_s);
    fields.encryption = 1;
    ASSERT_TRUE(folder.write(u"Heim"_s, fields));
    EXPECT_TRUE(QFile::exists(base.filePath(u"Heim.extra"_s)));
    fields.encryption = -1;
    ASSERT_TRUE(folder.write(u"Heim"_s, fields));
    EXPECT_FALSE(QFile::exists(base.filePath(u"Heim.extra"_s)));
    fields.encryption = 1;
    ASSERT_TRUE(folder.write(u"Heim"_s, fields));
    EXPECT_TRUE(folder.remove(u"Heim"_s));
    EXPECT_TRUE(QDir(base.path()).isEmpty());
}

TEST_F(Profiles, HugeFilesPipesAndFoldersAreNotRead)
{
    put(u"riese.login"_s, QByteArray(3 << 20, 'x'));
    ASSERT_EQ(::mkfifo(QFile::encodeName(base.filePath(u"rohr.login"_s)).constData(), 0600), 0);
    QDir(base.path()).mkdir(u"ordner.login"_s);
    ProfileFields fields = withHost(u"vorher"_s);
    for (const QString &name : { u"riese"_s, u"rohr"_s, u"ordner"_s }) {
        EXPECT_EQ(folder.read(name, fields), 0) << name.toStdString();
    }
    EXPECT_EQ(fields.RemoteHost, u"vorher"_s);
}

TEST_F(Profiles, AFailedWriteLeavesTheOldFile)
{
    ASSERT_TRUE(folder.write(u"Heim"_s, withHost(u"files01"_s)));
    // A folder in the place of the side file: it can be neither replaced nor removed.
    QDir(base.path()).mkpath(u"Heim.extra/x"_s);
    ProfileFields fields = withHost(u"files02"_s);
    fields.encryption = 1;
    const auto written = folder.write(u"Heim"_s, fields);
    ASSERT_FALSE(written);
    EXPECT_TRUE(written.error().startsWith(u"Die Verbindung konnte nicht gespeichert werden."_s));
    EXPECT_TRUE(bytes(u"Heim.login"_s).startsWith("files01"));
    EXPECT_EQ(QDir(base.path()).entryList(QDir::Files), QStringList { u"Heim.login"_s });
}

TEST_F(Profiles, AFailedWriteLeavesTheSideFileToo)
{
    QDir(base.path()).mkpath(u"Heim.login/x"_s); // cannot be replaced
    ProfileFields fields = withHost(u"files02"_s);
    fields.encryption = 1;
    EXPECT_FALSE(folder.write(u"Heim"_s, fields));
    EXPECT_EQ(bytes(u"Heim.extra"_s), "missing");
    put(u"Heim.extra"_s, "Encryption=2\n");
    EXPECT_FALSE(folder.write(u"Heim"_s, fields));
    EXPECT_EQ(bytes(u"Heim.extra"_s), "Encryption=2\n");
}

TEST_F(Profiles, AFolderThatCannotBeWrittenIsTold)
{
    const ProfileFolder missing(base.filePath(u"weg"_s));
    const auto written = missing.write(u"Heim"_s, {});
    ASSERT_FALSE(written);
    EXPECT_TRUE(written.error().contains(base.filePath(u"weg/Heim.login"_s)));
}

TEST_F(Profiles, RememberingReplacesOneFolderOfTheCurrentProfile)
{
    Globals globals;
    globals.folders.profiles = base.path();
    globals.session.Lastconnect = u"Heim"_s;
    globals.connection.RemoteHost = u"files01"_s;
    globals.connection.Password = u"abc"_s;
    globals.connection.LocalDir = u"/alt"_s;
    globals.connection.RemoteDir = u"/html"_s;
    globals.connection.TransferType = 5; // unknown
    globals.connection.Passive = false;
    globals.connection.Bemerkungen = u"a\r\nb"_s;
    globals.session.CurrentRemoteDir = u"/html/bilder"_s;

    globals.session.CurrentRemoteDir = u"/anderswo"_s; // only looked at
    ASSERT_TRUE(rememberLocal(globals, u"/home/anna/"_s));
    EXPECT_EQ(bytes(u"Heim.login"_s),
              "files01\r\n\r\n^_`\r\n/home/anna/\r\n/html\r\n30\r\n21\r\n0\r\n2\r\n\r\na<br>b\r\n");
    EXPECT_EQ(globals.connection.LocalDir, u"/home/anna/"_s);
    EXPECT_EQ(globals.session.CurrentLocalDir, u"/home/anna/"_s);

    globals.connection.TransferType = 0;
    globals.connection.Passive = true;
    ASSERT_TRUE(rememberRemote(globals, u"/html/neu/"_s));
    EXPECT_EQ(
        bytes(u"Heim.login"_s),
        "files01\r\n\r\n^_`\r\n/home/anna/\r\n/html/neu/\r\n30\r\n21\r\n1\r\n1\r\n\r\na<br>b\r\n");
    EXPECT_EQ(globals.connection.RemoteDir, u"/html/neu/"_s);
    EXPECT_EQ(globals.session.CurrentRemoteDir, u"/html/neu/"_s);
}

TEST_F(Profiles, WithoutAProfileNothingIsRemembered)
{
    Globals globals;
    globals.folders.profiles = base.path();
    EXPECT_FALSE(rememberLocal(globals, u"/home/anna/"_s));
    EXPECT_TRUE(QDir(base.path()).isEmpty());
}
