#include "ftp/file_list.h"

#include "ftp/fetcher.h"
#include "ftp/storer.h"

#include <deque>
#include <map>

namespace ftp {
namespace {

/// Failures that would have come over any session.
bool isFinal(ErrorKind kind)
{
    return kind == ErrorKind::LocalDiskFull || kind == ErrorKind::LocalFile
        || kind == ErrorKind::Aborted;
}

class FileListTask : public CrewTask {
public:
    FileListTask(Client &client, Type type, FileReports reports)
        : CrewTask(client, type,
                   { .reconnects = false,
                     .progress = [this](std::int64_t, std::int64_t) { tellProgress(); } })
        , m_reports(std::move(reports))
    {
    }

    Awaitable<void> run(std::vector<FilePair> files);

    void moved(Job &job, std::int64_t bytes) override
    {
        job.counted += bytes;
        m_files[job.place].bytes = job.counted;
        m_crew.addBytes(bytes);
    }
    void done(const Job &job) override { finish(job.place, {}); }
    void refused(Session &session, Job job, const Error &error) override;
    void putBack(Job job) override { m_waiting.push_front(std::move(job)); }
    /// What is asked for by hand takes no chances: only a server known to bear it gets commands
    /// during a transfer.
    bool looksAhead(Session &session) const override
    {
        return session.lookAhead() && session.knowledge().keepsOrder;
    }

private:
    struct File {
        std::vector<Reply> replies; ///< not told yet
        std::optional<Status> outcome;
        std::optional<Error> lastError; ///< of a try over a session besides the first
        std::int64_t bytes = 0;
        bool begun = false;
        bool withFirst = false; ///< the first session works on it
    };

    std::optional<Job> take(Session &session) override;
    void begun(Session &session, const Job &job) override;
    void brokeOff(Session &session, Job job, const Error &error) override;
    void add(const FilePair &file);
    void hear(const Session &session, const Reply &reply);
    void finish(std::size_t place, Status outcome);
    void settle(const Status &worked);
    void advance();
    void tellReplies(File &file);
    void tellProgress();

