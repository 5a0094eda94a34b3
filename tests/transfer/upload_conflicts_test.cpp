#include "transferbench.h"

#include "ftp/ftplocalnames.h"
#include "remote/itemkind.h"

using namespace Qt::StringLiterals;

// Uploads of what is there already: what is asked, and what the answers do.

class UploadConflicts : public TransferBench { };

TEST_F(UploadConflicts, TheConflictCheckTrustsThePane)
{
    ftp.addFile(u"/www/a.txt"_s, "alt");
    writeLocal(u"a.txt"_s, "neuer");
    showBoth();
    PaneRow row = remote.model().row(1);
    row.size = u"2.5 von 7"_s;
    remote.model().changeRow(1, row);
    local.select({ u"a.txt"_s });
    dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
    commands.cmd_upload_Click();
    EXPECT_TRUE(dialogs.questions.value(0).message.first().contains(u"/www/a.txt(2)"_s));
}

TEST_F(UploadConflicts, AnEmptyRemoteFileIsReplacedWithoutAsking)
{
    ftp.addFile(u"/www/a.txt"_s, "");
    writeLocal(u"a.txt"_s, "neu");
    upload({ u"a.txt"_s });
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "neu");
}

TEST_F(UploadConflicts, AConflictIsAskedAboutAndAnswered)
{
    writeLocal(u"a.txt"_s, "neuer Inhalt");
    for (const auto answer :
         { ConflictAnswer::Skip, ConflictAnswer::Resume, ConflictAnswer::Overwrite }) {
        ftp.addFile(u"/www/a.txt"_s, "NEUER");
        dialogs.steps = { { answer, false, {} } };
        upload({ u"a.txt"_s });
        const QByteArray expected = answer == ConflictAnswer::Skip ? "NEUER"
            : answer == ConflictAnswer::Resume                     ? "NEUER Inhalt"
                                                                   : "neuer Inhalt";
        EXPECT_EQ(ftp.content(u"/www/a.txt"_s), expected);
    }
    EXPECT_EQ(statuses().size(), 2);
}

TEST_F(UploadConflicts, AConflictFreeUploadAfterAResumedOneReplaces)
{
    ftp.addFile(u"/www/a.txt"_s, "EINS");
    writeLocal(u"a.txt"_s, "eins und mehr");
    writeLocal(u"b.txt"_s, "zwei");
    dialogs.steps = { { ConflictAnswer::Resume, false, {} } };
    upload({ u"a.txt"_s, u"b.txt"_s });
    const QStringList puts = ftp.commandsOf(u"PUT"_s);
    ASSERT_EQ(puts.size(), 2);
    EXPECT_TRUE(puts[0].contains(u"@4 mode 2"_s));
    EXPECT_TRUE(puts[1].contains(u"@0 mode 0"_s));
}

TEST_F(UploadConflicts, AllRepeatsTheAnswer)
{
    writeLocal(u"a"_s, "eins eins");
    writeLocal(u"b"_s, "zwei zwei");
    for (const auto answer : { ConflictAnswer::Resume, ConflictAnswer::Overwrite }) {
        ftp.addFile(u"/www/a"_s, "EINS");
        ftp.addFile(u"/www/b"_s, "ZWEI");
        dialogs.steps = { { answer, true, {} } };
        upload({ u"a"_s, u"b"_s });
        EXPECT_EQ(ftp.content(u"/www/b"_s),
                  answer == ConflictAnswer::Resume ? "ZWEI zwei" : "zwei zwei");
    }
}

TEST_F(UploadConflicts, AResumedFileNeverGoesInARun)
{
    for (const char *name : { "a", "b", "c" }) {
        ftp.addFile(u"/www/"_s + QString::fromLatin1(name), "NEU");
        writeLocal(QString::fromLatin1(name), "neuer");
    }
    dialogs.steps = { { ConflictAnswer::Resume, true, {} } };
    upload({ u"a"_s, u"b"_s, u"c"_s });
    EXPECT_EQ(ftp.lists, 0);
    EXPECT_EQ(ftp.content(u"/www/c"_s), "NEUer");
}

