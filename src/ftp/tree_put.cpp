#include "ftp/crew.h"
#include "ftp/path.h"
#include "ftp/side_task.h"
#include "ftp/tree.h"

#include <algorithm>
#include <asio/post.hpp>
#include <asio/use_awaitable.hpp>
#include <deque>
#include <dirent.h>
#include <sys/stat.h>

namespace ftp {
namespace {

constexpr int deepest = 64;
constexpr int mostTries = 3;
/// MKD commands on their way at a time.
constexpr std::size_t burst = 64;
/// So many files waiting are enough work; memory must not grow with the tree.
constexpr std::size_t filesAhead = 512;

struct TreeFolder {
    std::string local;
    std::string remote; ///< raw bytes
};

struct Job {
    std::shared_ptr<const TreeFolder> folder;
    std::string name; ///< local bytes, which are the wire's too
    std::int64_t counted = 0; ///< bytes that the progress knows of
    int tries = 0;
};

/// Names in a local folder, without "." and "..".
Result<std::vector<std::string>> namesIn(const std::string &folder)
{
    DIR *directory = ::opendir(folder.c_str());
    if (directory == nullptr) {
        return localError(errno, folder);
    }
    std::vector<std::string> names;
    while (const dirent *entry = ::readdir(directory)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            names.push_back(name);
        }
    }
    ::closedir(directory);
    std::sort(names.begin(), names.end());
    return names;
}

class TreePutter {
public:
    TreePutter(Client &client, Type type)
        : m_type(type)
        , m_crew(client, [this](Session &session) { return work(session); })
    {
    }

    Awaitable<Status> run(std::string local, std::string remote);

private:
    struct Flow {
        Job job;
        std::unique_ptr<DataConnection> data;
    };

    Awaitable<Status> surveyFolder(std::shared_ptr<const TreeFolder> folder, int depth);
    Awaitable<Status> makeFolders();
    Awaitable<Status> checkFolder(std::string remote, Reply refused);
    Awaitable<Status> work(Session &session);
    Awaitable<Status> flow(Session &session, Flow &current, std::optional<Flow> &next);
    Awaitable<Status> send(Session &session, Flow &current, OutgoingFile &file, std::size_t behind);
    Awaitable<Status> again(Session &session, Job &job);
    Status prepare(Session &session, Flow &flow);
    std::size_t queueChecks(Session &session, const Job &job, const OutgoingFile &file);
    Status checkReply(Session &session, const Reply &reply, const OutgoingFile &file) const;
    void refuse(const Job &job, const Error &error);
    void leaveOut(const std::string &path, const Error &error);
    void fill();
    std::optional<Job> take();
    [[nodiscard]] std::string remotePath(const Job &job) const
    {
        return joinPath(job.folder->remote, job.name);
    }

