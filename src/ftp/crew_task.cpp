#include "ftp/crew_task.h"

#include <utility>

namespace ftp {

/// Sends a job's preparations, unless they went ahead, and reads the replies.
Awaitable<Result<std::vector<Reply>>> CrewTask::prepare(Session &session, Flow &flow)
{
    if (flow.owed == 0) {
        auto commands = mover().preparations(session, flow);
        if (!commands) {
            co_return tl::unexpected(commands.error());
        }
        co_return co_await session.askAll(*commands);
    }
    std::vector<Reply> replies;
    for (; flow.owed > 0; --flow.owed) {
        auto reply = co_await session.dialogue().finalReply();
        if (!reply) {
            co_return tl::unexpected(reply.error());
        }
        replies.push_back(std::move(*reply));
    }
    co_return replies;
}

/// Whether a job may have broken off because commands for the next one were behind it. A file that
/// became shorter since it was listed looks like that, too, but many do not.
bool CrewTask::blamesLookAhead(const Error &error)
{
    constexpr int mostShrunk = 3;
    if (error.kind == ErrorKind::Truncated && m_cutShort < mostShrunk) {
        ++m_cutShort;
        return false;
    }
    return error.kind != ErrorKind::Aborted;
}

Status CrewTask::lookAhead(Session &session, std::optional<Flow> &next)
{
    if (!looksAhead(session)) {
        return {};
    }
    auto job = take(session);
    if (!job) {
        return {};
    }
    next.emplace();
    next->job = std::move(*job);
    if (next->job.tries > 0) {
        return {}; // it is continued step by step
    }
    if ((next->job.isFolder() || next->job.unlisted) && !session.knowledge().keepsOrder) {
        // The 250 to its CWD or the 550 to its SIZE, given too early, would look like the end of
        // this transfer.
        return {};
    }
    auto commands = mover().preparations(session, *next);
    if (!commands) {
        return tl::unexpected(commands.error());
    }
    for (const std::string &command : *commands) {
        if (const auto sendable = encodeCommand(command); !sendable) {
            refused(session, std::move(next->job), sendable.error()); // only this one
            next.reset();
            return {};
        }
    }
    for (const std::string &command : *commands) {
        Status queued = session.line().queue(command);
        if (!queued) {
            return queued;
        }
        ++next->owed;
    }
    const auto transfer = mover().transferAhead(session, *next);
    // A name that no command may carry is told when the job's turn comes.
    next->asked = transfer && session.line().queue(*transfer);
    return {};
}

Awaitable<Status> CrewTask::carryOut(Session &session, Flow &current, std::optional<Flow> &next)
{
    begun(session, current.job);
    if (current.job.tries > 0 && !current.job.isFolder()) {
        co_return co_await mover().again(session, current.job);
    }
    auto replies = co_await prepare(session, current);
    if (!replies && replies.error().kind == ErrorKind::BadArgument && session.usable()) {
        refused(session, std::move(current.job), replies.error()); // only this one
        co_return Status {};
    }
    if (!replies) {
        co_return tl::unexpected(replies.error());
    }
    LookAhead ahead = [this, &session, &next] { return lookAhead(session, next); };
    co_return co_await mover().flow(session, current, std::move(*replies), std::move(ahead));
}

Awaitable<Status> CrewTask::work(Session &session)
{
    const auto muted = session.dialogue().muted(quiet());
    co_return co_await workOff(session);
}

Awaitable<Status> CrewTask::workOff(Session &session)
{
    Status typed = co_await session.setType(m_type);
    if (!typed) {
        if (m_crew.isFirst(session)) { // what a helper cannot do the others will
            m_crew.failed(typed.error());
        }
        co_return session.usable() ? Status {} : typed;
    }
    std::optional<Flow> current, next;
    for (;;) {
        if (!current) {
            auto job = take(session);
            if (!job) {
                Status settled = co_await mover().settle(session);
                if (!settled) {
                    session.markBroken();
                    co_return settled;
                }
                job = take(session);
            }
            if (!job) {
                const bool more = co_await m_crew.wait(session);
                if (!more) {
                    co_return Status {};
                }
                if (!session.usable()) {
                    co_return fail(ErrorKind::ConnectionClosed, "Connection closed by server");
                }
                continue;
            }
            current.emplace();
            current->job = std::move(*job);
        }
        Status step = co_await carryOut(session, *current, next);
        if (!step) {
            const bool goesOn = session.usable() && brokeInTheMiddle(step.error());
            if (next && blamesLookAhead(step.error())) {
                session.knowledge().noLookAhead = true; // perhaps it was that, so it costs no try
                --current->job.tries;
            }
            brokeOff(session, std::move(current->job), step.error());
            if (!goesOn) {
                if (next) { // not begun
                    putBack(std::move(next->job));
                }
                session.markBroken();
                co_return step;
            }
        }
        current = std::exchange(next, std::nullopt);
    }
}

} // namespace ftp