TEST_F(UploadConflicts, AnExistingFolderIsAskedAboutAndNotMadeAgain)
{
    ftp.addFolder(u"/www/bilder"_s);
    writeLocal(u"bilder/a"_s, "y");
    dialogs.steps = { { ConflictAnswer::Overwrite, false, {} } };
    upload({ u"bilder"_s });
    EXPECT_TRUE(ftp.commandsOf(u"MKD"_s).isEmpty());
    EXPECT_EQ(ftp.content(u"/www/bilder/a"_s), "y");
    EXPECT_TRUE(dialogs.questions.value(0).message.first().contains(u"/www/bilder(0)"_s));
}

TEST_F(UploadConflicts, RenamesTheRemoteFileWithFullPathsAndAsksAgain)
{
    ftp.addFile(u"/www/a.txt"_s, "alt");
    ftp.addFile(u"/www/vergeben"_s, "x");
    writeLocal(u"a.txt"_s, "neuer");
    dialogs.steps = { { ConflictAnswer::Rename, false, u"vergeben"_s },
                      { ConflictAnswer::Rename, false, u"b.txt"_s },
                      { ConflictAnswer::Overwrite, false, {} } };
    upload({ u"a.txt"_s });
    EXPECT_EQ(ftp.commandsOf(u"RENAME"_s), QStringList { u"RENAME /www/a.txt /www/b.txt"_s });
    EXPECT_EQ(ftp.content(u"/www/b.txt"_s), "alt");
    EXPECT_EQ(ftp.content(u"/www/vergeben"_s), "x");
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "neuer");
    EXPECT_EQ(shell.log.count(u"vergeben: Der Name ist schon vergeben.\r\n"_s), 1);
    EXPECT_EQ(dialogs.offeredNames, (QStringList { u"a.txt"_s, u"a.txt"_s }));
    ASSERT_EQ(dialogs.questions.size(), 3);
    EXPECT_EQ(dialogs.questions[2].message, dialogs.questions[0].message);
}

TEST_F(UploadConflicts, ANameThatOnlyTheServerKnowsIsNotReplaced)
{
    ftp.addFile(u"/www/a.txt"_s, "alt");
    writeLocal(u"a.txt"_s, "neuer");
    showBoth();
    ftp.addFile(u"/www/heimlich"_s, "wertvoll");
    local.select({ u"a.txt"_s });
    dialogs.steps
        = { { ConflictAnswer::Rename, false, u"heimlich"_s }, { ConflictAnswer::Skip, false, {} } };
    commands.cmd_upload_Click();
    EXPECT_EQ(ftp.content(u"/www/heimlich"_s), "wertvoll");
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "alt");
    EXPECT_TRUE(shell.log.contains(u"heimlich: Der Name ist schon vergeben."_s));
}

TEST_F(UploadConflicts, ANewNameThatCannotBeLookedUpIsNotCalledTaken)
{
    ftp.addFile(u"/www/a.txt"_s, "alt");
    writeLocal(u"a.txt"_s, "neuer");
    showBoth();
    local.select({ u"a.txt"_s });
    ftp.refuseAll(u"LIST"_s, u"425 No data connection."_s);
    dialogs.steps
        = { { ConflictAnswer::Rename, false, u"frei"_s }, { ConflictAnswer::Skip, false, {} } };
    commands.cmd_upload_Click();
    EXPECT_TRUE(ftp.commandsOf(u"RENAME"_s).isEmpty());
    EXPECT_TRUE(shell.log.contains(u"frei: Ob der Name frei ist, ließ sich nicht feststellen"_s));
    EXPECT_FALSE(shell.log.contains(u"vergeben"_s));
}

TEST_F(UploadConflicts, ANewNameThatLeadsElsewhereIsRefusedAndAskedForAgain)
{
    ftp.addFile(u"/www/a.txt"_s, "alt");
    ftp.addFile(u"/www/unter/a.txt"_s, "wertvoll");
    writeLocal(u"a.txt"_s, "neuer");
    dialogs.steps = { { ConflictAnswer::Rename, false, u"unter/a.txt"_s },
                      { ConflictAnswer::Skip, false, {} } };
    upload({ u"a.txt"_s });
    EXPECT_TRUE(ftp.commandsOf(u"RENAME"_s).isEmpty());
    EXPECT_EQ(ftp.content(u"/www/unter/a.txt"_s), "wertvoll");
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "alt");
    EXPECT_TRUE(shell.log.contains(u"unter/a.txt: Der Name ist als Dateiname nicht zulässig."_s));
}

