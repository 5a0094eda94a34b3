#include "ftp/fetcher.h"
#include "ftp/localfile.h"
#include "ftp/tree.h"
#include "ftp/tree_task.h"

#include <cerrno>
#include <deque>
#include <sys/stat.h>

namespace ftp {
namespace {

/// The walk through a remote tree: every folder listed brings further folders and files.
class TreeGetter final : public TreeTask {
public:
    using TreeTask::TreeTask;

    Awaitable<Status> run(std::string remote, std::string local)
    {
        Job job;
        job.folder = top(remote, std::move(local));
        add(std::move(job));
        Status fetched = co_await m_crew.run();
        if (m_fetcher.entered()) {
            co_await m_crew.returnHome();
        }
        co_return fetched;
    }

    void putBack(Job job) override { queueOf(job).push_front(std::move(job)); }
    void listed(Session &session, const Job &job, const Listing &listing) override;

private:
    Mover &mover() override { return m_fetcher; }
    std::optional<Job> take(Session &session) override;
    std::string shownPath(const Job &job) override
    {
        return client().names().decodePath(job.remotePath());
    }
    void add(Job job)
    {
        queueOf(job).push_back(std::move(job));
        m_crew.jobAdded();
    }
    std::deque<Job> &queueOf(const Job &job) { return job.isFolder() ? m_folders : m_files; }
    void takeEntry(Session &session, const std::shared_ptr<const FolderPair> &folder,
                   const Entry &entry);
    void addFolder(const FolderPair &parent, const std::string &name, const std::string &shown);
    void checkSpace(const std::string &local);
    void reject(const std::string &note, const char *text)
    {
        m_crew.note(note);
        m_crew.failed({ ErrorKind::UnsafeName, 0, text });
    }

    Fetcher m_fetcher { *this };
    std::int64_t m_replaced = 0; ///< bytes of local files whose room comes free
    std::deque<Job> m_files, m_folders;
};

std::optional<Job> TreeGetter::take(Session & /*session*/)
{
    const bool folderFirst
        = m_files.empty() || (!m_folders.empty() && m_files.size() < enoughFiles);
    auto &queue = folderFirst ? m_folders : m_files;
    if (m_crew.stopped() || queue.empty()) {
        return std::nullopt;
    }
    // Files in order, folders newest first: so the walk goes into the depth.
    Job job = std::move(folderFirst ? queue.back() : queue.front());
    if (folderFirst) {
        queue.pop_back();
    } else {
        queue.pop_front();
    }
    return job;
}

void TreeGetter::listed(Session &session, const Job &job, const Listing &listing)
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
    checkSpace(local);
}

/// Compares what the listings told so far with the room on the disk, before files fill it up.
void TreeGetter::checkSpace(const std::string &local)
{
    constexpr std::int64_t megabyte = 1024 * 1024;
    const std::int64_t missing = m_crew.missing() - m_replaced;
    const auto free = freeSpace(local);
    if (!free || missing <= *free || m_crew.stopped()) {
        return;
    }
    m_crew.note("Der Platz auf dem lokalen Datenträger reicht nicht: Es fehlen noch "
                + std::to_string(missing / megabyte + 1) + " MB, frei sind nur "
                + std::to_string(*free / megabyte) + " MB.");
    m_crew.failed({ ErrorKind::LocalDiskFull, 0, "Not enough space left on the local disk" });
}

void TreeGetter::addFolder(const FolderPair &parent, const std::string &name,
                           const std::string &shown)
{
    auto below = std::make_shared<FolderPair>();
    below->remote = joinPath(parent.remote, name);
    below->local = joinPath(parent.local, shown);
    below->depth = parent.depth + 1;
    Job job;
    job.folder = std::move(below);
    add(std::move(job));
}

void TreeGetter::takeEntry(Session &session, const std::shared_ptr<const FolderPair> &folder,
                           const Entry &entry)
{
    if (entry.name == "." || entry.name == "..") {
        return;
    }
    const std::string shown = client().names().decode(folder->remote, entry.name);
    if (!isSafeName(entry.name) || !isSafeName(shown)) {
        reject("Unzulässiger Name vom Server, nicht übertragen: " + shown,
               "Unsafe name from the server");
        return;
    }
    if (entry.type == 'd') {
        if (folder->depth >= deepest) {
            reject("Zu tief verschachtelt, nicht übertragen: " + shown,
                   "Folders are nested too deeply");
        } else {
            addFolder(*folder, entry.name, shown);
        }
        return;
    }
    Job job;
    job.folder = folder;
    job.name = entry.name;
    job.localName = shown;
    job.link = entry.type == 'l';
    job.size = job.link ? -1 : entry.size;
    if (entry.time) {
        const std::int64_t zone = entry.utc ? 0 : session.knowledge().zoneOffset.value_or(0);
        job.time = toEpoch(*entry.time) - zone;
    }
    m_crew.addTotal(job.link ? 0 : entry.size);
    m_replaced += fileSize(job.localPath()).value_or(0);
    add(std::move(job));
}

} // namespace

Awaitable<Status> getTree(Client &client, std::string remoteFolder, std::string localFolder,
                          Type type)
{
    TreeGetter getter(client, type);
    co_return co_await getter.run(std::move(remoteFolder), std::move(localFolder));
}

} // namespace ftp
