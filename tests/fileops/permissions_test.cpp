#include "fileops/frm_rechte.h"
#include "fileops/permissions.h"
#include "support/accesskeys.h"
#include "support/helpkeys.h"
#include "support/workbench.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QCheckBox *box(const frm_rechte &dialog, int group, int index)
{
    return dialog.findChild<QCheckBox *>(u"chk_rechte%1_%2"_s.arg(group).arg(index));
}

QString shown(const frm_rechte &dialog)
{
    return dialog.findChild<QLabel *>(u"lbl_rechte"_s)->text();
}

void click(frm_rechte &dialog, const QString &button)
{
    dialog.findChild<QPushButton *>(button)->click();
}

} // namespace

TEST(PermissionMode, SplitsIntoDigitsAndBack)
{
    for (int mode = 0; mode <= 777; ++mode) {
        const PermissionDigits digits = digitsOf(mode);
        EXPECT_EQ(modeOf(digits), mode);
        EXPECT_LE(digits.owner, 7);
    }
    EXPECT_EQ(modeOf(digitsOf(-5)), 0);
}

TEST(PermissionMode, IsClampedAsADecimalNumber)
{
    EXPECT_EQ(clampMode(-1), 0);
    EXPECT_EQ(clampMode(0), 0);
    EXPECT_EQ(clampMode(698), 698);
    EXPECT_EQ(clampMode(777), 777);
    EXPECT_EQ(clampMode(4755), 777);
}

TEST(FrmRechte, NoTwoPartsShareAnAccessKey)
{
    PermissionChoice choice;
    EXPECT_EQ(sharedAccessKeys(frm_rechte(choice)), QStringList());
}

TEST(FrmRechte, IsEmptyAtFirstUse)
{
    PermissionChoice choice;
    choice.PermissionsConfirmed = true;
    const frm_rechte dialog(choice);
    EXPECT_EQ(dialog.objectName(), u"frm_rechte"_s);
    EXPECT_EQ(dialog.windowTitle(), u"Dateirechte einstellen (Unix chmod)"_s);
    EXPECT_FALSE(choice.PermissionsConfirmed);
    EXPECT_EQ(shown(dialog), u"0"_s);
    QStringList titles;
    for (const QGroupBox *group : dialog.findChildren<QGroupBox *>()) {
        titles.append(group->title());
    }
    EXPECT_EQ(titles, (QStringList { u"Besitzer"_s, u"Benutzergruppe"_s, u"Andere"_s }));
    for (int group = 1; group <= 3; ++group) {
        EXPECT_EQ(box(dialog, group, 0)->text(), u"lesen"_s);
        EXPECT_EQ(box(dialog, group, 1)->text(), u"schreiben"_s);
        EXPECT_EQ(box(dialog, group, 2)->text(), u"ausführen"_s);
        for (int index = 0; index < 3; ++index) {
            EXPECT_FALSE(box(dialog, group, index)->isChecked());
        }
    }
}

TEST(FrmRechte, TheThreeGroupsAreEquallyWide)
{
    PermissionChoice choice;
    frm_rechte dialog(choice);
    dialog.show();
    const auto groups = dialog.findChildren<QGroupBox *>();
    ASSERT_EQ(groups.size(), 3);
    for (const QGroupBox *group : groups) {
        EXPECT_NEAR(group->width(), groups.first()->width(), 1);
    }
}

TEST(FrmRechte, AddsUpTheTickedBoxes)
{
    const int weights[3][3] { { 400, 200, 100 }, { 40, 20, 10 }, { 4, 2, 1 } };
    for (int group = 1; group <= 3; ++group) {
        for (int index = 0; index < 3; ++index) {
            PermissionChoice choice;
            frm_rechte dialog(choice);
            box(dialog, group, index)->click();
            EXPECT_EQ(shown(dialog), QString::number(weights[group - 1][index]));
            click(dialog, u"cmd_ok"_s);
            EXPECT_TRUE(choice.PermissionsConfirmed);
            EXPECT_EQ(choice.PermissionMode, weights[group - 1][index]);
        }
    }
}

