#include "support/serverbench.h"

using namespace Qt::StringLiterals;
using servers::FaultServer;
using servers::Rule;

// The drivers over the real engine, against a server that does things wrong.

class FaultyTransfer : public ServerBench {
protected:
    void putFile(const std::string &name, std::size_t size)
    {
        servers::writeRandomFile(server.root() / name, size);
    }
    [[nodiscard]] std::string localPath(const char *name) const
    {
        return disk(QString::fromLatin1(name)).toStdString();
    }
    [[nodiscard]] std::string difference(const char *name) const
    {
        return servers::difference(server.root() / name, localPath(name));
    }

    FaultServer server;
};

TEST_F(FaultyTransfer, AGoodServerGivesAndTakesFilesAndFolders)
{
    putFile("a.bin", 300000);
    servers::makeWebSpace(server.root() / "netz");
    ASSERT_TRUE(login(server));
    download({ u"a.bin"_s, u"netz"_s });
    EXPECT_EQ(difference("a.bin"), "");
    EXPECT_EQ(difference("netz"), "");
    EXPECT_EQ(statuses(), (QStringList { u"Download"_s, u"Download"_s }));
    expectReady();
    writeLocal(u"hin/a.txt"_s, "eins");
    writeLocal(u"b.txt"_s, "zwei");
    upload({ u"hin"_s, u"b.txt"_s });
    EXPECT_EQ(difference("hin"), "");
    EXPECT_EQ(difference("b.txt"), "");
    EXPECT_FALSE(shell.queue.last().failed);
    expectReady();
}

TEST_F(FaultyTransfer, ARefusedGetKeepsTheOlderFile)
{
    putFile("a.bin", 3000);
    writeLocal(u"a.bin"_s, "alt");
    server.on({ .verb = "RETR", .text = "550 Verboten" });
    ASSERT_TRUE(login(server));
    dialogs.answer = [](const ConflictQuestion &) {
        return ConflictReply { ConflictAnswer::Overwrite, false };
    };
    download({ u"a.bin"_s });
    EXPECT_EQ(readLocal(u"a.bin"_s), "alt");
    ASSERT_EQ(statuses(), QStringList { u"Download"_s });
    EXPECT_TRUE(shell.queue[0].failed);
    EXPECT_EQ(shell.queue[0].detail, u"550 Verboten"_s);
    EXPECT_TRUE(shell.log.contains(u"550 Verboten\r\n"_s));
    expectReady();
}

TEST_F(FaultyTransfer, ABrokenDataConnectionIsToldAndTheBatchGoesOn)
{
    putFile("a.bin", 500000);
    putFile("b.bin", 5000);
    server.fault.dropDataAfter = 100000;
    server.fault.faultyTransfers = 1;
    ASSERT_TRUE(login(server));
    download({ u"a.bin"_s, u"b.bin"_s });
    ASSERT_EQ(shell.queue.size(), 2);
    EXPECT_TRUE(shell.queue[0].failed);
    EXPECT_FALSE(shell.queue[0].detail.isEmpty());
    EXPECT_FALSE(shell.queue[1].failed);
    EXPECT_EQ(difference("b.bin"), "");
    EXPECT_TRUE(shell.log.contains(u"426"_s));
    expectReady();
}

TEST_F(FaultyTransfer, ATruncatedDownloadIsNoSuccess)
{
    putFile("a.bin", 500000);
    server.fault.truncateDataAfter = 100000;
    ASSERT_TRUE(login(server));
    download({ u"a.bin"_s });
    ASSERT_EQ(shell.queue.size(), 1);
    EXPECT_TRUE(shell.queue[0].failed);
    EXPECT_TRUE(shell.log.contains(shell.queue[0].detail)) << shell.log.toStdString();
    expectReady();
    // Trying again resumes what is there.
    server.fault.truncateDataAfter = -1;
    dialogs.answer = [](const ConflictQuestion &question) {
        EXPECT_TRUE(question.mayResume);
        return ConflictReply { ConflictAnswer::Resume, false };
    };
    download({ u"a.bin"_s });
    EXPECT_EQ(difference("a.bin"), "") << shell.log.toStdString();
}

TEST_F(FaultyTransfer, AResumedDownloadThatStartsAgainCountsFromZero)
{
    putFile("a.bin", 300000);
    writeLocal(u"a.bin"_s, QByteArray(250000, 'x'));
    server.on({ .verb = "REST", .text = "502 Not today." });
    ASSERT_TRUE(login(server));
    dialogs.answer = [](const ConflictQuestion &) {
        return ConflictReply { ConflictAnswer::Resume, false };
    };
    QList<qint64> values;
    onProgress = [&] { values.append(progress.value()); };
    download({ u"a.bin"_s });
    EXPECT_EQ(difference("a.bin"), "");
    ASSERT_FALSE(values.isEmpty());
    EXPECT_EQ(values.first(), 0);
    EXPECT_EQ(values.last(), 300000);
    EXPECT_EQ(progress.maximum(), 300000) << "nothing came beyond the size";
}

