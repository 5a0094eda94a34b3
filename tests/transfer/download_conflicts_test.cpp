#include "transferbench.h"

using namespace Qt::StringLiterals;

// Downloads of what is there already: what is asked, and what the answers do.

class DownloadConflicts : public TransferBench { };

TEST_F(DownloadConflicts, AnEmptyLocalFileIsOverwrittenWithoutAsking)
{
    ftp.addFile(u"/www/a.txt"_s, "eins");
    writeLocal(u"a.txt"_s, "");
    download({ u"a.txt"_s });
    EXPECT_EQ(readLocal(u"a.txt"_s), "eins");
}

TEST_F(DownloadConflicts, AConflictIsAskedAboutAndAnswered)
{
    ftp.addFile(u"/www/a.txt"_s, "neuer Inhalt");
    for (const auto answer :
         { ConflictAnswer::Skip, ConflictAnswer::Resume, ConflictAnswer::Overwrite }) {
        writeLocal(u"a.txt"_s, "NEUER");
        shell.queue.clear();
        dialogs.steps = { { answer, false, {} } };
        download({ u"a.txt"_s });
        const QByteArray expected = answer == ConflictAnswer::Skip ? "NEUER"
            : answer == ConflictAnswer::Resume                     ? "NEUER Inhalt"
                                                                   : "neuer Inhalt";
        EXPECT_EQ(readLocal(u"a.txt"_s), expected);
        EXPECT_EQ(shell.queue.size(), answer == ConflictAnswer::Skip ? 0 : 1);
    }
    EXPECT_EQ(dialogs.questions.last().message.join(u' '),
              u"Überschreiben "_s + disk(u"a.txt"_s) + u"(5) mit /www/a.txt(12)"_s);
}

TEST_F(DownloadConflicts, ALocalFileIsRenamedWithItsContent)
{
    ftp.addFile(u"/www/a.txt"_s, "neuer");
    writeLocal(u"a.txt"_s, "alt");
    dialogs.steps = { { ConflictAnswer::Rename, false, u"b.txt"_s },
                      { ConflictAnswer::Overwrite, false, {} } };
    download({ u"a.txt"_s });
    EXPECT_EQ(readLocal(u"b.txt"_s), "alt");
    EXPECT_EQ(readLocal(u"a.txt"_s), "neuer");
    ASSERT_EQ(dialogs.questions.size(), 2);
    EXPECT_EQ(dialogs.questions[1].message, dialogs.questions[0].message);
}

TEST_F(DownloadConflicts, AllOverwritesLaterFilesEvenAfterResuming)
{
    ftp.addFile(u"/www/a.txt"_s, "eins eins");
    ftp.addFile(u"/www/b.txt"_s, "zwei zwei");
    writeLocal(u"a.txt"_s, "EINS");
    writeLocal(u"b.txt"_s, "ZWEI");
    dialogs.steps = { { ConflictAnswer::Resume, true, {} } };
    download({ u"a.txt"_s, u"b.txt"_s });
    EXPECT_EQ(readLocal(u"a.txt"_s), "EINS eins");
    EXPECT_EQ(readLocal(u"b.txt"_s), "zwei zwei");
}

TEST_F(DownloadConflicts, AllWithSkipSkipsTheRestAndEndsWithTheBatch)
{
    ftp.addFile(u"/www/a.txt"_s, "eins eins");
    ftp.addFile(u"/www/b.txt"_s, "zwei");
    ftp.addFile(u"/www/ordner/c.txt"_s, "drei");
    writeLocal(u"a.txt"_s, "EINS");
    dialogs.steps = { { ConflictAnswer::Skip, true, {} } };
    // Rows stand in the server's order, so the conflict comes first.
    download({ u"a.txt"_s, u"b.txt"_s, u"ordner"_s });
    EXPECT_TRUE(shell.queue.isEmpty());
    EXPECT_TRUE(ftp.commandsOf(u"GET"_s).isEmpty());
    EXPECT_TRUE(remote.markedNames().isEmpty());
    download({ u"b.txt"_s });
    EXPECT_EQ(readLocal(u"b.txt"_s), "zwei");
}