TEST(FrmRechte, ShowsTheModeConfirmedLast)
{
    PermissionChoice choice;
    for (const int mode : { 0, 1, 55, 600, 755, 777 }) {
        choice.PermissionMode = mode;
        frm_rechte dialog(choice);
        EXPECT_EQ(shown(dialog), QString::number(mode));
        click(dialog, u"cmd_ok"_s);
        EXPECT_EQ(choice.PermissionMode, mode);
    }
}

TEST(FrmRechte, CancelKeepsTheMode)
{
    PermissionChoice choice;
    choice.PermissionMode = 644;
    frm_rechte dialog(choice);
    dialog.open();
    box(dialog, 1, 2)->click();
    click(dialog, u"cmd_abbrechen"_s);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_FALSE(choice.PermissionsConfirmed);
    EXPECT_EQ(choice.PermissionMode, 644);
}

TEST(FrmRechte, TheReturnKeyPressesTheButtonThatHasTheFocus)
{
    PermissionChoice choice;
    const auto pressReturn = [&choice](const QString &name) {
        choice.PermissionMode = 644;
        frm_rechte dialog(choice);
        dialog.show();
        dialog.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
        auto *widget = dialog.findChild<QWidget *>(name);
        widget->setFocus();
        QTest::keyClick(widget, Qt::Key_Return);
        EXPECT_FALSE(dialog.isVisible());
    };
    pressReturn(u"cmd_abbrechen"_s);
    EXPECT_FALSE(choice.PermissionsConfirmed); // nothing is sent
    pressReturn(u"cmd_chmod"_s);
    EXPECT_TRUE(choice.PermissionsConfirmed);
    EXPECT_EQ(choice.PermissionMode, 755);
    pressReturn(u"chk_rechte1_0"_s); // no button: the default one
    EXPECT_TRUE(choice.PermissionsConfirmed);
    EXPECT_EQ(choice.PermissionMode, 644);
}

TEST(FrmRechte, EveryGroupHoldsItsOwnBoxes)
{
    PermissionChoice choice;
    const frm_rechte dialog(choice);
    const QStringList titles { u"Besitzer"_s, u"Benutzergruppe"_s, u"Andere"_s };
    for (int group = 1; group <= 3; ++group) {
        for (int index = 0; index < 3; ++index) {
            const auto *around = qobject_cast<QGroupBox *>(box(dialog, group, index)->parent());
            ASSERT_NE(around, nullptr);
            EXPECT_EQ(around->title(), titles.at(group - 1));
        }
    }
    const auto caption
        = [&dialog](const QString &name) { return dialog.findChild<QPushButton *>(name)->text(); };
    EXPECT_EQ(caption(u"cmd_ok"_s), u"&Ok"_s);
    EXPECT_EQ(caption(u"cmd_abbrechen"_s), u"&Abbrechen"_s);
    EXPECT_EQ(caption(u"cmd_hilfe"_s), u"Hilfe"_s);
    QStringList labels;
    for (const QLabel *label : dialog.findChildren<QLabel *>()) {
        labels.append(label->text());
    }
    EXPECT_TRUE(labels.contains(u"Gewählte Unix Dateirechte:"_s));
}

TEST(FrmRechte, TheChmodButtonConfirmsAtOnce)
{
    PermissionChoice choice;
    choice.PermissionMode = 22;
    frm_rechte dialog(choice);
    dialog.open();
    const auto *button = dialog.findChild<QPushButton *>(u"cmd_chmod"_s);
    EXPECT_EQ(button->text(), u"chmod 755"_s);
    EXPECT_EQ(button->toolTip(), u"Wird häufig für Dateien im cgi-bin Ordner benötigt"_s);
    click(dialog, u"cmd_chmod"_s);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_TRUE(choice.PermissionsConfirmed);
    EXPECT_EQ(choice.PermissionMode, 755);
}

TEST(FrmRechte, TheOtherUsualModeConfirmsAtOnce)
{
    PermissionChoice choice;
    frm_rechte dialog(choice);
    dialog.open();
    EXPECT_EQ(dialog.findChild<QPushButton *>(u"cmd_chmod_644"_s)->text(), u"chmod 644"_s);
    click(dialog, u"cmd_chmod_644"_s);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_TRUE(choice.PermissionsConfirmed);
    EXPECT_EQ(choice.PermissionMode, 644);
    EXPECT_FALSE(choice.alsoInside);
}

