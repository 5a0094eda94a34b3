#include "common/settingsstore.h"

#include "common/codepage.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct Store : ::testing::Test {
    QTemporaryDir folder;
    QString file = folder.filePath(u"Tarvelo FTP/Tarvelo FTP.ini"_s);

    void write(const QByteArray &bytes) const
    {
        QDir().mkpath(QFileInfo(file).absolutePath());
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes);
    }
    /// A copy of the file under a new name: two stores of one path share what is in memory.
    QString copied()
    {
        const QString copy = folder.filePath(u"copy%1.ini"_s.arg(++m_copies));
        EXPECT_TRUE(QFile::copy(file, copy));
        return copy;
    }
    QByteArray bytes() const
    {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }

private:
    int m_copies = 0;
};

} // namespace

TEST_F(Store, StandsInTheUsersConfigurationFolder)
{
    EXPECT_EQ(SettingsStore::defaultFile(),
              qEnvironmentVariable("XDG_CONFIG_HOME") + u"/Tarvelo FTP/Tarvelo FTP.ini"_s);
}

TEST_F(Store, MissingKeysGiveTheirDefaults)
{
    const SettingsStore store(file);
    EXPECT_EQ(store.text(u"Settings"_s, u"RemoteHost"_s, u"nichts"_s), u"nichts"_s);
    EXPECT_EQ(store.integer(u"Settings"_s, u"Timeout"_s, 30).value(), 30);
    EXPECT_EQ(store.boolean(u"Settings"_s, u"Passive"_s, true).value(), true);
    EXPECT_TRUE(store.bytes(u"Window"_s, u"Geometry"_s).isEmpty());
}

TEST_F(Store, TextComesBackExactly)
{
    QString everyCode;
    for (int code = 0; code < 256; ++code) {
        everyCode += CodePage::characterOf(code);
    }
    const QStringList texts { {},
                              u" blanks at both ends "_s,
                              u"\ttab\t"_s,
                              u"C:\\ordner\\"_s,
                              u"\\"_s,
                              u"say \"hello\""_s,
                              u"\"quoted\""_s,
                              u"a,b;c=d#e%f"_s,
                              u"a, b"_s,
                              u"@Invalid()"_s,
                              u"@ByteArray(x)"_s,
                              u"@@"_s,
                              u"Grüße, Straße, €"_s,
                              u"日本語 \U0001F600"_s,
                              u"line\r\nbreak\nand\rmore"_s,
                              u"\\x41BC"_s,
                              u"[Settings]"_s,
                              everyCode,
                              QString(QChar(0)) };
    for (const QString &text : texts) {
        SCOPED_TRACE(text.toStdString());
        SettingsStore store(file);
        store.setText(u"Settings"_s, u"Bemerkungen"_s, text);
        ASSERT_TRUE(store.sync());
        EXPECT_EQ(SettingsStore(copied()).text(u"Settings"_s, u"Bemerkungen"_s), text);
    }
}

TEST_F(Store, EveryCharacterSurvivesBetweenAnyOther)
{
    SettingsStore store(file);
    for (char16_t unit = 1; unit < 0x180; ++unit) {
        for (const QChar next : { QChar(u'1'), QChar(u'a'), QChar(u' '), QChar(unit) }) {
            const QString key = u"K%1_%2"_s.arg(unit).arg(next.unicode());
            store.setText(u"Settings"_s, key, QChar(unit) + QString(next) + QChar(unit));
        }
    }
    ASSERT_TRUE(store.sync());
    const SettingsStore again(copied());
    for (char16_t unit = 1; unit < 0x180; ++unit) {
        for (const QChar next : { QChar(u'1'), QChar(u'a'), QChar(u' '), QChar(unit) }) {
            const QString key = u"K%1_%2"_s.arg(unit).arg(next.unicode());
            ASSERT_EQ(again.text(u"Settings"_s, key), QChar(unit) + QString(next) + QChar(unit))
                << int { unit };
        }
    }
}

TEST_F(Store, KeysAndSectionsMatchWithoutRegardToCase)
{
    SettingsStore store(file);
    store.setInteger(u"Settings"_s, u"ProxyPort"_s, 1080);
    EXPECT_EQ(store.integer(u"SETTINGS"_s, u"Proxyport"_s, 2121).value(), 1080);
    store.setInteger(u"settings"_s, u"proxyport"_s, 3128);
    ASSERT_TRUE(store.sync());
    EXPECT_EQ(SettingsStore(copied()).integer(u"Settings"_s, u"ProxyPort"_s, 2121).value(), 3128);
    EXPECT_EQ(bytes().toLower().count("proxyport"), 1);
}

TEST_F(Store, ReadsWhatAPersonTyped)
{
    write("[settings]\nREMOTEHOST=files01\nuserName = web, 01\nTimeout= 45\nPassive=no text\n");
    const SettingsStore store(file);
    EXPECT_EQ(store.text(u"Settings"_s, u"RemoteHost"_s), u"files01"_s);
    EXPECT_EQ(store.text(u"Settings"_s, u"UserName"_s), u"web, 01"_s);
    EXPECT_EQ(store.integer(u"Settings"_s, u"Timeout"_s, 30).value(), 45);
}

