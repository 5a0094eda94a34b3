#include "connections/session.h"

#include "common/globals.h"
#include "connections/advice.h"
#include "support/fakeftp.h"
#include "support/fakepane.h"
#include "support/fakeshell.h"
#include "support/scriptedprompts.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString loginText = QStringLiteral("Fehler beim Login. Überprüfen Sie Passwort und Username "
                                         "und versuchen Sie sich erneut einzuloggen.");
const QString otherText
    = QStringLiteral("Allgemeiner Fehler! Versuchen Sie den Vorgang zu einem späteren "
                     "Zeitpunkt nochmals zu starten.");

struct SessionRules : ::testing::Test {
    FakeFtp ftp;
    Globals globals;
    ScriptedPrompts prompts;
    FakeShell shell;
    FakePane remote { FakePane::disk() };
    Session session { ftp, globals, prompts, shell, remote };
    QStringList captions;
    QList<FtpEvent> progress, replied;

    SessionRules()
    {
        ftp.connectionState = FtpOperations::Closed;
        globals.connection.RemoteHost = u"files01"_s;
        globals.connection.UserName = u"web01"_s;
        globals.connection.Password = u"geheim"_s;
        globals.connection.Account = u"konto"_s;
        globals.connection.RemoteDir = u"/html"_s;
        QObject::connect(&session, &Session::logToBeCleared, [this] {
            shell.log.clear();
            shell.calls << u"clear"_s;
        });
        QObject::connect(&session, &Session::captionChanged,
                         [this](const QString &caption) { captions << caption; });
        QObject::connect(&session, &Session::progress,
                         [this](const FtpEvent &event) { progress << event; });
        QObject::connect(&session, &Session::replied,
                         [this](const FtpEvent &event) { replied << event; });
        remote.model().setRows({ upRow() });
    }
    void failLogin(ftp::ErrorKind kind, const QString &text, int code = 0)
    {
        ftp.login = [=](const QString &command) -> std::optional<FtpError> {
            return command.startsWith(u"CONNECT"_s) ? std::optional(FtpError { kind, code, text })
                                                    : std::nullopt;
        };
    }
    static QStringList disconnected()
    {
        return { u"SetCommandsEnabled 1 0 1 1"_s, u"UpdateRemoteCommandStates"_s,
                 u"UpdateLocalCommandStates"_s };
    }
    bool endsDisconnected() const
    {
        return shell.calls.mid(shell.calls.size() - 3) == disconnected();
    }
    static FtpEvent event(int operation, int status, const QString &text, qint64 bytes = 0)
    {
        return { operation, status, text, bytes };
    }
};

} // namespace

TEST_F(SessionRules, PropertiesAreHandedOver)
{
    globals.connection.Timeout = 30;
    globals.connection.Passive = true;
    session.SetFtpProperties();
    EXPECT_EQ(ftp.properties.timeout, 30000);
    EXPECT_TRUE(ftp.properties.passive);
    globals.connection.Timeout = 2147483;
    globals.connection.Passive = false;
    session.SetFtpProperties();
    EXPECT_EQ(ftp.properties.timeout, 2147483000);
    EXPECT_FALSE(ftp.properties.passive);
    EXPECT_EQ(shell.log, QString());
}

TEST_F(SessionRules, ATimeoutThatDoesNotFitIsAnOverflow)
{
    globals.connection.Timeout = 2147484;
    session.SetFtpProperties();
    EXPECT_EQ(ftp.properties.timeout, 0);
    EXPECT_TRUE(shell.log.contains(u"Overflow"_s));
    prompts.expectMessage(otherText);
    session.ConnectSequence();
    EXPECT_TRUE(ftp.commandsOf(u"CONNECT"_s).isEmpty());
    EXPECT_TRUE(endsDisconnected());
}

