#include "support/accesskeys.h"
#include "support/scriptedprompts.h"
#include "transfer/frmRename.h"
#include "transfer/frmTransfer.h"

#include <QLabel>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

template <class T> T *child(const QWidget &dialog, const QString &name)
{
    auto *found = dialog.findChild<T *>(name);
    EXPECT_NE(found, nullptr) << name.toStdString();
    return found;
}

const ConflictQuestion question { u"Dateiupload..."_s,
                                  { u"Überschreiben /a<b>(1)"_s, u"mit /c(2)"_s },
                                  true };

} // namespace

TEST(FrmTransfer, NoTwoPartsShareAnAccessKey)
{
    EXPECT_EQ(sharedAccessKeys(frmTransfer(question)), QStringList());
}

TEST(FrmTransfer, ShowsQuestionAndButtons)
{
    const frmTransfer dialog(question);
    EXPECT_EQ(dialog.objectName(), u"frmTransfer"_s);
    EXPECT_EQ(dialog.windowTitle(), question.caption);
    const auto *message = child<QLabel>(dialog, u"lblMessage"_s);
    EXPECT_EQ(message->text(), u"Überschreiben /a<b>(1) mit /c(2)"_s);
    EXPECT_EQ(message->textFormat(), Qt::PlainText);
    EXPECT_EQ(message->toolTip(), u"<qt>Überschreiben /a&lt;b&gt;(1) mit /c(2)</qt>"_s);
    EXPECT_EQ(child<QPushButton>(dialog, u"cmdTransfer"_s)->text(), u"Über&schreiben"_s);
    EXPECT_EQ(child<QPushButton>(dialog, u"cmdResume"_s)->text(), u"&Fortsetzen"_s);
    EXPECT_EQ(child<QPushButton>(dialog, u"cmdRename"_s)->text(), u"&Umbenennen"_s);
    EXPECT_EQ(child<QPushButton>(dialog, u"cmdCancel"_s)->text(), u"&Abbrechen"_s);
    EXPECT_EQ(child<QCheckBox>(dialog, u"chkSelectedAll"_s)->text(), u"Alle"_s);
    EXPECT_FALSE(child<QCheckBox>(dialog, u"chkSelectedAll"_s)->isChecked());
}

TEST(FrmTransfer, IsOfOneSizeHoweverLongThePathsAre)
{
    ConflictQuestion endless = question;
    endless.message[0] = u"/www/"_s + QString(8000, u'x') + u"(1)"_s;
    const frmTransfer dialog(endless);
    EXPECT_EQ(dialog.sizeHint(), frmTransfer(question).sizeHint());
    const auto *message = child<QLabel>(dialog, u"lblMessage"_s);
    EXPECT_EQ(message->text(), endless.message[0] + u" mit /c(2)"_s);
    EXPECT_LT(message->toolTip().size(), 1300);
}

TEST(FrmTransfer, APathTooLongForItsLineShowsWhereItBeginsAndTheName)
{
    ConflictQuestion longer = question;
    ConflictQuestion other = question;
    longer.message[0] = u"/www/"_s + QString(200, u'x') + u"/name.html(1)"_s;
    other.message[0] = u"/www/"_s + QString(300, u'x') + u"/name.html(1)"_s;
    const auto drawn = [](const ConflictQuestion &shown) {
        const frmTransfer dialog(shown);
        auto *message = child<QLabel>(dialog, u"lblMessage"_s);
        message->resize(message->sizeHint());
        return message->grab().toImage();
    };
    EXPECT_EQ(drawn(longer), drawn(other)); // they differ in what is left out
    other.message[0].replace(u"name"_s, u"nome"_s);
    EXPECT_NE(drawn(longer), drawn(other));
}

TEST(FrmTransfer, OffersResumingOnlyWhenItIsPossible)
{
    ConflictQuestion without = question;
    without.mayResume = false;
    EXPECT_FALSE(child<QPushButton>(frmTransfer(without), u"cmdResume"_s)->isEnabled());
    EXPECT_TRUE(child<QPushButton>(frmTransfer(question), u"cmdResume"_s)->isEnabled());
}

