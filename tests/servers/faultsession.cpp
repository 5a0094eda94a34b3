#include "servers/faultsession.h"

#include <algorithm>
#include <poll.h>

namespace servers {

using Clock = std::chrono::steady_clock;

FaultSession::FaultSession(FaultServer::Private &server, Handle connection, int drop, int number)
    : m_server(server)
    , m_fault(server.q.fault)
    , m_control(std::move(connection), drop)
    , m_drop(drop)
    , m_number(number)
    , m_tree(server.root.path())
{
    if (m_fault.hidesLinks.get()) {
        m_tree.hideLinks();
    }
    if (m_fault.machineHidesLinks.get()) {
        m_tree.hideLinksFromMachines();
    }
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
    const std::optional<Rule> rule = m_server.ruleFor(m_number, verb, argument);
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
    if (const std::string more = m_fault.surplusReply.get(); !more.empty()) {
        send(more + "\r\n");
    }
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
