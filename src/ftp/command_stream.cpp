#include "ftp/command_stream.h"

namespace ftp {
namespace {

/// Commands on their way at a time.
constexpr std::size_t window = 128;

} // namespace

Awaitable<Status> CommandStream::send(std::size_t most)
{
    bool queued = false;
    while (m_next && m_underway.size() < most && !stopped()) {
        Command command { m_sent++, std::move(*m_next) };
        m_next = m_source();
        command.sendable = m_session.line().queue(command.text);
        queued = queued || command.sendable;
        m_underway.push_back(std::move(command));
    }
    if (!queued) {
        co_return Status {};
    }
    co_return co_await m_session.line().flush();
}

Awaitable<Status> CommandStream::run()
{
    const std::size_t ahead = m_session.pipelining() ? window : 1;
    for (;;) {
        Status sent = co_await send(ahead);
        if (!sent) {
            m_session.markBroken();
            co_return sent;
        }
        if (m_underway.empty()) {
            co_return Status {};
        }
        // Half a window of answers before the next packet keeps packets big.
        const bool more = m_next && !stopped();
        const std::size_t keep = more ? ahead / 2 : 0;
        while (m_underway.size() > keep) {
            Status answer = m_underway.front().sendable;
            if (answer) {
                auto reply = co_await m_session.dialogue().finalReply();
                if (!reply) {
                    m_session.markBroken();
                    co_return tl::unexpected(reply.error());
                }
                answer = reply->done() ? Status {} : Status(refusal(*reply));
            }
            const Command command = std::move(m_underway.front());
            m_underway.pop_front();
            m_answered(command, std::move(answer));
        }
    }
}

} // namespace ftp