TEST_F(FaultyTransfer, AResumedUploadThatStartsAgainCountsFromZero)
{
    putFile("a.bin", 2000);
    writeLocal(u"a.bin"_s, QByteArray(3000, 'x'));
    ASSERT_TRUE(login(server));
    dialogs.answer = [this](const ConflictQuestion &) {
        putFile("a.bin", 500); // changed on the server behind our back
        return ConflictReply { ConflictAnswer::Resume, false };
    };
    QList<qint64> values;
    onProgress = [&] { values.append(progress.value()); };
    upload({ u"a.bin"_s });
    EXPECT_EQ(difference("a.bin"), "");
    ASSERT_FALSE(values.isEmpty());
    EXPECT_EQ(values.first(), 0);
    EXPECT_EQ(values.last(), 3000);
    EXPECT_EQ(progress.maximum(), 3000);
}

TEST_F(FaultyTransfer, ALostServerEndsTheBatchAndTheWindowIsReady)
{
    for (const char *name : { "a", "b", "c" }) {
        putFile(name, 300000);
    }
    server.fault.dropAllAfter = 100000;
    server.on({ .verb = "USER", .text = "421 Gone", .skip = 1 });
    ASSERT_TRUE(login(server));
    download({ u"a"_s, u"b"_s, u"c"_s });
    EXPECT_EQ(shell.queue.size(), 1);
    EXPECT_TRUE(shell.queue.value(0).failed);
    EXPECT_TRUE(globals.session.ConnectionLost);
    expectReady();
    EXPECT_TRUE(shell.calls.contains(u"SetCommandsEnabled 1 0 1 1"_s));
}

TEST_F(FaultyTransfer, AStalledDownloadCanBeAborted)
{
    putFile("a", 300000);
    putFile("b", 3000);
    server.fault.stallDataAfter = 100000;
    ASSERT_TRUE(login(server));
    onProgress = [this, aborted = false]() mutable {
        if (!std::exchange(aborted, true)) {
            abort();
        }
    };
    download({ u"a"_s, u"b"_s });
    EXPECT_EQ(shell.queue.size(), 1);
    EXPECT_TRUE(shell.queue.value(0).failed);
    expectReady();
}

TEST_F(FaultyTransfer, AStalledServerIsLeftAfterTheTimeOut)
{
    putFile("a", 300000);
    server.fault.stallDataAfter = 100000;
    globals.connection.Timeout = 1;
    ASSERT_TRUE(login(server));
    download({ u"a"_s });
    EXPECT_TRUE(shell.queue.value(0).failed);
    EXPECT_FALSE(shell.log.isEmpty());
    expectReady();
}

TEST_F(FaultyTransfer, QuotaIsExplainedOncePerReplyAndLaterItemsAreTried)
{
    writeLocal(u"a"_s, QByteArray(50000, 'x'));
    writeLocal(u"b"_s, "klein");
    server.fault.diskFullAfter = 10000;
    server.fault.diskFullReply = std::string("451 Quota");
    server.fault.faultyTransfers = 1;
    ASSERT_TRUE(login(server));
    prompts.expectMessage(quotaMessage());
    upload({ u"a"_s, u"b"_s });
    EXPECT_EQ(statuses(), (QStringList { u"Upload verweigert"_s, u"Upload"_s }))
        << shell.log.toStdString();
    EXPECT_EQ(shell.log.count(quotaMessage() + u"\r\n"_s), 1);
    EXPECT_EQ(servers::readFile(server.root() / "b"), "klein");
    expectReady();
}

TEST_F(FaultyTransfer, QuotaIsExplainedInAFolderToo)
{
    for (const char *name : { "hin/a", "hin/b", "hin/tief/c" }) {
        writeLocal(QString::fromLatin1(name), QByteArray(50000, 'x'));
    }
    server.fault.diskFullAfter = 10000;
    server.fault.diskFullReply = std::string("451 Quota");
    server.fault.faultyTransfers = 1;
    ftp.setSessionLimit(1);
    ASSERT_TRUE(login(server));
    prompts.expectMessage(quotaMessage());
    upload({ u"hin"_s });
    EXPECT_EQ(statuses(), QStringList { u"Upload verweigert"_s }) << shell.log.toStdString();
    EXPECT_EQ(shell.log.count(quotaMessage() + u"\r\n"_s), 1);
    expectReady();
}