TEST_F(Store, NumbersAndTruthValuesAreStoredAsWords)
{
    SettingsStore store(file);
    store.setInteger(u"Settings"_s, u"Timeout"_s, 45);
    store.setText(u"Properties"_s, u"LogName"_s, SettingsStore::fromBoolean(true));
    store.setText(u"Properties"_s, u"ErrorMsg"_s, SettingsStore::fromBoolean(false));
    ASSERT_TRUE(store.sync());
    EXPECT_TRUE(bytes().contains("\nTimeout=45\n"));
    EXPECT_TRUE(bytes().contains("\nLogName=True\n"));
    EXPECT_TRUE(bytes().contains("\nErrorMsg=False\n"));
    EXPECT_TRUE(bytes().contains("[Properties]"));
    EXPECT_TRUE(bytes().contains("[Settings]"));
}

TEST_F(Store, TruthValuesMayBeWordsInAnyCaseOrNumbers)
{
    const QList<std::pair<QString, int>> table {
        { u"True"_s, 1 }, { u"FALSE"_s, 0 }, { u"true"_s, 1 },   { u" False "_s, 0 }, { u"0"_s, 0 },
        { u"1"_s, 1 },    { u"-1"_s, 1 },    { u"0.0"_s, 0 },    { u"0.4"_s, 1 },     { u"7"_s, 1 },
        { u"ja"_s, -1 },  { {}, -1 },        { u"True1"_s, -1 }, { u"1 a"_s, -1 }
    };
    SettingsStore store(file);
    for (const auto &[text, expected] : table) {
        SCOPED_TRACE(text.toStdString());
        store.setText(u"Properties"_s, u"LogName"_s, text);
        const auto value = store.boolean(u"Properties"_s, u"LogName"_s, true);
        EXPECT_EQ(value.has_value() ? int { *value } : -1, expected);
    }
}

TEST_F(Store, WholeNumbersAreReadStrictly)
{
    const QList<std::pair<QString, std::optional<int>>> table {
        { u"21"_s, 21 },
        { u" 21 "_s, 21 },
        { u"-5"_s, -5 },
        { u"2.5"_s, 2 },
        { u"3.5"_s, 4 },
        { u"1e2"_s, 100 },
        { u"2147483647"_s, 2147483647 },
        { u"2147483648"_s, {} },
        { u"1e300"_s, {} },
        { u"30s"_s, {} },
        { u"abc"_s, {} },
        { {}, {} },
        { u"True"_s, {} },
    };
    SettingsStore store(file);
    for (const auto &[text, expected] : table) {
        SCOPED_TRACE(text.toStdString());
        store.setText(u"Settings"_s, u"Timeout"_s, text);
        const auto value = store.integer(u"Settings"_s, u"Timeout"_s, 30);
        EXPECT_EQ(value.has_value() ? std::optional(*value) : std::nullopt, expected);
    }
}

TEST_F(Store, AFailedConversionNamesFileAndKeyAndRepairsNothing)
{
    write("[Settings]\nTimeout=bald\n");
    const SettingsStore store(file);
    const auto value = store.integer(u"Settings"_s, u"Timeout"_s, 30);
    ASSERT_FALSE(value);
    EXPECT_EQ(value.error().file, file);
    EXPECT_EQ(value.error().key, u"Settings/Timeout"_s);
    EXPECT_EQ(value.error().value, u"bald"_s);
    EXPECT_TRUE(value.error().text().contains(file));
    EXPECT_TRUE(value.error().text().contains(u"Settings/Timeout"_s));
    EXPECT_EQ(bytes(), "[Settings]\nTimeout=bald\n");
}

TEST_F(Store, OnlyItsOwnerMayReadTheFile)
{
    constexpr QFile::Permissions others
        = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    {
        SettingsStore store(file);
        EXPECT_EQ(QFile(file).permissions() & others, QFile::Permissions());
        store.setText(u"Settings"_s, u"Password"_s, u"x"_s);
        ASSERT_TRUE(store.sync());
    }
    EXPECT_EQ(QFile(file).permissions() & others, QFile::Permissions());

    // A file that is open to others is closed to them, before anything is written.
    ASSERT_TRUE(QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | others));
    SettingsStore store(file);
    EXPECT_EQ(QFile(file).permissions() & others, QFile::Permissions());
    EXPECT_EQ(store.text(u"Settings"_s, u"Password"_s), u"x"_s);
}

TEST_F(Store, KeepsWhatItDoesNotKnow)
{
    write("[Settings]\nSpaeter=1\n\n[Fremd]\nx=y\n");
    SettingsStore store(file);
    ASSERT_TRUE(store.save(u"Settings"_s, { { u"RemoteHost"_s, u"files01"_s } }));
    EXPECT_TRUE(bytes().contains("Spaeter=1"));
    EXPECT_TRUE(bytes().contains("x=y"));
}