    Type m_type;
    Crew m_crew;
    std::deque<Job> m_jobs;
    std::deque<std::shared_ptr<const TreeFolder>> m_folders; ///< in order, parents first
    std::size_t m_filled = 0; ///< folders whose files became jobs
};

Awaitable<Status> TreePutter::run(std::string local, std::string remote)
{
    Client &client = m_crew.client();
    auto top = std::make_shared<TreeFolder>();
    top->local = std::move(local);
    top->remote = client.encode(remote);
    while (top->remote.size() > 1 && top->remote.back() == '/') {
        top->remote.pop_back();
    }
    if (!top->remote.starts_with('/')) {
        top->remote = joinPath(client.session().folder(), top->remote);
    }
    Status ready = co_await surveyFolder(std::move(top), 0);
    if (ready) {
        ready = co_await makeFolders();
    }
    if (!ready) {
        co_return ready;
    }
    fill();
    co_return co_await m_crew.run();
}

void TreePutter::leaveOut(const std::string &path, const Error &error)
{
    m_crew.note(path + ": " + error.text);
    m_crew.failed(error);
}

/// Walks the local tree: finds the folders, and the bytes that there are to send.
Awaitable<Status> TreePutter::surveyFolder(std::shared_ptr<const TreeFolder> folder, int depth)
{
    m_folders.push_back(folder);
    auto names = namesIn(folder->local);
    if (!names) {
        leaveOut(folder->local, names.error());
        co_return depth == 0 ? Status(tl::unexpected(names.error())) : Status {};
    }
    std::size_t seen = 0;
    for (const std::string &name : *names) {
        const std::string path = joinPath(folder->local, name);
        struct stat entry { };
        if (++seen % 1000 == 0) { // others get their turn
            co_await asio::post(m_crew.client().session().executor(), asio::use_awaitable);
        }
        if (::lstat(path.c_str(), &entry) != 0) {
            continue; // vanished
        }
        if (S_ISDIR(entry.st_mode)) {
            if (depth >= deepest) {
                leaveOut(path, { ErrorKind::LocalFile, 0, "Folders are nested too deeply" });
                continue;
            }
            auto below = std::make_shared<TreeFolder>();
            below->local = path;
            below->remote = joinPath(folder->remote, name);
            Status walked = co_await surveyFolder(std::move(below), depth + 1);
            ignoreError(walked, "told where it happened");
        } else if (::stat(path.c_str(), &entry) == 0 && S_ISREG(entry.st_mode)) {
            m_crew.addTotal(entry.st_size);
        }
    }
    co_return Status {};
}

Awaitable<Status> TreePutter::checkFolder(std::string remote, Reply refused)
{
    Session &session = m_crew.client().session();
    const std::string back = session.folder();
    auto entered = co_await session.ask("CWD " + remote);
    if (!entered) {
        co_return tl::unexpected(entered.error());
    }
    if (!entered->done()) {
        leaveOut(remote, refusal(refused).value());
        co_return Status {};
    }
    auto returned = co_await session.ask("CWD " + back);
    if (!returned) {
        co_return tl::unexpected(returned.error());
    }
    co_return Status {};
}

/// All folders before the first file, many commands at a time: parents come first, and a server
/// works in order.
Awaitable<Status> TreePutter::makeFolders()
{
    Session &session = m_crew.client().session();
    session.dialogue().setMuted(true); // "exists" is no news
    Status result;
    for (std::size_t at = 0; at < m_folders.size() && result; at += burst) {
        const std::size_t end = std::min(at + burst, m_folders.size());
        std::vector<std::string> commands;
        for (std::size_t i = at; i < end; ++i) {
            commands.push_back("MKD " + m_folders[i]->remote);
        }
        auto replies = co_await session.askAll(commands);
        if (!replies) {
            result = tl::unexpected(replies.error());
            break;
        }
        for (std::size_t i = at; i < end && result; ++i) {
            if (!(*replies)[i - at].done()) {
                result = co_await checkFolder(m_folders[i]->remote, (*replies)[i - at]);
            }
        }
    }
    session.dialogue().setMuted(false);
    co_return result;
}

/// Turns the files of the next folders into jobs, as many as are useful at a time.
void TreePutter::fill()
{
    while (m_jobs.size() < filesAhead && m_filled < m_folders.size() && !m_crew.stopped()) {
        const auto folder = m_folders[m_filled++];
        auto names = namesIn(folder->local);
        if (!names) {
            continue; // told by the survey
        }
        for (std::string &name : *names) {
            const std::string path = joinPath(folder->local, name);
            struct stat entry { };
            if (::stat(path.c_str(), &entry) != 0 || !S_ISREG(entry.st_mode)) {
                continue;
            }
            m_jobs.push_back({ folder, std::move(name), 0, 0 });
            m_crew.jobAdded();
        }
    }
}

std::optional<Job> TreePutter::take()
{
    if (m_jobs.size() < filesAhead / 2) {
        fill();
    }
    if (m_crew.stopped() || m_jobs.empty()) {
        return std::nullopt;
    }
    Job job = std::move(m_jobs.front());
    m_jobs.pop_front();
    return job;
}

void TreePutter::refuse(const Job &job, const Error &error)
{
    leaveOut(joinPath(job.folder->local, job.name), error);
    m_crew.jobDone();
}

Status TreePutter::prepare(Session &session, Flow &flow)
{
    flow.data = std::make_unique<DataConnection>(session);
    auto way = flow.data->command();
    if (!way) {
        return tl::unexpected(way.error());
    }
    return session.line().queue(*way);
}

/// Queues what proves and completes an upload behind it. @return the number of commands
std::size_t TreePutter::queueChecks(Session &session, const Job &job, const OutgoingFile &file)
{
    const ServerKnowledge &server = session.knowledge();
    std::size_t count = 0;
    if (m_type == Type::Binary && !server.noSize
        && session.line().queue("SIZE " + remotePath(job))) {
        ++count;
    }
    const std::string time = formatTimeVal(fromEpoch(file.modified()));
    if (session.features().mfmt && !server.noSetTime
        && session.line().queue("MFMT " + time + " " + remotePath(job))) {
        ++count;
    }
    return count;
}

Status TreePutter::checkReply(Session &session, const Reply &reply, const OutgoingFile &file) const
{
    ServerKnowledge &server = session.knowledge();
    if (m_type == Type::Binary && !server.noSize && reply.code == 213) {
        const bool isSize
            = reply.message().find_first_not_of("0123456789") == std::string_view::npos;
        if (isSize && reply.message() != std::to_string(file.size())) {
            return fail(ErrorKind::Truncated,
                        "The server holds " + std::string(reply.message()) + " of "
                            + std::to_string(file.size()) + " bytes");
        }
    }
    return {};
}

Awaitable<Status> TreePutter::flow(Session &session, Flow &current, std::optional<Flow> &next)
{
    auto way = co_await session.dialogue().reply();
    if (!way) {
        co_return tl::unexpected(way.error());
    }
    OutgoingFile file;
    Status step = file.open(joinPath(current.job.folder->local, current.job.name));
    if (!step) {
        refuse(current.job, step.error());
        co_return Status {};
    }
    step = co_await current.data->beginOrOpen(std::move(*way));
    if (!step) {
        co_return step;
    }
    step = session.line().queue("STOR " + remotePath(current.job));
    if (!step) {
        refuse(current.job, step.error());
        co_return Status {};
    }
    std::size_t behind = 0;
    if (session.lookAhead()) {
        behind = queueChecks(session, current.job, file);
        if (auto job = take()) {
            next.emplace();
            next->job = std::move(*job);
            step = prepare(session, *next);
        }
    }
    if (step) {
        step = co_await session.line().flush();
    }
    if (!step) {
        co_return step;
    }
    co_return co_await send(session, current, file, behind);
}

Awaitable<Status> TreePutter::send(Session &session, Flow &current, OutgoingFile &file,
                                   std::size_t behind)
{
    Job &job = current.job;
    std::int64_t last = 0;
    ProgressMeter meter([&](std::int64_t bytes) {
        m_crew.addBytes(bytes - last);
        job.counted += bytes - last;
        last = bytes;
    });
    SideTask sending(session.executor(), sendFile(session, *current.data, file, 0, m_type, meter));
    auto answer = co_await session.dialogue().reply();
    const bool begins = answer && answer->preliminary();
    if (!begins) {
        current.data->abort();
    }
    Status sent = co_await sending.join();
    meter.finish();
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    Status finished;
    if (begins) {
        finished = co_await finishTransfer(session, *current.data, sent, session.timeout());
    } else {
        finished = refusal(*answer);
    }
    if (!session.usable()) {
        co_return finished;
    }
    for (; behind > 0; --behind) {
        auto check = co_await session.dialogue().reply();
        if (!check) {
            co_return tl::unexpected(check.error());
        }
        if (finished) {
            finished = checkReply(session, *check, file);
        }
    }
    if (finished) {
        m_crew.jobDone();
    } else if (finished.error().kind == ErrorKind::Truncated && ++job.tries < mostTries) {
        m_jobs.push_front(std::move(job));
    } else {
        refuse(job, finished.error());
    }
    co_return Status {};
}

/// A file that broke off once: continued step by step.
Awaitable<Status> TreePutter::again(Session &session, Job &job)
{
    PutRequest request;
    request.localPath = joinPath(job.folder->local, job.name);
    request.remotePath = remotePath(job);
    request.type = m_type;
    if (m_type == Type::Binary && job.counted > 0) {
        auto size = co_await session.ask("SIZE " + request.remotePath);
        if (!size) {
            co_return tl::unexpected(size.error());
        }
        const auto have = size->code == 213
            ? std::strtoll(std::string(size->message()).c_str(), nullptr, 10)
            : 0;
        // More than was sent is an older file: replaced from the beginning.
        request.offset = have <= job.counted ? have : 0;
    }
    m_crew.addBytes(request.offset - job.counted);
    job.counted = request.offset;
    std::int64_t last = 0;
    request.progress = [&](std::int64_t bytes) {
        m_crew.addBytes(bytes - last);
        job.counted += bytes - last;
        last = bytes;
    };
    auto put = co_await store(session, request);
    if (put) {
        m_crew.jobDone();
    } else if (session.usable()) {
        refuse(job, put.error());
    } else {
        co_return tl::unexpected(put.error());
    }
    co_return Status {};
}

Awaitable<Status> TreePutter::work(Session &session)
{
    Status typed = co_await session.setType(m_type);
    if (!typed) {
        m_crew.failed(typed.error());
        co_return session.usable() ? Status {} : typed;
    }
    std::optional<Flow> current, next;
    for (;;) {
        bool prepared = current.has_value();
        if (!current) {
            auto job = take();
            if (!job) {
                const bool more = co_await m_crew.wait();
                if (!more) {
                    co_return Status {};
                }
                continue;
            }
            current.emplace();
            current->job = std::move(*job);
        }
        Status step;
        if (current->job.tries > 0 && !prepared) {
            step = co_await again(session, current->job);
        } else {
            if (!prepared) {
                step = prepare(session, *current);
                if (step) {
                    step = co_await session.line().flush();
                }
            }
            if (step) {
                step = co_await flow(session, *current, next);
            }
        }
        if (!step) {
            if (next) { // not begun
                if (step.error().kind != ErrorKind::Aborted) {
                    session.knowledge().noLookAhead
                        = true; // perhaps it was that, so it costs no try
                    --current->job.tries;
                }
                m_jobs.push_front(std::move(next->job));
            }
            if (++current->job.tries >= mostTries || step.error().kind == ErrorKind::Aborted) {
                refuse(current->job, step.error());
            } else {
                m_jobs.push_front(std::move(current->job));
            }
            session.markBroken();
            co_return step;
        }
        current = std::exchange(next, std::nullopt);
    }
}

} // namespace

Awaitable<Status> putTree(Client &client, std::string localFolder, std::string remoteFolder,
                          Type type)
{
    TreePutter putter(client, type);
    co_return co_await putter.run(std::move(localFolder), std::move(remoteFolder));
}

} // namespace ftp