TEST_F(FaultyTransfer, QuotaInAFolderOverFourSessionsIsToldForEveryReplyAndEndsIdle)
{
    QByteArray big(200000, 'x');
    for (int file = 0; file < 40; ++file) {
        writeLocal(u"hin/%1"_s.arg(file), big);
    }
    // Files on all sessions meet the quota, before and after the first bytes went.
    server.fault.diskFullAfter = 10000;
    server.fault.diskFullReply = std::string("451 Quota");
    ASSERT_TRUE(login(server));
    prompts.allowMessages(quotaMessage());
    upload({ u"hin"_s });
    EXPECT_GT(server.sessions(), 1);
    ASSERT_EQ(statuses(), QStringList { u"Upload verweigert"_s });
    EXPECT_TRUE(shell.queue[0].failed);
    EXPECT_EQ(shell.queue[0].size, QString());
    // Each file's name and reason stand in a line of their own behind the reply.
    const qsizetype replies = (u'\n' + shell.log).count(u"\n451 Quota\r\n"_s);
    EXPECT_EQ(shell.log.count(u": 451 Quota\r\n"_s), replies);
    EXPECT_GT(replies, 0);
    EXPECT_EQ(shell.log.count(quotaMessage() + u"\r\n"_s), replies);
    EXPECT_EQ(prompts.allowedMessages(), replies);
    EXPECT_EQ(ftp.state(), FtpControl::Connected);
    EXPECT_FALSE(globals.session.ConnectionLost);
    expectReady();
}

TEST_F(FaultyTransfer, OtherSpaceRepliesAreExplainedInTheLog)
{
    writeLocal(u"a"_s, QByteArray(50000, 'x'));
    server.fault.diskFullAfter = 10000;
    server.fault.diskFullReply = std::string("552 Full");
    ASSERT_TRUE(login(server));
    upload({ u"a"_s });
    EXPECT_EQ(statuses(), QStringList { u"Upload verweigert"_s });
    EXPECT_TRUE(shell.log.contains(u"reicht nicht aus"_s));
}

TEST_F(FaultyTransfer, AnUnwritableTargetIsToldInTheLog)
{
    putFile("a", 3000);
    ASSERT_TRUE(login(server));
    showBoth();
    remote.select({ u"a"_s });
    QDir().mkpath(disk(u"a"_s)); // a folder stands in the way
    commands.cmd_download_Click();
    ASSERT_EQ(shell.queue.size(), 1);
    EXPECT_TRUE(shell.queue[0].failed);
    EXPECT_TRUE(shell.log.contains(shell.queue[0].detail)) << shell.log.toStdString();
    expectReady();
}

TEST_F(FaultyTransfer, AVanishedSourceIsToldInTheLog)
{
    writeLocal(u"a"_s, "x");
    ASSERT_TRUE(login(server));
    showBoth();
    local.select({ u"a"_s });
    QFile::remove(disk(u"a"_s));
    commands.cmd_upload_Click();
    EXPECT_EQ(statuses(), QStringList { u"Upload verweigert"_s });
    EXPECT_TRUE(shell.log.contains(shell.queue[0].detail)) << shell.log.toStdString();
    expectReady();
}

TEST_F(FaultyTransfer, ATreeWithUnsafeNamesStaysInItsFolder)
{
    putFile("netz/gut", 100);
    server.fault.noMlsd = true;
    ASSERT_TRUE(login(server));
    showBoth();
    server.fault.listing = std::string("-rw-r--r-- 1 w w 100 Jan 1 2026 ../boese\r\n"
                                       "-rw-r--r-- 1 w w 100 Jan 1 2026 /tmp/boese\r\n"
                                       "-rw-r--r-- 1 w w 100 Jan 1 2026 gut\r\n");
    remote.select({ u"netz"_s });
    commands.cmd_download_Click();
    EXPECT_EQ(readLocal(u"netz/gut"_s).size(), 100);
    EXPECT_FALSE(onDisk(u"boese"_s));
    EXPECT_FALSE(QFile::exists(u"/tmp/boese"_s));
    EXPECT_EQ(
        QDir(disk(u"netz"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList { u"gut"_s });
    expectReady();
}

/// Aborts at many points of a batch: the window is always ready afterwards, older files are as they
/// were, and files that are there are complete or shorter, never mixed.
class AbortedTransfer : public FaultyTransfer, public ::testing::WithParamInterface<int> { };

TEST_P(AbortedTransfer, LeavesAReadyWindowAndNoMixedFiles)
{
    putFile("a", 200000);
    putFile("netz/b", 150000);
    putFile("netz/tief/c", 100000);
    putFile("d", 3000);
    writeLocal(u"alt"_s, "alt");
    ASSERT_TRUE(login(server));
    server.fault.replyDelay = 1;
    onProgress = [this, left = GetParam()]() mutable {
        if (left-- == 0) {
            abort();
        }
    };
    download({ u"a"_s, u"netz"_s, u"d"_s });
    expectReady();
    EXPECT_EQ(readLocal(u"alt"_s), "alt");
    for (const char *name : { "a", "netz/b", "netz/tief/c", "d" }) {
        if (onDisk(QString::fromLatin1(name))) {
            const std::string whole = servers::readFile(server.root() / name);
            const std::string part = servers::readFile(localPath(name));
            EXPECT_EQ(part, whole.substr(0, part.size())) << name;
        }
    }
    EXPECT_LE(shell.queue.size(), 3);
}

INSTANTIATE_TEST_SUITE_P(Points, AbortedTransfer, ::testing::Range(0, 10));
