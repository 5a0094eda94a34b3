#include "ftp/crew.h"
#include "ftp/path.h"
#include "ftp/receiver.h"
#include "ftp/side_task.h"
#include "ftp/tree.h"

#include <cstring>
#include <ctime>
#include <deque>
#include <sys/stat.h>

namespace ftp {
namespace {

constexpr int deepest = 64;
/// So many files waiting are enough work; folders are listed only when there are fewer, so that the
/// memory needed does not grow with the tree.
constexpr std::size_t enoughFiles = 512;
constexpr int mostTries = 3;

/// A folder of the tree, kept as long as something in it is to be done.
struct TreeFolder {
    std::string remote; ///< raw bytes
    std::string local;
    int depth = 0;
};

struct Job {
    std::shared_ptr<const TreeFolder> folder;
    std::string name; ///< raw; empty: the folder itself is to be listed
    std::int64_t size = -1; ///< as listed, -1 unknown
    std::int64_t time = 0; ///< seconds since 1970, UTC; 0 unknown
    std::int64_t counted = 0; ///< bytes that the progress knows of
    int tries = 0;
    bool link = false;

    [[nodiscard]] bool isFolder() const { return name.empty(); }
};

class TreeGetter {
public:
    TreeGetter(Client &client, Type type)
        : m_type(type)
        , m_crew(client, [this](Session &session) { return work(session); })
    {
    }

    Awaitable<Status> run(std::string remote, std::string local)
    {
        auto top = std::make_shared<TreeFolder>();
        top->remote = m_crew.client().encode(remote);
        top->local = std::move(local);
        while (top->remote.size() > 1 && top->remote.back() == '/') {
            top->remote.pop_back();
        }
        if (!top->remote.starts_with('/')) {
            top->remote = joinPath(m_crew.client().session().folder(), top->remote);
        }
        Job job;
        job.folder = std::move(top);
        add(std::move(job));
        Status fetched = co_await m_crew.run();
        if (!m_crew.client().session().features().mlst) {
            co_await m_crew.returnHome(); // LIST works in the current folder only
        }
        co_return fetched;
    }

private:
    /// What is on its way for one job.
    struct Flow {
        Job job;
        std::unique_ptr<DataConnection> data;
        bool prepared = false; ///< its preparations were sent, the replies are still to come
    };

    Awaitable<Status> work(Session &session);
    Awaitable<Status> flow(Session &session, Flow &current, std::optional<Flow> &next);
    Status sendPreparations(Session &session, Flow &flow);
    Awaitable<Result<bool>> readPreparations(Session &session, Flow &flow);
    Awaitable<Status> receiveFile(Session &session, Flow &flow);
    Awaitable<Status> receiveListing(Session &session, Flow &flow);
    Awaitable<Status> again(Session &session, Job &job);
    [[nodiscard]] std::string transferCommand(Session &session, const Job &job) const;
    void takeListing(Session &session, const Job &job, const Listing &listing);
    void takeEntry(Session &session, const std::shared_ptr<const TreeFolder> &folder,
                   const Entry &entry);
    Status finishFile(const Job &job, IncomingFile &file, std::int64_t bytes);
    void refuse(const Job &job, const Error &error);
    void add(Job job);
    void giveBack(Job job, const Error &error);
    std::optional<Job> take();
    void done() { m_crew.jobDone(); }

