#include "connections/advice.h"
#include "connections/logintexts.h"
#include "connections/sessionrules.h"

using namespace Qt::StringLiterals;

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

TEST_F(SessionRules, ADeclinedCertificateIsAFailureLikeOthers)
{
    failLogin(ftp::ErrorKind::CertificateRejected, u"The certificate is not trusted"_s);
    prompts.expectMessage(otherText);
    session.ConnectSequence();
    EXPECT_EQ(shell.log,
              u"Connecting ...\r\nThe certificate is not trusted\r\n"_s
                  + adviceFor(ftp::ErrorKind::CertificateRejected) + u"\r\n"_s);
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
