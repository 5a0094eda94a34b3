#include "connections/advice.h"
#include "connections/sessionrules.h"

using namespace Qt::StringLiterals;

// What the session does with the states and replies of the connection.

TEST_F(SessionRules, StateTwoShowsTheServer)
{
    session.onStateChanged(2);
    EXPECT_EQ(captions, QStringList { u"Tarvelo FTP (Connected to: files01)"_s });
    EXPECT_EQ(shell.log, u"Connected to: files01\r\n"_s);
    EXPECT_EQ(remote.model().rowCount(), 1);
}

TEST_F(SessionRules, StateZeroShowsThatNothingStands)
{
    session.onStateChanged(0);
    EXPECT_EQ(captions, QStringList { u"Tarvelo FTP"_s });
    EXPECT_EQ(shell.log, u"Connection Closed\r\n"_s);
    EXPECT_TRUE(globals.session.ConnectionLost);
    EXPECT_EQ(shell.calls, disconnected());
    EXPECT_EQ(remote.model().rowCount(), 0);
}

TEST_F(SessionRules, OtherStatesChangeNothing)
{
    for (const int state : { 1, 3, -1, 99 }) {
        session.onStateChanged(state);
    }
    EXPECT_TRUE(captions.isEmpty());
    EXPECT_EQ(shell.log, QString());
    EXPECT_TRUE(shell.calls.isEmpty());
    EXPECT_FALSE(globals.session.ConnectionLost);
}

TEST_F(SessionRules, BytesOfTransfersAreProgress)
{
    for (int operation = 0; operation <= 40; ++operation) {
        session.onReplyEvent(event(operation, FtpEvent::InProgress, {}, 7));
    }
    ASSERT_EQ(progress.size(), 4);
    EXPECT_EQ(progress.first().operation, 14);
    EXPECT_EQ(progress.last().operation, 17);
    EXPECT_TRUE(shell.calls.isEmpty());
    EXPECT_EQ(shell.log, QString());
}

TEST_F(SessionRules, EndsAreLoggedAndDisableTheAbortButton)
{
    for (const int status : { FtpEvent::Completed, FtpEvent::Failed }) {
        shell.calls.clear();
        session.onReplyEvent(event(OpGetFile, status, u"226 fertig\r\n"_s));
        EXPECT_EQ(shell.calls, QStringList { u"SetAbortEnabled 0"_s });
    }
    EXPECT_EQ(shell.log, u"226 fertig\r\n226 fertig\r\n"_s);
    EXPECT_TRUE(progress.isEmpty());
}

TEST_F(SessionRules, RepliesAndNotesOfARunningTransferLeaveTheAbortButton)
{
    ftp.busy = true;
    for (int operation = OpGetFile; operation <= OpPutFile; ++operation) {
        session.onReplyEvent(event(operation, FtpEvent::Completed, u"226 fertig\r\n"_s));
        session.onReplyEvent(event(operation, FtpEvent::Failed, u"550 nein\r\n"_s));
    }
    EXPECT_TRUE(shell.calls.isEmpty());
    EXPECT_EQ(shell.log.count(u"226 fertig"_s), 4);
    session.onReplyEvent(event(OpList, FtpEvent::Completed, u"226 fertig\r\n"_s));
    EXPECT_EQ(shell.calls, QStringList { u"SetAbortEnabled 0"_s });
}

TEST_F(SessionRules, ABlockedDataConnectionIsFollowedByAdvice)
{
    const QString advice = adviceFor(ftp::ErrorKind::DataConnection) + u"\r\n"_s;
    FtpEvent blocked = event(OpList, FtpEvent::Failed, u"Connection timed out\r\n"_s);
    blocked.reason = ftp::ErrorKind::DataConnection;
    session.onReplyEvent(blocked);
    EXPECT_EQ(shell.log, u"Connection timed out\r\n"_s + advice);
    shell.log.clear();
    session.onReplyEvent(event(OpList, FtpEvent::Failed, u"425 Cannot open\r\n"_s));
    EXPECT_EQ(shell.log, u"425 Cannot open\r\n"_s + advice);
    shell.log.clear();
    session.onReplyEvent(event(OpDelete, FtpEvent::Failed, u"550 denied\r\n"_s));
    EXPECT_EQ(shell.log, u"550 denied\r\n"_s);
    shell.log.clear();
    globals.settings.ErrorMsg = true;
    session.onReplyEvent(blocked);
    EXPECT_EQ(shell.log, u"Connection timed out\r\n"_s);
}

