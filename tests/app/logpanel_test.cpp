#include "app/logpanel.h"

#include "app/logfile.h"
#include "common/globals.h"
#include "support/scriptedprompts.h"

#include <QClipboard>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

struct Log : ::testing::Test {
    QTemporaryDir folder;
    ProgramSettings settings;
    ScriptedPrompts prompts;
    LogPanel panel { settings, prompts };

    void SetUp() override
    {
        settings.LogFolder = folder.path();
        panel.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&panel));
    }
    void press(const QString &name)
    {
        auto *button = panel.findChild<QToolButton *>(name);
        ASSERT_NE(button, nullptr) << name.toStdString();
        button->setFocus();
        button->click();
        EXPECT_TRUE(panel.txtLog()->hasFocus());
    }
    void touch(const QString &name) const
    {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("alt");
    }
    QByteArray saved(const QString &name) const
    {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }
    QString confirmation(const QString &name) const
    {
        return u"\r\nDie Logdatei wurde nach "_s + folder.path() + u'/' + name
            + u" gespeichert.\r\n"_s;
    }
};

} // namespace

TEST_F(Log, AppendingAddsNothingOfItsOwn)
{
    panel.AppendLog(u"Connecting ..."_s);
    panel.AppendLog(u" weiter"_s);
    panel.AppendLog(u"\r\n220 bereit\r\n"_s);
    panel.AppendLog({});
    EXPECT_EQ(panel.text(), u"Connecting ... weiter\r\n220 bereit\r\n"_s);
    EXPECT_EQ(panel.txtLog()->toPlainText(), u"Connecting ... weiter\n220 bereit\n"_s);
}

TEST_F(Log, CrLfIsOneBreakAlsoWhenItComesInTwoParts)
{
    panel.AppendLog(u"a\r"_s);
    panel.AppendLog(u"\nb\r\n\r\nc"_s);
    EXPECT_EQ(panel.text(), u"a\r\nb\r\n\r\nc"_s);
}

TEST_F(Log, TextIsInsertedAtTheEndWhereverTheCaretIs)
{
    panel.AppendLog(u"eins zwei"_s);
    QTextCursor caret = panel.txtLog()->textCursor();
    caret.setPosition(0);
    caret.setPosition(4, QTextCursor::KeepAnchor);
    panel.txtLog()->setTextCursor(caret);
    panel.AppendLog(u" drei"_s);
    EXPECT_EQ(panel.text(), u"eins zwei drei"_s);
    EXPECT_EQ(panel.txtLog()->textCursor().position(), 14);
    EXPECT_FALSE(panel.txtLog()->textCursor().hasSelection());
}

TEST_F(Log, EveryCharacterIsKept)
{
    const QString text = u"<b>kein Markup</b>\tTab\u00a0No-break „Grüße“ \U0001F600\u0001"_s;
    panel.AppendLog(text);
    EXPECT_EQ(panel.text(), text);
}

TEST_F(Log, TheUserCannotTypeIntoIt)
{
    QTest::keyClicks(panel.txtLog(), u"abc"_s);
    EXPECT_EQ(panel.text(), QString());
}

TEST_F(Log, CopyPutsTheTextOnTheClipboardAndTellsAfterwards)
{
    panel.AppendLog(u"220 bereit\r\nEnde"_s);
    press(u"cmd_log_clipboard"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"220 bereit\r\nEnde"_s);
    EXPECT_EQ(panel.text(),
              u"220 bereit\r\nEnde\r\nDer Inhalt des Logfensters wurde in die Zwischenablage "
              "kopiert.\r\n"_s);
}

TEST_F(Log, ClearingEmptiesIt)
{
    panel.AppendLog(u"220 bereit\r"_s);
    press(u"cmd_log_loeschen"_s);
    EXPECT_EQ(panel.text(), QString());
    panel.AppendLog(u"\nneu"_s);
    EXPECT_EQ(panel.text(), u"\r\nneu"_s);
}

TEST_F(Log, SavingTakesTheFirstFreeName)
{
    panel.AppendLog(u"220 Grüße\r\nEnde"_s);
    press(u"cmd_log_speichern"_s);
    EXPECT_EQ(saved(u"log.txt"_s),
              "220 Gr\xfc\xdf"
              "e\r\nEnde\r\n");
    EXPECT_EQ(panel.text(), u"220 Grüße\r\nEnde"_s + confirmation(u"log.txt"_s));
    touch(u"log1.txt"_s);
    press(u"cmd_log_speichern"_s);
    EXPECT_TRUE(panel.text().endsWith(confirmation(u"log2.txt"_s)));
    EXPECT_EQ(saved(u"log1.txt"_s), "alt");
    EXPECT_TRUE(saved(u"log2.txt"_s).startsWith("220 Gr"));
}

TEST_F(Log, AnEmptyLogIsSavedAsOneLineEnd)
{
    press(u"cmd_log_loeschen"_s);
    press(u"cmd_log_speichern"_s);
    EXPECT_EQ(saved(u"log.txt"_s), "\r\n");
}