    FileReports m_reports;
    std::vector<File> m_files;
    std::size_t m_front = 0; ///< the first file whose outcome is still open
    std::deque<Job> m_waiting;
    std::deque<Job> m_again; ///< failed over another session; for the first one
    std::deque<Job> m_last; ///< stalled there; when nothing else is left, since they may once more
    std::map<const Session *, std::size_t> m_at; ///< the file that a session works on
    std::shared_ptr<const FolderPair> m_folder; ///< of the file added last
};

void FileListTask::add(const FilePair &file)
{
    const std::string remote = client().encode(file.remotePath);
    FolderPair folder { parentOf(remote), parentOf(file.localPath), 0 };
    if (!m_folder || m_folder->remote != folder.remote || m_folder->local != folder.local) {
        m_folder = std::make_shared<FolderPair>(std::move(folder));
    }
    Job job;
    job.folder = m_folder;
    job.name = remote.substr(remote.rfind('/') + 1);
    job.localName = file.localPath.substr(file.localPath.rfind('/') + 1);
    job.place = m_files.size();
    job.unlisted = true;
    m_files.emplace_back();
    if (const auto sendable = encodeCommand(remote); !sendable) {
        m_files.back().begun = true;
        m_files.back().outcome = tl::unexpected(sendable.error());
        return;
    }
    m_waiting.push_back(std::move(job));
    m_crew.jobAdded();
}

Awaitable<void> FileListTask::run(std::vector<FilePair> files)
{
    m_files.reserve(files.size());
    for (const FilePair &file : files) {
        add(file);
    }
    advance();
    Session &first = client().session();
    auto usual = first.dialogue().exchangeListener(
        [this, &first](const Reply &reply) { hear(first, reply); });
    Status worked = co_await m_crew.run();
    static_cast<void>(first.dialogue().exchangeListener(std::move(usual)));
    settle(worked);
}

std::optional<Job> FileListTask::take(Session &session)
{
    auto &own = !m_again.empty() || !m_waiting.empty() ? m_again : m_last;
    auto &queue = m_crew.isFirst(session) && !own.empty() ? own : m_waiting;
    if (m_crew.stopped() || queue.empty()) {
        return std::nullopt;
    }
    Job job = std::move(queue.front());
    queue.pop_front();
    return job;
}

void FileListTask::begun(Session &session, const Job &job)
{
    const bool first = m_crew.isFirst(session);
    if (!first && !m_at.contains(&session)) {
        static_cast<void>(session.dialogue().exchangeListener(
            [this, &session](const Reply &reply) { hear(session, reply); }));
    }
    m_at[&session] = job.place;
    File &file = m_files[job.place];
    file.replies.clear(); // those of an earlier try
    file.begun = true;
    file.withFirst = first;
    if (job.place == m_front) {
        tellProgress();
    }
}

/// A session besides the first is this program's own idea: that there is one must not make a file
/// fail, so the first one tries it again.
void FileListTask::refused(Session &session, Job job, const Error &error)
{
    if (!m_crew.isFirst(session) && !isFinal(error.kind)) {
        m_files[job.place].lastError = error;
        (error.kind == ErrorKind::Timeout ? m_last : m_again).push_back(std::move(job));
        m_crew.jobReturned();
        return;
    }
    m_crew.failed(error);
    finish(job.place, tl::unexpected(error));
}

void FileListTask::brokeOff(Session &session, Job job, const Error &error)
{
    job.tries = 0; // from the beginning again
    if (m_crew.isFirst(session) && error.kind == ErrorKind::Timeout) {
        client().abort(); // the others would only wait as long once more
    }
    refused(session, std::move(job), error);
}

void FileListTask::hear(const Session &session, const Reply &reply)
{
    const auto at = m_at.find(&session);
    if (at == m_at.end() || (at->second == m_front && m_crew.isFirst(session))) {
        m_reports.reply(reply);
    } else {
        m_files[at->second].replies.push_back(reply);
    }
}

void FileListTask::finish(std::size_t place, Status outcome)
{
    m_files[place].outcome = std::move(outcome);
    advance();
    m_crew.jobDone();
}

void FileListTask::advance()
{
    while (m_front < m_files.size() && m_files[m_front].outcome) {
        tellReplies(m_files[m_front]);
        tellProgress(); // the last count for sure
        m_reports.done(m_front, *m_files[m_front].outcome);
        ++m_front;
    }
    if (m_front < m_files.size() && m_files[m_front].withFirst) {
        tellReplies(m_files[m_front]); // from now on they are told as they come
    }
    tellProgress();
}

void FileListTask::tellReplies(File &file)
{
    for (const Reply &reply : file.replies) {
        m_reports.reply(reply);
    }
    file.replies.clear();
}

void FileListTask::tellProgress()
{
    if (m_front < m_files.size() && m_files[m_front].begun) {
        m_reports.progress(m_front, m_files[m_front].bytes);
    }
}

/// The end of a list that was not worked off: what was begun has failed.
void FileListTask::settle(const Status &worked)
{
    const Error why = worked ? Error { ErrorKind::Aborted, 0, "Aborted" } : worked.error();
    const bool never = m_at.empty(); // the type was refused, or the line is dead
    for (std::size_t place = m_front; place < m_files.size(); ++place) {
        File &file = m_files[place];
        if (file.outcome) {
            continue;
        }
        const bool alike = never && (place == m_front || client().usable());
        if (file.begun || alike) {
            file.outcome = tl::unexpected(file.lastError.value_or(why));
        }
    }
    for (; m_front < m_files.size(); ++m_front) {
        if (m_files[m_front].outcome) {
            tellReplies(m_files[m_front]);
            m_reports.done(m_front, *m_files[m_front].outcome);
        }
    }
}

template <class Direction> class Directed final : public FileListTask {
public:
    using FileListTask::FileListTask;

private:
    Mover &mover() override { return m_mover; }
    Direction m_mover { *this };
};

} // namespace

Awaitable<void> getFiles(Client &client, std::vector<FilePair> files, Type type,
                         FileReports reports)
{
    Directed<Fetcher> list(client, type, std::move(reports));
    co_await list.run(std::move(files));
}

Awaitable<void> putFiles(Client &client, std::vector<FilePair> files, Type type,
                         FileReports reports)
{
    Directed<Storer> list(client, type, std::move(reports));
    co_await list.run(std::move(files));
}

} // namespace ftp