TEST_F(UploadConflicts, CancellingTheNewNameSkipsTheItem)
{
    ftp.addFile(u"/www/a.txt"_s, "alt");
    writeLocal(u"a.txt"_s, "neuer");
    dialogs.steps = { { ConflictAnswer::Rename, false, std::nullopt } };
    upload({ u"a.txt"_s });
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "alt");
    EXPECT_TRUE(shell.queue.isEmpty());
}

TEST_F(UploadConflicts, ALineLostAtTheQuestionLeavesNoRow)
{
    ftp.addFile(u"/www/a"_s, "alt");
    ftp.addFolder(u"/www/bilder"_s);
    writeLocal(u"a"_s, "neuer");
    writeLocal(u"bilder/b"_s, "x");
    for (const QString &name : { u"a"_s, u"bilder"_s }) {
        ftp.connectionState = FtpOperations::Connected;
        dialogs.whileAsked = [this] { ftp.close(); };
        dialogs.steps = { { ConflictAnswer::Overwrite, false, {} } };
        upload({ name });
        EXPECT_TRUE(shell.queue.isEmpty()) << name.toStdString();
    }
}

TEST_F(UploadConflicts, AConflictThatARenameMadeIsSeen)
{
    ftp.addFile(u"/www/a"_s, "alt");
    writeLocal(u"a"_s, "neuer");
    writeLocal(u"b"_s, "neuer");
    dialogs.steps = { { ConflictAnswer::Rename, false, u"b"_s },
                      { ConflictAnswer::Overwrite, false, {} },
                      { ConflictAnswer::Skip, false, {} } };
    upload({ u"a"_s, u"b"_s });
    EXPECT_EQ(ftp.content(u"/www/b"_s), "alt") << "overwritten without a question";
    EXPECT_EQ(ftp.content(u"/www/a"_s), "neuer");
}

TEST_F(UploadConflicts, RenamingAFolderMakesRoomForTheNewOne)
{
    ftp.addFile(u"/www/bilder/x"_s, "alt");
    writeLocal(u"bilder/x"_s, "neuer");
    dialogs.steps = { { ConflictAnswer::Rename, false, u"frueher"_s },
                      { ConflictAnswer::Overwrite, false, {} } };
    upload({ u"bilder"_s });
    EXPECT_EQ(ftp.commandsOf(u"MKD"_s), QStringList { u"MKD /www/bilder"_s });
    EXPECT_EQ(ftp.content(u"/www/bilder/x"_s), "neuer");
    EXPECT_EQ(ftp.content(u"/www/frueher/x"_s), "alt");
}

TEST_F(UploadConflicts, AFolderThatWasRenamedAndThenSkippedIsNotMadeAnew)
{
    ftp.addFolder(u"/www/bilder"_s);
    writeLocal(u"bilder/x"_s, "neuer");
    dialogs.steps
        = { { ConflictAnswer::Rename, false, u"frueher"_s }, { ConflictAnswer::Skip, false, {} } };
    upload({ u"bilder"_s });
    EXPECT_TRUE(ftp.has(u"/www/frueher"_s));
    EXPECT_FALSE(ftp.has(u"/www/bilder"_s));
    EXPECT_TRUE(shell.queue.isEmpty());
}

TEST_F(UploadConflicts, TheNewNameIsAskedForWithTheServersName)
{
    const QString name = textOfName("a\xe4.txt"); // no UTF-8: another name on the server
    const QString onServer = nameForServer(name);
    ASSERT_NE(onServer, name);
    ftp.addFile(u"/www/"_s + onServer, "alt");
    showBoth();
    local.model().appendRow({ name, ItemKind::File, u"5"_s, {}, {}, disk(name), false });
    local.select({ name });
    dialogs.steps = { { ConflictAnswer::Rename, false, std::nullopt } };
    commands.cmd_upload_Click();
    EXPECT_EQ(dialogs.offeredNames, QStringList { onServer });
}

TEST_F(UploadConflicts, ResumingIsOfferedWhateverTheServerSaysOfRestarts)
{
    ftp.addFile(u"/www/a"_s, "alt");
    writeLocal(u"a"_s, "neuer");
    globals.session.ResumeSupport = false; // an upload is continued by appending
    dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
    upload({ u"a"_s });
    EXPECT_TRUE(dialogs.questions.value(0).mayResume);
}