TEST(FrmRechte, WhatIsInsideIsLeftAloneUnlessTickedThisTime)
{
    PermissionChoice choice;
    const auto inside
        = [](const frm_rechte &dialog) { return dialog.findChild<QCheckBox *>(u"chk_inhalt"_s); };
    {
        frm_rechte dialog(choice);
        EXPECT_EQ(inside(dialog)->text(),
                  u"auch für alles in den Ordnern (Dateien 644, Ordner 755)"_s);
        EXPECT_FALSE(inside(dialog)->isChecked());
        inside(dialog)->click();
        click(dialog, u"cmd_chmod"_s);
        EXPECT_TRUE(choice.alsoInside);
    }
    frm_rechte again(choice);
    EXPECT_FALSE(inside(again)->isChecked());
    EXPECT_FALSE(choice.alsoInside);
}

TEST(FrmRechte, TheHelpButtonSendsF1)
{
    PermissionChoice choice;
    frm_rechte dialog(choice);
    const HelpKeys keys(dialog);
    click(dialog, u"cmd_hilfe"_s);
    EXPECT_TRUE(keys.one());
}

class PermissionTest : public Workbench {
protected:
    PermissionTest()
    {
        ftp.addFile(u"/www/a.cgi"_s, "x");
        ftp.addFile(u"/www/b c.cgi"_s, "x");
        ftp.addFolder(u"/www/ordner"_s);
        showBoth();
    }
    void confirm(int mode, bool alsoInside = false)
    {
        PermissionCommand(work, [this, mode, alsoInside] {
            globals.permissions = { mode, true, alsoInside };
        }).mnu_rechte_Click();
    }
    [[nodiscard]] QString columnOf(const QString &name)
    {
        return remote.model().row(remote.model().findRow(name)).permissions;
    }
};

TEST_F(PermissionTest, SendsTheCommandForEverySelectedRow)
{
    remote.selectAll();
    confirm(755);
    EXPECT_EQ(ftp.commands,
              (QStringList { u"RAW SITE chmod 755 a.cgi"_s, u"RAW SITE chmod 755 b c.cgi"_s,
                             u"RAW SITE chmod 755 ordner"_s }));
    EXPECT_EQ(columnOf(u"ordner"_s), u"755"_s);
    EXPECT_TRUE(remote.markedNames().isEmpty());
    EXPECT_EQ(shell.log.left(20), u"a.cgi > 250 Ok\r\nb c."_s);
}

TEST_F(PermissionTest, KeepsTheTypedDigits)
{
    remote.select({ u"a.cgi"_s });
    confirm(55);
    confirm(1);
    EXPECT_EQ(ftp.commands,
              (QStringList { u"RAW SITE chmod 55 a.cgi"_s, u"RAW SITE chmod 1 a.cgi"_s }));
}

TEST_F(PermissionTest, AddsOneQueueRow)
{
    remote.selectAll();
    confirm(600);
    ASSERT_EQ(shell.queue.size(), 1);
    EXPECT_EQ(queueRow(0),
              (QStringList { u"Dateirechte"_s, u"setzen auf"_s, u"600"_s, u">"_s, u"/www/"_s,
                             u"files01"_s }));
}

TEST_F(PermissionTest, TheRowComesWhenAllIsKnownAndOnlyIfSomethingWasSent)
{
    remote.selectAll();
    ftp.during = [this](const QString &) { EXPECT_TRUE(shell.queue.isEmpty()); };
    confirm(600, true);
    EXPECT_EQ(shell.queue.size(), 1);
    remote.selectAll();
    PermissionCommand(work, [this] {
        globals.permissions = { 600, true, false };
        ftp.close(); // the line goes while the dialog stands
    }).mnu_rechte_Click();
    EXPECT_EQ(shell.queue.size(), 1);
}

