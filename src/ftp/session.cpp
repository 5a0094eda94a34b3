#include "ftp/session.h"

#include "ftp/data_connection.h"
#include "ftp/path.h"

#include <algorithm>

namespace ftp {
namespace {

/// Commands in one packet: a server that cannot send its replies reads no further commands.
constexpr std::size_t mostAtOnce = 128;

} // namespace

std::string cleanHost(std::string host)
{
    const auto cut = [&](std::string_view prefix) {
        if (host.rfind(prefix, 0) == 0) {
            host.erase(0, prefix.size());
        }
    };
    std::erase(host, ' ');
    cut("ftp://");
    cut("ftpes://");
    while (!host.empty() && host.back() == '/') {
        host.pop_back();
    }
    if (host.starts_with('[') && host.ends_with(']')) { // an address of version 6 as in a URL
        host = host.substr(1, host.size() - 2);
    }
    return host;
}

Session::Session(const asio::any_io_executor &executor, LoginData login, Hooks hooks,
                 std::shared_ptr<ServerKnowledge> knowledge)
    : m_executor(executor)
    , m_login(std::move(login))
    , m_hooks(std::move(hooks))
    , m_knowledge(std::move(knowledge))
{
    m_login.host = cleanHost(m_login.host);
    m_login.proxy.host = cleanHost(m_login.proxy.host);
}

Session::~Session() = default;

void Session::note(const std::string &text) const
{
    if (m_hooks.note) {
        m_hooks.note(text);
    }
}

void Session::abort()
{
    m_aborted = true;
    m_usable = false;
    if (m_line) {
        m_line->abort();
    }
    for (DataConnection *data : m_data) {
        data->abort();
    }
}

Awaitable<Status> Session::quit()
{
    if (usable()) {
        m_dialogue->setLimit(std::min(m_login.timeout, Milliseconds(5000)));
        auto answer = co_await m_dialogue->ask("QUIT");
        m_dialogue->setLimit(m_login.timeout);
        m_usable = false;
        m_line->stream().close();
        if (!answer && answer.error().kind != ErrorKind::ConnectionClosed) {
            co_return tl::unexpected(answer.error());
        }
    }
    co_return Status {};
}

Awaitable<Result<Reply>> Session::ask(std::string command)
{
    if (!usable()) {
        co_return m_aborted ? fail(ErrorKind::Aborted, "Aborted")
                            : fail(ErrorKind::NotConnected, "Not connected");
    }
    auto answer = co_await m_dialogue->ask(std::move(command));
    if (!answer && answer.error().kind != ErrorKind::BadArgument) {
        m_usable = false;
    }
    co_return answer;
}

Awaitable<Result<std::vector<Reply>>> Session::askAll(std::vector<std::string> commands)
{
    std::vector<Reply> replies;
    for (const std::string &command : commands) { // all or none, or the replies would not fit
        if (const auto sendable = encodeCommand(command); !sendable) {
            co_return tl::unexpected(sendable.error());
        }
    }
    for (std::size_t at = 0; at < commands.size(); at += mostAtOnce) {
        const std::span<const std::string> rest = std::span(commands).subspan(at);
        const auto packet = rest.first(std::min(rest.size(), mostAtOnce));
        Status asked = co_await askPacket(packet, replies);
        if (!asked) {
            m_usable = false;
            co_return tl::unexpected(asked.error());
        }
    }
    co_return replies;
}

Awaitable<Status> Session::sendTogether(std::span<const std::string> commands)
{
    for (const std::string &command : commands) {
        Status queued = m_line->queue(command);
        if (!queued) {
            co_return queued;
        }
    }
    co_return co_await m_line->flush();
}

Awaitable<Status> Session::askPacket(std::span<const std::string> commands,
                                     std::vector<Reply> &replies)
{
    const bool together = pipelining() && usable(); // another session may find out meanwhile
    if (together) {
        Status sent = co_await sendTogether(commands);
        if (!sent) {
            co_return sent;
        }
    }
    for (const std::string &command : commands) {
        Result<Reply> answer;
        if (together) {
            answer = co_await m_dialogue->finalReply();
        } else {
            answer = co_await ask(command);
        }
        if (!answer) {
            co_return tl::unexpected(answer.error());
        }
        replies.push_back(std::move(*answer));
    }
    co_return Status {};
}

Awaitable<Status> Session::expectDone(std::string command)
{
    auto answer = co_await ask(std::move(command));
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    co_return answer->done() ? Status {} : Status(refusal(*answer));
}

Awaitable<Status> Session::readFolder()
{
    auto answer = co_await ask("PWD");
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    if (!answer->done()) {
        co_return refusal(*answer);
    }
    auto folder = parsePwd(answer->lines.back());
    if (folder && answer->code == 257) {
        m_folder = *folder;
    }
    co_return Status {};
}

Awaitable<Status> Session::changeFolder(std::string folder)
{
    Status changed = co_await expectDone("CWD " + folder);
    if (!changed) {
        co_return changed;
    }
    // Where we are now, also when the server cannot tell: commands with relative names work here.
    m_folder = folder.starts_with('/') ? folder : joinPath(m_folder, folder);
    Status read = co_await readFolder();
    if (!read && read.error().kind == ErrorKind::Refused) {
        read = Status {};
    }
    co_return read;
}

Awaitable<Status> Session::changeToParent()
{
    auto answer = co_await ask("CDUP");
    if (answer && answer->code / 100 == 5) {
        answer = co_await ask("CWD ..");
    }
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    if (!answer->done()) {
        co_return refusal(*answer);
    }
    co_return co_await readFolder();
}

Awaitable<Result<bool>> Session::folderExists(std::string folder)
{
    const std::string back = m_folder;
    auto entered = co_await ask("CWD " + folder);
    if (!entered) {
        co_return tl::unexpected(entered.error());
    }
    if (!entered->done()) {
        co_return false;
    }
    auto returned = co_await ask("CWD " + back);
    if (!returned) {
        co_return tl::unexpected(returned.error());
    }
    if (!returned->done()) {
        Status told = co_await readFolder(); // we stand somewhere else now
        if (!told && !usable()) {
            co_return tl::unexpected(told.error());
        }
    }
    co_return true;
}

Awaitable<Status> Session::setType(Type type)
{
    if (m_type == type) {
        co_return Status {};
    }
    const std::string command = std::string("TYPE ") + static_cast<char>(type);
    Status set = co_await expectDone(command);
    if (set) {
        m_type = type;
    }
    co_return set;
}

Awaitable<Result<bool>> Session::supportsRestart()
{
    if (!m_knowledge->restart && m_features.restStream) {
        m_knowledge->restart = true;
    }
    if (!m_knowledge->restart) {
        Status binary = co_await setType(Type::Binary);
        if (!binary) {
            co_return tl::unexpected(binary.error());
        }
        // Some servers take only REST 0, so 0 proves nothing.
        auto answer = co_await ask("REST 1");
        if (!answer) {
            co_return tl::unexpected(answer.error());
        }
        m_knowledge->restart = answer->code == 350;
        if (answer->code == 350) {
            auto cleared = co_await ask("REST 0");
            if (!cleared) {
                co_return tl::unexpected(cleared.error());
            }
        }
    }
    co_return *m_knowledge->restart;
}

} // namespace ftp