TEST_F(SessionRules, ConnectingGoesStepByStep)
{
    shell.log = u"von gestern"_s;
    globals.session.ConnectionLost = true;
    globals.settings.connections = 3;
    ftp.login = [this](const QString &command) -> std::optional<FtpError> {
        if (command.startsWith(u"CONNECT"_s)) {
            EXPECT_EQ(shell.log, u"Connecting ...\r\n"_s);
            EXPECT_FALSE(globals.session.ConnectionLost);
            EXPECT_EQ(remote.model().rowCount(), 0);
            EXPECT_EQ(shell.calls, (QStringList { u"clear"_s, u"SetCommandsEnabled 0 0 0 0"_s }));
            EXPECT_EQ(ftp.properties.timeout, 30000);
            session.onStateChanged(FtpOperations::Connected);
        }
        return std::nullopt;
    };
    ftp.current = u"/home/web01"_s;
    shell.calls.clear();
    session.ConnectSequence();
    EXPECT_EQ(ftp.commands,
              (QStringList { u"CONNECT files01 web01 geheim konto 21"_s, u"REST"_s }));
    EXPECT_EQ(shell.calls,
              (QStringList { u"clear"_s, u"SetCommandsEnabled 0 0 0 0"_s,
                             u"DoRemoteRefresh /home/web01"_s, u"SetCommandsEnabled 0 1 1 1"_s,
                             u"UpdateRemoteCommandStates"_s, u"UpdateLocalCommandStates"_s }));
    EXPECT_EQ(shell.log, u"Connecting ...\r\nConnected to: files01\r\n"_s);
    EXPECT_TRUE(globals.session.ResumeSupport);
    EXPECT_EQ(globals.session.RemoteHome, u"/html"_s);
    EXPECT_EQ(globals.connection.RemoteDir, u"/html"_s);
    EXPECT_EQ(ftp.properties.sessions, 3);
    EXPECT_EQ(captions, QStringList { u"Tarvelo FTP (Connected to: files01)"_s });
}

TEST_F(SessionRules, AnErrorOfTheResumeQuestionMovesTheStartFolder)
{
    ftp.current = u"/home/web01"_s;
    ftp.login = [](const QString &command) -> std::optional<FtpError> {
        return command == u"REST"_s
            ? std::optional(FtpError { ftp::ErrorKind::Refused, 502, u"502 no"_s })
            : std::nullopt;
    };
    session.ConnectSequence();
    EXPECT_FALSE(globals.session.ResumeSupport);
    EXPECT_EQ(globals.connection.RemoteDir, u"/home/web01"_s);
    EXPECT_EQ(globals.session.RemoteHome, u"/home/web01"_s);
}

TEST_F(SessionRules, AServerWithoutResumeIsNoError)
{
    ftp.resumes = false;
    session.ConnectSequence();
    EXPECT_FALSE(globals.session.ResumeSupport);
    EXPECT_EQ(globals.connection.RemoteDir, u"/html"_s);
}

TEST_F(SessionRules, AConnectionLostAtOnceEndsTheSequence)
{
    ftp.login = [this](const QString &command) -> std::optional<FtpError> {
        if (command == u"REST"_s) {
            ftp.connectionState = FtpOperations::Closed;
            session.onStateChanged(FtpOperations::Closed);
            return FtpError { ftp::ErrorKind::ConnectionClosed, 0, u"closed"_s };
        }
        return std::nullopt;
    };
    session.ConnectSequence();
    EXPECT_FALSE(shell.calls.join(u'|').contains(u"DoRemoteRefresh"_s));
    EXPECT_TRUE(endsDisconnected());
    EXPECT_EQ(globals.connection.RemoteDir, u"/html"_s);
}

TEST_F(SessionRules, TheHostIsCleanedAndThePortIsChecked)
{
    globals.connection.RemoteHost = u" ftp://files01/ "_s;
    session.ConnectSequence();
    EXPECT_EQ(ftp.commands.first(), u"CONNECT files01 web01 geheim konto 21"_s);
    for (const int port : { 0, 65536, -1 }) {
        ftp.commands.clear();
        globals.connection.RemotePort = port;
        prompts.expectMessage(otherText);
        session.ConnectSequence();
        EXPECT_TRUE(ftp.commands.isEmpty());
        EXPECT_TRUE(shell.log.contains(u"The port is not a number from 1 to 65535"_s));
        EXPECT_FALSE(shell.log.contains(u"530"_s));
    }
}