    Type m_type;
    Crew m_crew;
    std::deque<Job> m_files, m_folders;
};

std::string remotePath(const Job &job)
{
    return job.isFolder() ? job.folder->remote : joinPath(job.folder->remote, job.name);
}

std::string localPath(Client &client, const Job &job)
{
    return joinPath(job.folder->local, client.names().decode(job.folder->remote, job.name));
}

void TreeGetter::add(Job job)
{
    (job.isFolder() ? m_folders : m_files).push_back(std::move(job));
    m_crew.jobAdded();
}

std::optional<Job> TreeGetter::take()
{
    const bool folderFirst = !m_folders.empty() && m_files.size() < enoughFiles;
    auto &queue = folderFirst || m_files.empty() ? m_folders : m_files;
    if (m_crew.stopped() || queue.empty()) {
        return std::nullopt;
    }
    // Files in order, folders newest first: so the walk goes into the depth.
    Job job = folderFirst || m_files.empty() ? std::move(queue.back()) : std::move(queue.front());
    if (folderFirst || m_files.empty()) {
        queue.pop_back();
    } else {
        queue.pop_front();
    }
    return job;
}

void TreeGetter::giveBack(Job job, const Error &error)
{
    if (++job.tries >= mostTries || error.kind == ErrorKind::Aborted) {
        refuse(job, error);
        return;
    }
    (job.isFolder() ? m_folders : m_files).push_front(std::move(job));
}

/// Gives a job up for good.
void TreeGetter::refuse(const Job &job, const Error &error)
{
    m_crew.note(m_crew.client().names().decodePath(remotePath(job)) + ": " + error.text);
    m_crew.failed(error);
    done();
}

std::string TreeGetter::transferCommand(Session &session, const Job &job) const
{
    if (!job.isFolder()) {
        return "RETR " + remotePath(job);
    }
    if (session.features().mlst) {
        return "MLSD " + remotePath(job);
    }
    return session.knowledge().plainListOnly ? "LIST" : "LIST -a";
}

Status TreeGetter::sendPreparations(Session &session, Flow &flow)
{
    flow.data = std::make_unique<DataConnection>(session);
    auto way = flow.data->command();
    if (!way) {
        return tl::unexpected(way.error());
    }
    if (flow.job.isFolder() && !session.features().mlst) {
        Status queued = session.line().queue("CWD " + flow.job.folder->remote);
        if (!queued) {
            return queued;
        }
    }
    flow.prepared = true;
    return session.line().queue(*way);
}

/// @return false when the job was refused and is done with
Awaitable<Result<bool>> TreeGetter::readPreparations(Session &session, Flow &flow)
{
    flow.prepared = false;
    std::optional<Error> refused;
    if (flow.job.isFolder() && !session.features().mlst) {
        auto entered = co_await session.dialogue().reply();
        if (!entered) {
            co_return tl::unexpected(entered.error());
        }
        if (!entered->done()) {
            refused = refusal(*entered).value();
        }
    }
    auto way = co_await session.dialogue().reply();
    if (!way) {
        co_return tl::unexpected(way.error());
    }
    if (refused) {
        refuse(flow.job, *refused);
        co_return false;
    }
    Status begun = co_await flow.data->beginOrOpen(std::move(*way));
    if (!begun) {
        co_return tl::unexpected(begun.error());
    }
    co_return true;
}

/// One job on its way, and the preparations of the next behind it.
Awaitable<Status> TreeGetter::flow(Session &session, Flow &current, std::optional<Flow> &next)
{
    auto ready = co_await readPreparations(session, current);
    if (!ready) {
        co_return tl::unexpected(ready.error());
    }
    if (!*ready) {
        co_return Status {};
    }
    Status step = session.line().queue(transferCommand(session, current.job));
    if (!step) { // a name that no command may carry
        refuse(current.job, step.error());
        current.data->abort();
        co_return Status {};
    }
    if (session.lookAhead()) {
        if (auto job = take()) {
            next.emplace();
            next->job = std::move(*job);
            step = sendPreparations(session, *next);
        }
    }
    if (step) {
        step = co_await session.line().flush();
    }
    if (!step) {
        co_return step;
    }
    if (current.job.isFolder()) {
        co_return co_await receiveListing(session, current);
    }
    co_return co_await receiveFile(session, current);
}

/// The reply to a transfer command whose data connection is under way. @return the refusal, if any
Awaitable<Result<std::optional<Error>>> awaitStart(Session &session, DataConnection &data)
{
    SideTask standing(session.executor(), data.establish());
    auto answer = co_await session.dialogue().reply();
    const bool begins = answer && answer->preliminary();
    if (!begins) {
        data.abort();
    }
    Status stands = co_await standing.join();
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    if (answer->done()) {
        co_return fail(ErrorKind::Protocol, "The server ended a transfer before it began");
    }
    if (!begins) {
        co_return std::optional<Error>(refusal(*answer).value());
    }
    if (!stands) {
        co_return tl::unexpected(stands.error());
    }
    co_return std::optional<Error>();
}

Status TreeGetter::finishFile(const Job &job, IncomingFile &file, std::int64_t bytes)
{
    if (m_type == Type::Binary && !job.link && job.size >= 0 && bytes < job.size) {
        return fail(ErrorKind::Truncated,
                    "The transfer was cut short: " + std::to_string(bytes) + " of "
                        + std::to_string(job.size) + " bytes");
    }
    return file.commit(job.time == 0 ? std::nullopt : std::optional(job.time));
}

Awaitable<Status> TreeGetter::receiveFile(Session &session, Flow &flow)
{
    Job &job = flow.job;
    auto start = co_await awaitStart(session, *flow.data);
    if (!start) {
        co_return tl::unexpected(start.error());
    }
    if (*start) {
        if (job.link && (*start)->replyCode / 100 == 5) {
            done(); // leads to a folder or nowhere
        } else {
            refuse(job, **start);
        }
        co_return Status {};
    }
    IncomingFile file;
    Receiver receiver(m_type);
    std::int64_t bytes = 0;
    Status received = file.open(localPath(m_crew.client(), job), 0);
    if (received) {
        received = co_await receiveAll(session, *flow.data, [&](std::string_view block) {
            bytes += static_cast<std::int64_t>(block.size());
            job.counted += static_cast<std::int64_t>(block.size());
            m_crew.addBytes(static_cast<std::int64_t>(block.size()));
            return receiver.write(file, block);
        });
    }
    if (received) {
        received = receiver.finish(file);
    }
    Status finished = co_await finishTransfer(session, *flow.data, received, session.timeout());
    if (finished) {
        finished = finishFile(job, file, bytes);
    }
    if (!finished && session.usable() && finished.error().kind != ErrorKind::Truncated
        && finished.error().kind != ErrorKind::ConnectionClosed) {
        refuse(job, finished.error());
        co_return Status {};
    }
    if (finished) {
        done();
    }
    co_return finished;
}

Awaitable<Status> TreeGetter::receiveListing(Session &session, Flow &flow)
{
    auto start = co_await awaitStart(session, *flow.data);
    if (!start) {
        co_return tl::unexpected(start.error());
    }
    ServerKnowledge &server = session.knowledge();
    const bool withOption = !session.features().mlst && !server.plainListOnly;
    if (*start) {
        if (withOption) {
            server.plainListOnly = true; // once more without the option
            m_folders.push_back(std::move(flow.job));
        } else {
            refuse(flow.job, **start);
        }
        co_return Status {};
    }
    std::string text;
    Status received
        = co_await receiveAll(session, *flow.data, [&text](std::string_view block) -> Status {
              text += block;
              return {};
          });
    Status finished = co_await finishTransfer(session, *flow.data, received, session.timeout());
    if (!finished) {
        co_return finished;
    }
    const std::int64_t now
        = static_cast<std::int64_t>(std::time(nullptr)) + server.zoneOffset.value_or(0);
    takeListing(session, flow.job,
                session.features().mlst ? parseMlsd(text) : parseList(text, fromEpoch(now)));
    done();
    co_return Status {};
}

void TreeGetter::takeListing(Session &session, const Job &job, const Listing &listing)
{
    struct stat status { };
    const std::string &local = job.folder->local;
    if (::mkdir(local.c_str(), 0777) != 0
        && (::stat(local.c_str(), &status) != 0 || !S_ISDIR(status.st_mode))) {
        const Error error = localError(errno == 0 ? ENOTDIR : errno, local).value();
        m_crew.note(error.text);
        m_crew.failed(error);
        return;
    }
    for (const Entry &entry : listing.entries) {
        takeEntry(session, job.folder, entry);
    }
}

void TreeGetter::takeEntry(Session &session, const std::shared_ptr<const TreeFolder> &folder,
                           const Entry &entry)
{
    if (entry.name == "." || entry.name == "..") {
        return;
    }
    const std::string shown = m_crew.client().names().decode(folder->remote, entry.name);
    if (!isSafeName(entry.name) || !isSafeName(shown)) {
        m_crew.note("Unzulässiger Name vom Server, nicht übertragen: " + shown);
        m_crew.failed({ ErrorKind::UnsafeName, 0, "Unsafe name from the server" });
        return;
    }
    Job job;
    if (entry.type == 'd') {
        if (folder->depth >= deepest) {
            m_crew.note("Zu tief verschachtelt, nicht übertragen: " + shown);
            m_crew.failed({ ErrorKind::UnsafeName, 0, "Folders are nested too deeply" });
            return;
        }
        auto below = std::make_shared<TreeFolder>();
        below->remote = joinPath(folder->remote, entry.name);
        below->local = joinPath(folder->local, shown);
        below->depth = folder->depth + 1;
        job.folder = std::move(below);
        add(std::move(job));
        return;
    }
    job.folder = folder;
    job.name = entry.name;
    job.link = entry.type == 'l';
    job.size = job.link ? -1 : entry.size;
    if (entry.time) {
        const std::int64_t zone = entry.utc ? 0 : session.knowledge().zoneOffset.value_or(0);
        job.time = toEpoch(*entry.time) - zone;
    }
    m_crew.addTotal(job.link ? 0 : entry.size);
    add(std::move(job));
}

/// A file that broke off once: resumed step by step.
Awaitable<Status> TreeGetter::again(Session &session, Job &job)
{
    GetRequest request;
    request.remotePath = remotePath(job);
    request.localPath = localPath(m_crew.client(), job);
    request.type = m_type;
    const std::int64_t have = fileSize(request.localPath).value_or(0);
    // Only what this transfer brought may be continued; an older file is fetched anew.
    request.offset = m_type == Type::Binary && have == job.counted ? have : 0;
    m_crew.addBytes(request.offset - job.counted);
    job.counted = request.offset;
    std::int64_t last = 0;
    request.progress = [&](std::int64_t bytes) {
        m_crew.addBytes(bytes - last);
        job.counted += bytes - last;
        last = bytes;
    };
    auto got = co_await retrieve(session, request);
    if (got) {
        done();
        co_return Status {};
    }
    if (session.usable()) {
        refuse(job, got.error());
        co_return Status {};
    }
    co_return tl::unexpected(got.error());
}

Awaitable<Status> TreeGetter::work(Session &session)
{
    Status typed = co_await session.setType(m_type);
    if (!typed) {
        m_crew.failed(typed.error());
        co_return session.usable() ? Status {} : typed;
    }
    std::optional<Flow> current, next;
    for (;;) {
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
        if (current->job.tries > 0 && !current->job.isFolder()) {
            step = co_await again(session, current->job);
        } else {
            if (!current->prepared) {
                step = sendPreparations(session, *current);
                if (step) {
                    step = co_await session.line().flush();
                }
            }
            if (step) {
                step = co_await flow(session, *current, next);
            }
        }
        if (!step) {
            const bool usable = session.usable() && step.error().kind == ErrorKind::Truncated;
            if (next && step.error().kind != ErrorKind::Aborted) {
                session.knowledge().noLookAhead = true; // perhaps it was that, so it costs no try
                --current->job.tries;
            }
            giveBack(std::move(current->job), step.error());
            if (!usable) {
                if (next) { // not begun
                    (next->job.isFolder() ? m_folders : m_files).push_front(std::move(next->job));
                }
                session.markBroken();
                co_return step;
            }
        }
        current = std::exchange(next, std::nullopt);
    }
}

} // namespace

Awaitable<Status> getTree(Client &client, std::string remoteFolder, std::string localFolder,
                          Type type)
{
    TreeGetter getter(client, type);
    co_return co_await getter.run(std::move(remoteFolder), std::move(localFolder));
}

} // namespace ftp
