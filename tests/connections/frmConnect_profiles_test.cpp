#include "connections/connectdialog.h"

using namespace Qt::StringLiterals;

TEST_F(ConnectDialog, TheLastProfileIsSelectedAndLoaded)
{
    writeHome();
    ASSERT_TRUE(profiles.write(u"Arbeit"_s, {}));
    globals.session.Lastconnect = u"Heim"_s;
    open();
    EXPECT_EQ(names()->count(), 2);
    EXPECT_EQ(names()->itemText(0), u"Arbeit"_s);
    EXPECT_EQ(names()->currentText(), u"Heim"_s);
    EXPECT_EQ(dialog->fields(), homeProfile());
}

TEST_F(ConnectDialog, ChoosingAnEntryLoadsIt)
{
    writeHome();
    ASSERT_TRUE(profiles.write(u"Arbeit"_s, {}));
    open();
    names()->setFocus();
    QTest::keyClick(names(), Qt::Key_Down);
    QTest::keyClick(names(), Qt::Key_Down);
    EXPECT_EQ(names()->currentText(), u"Heim"_s);
    EXPECT_EQ(dialog->fields(), homeProfile());
    EXPECT_EQ(find<QComboBox>("cbo_verschluesselung")->currentText(), u"Immer"_s);
}

TEST_F(ConnectDialog, ChoosingTheSameEntryAgainReloadsIt)
{
    writeHome();
    globals.session.Lastconnect = u"Heim"_s;
    open();
    edit("txtRemoteHost")->setText(u"vertippt"_s);
    Q_EMIT names()->activated(names()->currentIndex());
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"files01"_s);
}

TEST_F(ConnectDialog, SavingWritesTheProfileAndListsItOnce)
{
    open();
    names()->setEditText(u"Neu_1"_s);
    edit("txtRemoteHost")->setText(u"files07"_s);
    press("cmd_profil_speichern");
    EXPECT_TRUE(file(u"Neu_1.login"_s).startsWith("files07\r\naltuser\r\n"));
    EXPECT_EQ(names()->count(), 1);
    EXPECT_EQ(names()->currentText(), u"Neu_1"_s);
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"files07"_s);
    press("cmd_profil_speichern");
    EXPECT_EQ(names()->count(), 1);
    press("cmdOK"); // the saved values are the unchanged ones: no question
    EXPECT_FALSE(globals.session.DialogCancelled);
}

TEST_F(ConnectDialog, ASavedProfileTakesItsPlaceAmongTheOthers)
{
    writeHome();
    open();
    names()->setEditText(u"Arbeit"_s);
    press("cmd_profil_speichern");
    ASSERT_EQ(names()->count(), 2);
    EXPECT_EQ(names()->itemText(0), u"Arbeit"_s);
    EXPECT_EQ(names()->currentText(), u"Arbeit"_s);
}

TEST_F(ConnectDialog, SavingNeedsAName)
{
    open();
    for (const QString &name : { QString(), u"   "_s }) {
        edit("txtPassword")->setFocus();
        names()->setEditText(name);
        prompts.expectMessage(
            u"Geben Sie einen Namen an, unter dem Sie die Verbindung speichern möchten."_s);
        press("cmd_profil_speichern");
        EXPECT_TRUE(names()->hasFocus());
    }
    EXPECT_TRUE(profiles.names().isEmpty());
}

TEST_F(ConnectDialog, SavingIntoAReadOnlyFolderIsTold)
{
    globals.folders.profiles = base.filePath(u"weg"_s);
    open();
    names()->setEditText(u"Heim"_s);
    prompts.expectMessage(u"Die Verbindung konnte nicht gespeichert werden.\n"_s
                          + base.filePath(u"weg/Heim.login"_s) + u": No such file or directory"_s);
    press("cmd_profil_speichern");
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(ConnectDialog, DeletingAsksAndRemovesFileAndEntry)
{
    writeHome();
    globals.session.Lastconnect = u"Heim"_s;
    open();
    const QString question = u"Sind Sie sicher, dass Sie die Verbindung löschen möchten."_s;
    prompts.expectQuestion(question, false);
    press("cmd_profil_loeschen");
    EXPECT_TRUE(QFile::exists(base.filePath(u"Heim.login"_s)));
    EXPECT_EQ(names()->count(), 1);
    prompts.expectQuestion(question, true);
    press("cmd_profil_loeschen");
    EXPECT_FALSE(QFile::exists(base.filePath(u"Heim.login"_s)));
    EXPECT_FALSE(QFile::exists(base.filePath(u"Heim.extra"_s)));
    EXPECT_EQ(names()->count(), 0);
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"files01"_s);
    EXPECT_EQ(globals.session.Lastconnect, QString()) << "no folder is remembered in it any more";
}

TEST_F(ConnectDialog, DeletingAnotherProfileLeavesTheCurrentOne)
{
    writeHome();
    globals.session.Lastconnect = u"Büro"_s;
    open();
    names()->setCurrentIndex(0);
    prompts.expectQuestion(u"Sind Sie sicher, dass Sie die Verbindung löschen möchten."_s, true);
    press("cmd_profil_loeschen");
    EXPECT_EQ(globals.session.Lastconnect, u"Büro"_s);
}

