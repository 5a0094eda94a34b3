#include "ftp/fetcher.h"

#include "ftp/file_facts.h"
#include "ftp/receiver.h"
#include "ftp/transfer.h"
#include "ftp/tree_walk.h"

#include <ctime>

namespace ftp {
namespace {

const std::string listAll = "LIST -a";

/// Whether a folder is listed by MLSD, else by LIST.
bool byMachine(const Session &session, const Job &job)
{
    return session.features().mlst && !job.machine && !job.noMachine;
}

} // namespace

Result<std::vector<std::string>> Fetcher::preparations(Session &session, Flow &flow)
{
    flow.data = std::make_unique<DataConnection>(session);
    auto way = flow.data->command();
    if (!way) {
        return tl::unexpected(way.error());
    }
    std::vector<std::string> commands;
    if (flow.job.isFolder()) {
        m_entered = true; // LIST works in the current folder only, and PWD shows hidden links
        commands.push_back("CWD " + flow.job.folder->remote);
        commands.emplace_back("PWD");
    } else if (flow.job.unlisted) {
        flow.facts = commands = factCommands(session, flow.job.remotePath(), m_task.type());
    }
    commands.push_back(*way);
    return commands;
}

std::string Fetcher::transferCommand(Session &session, const Job &job)
{
    if (!job.isFolder()) {
        return "RETR " + job.remotePath();
    }
    if (byMachine(session, job)) {
        return "MLSD " + job.remotePath();
    }
    return job.plain || session.knowledge().plainListOnly ? "LIST" : listAll;
}

std::optional<std::string> Fetcher::transferAhead(Session &session, const Flow &flow)
{
    // A listing would be one of the wrong folder if its CWD were refused. Encrypted, some servers
    // lose commands that arrive during the handshake.
    const bool may = flow.data->listens() && !flow.job.isFolder() && !session.encrypted();
    return may ? std::optional(transferCommand(session, flow.job)) : std::nullopt;
}

/// @return false when the job was refused and is done with
Awaitable<Result<bool>> Fetcher::takeReplies(Session &session, Flow &flow,
                                             std::vector<Reply> replies)
{
    if (flow.job.isFolder() && !replies.front().done()) {
        m_task.refused(session, flow.job, refusal(replies.front()).value());
        co_return false;
    }
    if (flow.job.isFolder()) {
        const FolderPair &folder = *flow.job.folder;
        flow.job.real = folderTold(replies[1]);
        // A link that the listings hid?
        if (leadsElsewhere(folder.above, nameOf(folder.remote), flow.job.real)) {
            // The port that was opened for its listing is taken back by the next one.
            m_task.done(flow.job);
            co_return false;
        }
    }
    if (!flow.facts.empty()) {
        const RemoteFacts facts = takeFacts(session, flow.facts, replies);
        ServerKnowledge &server = session.knowledge();
        if (facts.modified && flow.job.time != 0 && !flow.job.link && !server.zoneOffset) {
            server.zoneOffset = zoneOf(flow.job.time, *facts.modified);
        }
        flow.job.size = facts.size.value_or(flow.job.size);
        flow.job.time = facts.modified.value_or(flow.job.time);
    }
    if (flow.asked && !replies.back().done()) {
        flow.asked = false; // without the connection the transfer was refused, too
        auto refused = co_await session.dialogue().reply();
        if (!refused || !refused->refused()) {
            session.markBroken();
            co_return fail(ErrorKind::Protocol, "The server transfers to nowhere");
        }
    }
    Status begun = co_await flow.data->beginOrOpen(std::move(replies.back()));
    if (!begun && begun.error().kind == ErrorKind::Refused && session.usable()) {
        m_task.refused(session, flow.job, begun.error());
        co_return false;
    }
    if (!begun) {
        co_return tl::unexpected(begun.error());
    }
    co_return true;
}

Awaitable<Status> Fetcher::flow(Session &session, Flow &flow, std::vector<Reply> replies,
                                LookAhead ahead)
{
    auto ready = co_await takeReplies(session, flow, std::move(replies));
    if (!ready) {
        co_return tl::unexpected(ready.error());
    }
    if (!*ready) {
        co_return Status {};
    }
    Status step;
    if (!flow.asked) {
        const std::string command = transferCommand(session, flow.job);
        flow.withOption = command == listAll;
        step = session.line().queue(command);
    }
    if (!step) { // a name that no command may carry
        m_task.refused(session, flow.job, step.error());
        flow.data->abort();
        co_return Status {};
    }
    step = ahead();
    if (step) {
        step = co_await session.line().flush();
    }
    if (!step) {
        co_return step;
    }
    if (flow.job.isFolder()) {
        co_return co_await receiveListing(session, flow);
    }
    co_return co_await receiveFile(session, flow);
}

Awaitable<Status> Fetcher::receiveFile(Session &session, Flow &flow)
{
    Status start = co_await awaitStart(session, *flow.data);
    if (!start && start.error().kind != ErrorKind::Refused) {
        co_return start;
    }
    if (!start && flow.job.link && isFinalRefusal(start.error())) {
        m_task.linkRefused(flow.job);
        co_return Status {};
    }
    if (!start) {
        m_task.refused(session, flow.job, start.error());
        co_return Status {};
    }
    Status received = co_await receiveBytes(session, flow);
    if (received) {
        m_task.done(flow.job);
        co_return Status {};
    }
    const ErrorKind kind = received.error().kind;
    if (session.usable() && !brokeInTheMiddle(received.error())
        && kind != ErrorKind::ConnectionClosed) {
        m_task.refused(session, flow.job, received.error());
        co_return Status {};
    }
    co_return received;
}

Awaitable<Status> Fetcher::receiveBytes(Session &session, Flow &flow)
{
    Job &job = flow.job;
    IncomingFile file;
    Receiver receiver(m_task.type());
    std::int64_t bytes = 0;
    m_task.moved(job, -job.counted); // an earlier try counts no more
    Status received = file.open(job.localPath(), 0);
    job.begun = file.inPlace();
    if (received) {
        received = co_await receiveAll(session, *flow.data, [&](std::string_view block) {
            bytes += static_cast<std::int64_t>(block.size());
            m_task.moved(job, static_cast<std::int64_t>(block.size()));
            return receiver.write(file, block);
        });
    }
    if (received) {
        received = receiver.finish(file);
    }
    const bool properEnd = flow.data->stream().closeNotifyReceived();
    Status finished = co_await finishTransfer(session, *flow.data, received, session.timeout());
    const bool whole = received && job.size >= 0 && bytes == job.size;
    if (!finished && whole && finished.error().kind == ErrorKind::Refused && session.lookAhead()) {
        // More likely it is a command behind that was refused, because it came during the transfer.
        session.markBroken();
        co_return fail(ErrorKind::Protocol, "The server does not take commands during a transfer");
    }
    if (finished && m_task.type() == Type::Binary) {
        finished = checkComplete(session, bytes,
                                 job.size >= 0 ? std::optional(job.size) : std::nullopt, properEnd);
    } else if (finished) {
        finished = checkComplete(session, bytes, std::nullopt, properEnd);
    }
    if (!finished) {
        co_return finished;
    }
    co_return file.commit(job.time == 0 ? std::nullopt : std::optional(job.time));
}

Awaitable<Status> Fetcher::receiveListing(Session &session, Flow &flow)
{
    Status start = co_await awaitStart(session, *flow.data);
    if (!start && start.error().kind == ErrorKind::Refused) {
        co_return listingRefused(session, flow, start.error());
    }
    if (!start) {
        co_return start;
    }
    ServerKnowledge &server = session.knowledge();
    const bool machine = byMachine(session, flow.job);
    TreeListing listing;
    const bool linksOnly = flow.job.machine != nullptr; // all others are known
    const auto take = [&listing, linksOnly](const Entry &entry) {
        if (!linksOnly || entry.type == 'l') {
            listing.add(entry);
        }
    };
    const std::int64_t now
        = static_cast<std::int64_t>(std::time(nullptr)) + server.zoneOffset.value_or(0);
    ListingParser parser = machine ? mlsdParser(take) : listParser(fromEpoch(now), take);
    const Status started;
    auto end = co_await ftp::receiveListing(session, *flow.data, started, std::move(parser),
                                            flow.job.cut);
    if (!end && end.error().kind == ErrorKind::Refused && session.usable()
        && !brokeInTheMiddle(end.error())) {
        m_task.refused(session, flow.job, end.error());
        co_return Status {};
    }
    if (!end) {
        co_return tl::unexpected(end.error());
    }
    if (!end->whole) {
        co_return listingCut(session, flow, end->bytes);
    }
    flow.job.cut.reset();
    if (!end->understood && flow.withOption && !flow.job.plain) {
        flow.job.plain = true; // perhaps the option was taken for a name
        m_task.putBack(std::move(flow.job));
        co_return Status {};
    }
    if (end->isStrange() && flow.job.machine) {
        machineMustDo(flow.job);
        co_return Status {};
    }
    if (end->isStrange()) {
        m_task.refused(session, flow.job,
                       { ErrorKind::Protocol, 0, "The listing could not be understood" });
        co_return Status {};
    }
    if (flow.job.optionRefused) { // and this folder may be listed
        server.plainListOnly = true;
    }
    co_return takeListing(session, flow.job, std::move(listing));
}

/// A refused listing is asked for in another way, where there is one.
Status Fetcher::listingRefused(Session &session, Flow &flow, const Error &error)
{
    constexpr int moreTries = 2;
    if (isPassingRefusal(error) && flow.job.tries < moreTries) {
        ++flow.job.tries; // a folder is too much to lose for it
        m_task.putBack(std::move(flow.job));
        return {};
    }
    const bool final = isFinalRefusal(error);
    if (final && flow.withOption) {
        flow.job.plain = flow.job.optionRefused = true;
        m_task.putBack(std::move(flow.job));
    } else if (final && byMachine(session, flow.job)) {
        flow.job.noMachine = true;
        m_task.putBack(std::move(flow.job));
    } else if (flow.job.machine) {
        machineMustDo(flow.job);
    } else {
        m_task.refused(session, flow.job, error);
    }
    return {};
}

/// LIST has nothing to add.
void Fetcher::machineMustDo(const Job &job)
{
    m_task.listed(job, std::move(*job.machine));
    m_task.done(job);
}

/// A listing that may have been cut short is asked for once more.
Status Fetcher::listingCut(Session &session, Flow &flow, std::size_t bytes)
{
    if (flow.job.cut) {
        m_task.refused(session, flow.job, { ErrorKind::Truncated, 0, "The listing was cut short" });
        return {};
    }
    flow.job.cut = bytes;
    m_task.putBack(std::move(flow.job));
    return {};
}

/// A machine listing with folders is compared with LIST before anything is done with it: links to
/// folders that look like folders would be followed without end.
Status Fetcher::takeListing(Session &session, Job &job, TreeListing listing)
{
    if (byMachine(session, job) && listing.hasFolders()) {
        job.machine = std::make_shared<TreeListing>(std::move(listing));
        m_task.putBack(std::move(job));
        return {};
    }
    if (job.machine) {
        job.machine->markLinks(listing);
        listing = std::move(*job.machine);
    }
    m_task.listed(job, std::move(listing));
    m_task.done(job);
    return {};
}

Awaitable<Status> Fetcher::again(Session &session, Job &job)
{
    FileRequest request;
    request.remotePath = job.remotePath();
    request.localPath = job.localPath();
    request.type = m_task.type();
    const std::int64_t have = fileSize(request.localPath).value_or(0);
    // Only what this transfer brought may be continued; an older file is fetched anew.
    const bool ours = job.begun && have == job.counted;
    request.offset = request.type == Type::Binary && ours ? have : 0;
    m_task.moved(job, request.offset - job.counted);
    std::int64_t last = 0;
    request.progress = [&](std::int64_t bytes) {
        m_task.moved(job, bytes - last);
        last = bytes;
    };
    auto got = co_await retrieve(session, request);
    if (got) {
        m_task.done(job);
        co_return Status {};
    }
    if (session.usable()) {
        m_task.refused(session, job, got.error());
        co_return Status {};
    }
    co_return tl::unexpected(got.error());
}

} // namespace ftp
