#include "servers/faultsession.h"

#include <algorithm>
#include <cstdio>
#include <poll.h>
#include <strings.h>
#include <utility>

namespace servers {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

FaultSession::FaultSession(FaultServer::Private &server, Handle connection, int drop, int number)
    : m_server(server)
    , m_fault(server.q.fault)
    , m_control(std::move(connection), drop)
    , m_drop(drop)
    , m_number(number)
    , m_tree(server.root.path())
{
}

const std::map<std::string, FaultSession::Handler> &FaultSession::handlers()
{
    static const std::map<std::string, Handler> table {
        { "USER", &FaultSession::user }, { "PASS", &FaultSession::pass },
        { "ACCT", &FaultSession::acct }, { "AUTH", &FaultSession::auth },
        { "PBSZ", &FaultSession::pbsz }, { "PROT", &FaultSession::prot },
        { "FEAT", &FaultSession::feat }, { "QUIT", &FaultSession::quit },
        { "PWD", &FaultSession::pwd },   { "CWD", &FaultSession::cwd },
        { "CDUP", &FaultSession::cdup }, { "MKD", &FaultSession::mkd },
        { "RMD", &FaultSession::rmd },   { "DELE", &FaultSession::dele },
        { "RNFR", &FaultSession::rnfr }, { "RNTO", &FaultSession::rnto },
        { "SIZE", &FaultSession::size }, { "MDTM", &FaultSession::mdtm },
        { "MFMT", &FaultSession::mfmt }, { "SITE", &FaultSession::site },
        { "TYPE", &FaultSession::type }, { "REST", &FaultSession::rest },
        { "NOOP", &FaultSession::noop }, { "ABOR", &FaultSession::abor },
        { "SYST", &FaultSession::syst }, { "OPTS", &FaultSession::opts },
        { "PASV", &FaultSession::pasv }, { "EPSV", &FaultSession::epsv },
        { "PORT", &FaultSession::port }, { "EPRT", &FaultSession::eprt },
        { "LIST", &FaultSession::list }, { "MLSD", &FaultSession::mlsd },
        { "RETR", &FaultSession::retr }, { "STOR", &FaultSession::stor },
        { "APPE", &FaultSession::appe },
    };
    return table;
}

void FaultSession::run()
{
    greet();
    std::string line;
    while (m_open && readLine(line)) {
        execute(line);
    }
    if (pollfd dropped { m_drop, POLLIN, 0 }; poll(&dropped, 1, 0) > 0) {
        m_control.drop();
    }
    m_control.close();
}

void FaultSession::pump(int milliseconds)
{
    const std::size_t before = m_buffer.size();
    if (m_control.read(m_buffer, 65536, milliseconds) > 0) {
        m_chunks.push_back({ m_buffer.size() - before, Clock::now() });
    } else if (milliseconds < 0) {
        m_open = false;
    }
}

bool FaultSession::readLine(std::string &line)
{
    std::size_t end = 0;
    while ((end = m_buffer.find('\n')) == std::string::npos) {
        pump(-1);
        if (!m_open) {
            return false;
        }
    }
    line = m_buffer.substr(0, end);
    if (line.ends_with('\r')) {
        line.pop_back();
    }
    m_buffer.erase(0, end + 1);
    for (std::size_t used = end + 1; used > 0;) {
        Chunk &chunk = m_chunks.front();
        const std::size_t part = std::min(used, chunk.bytes);
        m_arrived = chunk.time;
        chunk.bytes -= part;
        used -= part;
        if (chunk.bytes == 0) {
            m_chunks.pop_front();
        }
    }
    return true;
}

void FaultSession::execute(const std::string &line)
{
    m_server.record({ m_number, Clock::now(), line, m_control.encrypted() });
    const std::size_t blank = std::min(line.find(' '), line.size());
    std::string verb = line.substr(0, blank);
    const std::string argument = blank < line.size() ? line.substr(blank + 1) : std::string();
    std::transform(verb.begin(), verb.end(), verb.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (obeyRule(verb, argument)) {
        return;
    }
    const auto handler = handlers().find(verb);
    if (handler == handlers().end() || (verb == "MLSD" && m_fault.noMlsd.get())) {
        reply("500 Unknown command");
    } else if (mayRun(verb)) {
        (this->*handler->second)(argument);
    } else {
        reply("530 Please login with USER and PASS");
    }
}

bool FaultSession::mayRun(const std::string &verb)
{
    static const std::vector<std::string> early { "USER", "PASS", "ACCT", "AUTH", "PBSZ", "PROT",
                                                  "FEAT", "QUIT", "NOOP", "SYST", "OPTS" };
    return m_loggedIn || std::find(early.begin(), early.end(), verb) != early.end();
}

bool FaultSession::obeyRule(const std::string &verb, const std::string &argument)
{
    const std::optional<Rule> rule = m_server.ruleFor(verb, argument);
    if (!rule) {
        return false;
    }
    std::string text = rule->text;
    if (!text.empty()) {
        text += text.ends_with('\n') ? "" : "\r\n";
        waitForDelay();
        send(text);
    }
    switch (rule->action) {
    case Rule::Reply:
        m_open = m_open && !text.starts_with("421");
        break;
    case Rule::Drop:
        m_control.drop();
        m_open = false;
        break;
    case Rule::Stall:
        stall();
        break;
    case Rule::Endless:
        while (m_control.write("211-There is more\r\n")) { }
        m_open = false;
        break;
    }
    return true;
}

void FaultSession::stall()
{
    std::string ignored;
    while (m_control.read(ignored, 65536, -1) > 0) {
        ignored.clear();
    }
    m_open = false;
}

void FaultSession::waitForDelay()
{
    const auto due = m_arrived + std::chrono::milliseconds(m_fault.replyDelay.get());
    for (auto now = Clock::now(); m_open && now < due; now = Clock::now()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(due - now);
        pollfd handles[] = { { m_drop, POLLIN, 0 }, { m_control.handle(), POLLIN, 0 } };
        poll(handles, 2, static_cast<int>(left.count()));
        if (handles[0].revents != 0) {
            m_open = false;
        } else if (handles[1].revents != 0) {
            const std::size_t before = m_buffer.size();
            pump(0);
            if (m_buffer.size() == before) {
                return; // the client has gone; the main loop will see that
            }
        }
    }
}

void FaultSession::discardEarlyBytes()
{
    pump(0);
    m_server.discarded += static_cast<long>(m_buffer.size());
    m_buffer.clear();
    m_chunks.clear();
}

void FaultSession::send(const std::string &bytes)
{
    if (m_fault.noPipelining.get()) {
        discardEarlyBytes();
    }
    if (!m_control.write(bytes)) {
        m_open = false;
    }
}

void FaultSession::reply(const std::string &text)
{
    waitForDelay();
    const std::string code = text.substr(0, 3);
    switch (m_fault.replyShape.get()) {
    case ReplyShape::Usual:
        send(text + "\r\n");
        break;
    case ReplyShape::MultiLine:
        send(code + "-Begin\r\n" + "123 a number\r\n " + code + " indented\r\n\r\n" + code
             + "-again\r\n" + text + "\r\n");
        break;
    case ReplyShape::LineFeedOnly:
        send(text + "\n");
        break;
    case ReplyShape::OneByteAtATime:
        for (const char byte : text + "\r\n") {
            send(std::string(1, byte));
        }
        break;
    case ReplyShape::CodeOnly:
        send(code + "\r\n");
        break;
    }
}

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

void FaultSession::pwd(const std::string &)
{
    std::string quoted;
    for (const char c : m_tree.current()) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    reply("257 \"" + quoted + "\" is the current directory");
}

void FaultSession::cwd(const std::string &argument)
{
    reply(m_tree.changeTo(argument) ? "250 Directory changed." : "550 No such directory.");
}

void FaultSession::cdup(const std::string &) { cwd(".."); }

void FaultSession::mkd(const std::string &argument)
{
    std::error_code error;
    const fs::path path = m_tree.resolve(argument);
    if (fs::exists(path)) {
        reply("550 File exists.");
    } else if (fs::create_directory(path, error)) {
        reply("257 \"" + argument + "\" created");
    } else {
        reply("550 " + error.message() + ".");
    }
}

void FaultSession::rmd(const std::string &argument)
{
    std::error_code error;
    const fs::path path = m_tree.resolve(argument);
    if (!fs::is_directory(fs::symlink_status(path))) {
        reply("550 Not a directory.");
    } else if (fs::remove(path, error)) {
        reply("250 Directory removed.");
    } else {
        reply("550 " + error.message() + ".");
    }
}

void FaultSession::dele(const std::string &argument)
{
    std::error_code error;
    const fs::path path = m_tree.resolve(argument);
    const bool folder = fs::is_directory(fs::symlink_status(path));
    reply(!folder && fs::remove(path, error) ? "250 File removed." : "550 Delete failed.");
}

void FaultSession::rnfr(const std::string &argument)
{
    const bool there = fs::exists(fs::symlink_status(m_tree.resolve(argument)));
    m_renameFrom = there ? m_tree.resolve(argument).string() : std::string();
    reply(there ? "350 Ready for RNTO." : "550 No such file.");
}

void FaultSession::rnto(const std::string &argument)
{
    std::error_code error;
    if (m_renameFrom.empty()) {
        reply("503 RNFR first.");
        return;
    }
    fs::rename(std::exchange(m_renameFrom, {}), m_tree.resolve(argument), error);
    reply(error ? "550 Rename failed." : "250 Renamed.");
}

void FaultSession::size(const std::string &argument)
{
    const fs::path path = m_tree.resolve(argument);
    std::error_code error;
    const bool file = fs::is_regular_file(path, error);
    reply(file ? "213 " + std::to_string(fs::file_size(path)) : "550 No such file.");
}

void FaultSession::mdtm(const std::string &argument)
{
    const std::optional<std::string> time = m_tree.modified(argument);
    reply(time ? "213 " + *time : "550 No such file.");
}

void FaultSession::mfmt(const std::string &argument)
{
    const std::size_t blank = std::min(argument.find(' '), argument.size());
    const std::string time = argument.substr(0, blank);
    const std::string name = argument.substr(std::min(blank + 1, argument.size()));
    reply(m_tree.setModified(name, time) ? "213 Modify=" + time + "; " + name
                                         : "550 Could not change the time.");
}

void FaultSession::site(const std::string &argument)
{
    char verb[8] = {};
    unsigned mode = 0;
    int used = 0;
    if (std::sscanf(argument.c_str(), "%7s %o %n", verb, &mode, &used) != 2
        || strcasecmp(verb, "chmod") != 0) {
        reply("500 Unknown SITE command.");
        return;
    }
    std::error_code error;
    fs::permissions(m_tree.resolve(argument.substr(static_cast<std::size_t>(used))),
                    static_cast<fs::perms>(mode), error);
    reply(error ? "550 CHMOD failed." : "200 Permissions changed.");
}

void FaultSession::type(const std::string &argument)
{
    const char type = argument.empty() ? ' ' : static_cast<char>(std::toupper(argument[0]));
    if (type == 'A' || type == 'I' || type == 'E') {
        m_type = type;
        reply("200 Type set.");
    } else {
        reply("504 Type not known.");
    }
}

void FaultSession::rest(const std::string &argument)
{
    if (argument.empty() || argument.find_first_not_of("0123456789") != std::string::npos) {
        reply("501 Not a number.");
        return;
    }
    m_offset = m_fault.forgetRestart.get() ? 0 : std::stol(argument);
    reply("350 Restarting at " + argument + ".");
}

void FaultSession::noop(const std::string &) { reply("200 Zzz..."); }

void FaultSession::abor(const std::string &) { reply("226 Nothing to abort."); }

void FaultSession::syst(const std::string &) { reply("215 UNIX Type: L8"); }

void FaultSession::opts(const std::string &) { reply("200 Always."); }

} // namespace servers