TEST_F(SessionRules, ThePortOfAProxyIsChecked)
{
    for (const int port : { 0, 65536, -1, 99999 }) {
        ftp.commands.clear();
        globals.connection.ProxyType = 2;
        globals.connection.Proxyport = port;
        prompts.expectMessage(otherText);
        session.ConnectSequence();
        EXPECT_TRUE(ftp.commands.isEmpty()) << port;
        EXPECT_TRUE(shell.log.contains(u"The port of the proxy is not a number from 1 to 65535"_s));
    }
    globals.connection.ProxyType = 0; // without one its port does not matter
    session.ConnectSequence();
    EXPECT_FALSE(ftp.commands.isEmpty());
}

TEST_F(SessionRules, TheProfilesEncryptionGoesBeforeThePrograms)
{
    const QList<std::tuple<int, int, FtpEncryption>> table {
        { -1, 0, FtpEncryption::Automatic },  { -1, 1, FtpEncryption::Always },
        { -1, 2, FtpEncryption::Never },      { 0, 2, FtpEncryption::Automatic },
        { 1, 2, FtpEncryption::Always },      { 2, 1, FtpEncryption::Never },
        { -1, 99, FtpEncryption::Automatic },
    };
    for (const auto &[own, program, expected] : table) {
        globals.connection.encryption = own;
        globals.settings.encryption = program;
        session.ConnectSequence();
        EXPECT_EQ(ftp.properties.encryption, expected) << own << ' ' << program;
    }
}

TEST_F(SessionRules, ARefusedLoginIsExplainedLoggedAndClosed)
{
    failLogin(ftp::ErrorKind::LoginRefused, u"530 Login incorrect."_s, 530);
    prompts.expectMessage(loginText).meanwhile([this] {
        EXPECT_FALSE(shell.log.contains(u"530"_s)); // the box comes first
    });
    session.ConnectSequence();
    EXPECT_EQ(shell.log,
              u"Connecting ...\r\n530 Login incorrect.\r\n"_s
                  + adviceFor(ftp::ErrorKind::LoginRefused) + u"\r\n"_s);
    EXPECT_EQ(ftp.connectionState, int { FtpOperations::Closed });
    EXPECT_TRUE(globals.session.ConnectionLost);
    EXPECT_TRUE(endsDisconnected());
    EXPECT_FALSE(shell.calls.join(u'|').contains(u"DoRemoteRefresh"_s));
}

TEST_F(SessionRules, WithDetailedMessagesOnlyTheLogTells)
{
    globals.settings.ErrorMsg = true;
    failLogin(ftp::ErrorKind::ConnectRefused, u"Connection refused"_s);
    session.ConnectSequence();
    EXPECT_EQ(shell.log, u"Connecting ...\r\nConnection refused\r\n"_s);
    EXPECT_TRUE(endsDisconnected());
}

TEST_F(SessionRules, AnAbortedLoginShowsNoBox)
{
    failLogin(ftp::ErrorKind::Aborted, u"Aborted"_s);
    session.ConnectSequence();
    EXPECT_EQ(shell.log, u"Connecting ...\r\nAborted\r\n"_s);
    EXPECT_TRUE(endsDisconnected());
}

TEST_F(SessionRules, AnErrorWithoutADescriptionDoesNothing)
{
    ftp.connectionState = FtpOperations::Connected;
    shell.calls.clear();
    session.LoginErrorMessage({ ftp::ErrorKind::Protocol, 0, {} });
    EXPECT_EQ(ftp.connectionState, int { FtpOperations::Connected });
    EXPECT_EQ(shell.log, QString());
    EXPECT_TRUE(shell.calls.isEmpty());
    EXPECT_FALSE(globals.session.ConnectionLost);
}

TEST_F(SessionRules, LogoutIsPolite)
{
    ftp.connectionState = FtpOperations::Connected;
    globals.connection.Timeout = 12;
    session.LogoutSequence();
    EXPECT_EQ(shell.log, u"Logging out ...\r\n"_s);
    EXPECT_EQ(ftp.commands, QStringList { u"QUIT"_s });
    EXPECT_EQ(ftp.properties.timeout, 12000);
}

TEST_F(SessionRules, AFailedLogoutClosesTheConnection)
{
    ftp.connectionState = FtpOperations::Connected;
    ftp.login = [](const QString &) {
        return std::optional(FtpError { ftp::ErrorKind::Timeout, 0, u"Connection timed out"_s });
    };
    prompts.expectMessage(otherText);
    session.LogoutSequence();
    EXPECT_EQ(ftp.connectionState, int { FtpOperations::Closed });
    EXPECT_TRUE(endsDisconnected());
    EXPECT_TRUE(shell.log.startsWith(u"Logging out ...\r\nConnection timed out\r\n"_s));
}