TEST_F(ConnectDialog, DeletingNeedsAnExistingName)
{
    open();
    prompts.expectMessage(u"Sie müssen eine Verbindung aus der Liste wählen"_s);
    press("cmd_profil_loeschen");
    names()->setEditText(u"fehlt"_s);
    press("cmd_profil_loeschen"); // asks nothing
}

TEST_F(ConnectDialog, DeletingOneProfileDoesNotLoadAnother)
{
    writeHome();
    ASSERT_TRUE(profiles.write(u"Arbeit"_s, {}));
    globals.session.Lastconnect = u"Heim"_s;
    open();
    prompts.expectQuestion(u"Sind Sie sicher, dass Sie die Verbindung löschen möchten."_s, true);
    press("cmd_profil_loeschen");
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"files01"_s);
    EXPECT_EQ(names()->currentText(), QString());
    EXPECT_EQ(names()->count(), 1);
}

TEST_F(ConnectDialog, TypedAndPastedNamesAreFiltered)
{
    open();
    QLineEdit *name = names()->lineEdit();
    name->setFocus();
    QTest::keyClicks(name, u"my site.1"_s);
    EXPECT_EQ(name->text(), u"my_site_1"_s);
    name->setCursorPosition(2);
    QTest::keyClicks(name, u"-"_s);
    EXPECT_EQ(name->text(), u"my__site_1"_s);
    EXPECT_EQ(name->cursorPosition(), 3);
    QTest::keyClick(name, Qt::Key_Backspace);
    EXPECT_EQ(name->text(), u"my_site_1"_s);
    name->clear();
    QGuiApplication::clipboard()->setText(u"Büro/../x"_s);
    name->paste();
    EXPECT_EQ(name->text(), u"B_ro____x"_s);
}

TEST_F(ConnectDialog, TypingANameIsNotCompletedToAnother)
{
    writeHome();
    open();
    QTest::keyClicks(names()->lineEdit(), u"He"_s);
    EXPECT_EQ(names()->currentText(), u"He"_s);
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"alt01"_s);
}

TEST_F(ConnectDialog, ANameInOtherCaseIsTheSameProfile)
{
    writeHome();
    open();
    names()->setEditText(u"heim"_s);
    press("cmd_profil_speichern");
    EXPECT_EQ(names()->count(), 1);
    EXPECT_EQ(names()->currentText(), u"Heim"_s) << "found again at the next start";
    EXPECT_EQ(profiles.names(), QStringList { u"Heim"_s });
}

TEST_F(ConnectDialog, ProfilesThatDifferInCaseAreNeverMixedUp)
{
    const auto write = [this](const QString &name, const QByteArray &server) {
        QFile made(base.filePath(name));
        ASSERT_TRUE(made.open(QIODevice::WriteOnly) && made.write(server + "\r\n") > 0);
    };
    write(u"HEIM.login"_s, "gross01");
    write(u"heim.login"_s, "klein01");
    globals.session.Lastconnect = u"heim"_s;
    open();
    EXPECT_EQ(edit("txtRemoteHost")->text(), u"klein01"_s);
    edit("txtRemoteHost")->setText(u"klein02"_s);
    press("cmd_profil_speichern");
    EXPECT_EQ(names()->currentText(), u"heim"_s) << "the next saving would go to the other one";
    EXPECT_TRUE(file(u"heim.login"_s).startsWith("klein02\r\n"));
    EXPECT_EQ(file(u"HEIM.login"_s), "gross01\r\n");
    prompts.expectQuestion(u"Sind Sie sicher, dass Sie die Verbindung löschen möchten."_s, true);
    press("cmd_profil_loeschen");
    ASSERT_EQ(names()->count(), 1);
    EXPECT_EQ(names()->itemText(0), u"HEIM"_s);
    EXPECT_EQ(file(u"HEIM.login"_s), "gross01\r\n");
}

TEST_F(ConnectDialog, EnterInTheNameLoadsNoProfileOverTheTypedFields)
{
    writeHome();
    open();
    press("cmd_profil_neu");
    edit("txtRemoteHost")->setText(u"neu01"_s);
    names()->setFocus();
    QTest::keyClicks(names()->lineEdit(), u"Heim"_s);
    prompts.expectQuestion(u"Möchten Sie die Änderungen an der Verbindung speichern?"_s, false);
    QTest::keyClick(names()->lineEdit(), Qt::Key_Return);
    EXPECT_FALSE(globals.session.DialogCancelled) << "Enter is Login";
    EXPECT_EQ(globals.connection.RemoteHost, u"neu01"_s);
    EXPECT_TRUE(file(u"Heim.login"_s).startsWith("files01\r\n"));
}

TEST_F(ConnectDialog, TheWheelChangesNoEntry)
{
    writeHome();
    ASSERT_TRUE(profiles.write(u"Arbeit"_s, {}));
    globals.session.Lastconnect = u"Arbeit"_s;
    open();
    for (auto *box : { names(), find<QComboBox>("lstTransferType") }) {
        const QPointF place = box->rect().center();
        for (const int turn : { -120, 120 }) {
            const int before = box->currentIndex();
            QWheelEvent event(place, box->mapToGlobal(place), {}, { 0, turn }, Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(box, &event);
            EXPECT_EQ(box->currentIndex(), before) << qPrintable(box->objectName());
        }
    }
}
