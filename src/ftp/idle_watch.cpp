#include "ftp/idle_watch.h"

#include <array>
#include <cerrno>
#include <sys/socket.h>

namespace ftp {
namespace {

/// Whether something is there to be read, the end of the line included. A wait may end without: the
/// reactor can still hold the news of bytes that were read long ago.
bool hasNews(asio::ip::tcp::socket &socket)
{
    char byte = 0;
    const ssize_t count = ::recv(socket.native_handle(), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    return count >= 0 || (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR);
}

} // namespace

IdleWatch::IdleWatch(Session &session, std::function<void()> lost, Milliseconds every)
    : m_session(session)
    , m_lost(std::move(lost))
    , m_every(every)
    , m_timer(session.executor())
{
}

void IdleWatch::start()
{
    m_stopping = false;
    m_task = std::make_unique<SideTask>(m_session.executor(), watch());
}

Awaitable<void> IdleWatch::stop()
{
    if (!m_task) {
        co_return;
    }
    m_stopping = true;
    // A keep-alive's reply must be read, or the next command would take it for its own.
    if (!m_asking) {
        std::error_code ignored; // a socket that cannot be cancelled has nobody waiting
        m_session.line().stream().socket().cancel(ignored);
    }
    Status ended = co_await m_task->join();
    ignoreError(ended, "its only news, a lost line, was told already");
    m_task.reset();
}

Awaitable<Status> IdleWatch::keepAlive()
{
    // Varied, because some servers do not count NOOP as work.
    static constexpr std::array commands { "NOOP", "PWD", "NOOP", "TYPE I" };
    const std::string command = commands[static_cast<std::size_t>(m_turn++) % commands.size()];
    const auto muted = m_session.dialogue().muted();
    m_asking = true;
    auto answer = co_await m_session.ask(command);
    m_asking = false;
    if (answer && command == "TYPE I" && answer->done()) {
        m_session.rememberType(Type::Binary);
    }
    co_return answer ? Status {} : Status(tl::unexpected(answer.error()));
}

Awaitable<Status> IdleWatch::watch()
{
    constexpr int mostUnasked = 100; // replies in a row that a sane server would never send
    int unasked = 0;
    auto &socket = m_session.line().stream().socket();
    for (;;) {
        std::error_code error;
        enum class Round { Waits, Elapsed, Over };
        auto round = std::make_shared<Round>(Round::Waits); // the handler may run behind it
        m_timer.expires_after(m_every);
        m_timer.async_wait([&socket, round](const std::error_code &cancelled) {
            if (!cancelled && *round == Round::Waits) {
                *round = Round::Elapsed;
                std::error_code ignored; // nobody waits then
                socket.cancel(ignored);
            }
        });
        co_await socket.async_wait(asio::ip::tcp::socket::wait_read,
                                   asio::redirect_error(asio::use_awaitable, error));
        m_timer.cancel();
        const bool elapsed = std::exchange(*round, Round::Over) == Round::Elapsed;
        if (m_stopping || !m_session.usable()) {
            co_return Status {};
        }
        if (!elapsed && !hasNews(socket)) {
            continue;
        }
        Status alive;
        if (elapsed) {
            alive = co_await keepAlive();
        } else {
            // Unasked: a farewell (421), the end of the line, or TLS tickets without any reply.
            auto said = co_await m_session.dialogue().reply(Milliseconds(2000));
            if (!said && said.error().kind == ErrorKind::Timeout && m_session.encrypted()) {
                said = Reply {};
            }
            alive = said ? Status {} : Status(tl::unexpected(said.error()));
        }
        if (!alive && m_stopping && !elapsed) {
            // The reading was ended by stop(); a lost line shows in the next command.
            co_return Status {};
        }
        unasked = elapsed ? 0 : unasked + 1;
        if (alive && unasked > mostUnasked) {
            alive = fail(ErrorKind::Protocol, "The server talks without being asked");
        }
        if (!alive) {
            m_session.markBroken();
            m_lost();
            co_return alive;
        }
    }
}

} // namespace ftp