TEST_F(DownloadConflicts, AnExistingFolderIsAskedAboutWithEmptySizes)
{
    ftp.addFile(u"/www/ordner/a.txt"_s, "neu");
    writeLocal(u"ordner/a.txt"_s, "alt");
    dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
    download({ u"ordner"_s });
    EXPECT_EQ(dialogs.questions.last().message.join(u' '),
              u"Überschreiben "_s + disk(u"ordner"_s) + u"(0) mit /www/ordner(0)"_s);
    EXPECT_FALSE(dialogs.questions.last().mayResume);
    EXPECT_EQ(readLocal(u"ordner/a.txt"_s), "alt");
    EXPECT_TRUE(shell.queue.isEmpty());
    dialogs.steps = { { ConflictAnswer::Overwrite, false, {} } };
    download({ u"ordner"_s });
    EXPECT_EQ(readLocal(u"ordner/a.txt"_s), "neu");
}

TEST_F(DownloadConflicts, RenamingAFolderMakesRoomForTheNewOne)
{
    ftp.addFile(u"/www/ordner/a.txt"_s, "neu");
    writeLocal(u"ordner/a.txt"_s, "alt");
    dialogs.steps = { { ConflictAnswer::Rename, false, u"frueher"_s },
                      { ConflictAnswer::Overwrite, false, {} } };
    download({ u"ordner"_s });
    EXPECT_EQ(readLocal(u"ordner/a.txt"_s), "neu");
    EXPECT_EQ(readLocal(u"frueher/a.txt"_s), "alt");
}

TEST_F(DownloadConflicts, AConflictThatARenameMadeIsSeen)
{
    ftp.addFile(u"/www/a"_s, "neu");
    ftp.addFile(u"/www/b"_s, "neu");
    ftp.addFile(u"/www/c"_s, "neu");
    writeLocal(u"a"_s, "alt");
    dialogs.steps = { { ConflictAnswer::Rename, false, u"b"_s },
                      { ConflictAnswer::Overwrite, false, {} },
                      { ConflictAnswer::Skip, false, {} } };
    download({ u"a"_s, u"b"_s, u"c"_s });
    EXPECT_EQ(readLocal(u"b"_s), "alt") << "overwritten without a question";
    EXPECT_EQ(readLocal(u"c"_s), "neu");
}

TEST_F(DownloadConflicts, ANewNameThatLeadsElsewhereIsRefused)
{
    ftp.addFile(u"/www/a.txt"_s, "neuer");
    writeLocal(u"a.txt"_s, "alt");
    QDir().mkpath(disk(u"unter"_s));
    dialogs.steps = { { ConflictAnswer::Rename, false, u"unter/b.txt"_s },
                      { ConflictAnswer::Skip, false, {} },
                      { ConflictAnswer::Skip, false, {} } };
    download({ u"a.txt"_s });
    EXPECT_EQ(readLocal(u"a.txt"_s), "alt");
    EXPECT_FALSE(onDisk(u"unter/b.txt"_s));
    EXPECT_TRUE(shell.log.contains(u"unter/b.txt: Der Name ist als Dateiname nicht zulässig."_s));
    dialogs.steps.clear(); // whether it asks once or twice more is told elsewhere
}

TEST_F(DownloadConflicts, TheBarIsEmptyWhileTheNextQuestionStands)
{
    for (const char *name : { "a", "b", "c" }) {
        ftp.addFile(u"/www/"_s + QString::fromLatin1(name), "12345678");
    }
    writeLocal(u"c"_s, "1234");
    dialogs.whileAsked = [this] { EXPECT_EQ(progress.value(), 0); };
    for (const QStringList &names :
         { QStringList { u"b"_s, u"c"_s }, QStringList { u"a"_s, u"b"_s, u"c"_s } }) {
        QFile::remove(disk(u"a"_s));
        QFile::remove(disk(u"b"_s));
        dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
        download(names);
    }
}