TEST_F(Store, RawBytesComeBack)
{
    const QByteArray geometry("\x01\xd9\xd0\xcb\0\x03\r\n,;\"\\", 12);
    SettingsStore store(file);
    store.setBytes(u"Window"_s, u"Geometry"_s, geometry);
    ASSERT_TRUE(store.sync());
    EXPECT_EQ(SettingsStore(copied()).bytes(u"Window"_s, u"Geometry"_s), geometry);
}

TEST_F(Store, AFolderInPlaceOfTheFileIsAnErrorOfTheFile)
{
    QDir().mkpath(file);
    SettingsStore store(file);
    const auto readable = store.readable();
    ASSERT_FALSE(readable);
    EXPECT_TRUE(readable.error().text().contains(file));
    EXPECT_FALSE(store.save(u"Settings"_s, { { u"RemoteHost"_s, u"files01"_s } }));
}

TEST_F(Store, AFileThatCannotBeWrittenIsNamed)
{
    write("keine Mappe");
    SettingsStore store(file + u"/Tarvelo FTP.ini"_s);
    const auto saved = store.save(u"Settings"_s, { { u"RemoteHost"_s, u"files01"_s } });
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error().text(),
              u"Die Einstellungen konnten nicht gespeichert werden: "_s + store.file());
    EXPECT_FALSE(store.sync()); // still not written
    EXPECT_EQ(store.text(u"Settings"_s, u"RemoteHost"_s), u"files01"_s);
}

TEST_F(Store, WhatCouldNotBeWrittenIsWrittenOnceItCan)
{
    write("im Weg");
    SettingsStore store(file + u"/Tarvelo FTP.ini"_s);
    ASSERT_FALSE(store.save(u"Settings"_s, { { u"Password"_s, u"geheim"_s } }));
    ASSERT_TRUE(QFile::remove(file));
    ASSERT_TRUE(store.save(u"Settings"_s, { { u"RemoteHost"_s, u"files01"_s } }));
    EXPECT_EQ(store.text(u"Settings"_s, u"Password"_s), u"geheim"_s);
    QFile written(store.file());
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), "[Settings]\nPassword=geheim\nRemoteHost=files01\n");
    EXPECT_EQ(written.permissions()
                  & (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther),
              QFile::Permissions());
}

TEST_F(Store, ABinaryFileGivesDefaultsAndNoCrash)
{
    QByteArray noise;
    for (int i = 0; i < 100000; ++i) {
        noise += static_cast<char>((i * 7919) >> 3);
    }
    write(noise);
    const SettingsStore store(file);
    EXPECT_TRUE(store.readable());
    EXPECT_EQ(store.integer(u"Settings"_s, u"Timeout"_s, 30).value(), 30);
}

TEST_F(Store, LinesThatAreNoEntriesAreKeptInACopy)
{
    const QByteArray typed("[Settings]\nRemoteHost=files01\nhier fehlt etwas\n");
    write(typed);
    SettingsStore store(file);
    EXPECT_EQ(store.text(u"Settings"_s, u"RemoteHost"_s), u"files01"_s);
    EXPECT_TRUE(store.save(u"Settings"_s, { { u"UserName"_s, u"web01"_s } }));
    QFile copy(file + u".defekt"_s);
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), typed);
}

TEST_F(Store, EveryBrokenFileIsKeptAndNoneTwice)
{
    const QByteArray first("[Settings]\nerste Zeile ohne Wert\n");
    const QByteArray second("[Settings]\nzweite Zeile ohne Wert\n");
    for (const QByteArray &typed : { first, first, second }) {
        write(typed);
        const SettingsStore store(file);
    }
    const auto kept = [this](const QString &ending) {
        QFile copy(file + ending);
        return copy.open(QIODevice::ReadOnly) ? copy.readAll() : QByteArray("missing");
    };
    EXPECT_EQ(kept(u".defekt"_s), first);
    EXPECT_EQ(kept(u".defekt2"_s), second);
    EXPECT_EQ(kept(u".defekt3"_s), "missing");
}

TEST_F(Store, TwoProgramsDoNotLoseEachOthersValues)
{
    SettingsStore one(file);
    SettingsStore two(file);
    ASSERT_TRUE(one.save(u"Settings"_s, { { u"RemoteHost"_s, u"files01"_s } }));
    ASSERT_TRUE(two.save(u"Properties"_s, { { u"LogFolder"_s, u"/tmp/logs"_s } }));
    const SettingsStore third(copied());
    EXPECT_EQ(third.text(u"Settings"_s, u"RemoteHost"_s), u"files01"_s);
    EXPECT_EQ(third.text(u"Properties"_s, u"LogFolder"_s), u"/tmp/logs"_s);
}
