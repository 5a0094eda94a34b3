#include "ftp/storer.h"

#include "ftp/file_facts.h"
#include "ftp/transfer.h"

namespace ftp {
namespace {

/// Answers to a command as such, which no stored file gets (RFC 959, section 4.2.1).
bool refusesCommands(const Error &error)
{
    return error.kind == ErrorKind::Refused && error.replyCode >= 500 && error.replyCode <= 504;
}

} // namespace

Result<std::vector<std::string>> Storer::preparations(Session &session, Flow &flow)
{
    flow.data = std::make_unique<DataConnection>(session);
    auto way = flow.data->command();
    if (!way) {
        return tl::unexpected(way.error());
    }
    return std::vector<std::string> { *way };
}

Awaitable<Status> Storer::flow(Session &session, Flow &flow, std::vector<Reply> replies,
                               LookAhead ahead)
{
    OutgoingFile file;
    Status step = file.open(flow.job.localPath());
    if (!step) {
        m_task.refused(session, flow.job, step.error());
        co_return Status {};
    }
    step = co_await flow.data->beginOrOpen(std::move(replies.back()));
    if (!step && step.error().kind == ErrorKind::Refused && session.usable()) {
        m_task.refused(session, flow.job, step.error());
        co_return Status {};
    }
    if (!step) {
        co_return step;
    }
    if (const auto sendable = encodeCommand("STOR " + flow.job.remotePath()); !sendable) {
        m_task.refused(session, flow.job, sendable.error());
        co_return Status {};
    }
    step = co_await lookBefore(session, flow.job, file);
    Checks checks;
    if (step) {
        step = queueAll(session, flow, file, checks);
    }
    if (step) {
        step = ahead();
    }
    if (step) {
        step = co_await session.line().flush();
    }
    if (!step) {
        co_return step;
    }
    co_return co_await send(session, flow, file, std::move(checks));
}

/// What stands there before a file that would be worth continuing: some servers keep it until the
/// new one is complete, and the new one must not go on behind it.
Awaitable<Status> Storer::lookBefore(Session &session, Job &job, const OutgoingFile &file)
{
    constexpr std::int64_t worthIt = 1024 * 1024;
    if (file.size() < worthIt || m_task.type() != Type::Binary || session.knowledge().noSize) {
        co_return Status {};
    }
    auto size = co_await session.ask("SIZE " + job.remotePath());
    if (!size) {
        co_return tl::unexpected(size.error());
    }
    if (!isUnknown(*size)) {
        job.before = sizeOf(*size).value_or(0);
    }
    co_return Status {};
}

/// The transfer command and what may travel with it.
Status Storer::queueAll(Session &session, const Flow &flow, const OutgoingFile &file,
                        Checks &checks)
{
    checks.commands = checkCommands(session, flow.job.remotePath(), file, m_task.type());
    checks.sent = m_task.looksAhead(session);
    std::vector<std::string> packet;
    if (std::string earlier = std::exchange(m_times[&session], {}); !earlier.empty()) {
        checks.timeOwed = true;
        packet.push_back(std::move(earlier));
    }
    packet.push_back("STOR " + flow.job.remotePath());
    if (checks.sent) {
        if (!checks.commands.empty() && checks.commands.back().starts_with("MFMT ")) {
            checks.time = std::move(checks.commands.back());
            checks.commands.pop_back();
        }
        packet.insert(packet.end(), checks.commands.begin(), checks.commands.end());
    }
    Status queued;
    for (std::size_t i = 0; i < packet.size() && queued; ++i) {
        queued = session.line().queue(packet[i]);
    }
    return queued;
}

void Storer::takeTime(Session &session, const Reply &reply)
{
    session.knowledge().noSetTime = isUnknown(reply);
}

/// The time of the last file, when no other follows that it could travel with.
Awaitable<Status> Storer::settle(Session &session)
{
    const std::string time = std::exchange(m_times[&session], {});
    if (time.empty()) {
        co_return Status {};
    }
    auto told = co_await session.ask(time);
    if (!told) {
        co_return tl::unexpected(told.error());
    }
    takeTime(session, *told);
    co_return Status {};
}

Awaitable<Status> Storer::send(Session &session, Flow &flow, OutgoingFile &file, Checks checks)
{
    Status stored = co_await sendBytes(session, flow, file, checks.timeOwed);
    if (!session.usable()) {
        co_return stored;
    }
    stored = co_await verify(session, file, checks, std::move(stored));
    if (!session.usable()) {
        co_return stored;
    }
    if (stored) {
        m_times[&session] = std::move(checks.time);
        m_task.done(flow.job);
    } else if (brokeInTheMiddle(stored.error())) {
        co_return stored;
    } else {
        m_task.refused(session, flow.job, stored.error());
    }
    co_return Status {};
}

Awaitable<Status> Storer::sendBytes(Session &session, Flow &flow, OutgoingFile &file, bool timeOwed)
{
    if (timeOwed) {
        auto told = co_await session.dialogue().finalReply();
        if (!told) {
            session.markBroken();
            co_return tl::unexpected(told.error());
        }
        takeTime(session, *told);
    }
    Job &job = flow.job;
    m_task.moved(job, -job.counted); // an earlier try counts no more
    std::int64_t last = 0;
    ProgressMeter meter([&](std::int64_t bytes) {
        m_task.moved(job, bytes - last);
        last = bytes;
    });
    SideTask sending(session.executor(),
                     sendFile(session, *flow.data, file, 0, m_task.type(), meter));
    Status begun = co_await awaitPreliminary(session, *flow.data, sending);
    Status sent = co_await sending.join();
    meter.finish();
    if (!begun) {
        co_return begun;
    }
    Status finished = co_await finishTransfer(session, *flow.data, sent,
                                              patience(session.timeout(), file.size()));
    if (sent && !finished && refusesCommands(finished.error()) && m_task.looksAhead(session)) {
        // It was one of those behind, which came during the transfer; this one's is still to come.
        session.knowledge().noLookAhead = true;
        session.markBroken();
        co_return fail(ErrorKind::Protocol, "The server does not take commands during a transfer");
    }
    co_return finished;
}

Awaitable<Status> Storer::verify(Session &session, OutgoingFile &file, const Checks &checks,
                                 Status stored)
{
    std::vector<Reply> replies;
    if (!checks.sent && stored) {
        auto answers = co_await session.askAll(checks.commands);
        if (!answers) {
            co_return tl::unexpected(answers.error());
        }
        replies = std::move(*answers);
    }
    while (checks.sent && replies.size() < checks.commands.size()) {
        auto reply = co_await session.dialogue().finalReply();
        if (!reply) {
            session.markBroken();
            co_return tl::unexpected(reply.error());
        }
        replies.push_back(std::move(*reply));
    }
    co_return stored ? takeChecks(session, checks.commands, replies, file) : stored;
}

/// Where an upload that broke off may go on. Bytes that went into the line prove nothing, and what
/// stands there is ours only when it is not what stood there before.
Awaitable<Result<std::int64_t>> Storer::resumeOffset(Session &session, const Job &job)
{
    if (m_task.type() != Type::Binary || job.counted <= 0 || !job.before) {
        co_return 0;
    }
    auto size = co_await session.ask("SIZE " + job.remotePath());
    if (!size) {
        co_return tl::unexpected(size.error());
    }
    const std::int64_t have = sizeOf(*size).value_or(0);
    const bool ours = have <= job.counted && have != *job.before;
    co_return ours ? have : 0;
}

Awaitable<Status> Storer::again(Session &session, Job &job)
{
    FileRequest request;
    request.localPath = job.localPath();
    request.remotePath = job.remotePath();
    request.type = m_task.type();
    auto offset = co_await resumeOffset(session, job);
    if (!offset) {
        co_return tl::unexpected(offset.error());
    }
    request.offset = *offset;
    m_task.moved(job, request.offset - job.counted);
    std::int64_t last = 0;
    request.progress = [&](std::int64_t bytes) {
        m_task.moved(job, bytes - last);
        last = bytes;
    };
    auto put = co_await store(session, request);
    if (put) {
        m_task.done(job);
    } else if (session.usable()) {
        m_task.refused(session, job, put.error());
    } else {
        co_return tl::unexpected(put.error());
    }
    co_return Status {};
}

} // namespace ftp