TEST_F(PermissionTest, ButtonsAndBoxesAreOffMeanwhileAndOnAfterwards)
{
    const auto last = [this](const QString &call) {
        return shellCalls(call).value(shellCalls(call).size() - 1);
    };
    const auto expectOn = [&] {
        EXPECT_EQ(last(u"SetToolbarsEnabled"_s), u"SetToolbarsEnabled 1"_s);
        EXPECT_EQ(last(u"SetFolderBoxesEnabled"_s), u"SetFolderBoxesEnabled 1"_s);
        EXPECT_EQ(shell.calls.last(), u"UpdateRemoteCommandStates"_s) << "its rows are selected";
    };
    int seen = 0;
    const auto expectOff = [&](const QString &) {
        ++seen;
        EXPECT_EQ(last(u"SetToolbarsEnabled"_s), u"SetToolbarsEnabled 0"_s);
        EXPECT_EQ(last(u"SetFolderBoxesEnabled"_s), u"SetFolderBoxesEnabled 0"_s);
    };
    ftp.during = expectOff;
    remote.selectAll();
    confirm(755, true);
    EXPECT_EQ(seen, 4);
    expectOn();
    ftp.refuseAll(u"a.cgi"_s, u"502 Unknown command."_s);
    remote.selectAll();
    confirm(755);
    expectOn();
    ftp.during = [&](const QString &command) {
        expectOff(command);
        ftp.close();
    };
    remote.selectAll();
    confirm(755);
    expectOn();
}

TEST_F(PermissionTest, ARefusalIsToldAndTheColumnFollowsAllTheSame)
{
    remote.select({ u"a.cgi"_s, u"ordner"_s });
    ftp.refuseAll(u"a.cgi"_s, u"502 Unknown command."_s);
    confirm(644);
    EXPECT_EQ(columnOf(u"a.cgi"_s), u"644"_s);
    EXPECT_EQ(columnOf(u"ordner"_s), u"644"_s);
    EXPECT_TRUE(shell.queue.value(0).failed);
    EXPECT_EQ(shell.queue.value(0).detail, u"a.cgi: 502 Unknown command."_s);
    EXPECT_TRUE(shell.log.startsWith(u"a.cgi > 502 Unknown command."_s));
}

TEST_F(PermissionTest, ALostConnectionEndsTheRound)
{
    remote.selectAll();
    ftp.during = [this](const QString &command) {
        if (command.contains(u"a.cgi"_s)) {
            ftp.close();
        }
    };
    confirm(755, true);
    EXPECT_EQ(ftp.commands.size(), 1);
    EXPECT_EQ(shell.log.count(u" > "_s), 1); // nothing is told of rows that were not tried
    EXPECT_EQ(columnOf(u"ordner"_s), u"644"_s);
    EXPECT_TRUE(remote.markedNames().isEmpty());
}

TEST_F(PermissionTest, TheContentOfRealFoldersFollowsWhenWanted)
{
    ftp.addLink(u"/www/verweis"_s, u"/anderswo"_s);
    showBoth();
    remote.selectAll();
    confirm(700, true);
    EXPECT_EQ(ftp.commandsOf(u"MODES"_s), QStringList { u"MODES /www/ordner 644 755"_s });
    EXPECT_EQ(ftp.commandsOf(u"RAW"_s).size(), 4);
    EXPECT_FALSE(shell.queue.value(0).failed);
}

TEST_F(PermissionTest, ARefusalInsideAFolderIsTold)
{
    remote.select({ u"ordner"_s });
    ftp.refuseAll(u"MODES"_s, u"550 Not yours."_s);
    confirm(755, true);
    EXPECT_TRUE(shell.queue.value(0).failed);
    EXPECT_EQ(shell.queue.value(0).detail, u"In ordner: 550 Not yours."_s);
}

TEST_F(PermissionTest, CancelSendsNothing)
{
    remote.selectAll();
    PermissionCommand(work, [this] {
        globals.permissions.PermissionsConfirmed = false;
    }).mnu_rechte_Click();
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_TRUE(shell.queue.isEmpty());
    EXPECT_TRUE(remote.markedNames().isEmpty());
}

TEST_F(PermissionTest, NeedsAnIdleSession)
{
    remote.selectAll();
    bool shownAtAll = false;
    ftp.busy = true;
    PermissionCommand(work, [&shownAtAll] { shownAtAll = true; }).mnu_rechte_Click();
    EXPECT_FALSE(shownAtAll);
}
