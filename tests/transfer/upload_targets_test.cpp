#include "transferbench.h"

#include "remote/itemkind.h"

using namespace Qt::StringLiterals;

// The folder of the server that an upload goes to.

class UploadTargets : public TransferBench {
protected:
    /// Drags all that stands in the local pane onto a row of the other.
    void drop(const QString &row, bool confirmed = true)
    {
        local.selectAll();
        const int count = MarkSelectedLocal(local, globals, false);
        prompts.expectConfirm(QString::number(count) + u" Dateien oder Ordner Uploaden?"_s,
                              confirmed, u"Store..."_s);
        commands.dropOnRemote(remote.model().findRow(row));
    }
};

TEST_F(UploadTargets, ADropOnALinkGoesWhereItLeads)
{
    ftp.addFile(u"/www/ziel/x"_s, "x");
    ftp.addLink(u"/www/verweis"_s, u"/www/ziel"_s);
    writeLocal(u"a.txt"_s, "neu");
    showBoth();
    drop(u"verweis"_s, false);
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_TRUE(local.markedNames().isEmpty());
    showBoth();
    drop(u"verweis"_s);
    EXPECT_EQ(ftp.commands.first(), u"CWD /www/verweis/"_s);
    ASSERT_EQ(shell.queue.size(), 1);
    EXPECT_EQ(shell.queue[0].remote, u"/www/verweis/a.txt"_s);
}

TEST_F(UploadTargets, EntersAndListsAnotherTargetBeforeTheFirstConflict)
{
    ftp.addFile(u"/www/unter/a.txt"_s, "alt");
    writeLocal(u"a.txt"_s, "neuer");
    showBoth();
    dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
    drop(u"unter"_s);
    EXPECT_EQ(ftp.commands.first(), u"CWD /www/unter/"_s);
    EXPECT_EQ(dialogs.questions.value(0).message.join(u' '),
              u"Überschreiben /www/unter/a.txt(3) mit "_s + disk(u"a.txt(5)"_s));
    EXPECT_EQ(remote.text, u"/www/unter"_s);
}

TEST_F(UploadTargets, ATargetThatCannotBeEnteredOverwritesNothing)
{
    ftp.addFile(u"/www/unter/a.txt"_s, "alt");
    writeLocal(u"a.txt"_s, "neuer");
    showBoth();
    ftp.refuseAll(u"CWD /www/unter/"_s, u"550 Verboten."_s);
    drop(u"unter"_s);
    EXPECT_EQ(ftp.content(u"/www/unter/a.txt"_s), "alt");
    EXPECT_EQ(statuses(), QStringList { u"Upload verweigert"_s });
    EXPECT_EQ(shell.queue[0].detail, u"550 Verboten."_s);
}

TEST_F(UploadTargets, WhyATargetCannotBeEnteredIsToldOnceForAllFiles)
{
    ftp.addFolder(u"/www/unter"_s);
    for (const QString &name : { u"a"_s, u"b"_s, u"c"_s }) {
        writeLocal(name, "x");
    }
    showBoth();
    ftp.onEvent = nullptr; // the server's own line
    ftp.refuseAll(u"CWD /www/unter/"_s, u"550 Verboten."_s);
    drop(u"unter"_s);
    EXPECT_EQ(shell.log.count(u"550 Verboten."_s), 1);
    EXPECT_EQ(shell.queue.size(), 3);
    EXPECT_EQ(shell.queue.last().detail, u"550 Verboten."_s);
}

TEST_F(UploadTargets, TheBarsAreOffFromTheStepsBeforeTheFirstFile)
{
    ftp.addFolder(u"/www/unter"_s);
    writeLocal(u"a"_s, "x");
    showBoth();
    ftp.during = [this](const QString &command) {
        EXPECT_EQ(shellCalls(u"SetToolbarsEnabled"_s).value(0), u"SetToolbarsEnabled 0"_s)
            << command.toStdString();
    };
    drop(u"unter"_s);
    EXPECT_EQ(ftp.commands.first(), u"CWD /www/unter/"_s);
}