TEST_F(SessionRules, AdviceFitsWhatWasBeingDone)
{
    const auto adviceAbout = [](int operation, ftp::ErrorKind reason) {
        FtpEvent failed = event(operation, FtpEvent::Failed, u"?\r\n"_s);
        failed.reason = reason;
        return adviceFor(failed);
    };
    using ftp::ErrorKind;
    EXPECT_TRUE(adviceAbout(OpConnect, ErrorKind::BadArgument).contains(u"Passwort"_s));
    for (const int operation : { OpPutFile, OpMakeFolder, OpRename, OpChangeFolder }) {
        EXPECT_TRUE(adviceAbout(operation, ErrorKind::BadArgument).contains(u"diesen Namen"_s));
    }
    for (const int operation : { OpPutFile, OpPutMultiple }) {
        EXPECT_TRUE(adviceAbout(operation, ErrorKind::LocalFile).contains(u"lesen dürfen"_s));
    }
    for (const int operation : { OpGetFile, OpGetMultiple }) {
        EXPECT_TRUE(adviceAbout(operation, ErrorKind::LocalFile).contains(u"schreiben dürfen"_s));
    }
    EXPECT_TRUE(adviceAbout(OpPutFile, ErrorKind::RemoteLonger).contains(u"von vorn"_s));
    EXPECT_TRUE(adviceAbout(OpGetMultiple, ErrorKind::UnsafeName).contains(u"diesem Computer"_s));
    EXPECT_FALSE(adviceAbout(OpRemoveFolder, ErrorKind::UnsafeName).contains(u"Computer"_s));
    for (const int operation : { OpRemoveFolder, OpGetMultiple, OpPutMultiple }) {
        EXPECT_TRUE(adviceAbout(operation, ErrorKind::TooDeep).contains(u"zu tief"_s));
    }
}

TEST_F(SessionRules, OnlyMakingFoldersSetsTheNewFolderFlags)
{
    struct Row {
        int operation, status;
        QString text;
        bool done, succeeded;
    };
    const QList<Row> table {
        { OpMakeFolder, FtpEvent::Completed, u"257 made\r\n"_s, true, true },
        { OpMakeFolder, FtpEvent::Failed, u"550 denied\r\n"_s, true, false },
        { OpMakeFolder, FtpEvent::Failed, u"550 File exists\r\n"_s, false, false },
        { OpMakeFolder, FtpEvent::Failed, u"550 no (EXISTS)\r\n"_s, false, false },
        { OpMakeFolder, FtpEvent::InProgress, u"150 wait\r\n"_s, false, false },
        { OpGetFile, FtpEvent::Completed, u"226 done\r\n"_s, false, false },
        { OpGetFile, FtpEvent::Failed, u"550 denied\r\n"_s, false, false },
    };
    for (const Row &row : table) {
        SCOPED_TRACE(row.text.toStdString());
        globals.newFolder = {};
        session.onReplyEvent(event(row.operation, row.status, row.text));
        EXPECT_EQ(globals.newFolder.MkdirDone, row.done);
        EXPECT_EQ(globals.newFolder.MkdirSucceeded, row.succeeded);
    }
    globals.newFolder = { true, true };
    session.onReplyEvent(event(OpMakeFolder, FtpEvent::Failed, u"550 exists\r\n"_s));
    EXPECT_TRUE(globals.newFolder.MkdirDone); // left alone
}

TEST_F(SessionRules, EveryEventIsPassedOnAfterItWasHandled)
{
    const FtpEvent full = event(OpPutFile, FtpEvent::Failed, u"451 quota\r\n"_s);
    bool logged = false;
    QObject::connect(&session, &Session::replied,
                     [&] { logged = shell.log.contains(u"451 quota"_s); });
    session.onReplyEvent(full);
    session.onReplyEvent(event(OpPutFile, FtpEvent::InProgress, u"451 early\r\n"_s));
    EXPECT_TRUE(logged);
    ASSERT_EQ(replied.size(), 2);
    EXPECT_EQ(replied.first().text, full.text);
}