TEST(FrmTransfer, EachButtonClosesWithItsAnswer)
{
    const std::vector<std::pair<QString, ConflictAnswer>> buttons {
        { u"cmdTransfer"_s, ConflictAnswer::Overwrite },
        { u"cmdResume"_s, ConflictAnswer::Resume },
        { u"cmdRename"_s, ConflictAnswer::Rename },
        { u"cmdCancel"_s, ConflictAnswer::Skip },
    };
    for (const auto &[name, answer] : buttons) {
        for (const bool all : { false, true }) {
            frmTransfer dialog(question);
            dialog.open();
            child<QCheckBox>(dialog, u"chkSelectedAll"_s)->setChecked(all);
            child<QPushButton>(dialog, name)->click();
            EXPECT_FALSE(dialog.isVisible());
            EXPECT_EQ(dialog.reply().answer, answer);
            EXPECT_EQ(dialog.reply().applyToAll, all);
        }
    }
}

TEST(FrmTransfer, LeavingItOtherwiseSkips)
{
    for (const bool all : { false, true }) {
        frmTransfer closed(question);
        closed.open();
        child<QCheckBox>(closed, u"chkSelectedAll"_s)->setChecked(all);
        closed.close();
        EXPECT_EQ(closed.reply().answer, ConflictAnswer::Skip);
        EXPECT_EQ(closed.reply().applyToAll, all);
        frmTransfer escaped(question);
        escaped.open();
        child<QCheckBox>(escaped, u"chkSelectedAll"_s)->setChecked(all);
        QTest::keyClick(&escaped, Qt::Key_Escape);
        EXPECT_FALSE(escaped.isVisible());
        EXPECT_EQ(escaped.reply().answer, ConflictAnswer::Skip);
        EXPECT_EQ(escaped.reply().applyToAll, all);
    }
}

TEST(FrmTransfer, TheReturnKeyNeverOverwrites)
{
    frmTransfer dialog(question);
    dialog.open();
    QTest::keyClick(&dialog, Qt::Key_Return);
    EXPECT_EQ(dialog.reply().answer, ConflictAnswer::Skip);
}

TEST(FrmTransfer, TheReturnKeyPressesTheButtonThatHasTheFocus)
{
    const std::vector<std::pair<QString, ConflictAnswer>> buttons {
        { u"cmdTransfer"_s, ConflictAnswer::Overwrite },
        { u"cmdResume"_s, ConflictAnswer::Resume },
        { u"cmdRename"_s, ConflictAnswer::Rename },
        { u"cmdCancel"_s, ConflictAnswer::Skip },
    };
    for (const auto &[name, answer] : buttons) {
        frmTransfer dialog(question);
        dialog.show();
        dialog.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
        auto *button = child<QPushButton>(dialog, name);
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Return);
        EXPECT_FALSE(dialog.isVisible());
        EXPECT_EQ(dialog.reply().answer, answer) << name.toStdString();
    }
}

TEST(FrmRename, ShowsTheExistingName)
{
    ScriptedPrompts prompts;
    const frmRename dialog(u"index.html"_s, prompts);
    EXPECT_EQ(dialog.objectName(), u"frmRename"_s);
    EXPECT_EQ(dialog.windowTitle(), u"Umbenennen"_s);
    EXPECT_EQ(child<QLabel>(dialog, u"Label1"_s)->text(), u"Neuer Name für die vorhandene Datei"_s);
    EXPECT_EQ(child<QLineEdit>(dialog, u"txtRename"_s)->text(), u"index.html"_s);
    EXPECT_EQ(child<QPushButton>(dialog, u"cmdOK"_s)->text(), u"&OK"_s);
    EXPECT_EQ(child<QPushButton>(dialog, u"cmdCancel"_s)->text(), u"&Abbrechen"_s);
}

TEST(FrmRename, StaysOpenWithoutAName)
{
    ScriptedPrompts prompts;
    frmRename dialog(u"index.html"_s, prompts);
    dialog.open();
    auto *name = child<QLineEdit>(dialog, u"txtRename"_s);
    for (const QString &text : { QString(), u"   "_s }) {
        name->setText(text);
        prompts.expectMessage(
            u"Bitte geben Sie einen gültigen Dateinamen an oder wählen Sie 'Abbrechen'."_s);
        child<QPushButton>(dialog, u"cmdOK"_s)->click();
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(name->text(), QString());
    }
}

TEST(FrmRename, GivesTheTrimmedName)
{
    ScriptedPrompts prompts;
    frmRename dialog(u"index.html"_s, prompts);
    dialog.open();
    child<QLineEdit>(dialog, u"txtRename"_s)->setText(u"  alt.html "_s);
    child<QPushButton>(dialog, u"cmdOK"_s)->click();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.newName(), u"alt.html"_s);
}