TEST_F(UploadTargets, InAFolderThatCannotBeListedTheServerIsAskedAboutEveryFile)
{
    ftp.addFile(u"/www/a"_s, "alt");
    writeLocal(u"a"_s, "neuer");
    writeLocal(u"b"_s, "x");
    writeLocal(u"bilder/c"_s, "y");
    showBoth();
    remote.model().setRows({ upRow() });
    remote.unread = [] { return true; };
    local.select({ u"a"_s, u"b"_s, u"bilder"_s });
    dialogs.steps
        = { { ConflictAnswer::Skip, false, {} }, { ConflictAnswer::Overwrite, false, {} } };
    commands.cmd_upload_Click();
    EXPECT_EQ(dialogs.questions.value(0).message.join(u' '),
              u"Überschreiben /www/bilder(0) mit "_s + disk(u"bilder(0)"_s));
    EXPECT_EQ(dialogs.questions.value(1).message.join(u' '),
              u"Überschreiben /www/a(3) mit "_s + disk(u"a(5)"_s));
    EXPECT_EQ(ftp.content(u"/www/a"_s), "neuer");
    EXPECT_EQ(ftp.content(u"/www/b"_s), "x");
    EXPECT_FALSE(ftp.has(u"/www/bilder/c"_s));
    EXPECT_EQ(ftp.lists, 0);
}

TEST_F(UploadTargets, ATargetThatWasNotReadIsListedOnceMore)
{
    ftp.addFile(u"/www/a"_s, "alt");
    writeLocal(u"a"_s, "neuer");
    showBoth();
    remote.model().setRows({ upRow() });
    remote.unread = [this] { return ftp.commandsOf(u"LIST"_s).isEmpty(); };
    local.select({ u"a"_s });
    dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
    commands.cmd_upload_Click();
    EXPECT_EQ(ftp.content(u"/www/a"_s), "alt");
    EXPECT_TRUE(ftp.commandsOf(u"FACTS"_s).isEmpty());
}

TEST_F(UploadTargets, ARelativeFolderOfTheBoxIsEnteredOnce)
{
    ftp.addFile(u"/www/www/a"_s, "alt");
    ftp.addFolder(u"/www/www/www"_s);
    writeLocal(u"a"_s, "neuer");
    showBoth();
    remote.text = u"www"_s;
    local.select({ u"a"_s });
    dialogs.steps = { { ConflictAnswer::Overwrite, false, {} } };
    commands.cmd_upload_Click();
    EXPECT_EQ(ftp.commandsOf(u"CWD"_s), QStringList { u"CWD www/"_s });
    EXPECT_EQ(ftp.content(u"/www/www/a"_s), "neuer");
    EXPECT_EQ(shell.queue.value(0).remote, u"/www/www/a"_s);
}

TEST_F(UploadTargets, AnEmptyBoxMeansTheFolderShown)
{
    writeLocal(u"a"_s, "neu");
    for (const QString &text : { QString(), u"  "_s }) {
        ftp.nodes.remove(u"/www/a"_s);
        showBoth();
        remote.text = text;
        local.select({ u"a"_s });
        commands.cmd_upload_Click();
        EXPECT_EQ(ftp.content(u"/www/a"_s), "neu");
    }
}

TEST_F(UploadTargets, ADropGoesByTheFolderShownNotByTheBox)
{
    ftp.addFolder(u"/www/bilder"_s);
    ftp.addFolder(u"/alt/bilder"_s);
    writeLocal(u"a"_s, "neu");
    showBoth();
    remote.text = u"/alt"_s; // typed, not entered
    drop(u"bilder"_s);
    EXPECT_EQ(ftp.content(u"/www/bilder/a"_s), "neu");
    EXPECT_FALSE(ftp.has(u"/alt/bilder/a"_s));
}

TEST_F(UploadTargets, OfTwoFilesWithOneTargetOnlyTheFirstGoes)
{
    writeLocal(u"eins/index.html"_s, "eins");
    writeLocal(u"zwei/index.html"_s, "zwei");
    showBoth();
    for (const QString &folder : { u"eins/"_s, u"zwei/"_s }) {
        globals.marked.MarkedItems.append(
            { u"index.html"_s, disk(folder), ItemKind::File, u"4"_s, -1 });
        ++globals.marked.MarkedCount;
    }
    prompts.expectConfirm(u"2 Dateien oder Ordner Uploaden?"_s, true, u"Store..."_s);
    commands.dropOnRemote(-1);
    EXPECT_EQ(ftp.content(u"/www/index.html"_s), "eins");
    EXPECT_EQ(ftp.lists, 0) << "both would be written at once";
    EXPECT_EQ(statuses(), (QStringList { u"Upload"_s, u"Upload verweigert"_s }));
    EXPECT_EQ(shell.queue.value(1).local, disk(u"zwei/index.html"_s));
    EXPECT_TRUE(shell.log.contains(u"/www/index.html: Mehrere der markierten Objekte"_s));
}

TEST_F(UploadTargets, ADropOnAFileRowStaysInTheFolder)
{
    ftp.addFile(u"/www/datei"_s, "x");
    writeLocal(u"a.txt"_s, "neu");
    showBoth();
    drop(u"datei"_s);
    EXPECT_EQ(ftp.content(u"/www/a.txt"_s), "neu");
}