TEST_F(DownloadConflicts, AFolderThatWasRenamedAndThenSkippedIsNotMadeAnew)
{
    ftp.addFile(u"/www/ordner/a.txt"_s, "neu");
    writeLocal(u"ordner/a.txt"_s, "alt");
    dialogs.steps
        = { { ConflictAnswer::Rename, false, u"frueher"_s }, { ConflictAnswer::Skip, false, {} } };
    download({ u"ordner"_s });
    EXPECT_EQ(readLocal(u"frueher/a.txt"_s), "alt");
    EXPECT_FALSE(onDisk(u"ordner"_s));
    EXPECT_TRUE(shell.queue.isEmpty());
}

TEST_F(DownloadConflicts, AllGoesForFoldersThatExist)
{
    ftp.addFile(u"/www/a"_s, "eins eins");
    ftp.addFile(u"/www/d1/x"_s, "neu");
    ftp.addFile(u"/www/d2/x"_s, "neu");
    writeLocal(u"a"_s, "EINS");
    QDir().mkpath(disk(u"d2"_s));
    for (const auto &[answer, names] :
         { std::pair { ConflictAnswer::Overwrite, QStringList { u"d1"_s, u"d2"_s } },
           std::pair { ConflictAnswer::Resume, QStringList { u"a"_s, u"d1"_s } } }) {
        shell.queue.clear();
        writeLocal(u"d1/x"_s, "alt");
        dialogs.steps = { { answer, true, {} }, { answer, true, {} } };
        download(names);
        EXPECT_EQ(dialogs.steps.size(), 1U) << "asked more than once";
        dialogs.steps.clear();
        EXPECT_EQ(readLocal(u"d1/x"_s), "neu");
        EXPECT_EQ(statuses(), (QStringList { u"Download"_s, u"Download"_s }));
    }
    EXPECT_EQ(readLocal(u"d2/x"_s), "neu");
}

TEST_F(DownloadConflicts, AllWithSkipAtAFolderSkipsTheRest)
{
    ftp.addFile(u"/www/d1/x"_s, "neu");
    ftp.addFile(u"/www/frei"_s, "neu");
    QDir().mkpath(disk(u"d1"_s));
    dialogs.steps = { { ConflictAnswer::Skip, true, {} } };
    download({ u"d1"_s, u"frei"_s });
    EXPECT_FALSE(onDisk(u"frei"_s));
    EXPECT_TRUE(shell.queue.isEmpty());
}

TEST_F(DownloadConflicts, ResumingIsOfferedOnlyWhenTheServerCan)
{
    ftp.addFile(u"/www/a"_s, "neuer Inhalt");
    writeLocal(u"a"_s, "NEUER");
    for (const bool support : { false, true }) {
        globals.session.ResumeSupport = support;
        dialogs.steps = { { ConflictAnswer::Skip, false, {} } };
        download({ u"a"_s });
        EXPECT_EQ(dialogs.questions.last().mayResume, support);
    }
}

TEST_F(DownloadConflicts, ALocalRenameThatFailsIsLoggedAndChangesNothing)
{
    ftp.addFile(u"/www/a"_s, "neu");
    writeLocal(u"a"_s, "alt");
    dialogs.steps = { { ConflictAnswer::Rename, false, QString(300, u'x') },
                      { ConflictAnswer::Skip, false, {} } };
    download({ u"a"_s });
    EXPECT_EQ(readLocal(u"a"_s), "alt");
    EXPECT_TRUE(shell.log.contains(u"\r\n"_s + disk(u"a"_s) + u": "_s)) << shell.log.toStdString();
}
