// Greeting, login and TLS of the fault server.
#include "servers/faultsession.h"

namespace servers {

using Clock = std::chrono::steady_clock;

void FaultSession::greet()
{
    m_arrived = Clock::now();
    const int most = m_fault.maxSessions.get();
    m_tooMany = most >= 0 && m_server.openSessions() > most;
    std::string text = m_fault.greeting.get();
    if (m_tooMany && m_fault.tooManyReply.get().starts_with("421")) {
        text = m_fault.tooManyReply.get();
    }
    if (obeyRule("(GREETING)", "")) {
        return;
    }
    waitForDelay();
    send(text + (text.ends_with('\n') ? "" : "\r\n"));
    m_open = m_open && !text.starts_with("421");
}

void FaultSession::user(const std::string &argument)
{
    if (m_fault.tlsRequired.get() && !m_control.encrypted()) {
        reply("530 Non-anonymous sessions must use encryption.");
        return;
    }
    m_user = argument;
    m_passwordGood = m_loggedIn = false;
    if (m_fault.noPassword.get() && m_user == m_server.q.user()) {
        logIn();
    } else {
        reply("331 Please specify the password.");
    }
}

void FaultSession::pass(const std::string &argument)
{
    m_passwordGood = m_user == m_server.q.user() && argument == m_server.q.password();
    if (m_user.empty()) {
        reply("503 Login with USER first.");
    } else if (!m_passwordGood) {
        reply("530 Login incorrect.");
    } else if (m_fault.needAccount.get()) {
        reply("332 Account needed.");
    } else {
        logIn();
    }
}

void FaultSession::acct(const std::string &argument)
{
    if (!m_passwordGood || argument != m_server.q.account()) {
        reply("530 Login incorrect.");
    } else if (m_loggedIn) {
        reply("202 Not needed.");
    } else {
        logIn();
    }
}

void FaultSession::logIn()
{
    if (m_tooMany) {
        reply(m_fault.tooManyReply.get());
        return;
    }
    m_loggedIn = true;
    reply("230 Login successful.");
}

void FaultSession::auth(const std::string &argument)
{
    if (!m_fault.tls.get() || argument != "TLS") {
        reply("502 Command not implemented.");
        return;
    }
    reply("234 Proceed with negotiation.");
    m_control.write(m_fault.injectAfterAuth.get());
    m_buffer.clear();
    m_chunks.clear();
    if (m_fault.brokenHandshake.get()) {
        m_control.write("this is no handshake\r\n");
        m_open = false;
        return;
    }
    m_context = m_server.currentContext();
    m_open = m_control.startTlsAsServer(m_context.get());
}

void FaultSession::pbsz(const std::string &)
{
    reply(m_control.encrypted() ? "200 PBSZ set to 0." : "503 Not encrypted.");
}

void FaultSession::prot(const std::string &argument)
{
    m_protectData = m_control.encrypted() && argument == "P";
    reply(m_control.encrypted() ? "200 PROT now set." : "503 Not encrypted.");
}

void FaultSession::feat(const std::string &)
{
    std::string text = "211-Features:\r\n EPRT\r\n EPSV\r\n MDTM\r\n MFMT\r\n SIZE\r\n";
    text += m_fault.noRestStream.get() ? "" : " REST STREAM\r\n";
    text += m_fault.noUtf8.get() ? "" : " UTF8\r\n";
    text += m_fault.noMlsd.get() ? "" : " MLST type*;size*;modify*;UNIX.mode*;\r\n";
    text += m_fault.tls.get() ? " AUTH TLS\r\n PBSZ\r\n PROT\r\n" : "";
    waitForDelay();
    send(text + "211 End\r\n");
}

void FaultSession::quit(const std::string &)
{
    reply("221 Goodbye.");
    m_open = false;
}

} // namespace servers