TEST_F(UploadConflicts, AllGoesForFoldersThatExist)
{
    ftp.addFile(u"/www/a"_s, "EINS");
    ftp.addFolder(u"/www/d1"_s);
    ftp.addFolder(u"/www/d2"_s);
    writeLocal(u"a"_s, "eins eins");
    writeLocal(u"d1/x"_s, "x");
    writeLocal(u"d2/x"_s, "x");
    for (const auto &[answer, names] :
         { std::pair { ConflictAnswer::Overwrite, QStringList { u"d1"_s, u"d2"_s } },
           std::pair { ConflictAnswer::Resume, QStringList { u"a"_s, u"d1"_s } } }) {
        shell.queue.clear();
        ftp.nodes.remove(u"/www/d1/x"_s);
        dialogs.steps = { { answer, true, {} }, { answer, true, {} } };
        upload(names);
        EXPECT_EQ(dialogs.steps.size(), 1U) << "asked more than once";
        dialogs.steps.clear();
        EXPECT_EQ(ftp.content(u"/www/d1/x"_s), "x");
        EXPECT_EQ(statuses(), (QStringList { u"Upload"_s, u"Upload"_s }));
    }
    EXPECT_EQ(ftp.content(u"/www/d2/x"_s), "x");
}

TEST_F(UploadConflicts, TheBarIsEmptyWhileTheNextQuestionStands)
{
    ftp.addFile(u"/www/c"_s, "alt");
    for (const char *name : { "a", "b", "c" }) {
        writeLocal(QString::fromLatin1(name), "neuer");
    }
    dialogs.whileAsked = [this] { EXPECT_EQ(progress.value(), 0); };
    for (const QStringList &names :
         { QStringList { u"b"_s, u"c"_s }, QStringList { u"a"_s, u"b"_s, u"c"_s } }) {
        ftp.nodes.remove(u"/www/a"_s);
        ftp.nodes.remove(u"/www/b"_s);
        dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
        upload(names);
    }
}

TEST_F(UploadConflicts, AServerThatTellsNeitherListsNorSizesIsNeverOverwrittenUnasked)
{
    for (const QString &name : { u"a"_s, u"b"_s, u"c"_s }) {
        ftp.addFile(u"/www/"_s + name, "alt");
        ftp.nodes[u"/www/"_s + name].time.reset();
        writeLocal(name, "neuer");
    }
    showBoth();
    remote.model().setRows({ upRow() });
    remote.unread = [] { return true; };
    local.select({ u"a"_s, u"b"_s, u"c"_s });
    dialogs.steps
        = { { ConflictAnswer::Skip, false, {} }, { ConflictAnswer::Overwrite, true, {} } };
    commands.cmd_upload_Click();
    EXPECT_EQ(dialogs.questions.value(0).message.join(u' '),
              u"Überschreiben /www/a(unbekannt) mit "_s + disk(u"a(5)"_s));
    EXPECT_FALSE(dialogs.questions.value(0).mayResume) << "nobody knows where";
    EXPECT_EQ(ftp.content(u"/www/a"_s), "alt");
    EXPECT_EQ(ftp.content(u"/www/b"_s), "neuer");
    EXPECT_EQ(ftp.content(u"/www/c"_s), "neuer");
    EXPECT_EQ(ftp.commandsOf(u"RAW"_s).size(), 1) << "once it is known the server is left alone";
}

TEST_F(UploadConflicts, ResumingAllDoesNotDecideAboutATargetOfUnknownSize)
{
    ftp.addFile(u"/www/a"_s, "al");
    ftp.addFile(u"/www/b"_s, "alt");
    ftp.nodes[u"/www/b"_s].time.reset();
    writeLocal(u"a"_s, "alles");
    writeLocal(u"b"_s, "neuer");
    showBoth();
    remote.model().setRows({ upRow() });
    remote.unread = [] { return true; };
    local.select({ u"a"_s, u"b"_s });
    dialogs.steps = { { ConflictAnswer::Resume, true, {} }, { ConflictAnswer::Skip, false, {} } };
    commands.cmd_upload_Click();
    EXPECT_EQ(ftp.content(u"/www/a"_s), "alles");
    EXPECT_EQ(ftp.content(u"/www/b"_s), "alt");
}