TEST_F(SessionRules, TheLogoutCommandAsksFirst)
{
    ftp.connectionState = FtpOperations::Connected;
    remote.text = u"/html/"_s;
    const QString question = u"Möchten Sie die Verbindung trennen?"_s;
    prompts.expectQuestion(question, false);
    session.logoutCommand();
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_EQ(remote.text, u"/html/"_s); // not emptied
    prompts.expectQuestion(question, true);
    session.logoutCommand();
    EXPECT_EQ(ftp.commands, QStringList { u"QUIT"_s });
    EXPECT_EQ(remote.text, QString());
    EXPECT_TRUE(shell.calls.contains(u"UpdateRemoteCommandStates"_s));
}

TEST_F(SessionRules, AConnectionLostDuringTheLogoutQuestionIsNotEndedAgain)
{
    ftp.connectionState = FtpOperations::Connected;
    remote.text = u"/html/"_s;
    prompts.expectQuestion(u"Möchten Sie die Verbindung trennen?"_s, true).meanwhile([this] {
        ftp.connectionState = FtpOperations::Closed;
    });
    session.logoutCommand();
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_EQ(shell.log, QString());
    EXPECT_EQ(remote.text, QString());
}

TEST_F(SessionRules, LogoutWithoutAConnectionOnlyEmptiesTheBox)
{
    remote.text = u"/html/"_s;
    session.logoutCommand();
    EXPECT_EQ(remote.text, QString());
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_TRUE(shell.calls.contains(u"UpdateRemoteCommandStates"_s));
}

TEST_F(SessionRules, LogoutWhileSomethingRunsDoesNothing)
{
    ftp.connectionState = FtpOperations::Connected;
    ftp.busy = true;
    remote.text = u"/html/"_s;
    session.logoutCommand();
    EXPECT_TRUE(ftp.commands.isEmpty());
    EXPECT_EQ(remote.text, u"/html/"_s);
}

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

TEST_F(SessionRules, AFailureInsideTheAbortIsToldAndTheConnectionIsClosedAllTheSame)
{
    ftp.connectionState = FtpOperations::Connected;
    remote.model().appendRow({ u"a"_s, {}, {}, {}, {}, u"/a"_s });
    ftp.login = [](const QString &command) -> std::optional<FtpError> {
        EXPECT_EQ(command, u"DROP"_s);
        return FtpError { ftp::ErrorKind::Protocol, 0, u"No thread left"_s };
    };
    prompts.expectConfirm(u"Beim Abbrechen wird die Verbindung getrennt."_s, true, u"Abbrechen"_s);
    const FtpError failed { ftp::ErrorKind::Protocol, 0, {} };
    prompts.expectMessage(QString::number(failed.number()) + u" No thread left"_s);
    session.abortTransfer();
    EXPECT_EQ(ftp.connectionState, int { FtpOperations::Closed });
    EXPECT_TRUE(globals.session.ConnectionLost);
    EXPECT_EQ(remote.model().findRow(u"a"_s), -1);
    EXPECT_EQ(shell.calls, QStringList { u"SetAbortEnabled 0"_s } + disconnected());
}

TEST_F(SessionRules, AbortingAsksAndDropsTheConnection)
{
    ftp.connectionState = FtpOperations::Connected;
    const QString question = u"Beim Abbrechen wird die Verbindung getrennt."_s;
    prompts.expectConfirm(question, false, u"Abbrechen"_s);
    session.abortTransfer();
    EXPECT_EQ(ftp.connectionState, int { FtpOperations::Connected });
    EXPECT_FALSE(globals.session.ConnectionLost);
    EXPECT_TRUE(shell.calls.isEmpty());
    prompts.expectConfirm(question, true, u"Abbrechen"_s);
    session.abortTransfer();
    EXPECT_EQ(ftp.connectionState, int { FtpOperations::Closed });
    EXPECT_TRUE(globals.session.ConnectionLost);
    EXPECT_EQ(shell.calls, QStringList { u"SetAbortEnabled 0"_s } + disconnected());
}
