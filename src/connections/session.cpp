#include "connections/session.h"

#include "common/globals.h"
#include "common/prompts.h"
#include "common/shell.h"
#include "connections/advice.h"
#include "connections/host.h"
#include "connections/loginmessage.h"
#include "remote/pane.h"
#include "remote/panemodel.h"

using namespace Qt::StringLiterals;

namespace {

const QString lineBreak = QStringLiteral("\r\n");

FtpStatus failure(ftp::ErrorKind kind, const QString &text)
{
    return tl::unexpected<FtpError>(FtpError { kind, 0, text });
}

FtpEncryption encryptionOf(const Globals &globals)
{
    const int own = globals.connection.encryption;
    switch (own < 0 ? globals.settings.encryption : own) {
    case 1:
        return FtpEncryption::Always;
    case 2:
        return FtpEncryption::Never;
    default:
        return FtpEncryption::Automatic;
    }
}

bool isTransfer(const FtpEvent &event)
{
    return event.operation >= OpGetFile && event.operation <= OpPutFile;
}

} // namespace

Session::Session(FtpControl &control, Globals &globals, Prompts &prompts, Shell &shell,
                 Pane &remote, QObject *parent)
    : Session(static_cast<FtpConnection &>(control), globals, prompts, shell, remote, parent)
{
    connect(&control, &FtpControl::stateChanged, this, &Session::onStateChanged);
    connect(&control, &FtpControl::replyEvent, this, &Session::onReplyEvent);
}

Session::Session(FtpConnection &control, Globals &globals, Prompts &prompts, Shell &shell,
                 Pane &remote, QObject *parent)
    : QObject(parent)
    , m_control(control)
    , m_globals(globals)
    , m_prompts(prompts)
    , m_shell(shell)
    , m_remote(remote)
{
}

void Session::SetFtpProperties()
{
    if (const FtpStatus handed = applyProperties(); !handed) {
        m_shell.AppendLog(lineBreak + handed.error().text + lineBreak);
    }
}

FtpStatus Session::applyProperties()
{
    const int milliseconds = timeoutMilliseconds(m_globals.connection.Timeout);
    if (milliseconds < 0) {
        return failure(ftp::ErrorKind::BadArgument, u"Overflow: the time-out is too large"_s);
    }
    m_control.setTimeout(milliseconds);
    m_control.setPassiveMode(m_globals.connection.Passive);
    return {};
}

FtpStatus Session::connectAndLogin()
{
    if (const FtpStatus handed = applyProperties(); !handed) {
        return handed;
    }
    // A copy: a click during the call may change the current connection.
    const ConnectionProfile connection = m_globals.connection;
    if (!isPort(connection.RemotePort)) {
        return failure(ftp::ErrorKind::BadArgument, u"The port is not a number from 1 to 65535"_s);
    }
    const bool proxied = connection.ProxyType >= 1 && connection.ProxyType <= 7;
    if (proxied && !isPort(connection.Proxyport)) {
        return failure(ftp::ErrorKind::BadArgument,
                       u"The port of the proxy is not a number from 1 to 65535"_s);
    }
    m_control.setEncryption(encryptionOf(m_globals));
    m_control.setSessionLimit(m_globals.settings.connections);
    return m_control.connectAndLogin(cleanHost(connection.RemoteHost), connection.UserName,
                                     connection.Password, connection.Account,
                                     connection.RemotePort);
}

void Session::ConnectSequence()
{
    m_globals.session.ConnectionLost = false;
    Q_EMIT logToBeCleared();
    m_remote.model().clear();
    m_shell.SetCommandsEnabled(false, false, false, false, false);
    m_shell.AppendLog(u"Connecting ..."_s + lineBreak);
    if (const FtpStatus connected = connectAndLogin(); !connected) {
        LoginErrorMessage(connected.error());
        return;
    }
    afterLogin();
}

void Session::afterLogin()
{
    const FtpResult<bool> resume = m_control.resumeSupport();
    m_globals.session.ResumeSupport = resume.value_or(false);
    if (m_control.state() != FtpControl::Connected) {
        return; // dropped or closed meanwhile; the state event has shown it
    }
    if (!resume) {
        // Intended: an error of that question, and nothing else, moves the start folder.
        m_globals.connection.RemoteDir = m_control.currentFolder();
    }
    m_globals.session.RemoteHome = m_globals.connection.RemoteDir;
    m_shell.DoRemoteRefresh(m_control.currentFolder());
    if (m_control.state() == FtpControl::Connected) {
        m_shell.SetCommandsEnabled(false, true, false, true, true);
        m_shell.UpdateRemoteCommandStates();
        m_shell.UpdateLocalCommandStates();
        Q_EMIT loggedIn();
    }
}