TEST_F(Log, WithoutAutomaticNamesTheUserIsAsked)
{
    settings.LogName = false;
    touch(u"mein.txt"_s);
    panel.AppendLog(u"x"_s);
    prompts.expectInput(u"Geben Sie einen Dateinamen für das LOG-Protokol an."_s, u"log.txt"_s,
                        u"mein"_s);
    press(u"cmd_log_speichern"_s);
    EXPECT_EQ(saved(u"mein.txt"_s), "x\r\n"); // overwritten without a question
    EXPECT_TRUE(panel.text().endsWith(confirmation(u"mein.txt"_s)));
}

TEST_F(Log, CancelledOrEmptyNamesSaveNothing)
{
    settings.LogName = false;
    for (const auto &answer : { std::optional<QString>(), std::optional<QString>(QString()) }) {
        prompts.expectInput(u"Geben Sie einen Dateinamen für das LOG-Protokol an."_s, u"log.txt"_s,
                            answer);
        auto *button = panel.findChild<QToolButton *>(u"cmd_log_speichern"_s);
        button->click();
    }
    EXPECT_EQ(panel.text(), QString());
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(Log, AMissingFolderIsOnlyNoticedByItsMissingFile)
{
    settings.LogFolder = folder.filePath(u"weg"_s);
    press(u"cmd_log_speichern"_s);
    EXPECT_EQ(panel.text(),
              u"\r\nDie Logdatei wurde nach "_s + folder.filePath(u"weg/log.txt"_s)
                  + u" gespeichert.\r\n"_s);
    EXPECT_FALSE(QFile::exists(folder.filePath(u"weg"_s)));
}

TEST_F(Log, TheFoldersOwnSeparatorIsFollowedByAnother)
{
    settings.LogFolder = folder.path() + u'/';
    press(u"cmd_log_speichern"_s);
    EXPECT_TRUE(panel.text().contains(folder.path() + u"//log.txt"_s));
    EXPECT_EQ(saved(u"log.txt"_s), "\r\n");
}

TEST_F(Log, FiftyMegabytesStayUsable)
{
    // 50 million characters, the first part at once, then line by line as a long session would.
    const QString line(98, u'x');
    panel.AppendLog((line + u"\r\n"_s).repeated(498000));
    QElapsedTimer timer;
    timer.start();
    constexpr int lines = 2000;
    for (int i = 0; i < lines; ++i) {
        panel.AppendLog(line + u"\r\n"_s);
    }
    const double average = static_cast<double>(timer.nsecsElapsed()) / lines / 1e6;
    EXPECT_LT(average, 1.0) << "milliseconds for one line";
    EXPECT_EQ(panel.text().size(), 100 * (498000 + lines));
}

TEST_F(Log, ALineOfOneMegabyteDoesNotFreezeIt)
{
    QElapsedTimer timer;
    timer.start();
    panel.AppendLog(u"500 "_s + QString(1000000, u'A') + u"\r\n"_s);
    panel.AppendLog(u"Ende"_s);
    panel.txtLog()->viewport()->repaint();
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_EQ(panel.text().size(), 1000004 + 2 + 4);
    EXPECT_EQ(panel.txtLog()->lineWrapMode(), QPlainTextEdit::NoWrap);
    panel.clear();
    EXPECT_EQ(panel.txtLog()->lineWrapMode(), QPlainTextEdit::WidgetWidth);
}

TEST_F(Log, ALongTextOfShortLinesIsWrapped)
{
    panel.AppendLog(QString(60, u'x').append(u"\r\n"_s).repeated(1000));
    panel.AppendLog(QString(9000, u'y'));
    EXPECT_EQ(panel.txtLog()->lineWrapMode(), QPlainTextEdit::WidgetWidth);
    panel.AppendLog(QString(9000, u'y'));
    panel.AppendLog(u"z"_s);
    EXPECT_EQ(panel.txtLog()->lineWrapMode(), QPlainTextEdit::NoWrap);
}

TEST(LogFile, NamesCountUpAndTheCounterEnds)
{
    QSet<QString> taken;
    const auto exists = [&](const QString &name) { return taken.contains(name); };
    EXPECT_EQ(LogFile::nextName(exists), u"log.txt"_s);
    taken << u"log.txt"_s << u"log1.txt"_s;
    EXPECT_EQ(LogFile::nextName(exists), u"log2.txt"_s);
    taken << u"log3.txt"_s;
    EXPECT_EQ(LogFile::nextName(exists), u"log2.txt"_s);
    EXPECT_EQ(LogFile::nextName([](const QString &name) { return name != u"log32767.txt"_s; }),
              u"log32767.txt"_s);
    EXPECT_EQ(LogFile::nextName([](const QString &) { return true; }), std::nullopt);
}

TEST(LogFile, TypedNamesAreCompletedWithTheirExtension)
{
    EXPECT_EQ(LogFile::completeName(u"mein"_s), u"mein.txt"_s);
    EXPECT_EQ(LogFile::completeName(u"mein.txt"_s), u"mein.txt"_s);
    EXPECT_EQ(LogFile::completeName(u"MEIN.TXT"_s), u"MEIN.TXT"_s);
    EXPECT_EQ(LogFile::completeName(u"mein.log"_s), u"mein.log.txt"_s);
}

TEST(LogFile, TextOutsideTheCodePageIsWrittenWithAMark)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"log.txt"_s);
    ASSERT_TRUE(LogFile::write(path, u"日本"_s));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "\xEF\xBB\xBF\xE6\x97\xA5\xE6\x9C\xAC\r\n");
}