void Session::LoginErrorMessage(const FtpError &error)
{
    const LoginMessage message
        = loginMessageFor(error.text, error.number(), m_globals.settings.ErrorMsg);
    if (!message.failed) {
        return;
    }
    // Who closed the window or the connection meanwhile knows why it failed.
    if (!message.box.isEmpty() && error.kind != ftp::ErrorKind::Aborted) {
        m_prompts.message(message.box);
    }
    m_shell.AppendLog(error.text + lineBreak);
    // Intended: whoever reads German messages is told in German, too, what to do.
    appendAdvice(adviceFor(error.kind));
    m_control.close();
    m_globals.session.ConnectionLost = true;
    showDisconnected();
}

void Session::appendAdvice(const QString &sentence)
{
    if (!m_globals.settings.ErrorMsg && !sentence.isEmpty()) {
        m_shell.AppendLog(sentence + lineBreak);
    }
}

void Session::LogoutSequence()
{
    m_shell.AppendLog(u"Logging out ..."_s + lineBreak);
    SetFtpProperties();
    if (const FtpStatus out = m_control.logout(); !out) {
        LoginErrorMessage(out.error());
    }
}

void Session::logoutCommand()
{
    if (m_control.state() == FtpControl::Connected) {
        if (m_control.isBusy() || !m_prompts.question(u"Möchten Sie die Verbindung trennen?"_s)) {
            return;
        }
        // The server may have hung up while the question stood.
        if (m_control.state() == FtpControl::Connected) {
            LogoutSequence();
        }
    }
    m_remote.setFolderText({});
    m_shell.UpdateRemoteCommandStates();
    m_shell.UpdateLocalCommandStates();
}

void Session::abortTransfer()
{
    if (!m_prompts.confirm(u"Beim Abbrechen wird die Verbindung getrennt."_s, u"Abbrechen"_s)) {
        return;
    }
    m_globals.session.ConnectionLost = true;
    const FtpStatus dropped = m_control.drop();
    if (!dropped) {
        m_prompts.message(QString::number(dropped.error().number()) + u' ' + dropped.error().text);
        m_control.close();
        m_remote.model().clear();
    }
    m_shell.SetAbortEnabled(false);
    showDisconnected();
}

void Session::showDisconnected()
{
    m_shell.SetCommandsEnabled(true, false, false, true, true);
    m_shell.UpdateRemoteCommandStates();
    m_shell.UpdateLocalCommandStates();
}

void Session::onStateChanged(int state)
{
    if (state == FtpControl::Connected) {
        const QString server = cleanHost(m_globals.connection.RemoteHost);
        Q_EMIT captionChanged(windowCaption(server));
        m_shell.AppendLog(u"Connected to: "_s + server + lineBreak);
    } else if (state == FtpControl::Closed) {
        Q_EMIT captionChanged(windowCaption({}));
        m_shell.AppendLog(u"Connection Closed"_s + lineBreak);
        m_globals.session.ConnectionLost = true;
        m_remote.model().clear(); // before the commands that need a row are looked at
        showDisconnected();
    }
}

void Session::onReplyEvent(const FtpEvent &event)
{
    if (event.status == FtpEvent::InProgress) {
        if (isTransfer(event)) {
            Q_EMIT progress(event);
        }
    } else {
        noteNewFolder(event);
        // Intended: a reply in the middle of a transfer leaves it as it is; there is still
        // something to abort.
        if (!duringTransfer(event)) {
            m_shell.SetAbortEnabled(false);
        }
        m_shell.AppendLog(event.text);
        appendAdvice(adviceFor(event));
    }
    Q_EMIT replied(event);
}

bool Session::duringTransfer(const FtpEvent &event) const
{
    return isTransfer(event) && m_control.isBusy();
}

void Session::noteNewFolder(const FtpEvent &event)
{
    if (event.operation != OpMakeFolder) {
        return;
    }
    if (event.status == FtpEvent::Completed) {
        m_globals.newFolder = { true, true };
    } else if (!event.text.toUpper().contains("EXISTS"_L1)) {
        // A name that is taken leaves both flags alone: the next name is tried.
        m_globals.newFolder = { true, false };
    }
}
