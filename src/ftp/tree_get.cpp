#include "ftp/fetcher.h"
#include "ftp/few_notes.h"
#include "ftp/localfile.h"
#include "ftp/oddnames.h"
#include "ftp/tree.h"
#include "ftp/tree_task.h"

#include <algorithm>
#include <cerrno>
#include <deque>
#include <limits>
#include <sys/stat.h>

namespace ftp {
namespace {

/// A folder that was listed: what is in it becomes jobs only when their turn comes, so that the
/// memory needed does not grow with the tree.
struct Listed {
    std::shared_ptr<const FolderPair> folder;
    std::string real; ///< where the server says it is
    TreeListing entries;
    TreeListing::Position file {}, subfolder {}; ///< the next ones, if any
    std::size_t files = 0, subfolders = 0; ///< still to come
    OddNames odd {};
};

OddNames oddNames(const TreeListing &listing)
{
    OddNames odd;
    for (TreeListing::Position at; const auto entry = listing.next(at);) {
        odd.learn(entry->name);
    }
    for (TreeListing::Position at;
         const auto entry = odd.none() ? std::nullopt : listing.next(at);) {
        odd.compare(entry->name);
    }
    return odd;
}

/// The walk through a remote tree: every folder listed brings further folders and files.
class TreeGetter final : public TreeTask {
public:
    using TreeTask::TreeTask;

    Awaitable<Status> run(std::string remote, std::string local)
    {
        Job job;
        job.folder = top(remote, std::move(local));
        m_returned.push_back(std::move(job));
        m_crew.jobAdded();
        Status fetched = co_await m_crew.run();
        co_await judgeLinks();
        if (m_fetcher.entered() || !m_links.empty()) {
            co_await m_crew.returnHome();
        }
        co_return fetched;
    }

    void putBack(Job job) override { m_returned.push_back(std::move(job)); }
    void linkRefused(const Job &job) override
    {
        m_links.push_back(job.remotePath());
        done(job);
    }
    void listed(const Job &job, TreeListing listing) override;

private:
    Mover &mover() override { return m_fetcher; }
    std::optional<Job> take(Session &session) override;
    std::string shownPath(const Job &job) override
    {
        return client().names().decodePath(job.remotePath());
    }
    [[nodiscard]] bool fits(const TreeEntry &entry) const;
    [[nodiscard]] bool isWanted(const Listed &here, const TreeEntry &entry) const;
    void count(const Listed &here, const TreeEntry &entry);
    Job nextFile(Listed &from);
    Awaitable<void> judgeLinks();
    Job nextFolder(Listed &from);
    void checkSpace(const std::string &local);
    void reject(const Listed &here, const TreeEntry &entry);

    Fetcher m_fetcher { *this };
    FewNotes m_notes { [this](const std::string &text) { m_crew.note(text); } };
    std::optional<std::int64_t> m_diskSize; ///< of the local disk; nothing before the first folder
    std::int64_t m_replaced = 0; ///< bytes of local files whose room comes free
    std::deque<Job> m_returned;
    std::vector<std::string> m_links; ///< those that could not be fetched
    std::deque<Listed> m_listed;
    std::size_t m_files = 0; ///< in m_listed, still to come
};

std::optional<Job> TreeGetter::take(Session &session)
{
    if (m_crew.stopped()) {
        return std::nullopt;
    }
    if (auto again = takeAgain(session)) {
        return again;
    }
    if (!m_returned.empty()) {
        Job job = std::move(m_returned.front());
        m_returned.pop_front();
        return job;
    }
    std::erase_if(m_listed, [](const Listed &l) { return l.files == 0 && l.subfolders == 0; });
    // Files in order, folders newest first: so the walk goes into the depth.
    const auto newest = std::find_if(m_listed.rbegin(), m_listed.rend(),
                                     [](const Listed &l) { return l.subfolders > 0; });
    if (newest != m_listed.rend() && m_files < enoughFiles) {
        return nextFolder(*newest);
    }
    const auto oldest = std::find_if(m_listed.begin(), m_listed.end(),
                                     [](const Listed &l) { return l.files > 0; });
    return oldest == m_listed.end() ? std::nullopt : std::optional(nextFile(*oldest));
}

void TreeGetter::listed(const Job &job, TreeListing listing)
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
    if (!m_diskSize) {
        m_diskSize = diskSize(local).value_or(std::numeric_limits<std::int64_t>::max());
    }
    m_listed.push_back({ job.folder, job.real, std::move(listing) });
    Listed &here = m_listed.back();
    here.odd = oddNames(here.entries);
    TreeListing::Position at;
    while (const auto entry = here.entries.next(at)) {
        if (isWanted(here, *entry)) {
            ++(entry->type == 'd' ? here.subfolders : here.files);
            count(here, *entry);
        } else if (!entry->isDot()) {
            reject(here, *entry);
        }
    }
    m_notes.finish();
    m_files += here.files;
    checkSpace(local);
    for (std::size_t i = here.files + here.subfolders; i > 0; --i) {
        m_crew.jobAdded();
    }
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

/// Some servers tell absurd sizes of files that are none, and one of them must not keep all others
/// from a disk that has room for them.
bool TreeGetter::fits(const TreeEntry &entry) const
{
    return entry.type != '-' || entry.size <= *m_diskSize;
}

bool TreeGetter::isWanted(const Listed &here, const TreeEntry &entry) const
{
    return isSafeName(entry.name) && isSafeName(here.odd.text(entry.name)) && fits(entry)
        && (entry.type != 'd' || here.folder->depth < deepestFolder);
}

void TreeGetter::reject(const Listed &here, const TreeEntry &entry)
{
    const std::string shown = here.odd.text(entry.name);
    if (!isSafeName(entry.name) || !isSafeName(shown)) {
        m_notes.add("Unzulässiger Name vom Server, nicht übertragen: " + shown);
        m_crew.failed({ ErrorKind::UnsafeName, 0, "Unsafe name from the server" });
    } else if (!fits(entry)) {
        m_notes.add("Größer als der ganze lokale Datenträger, nicht übertragen: " + shown);
        m_crew.failed({ ErrorKind::LocalFile, 0, "File too large: " + shown });
    } else {
        m_notes.add("Zu tief verschachtelt, nicht übertragen: " + shown);
        m_crew.failed({ ErrorKind::TooDeep, 0, "Folders are nested too deeply" });
    }
}

/// Links to folders are passed over: what they lead to is no part of the tree, or is in it anyway.
/// Others that could not be fetched are told, but do not make a folder fail: web spaces are full of
/// links that lead to where only the server's own programs may go.
Awaitable<void> TreeGetter::judgeLinks()
{
    Session &session = client().session();
    std::vector<std::string> commands;
    for (const std::string &link : m_links) {
        commands.push_back("CWD " + link);
    }
    if (commands.empty() || !session.usable()) {
        co_return;
    }
    const auto muted = session.dialogue().muted();
    auto replies = co_await session.askAll(commands);
    for (std::size_t i = 0; replies && i < m_links.size(); ++i) {
        if (!(*replies)[i].done()) {
            m_notes.add("Verknüpfung ohne Ziel oder ohne Leserecht, nicht übertragen: "
                        + client().names().decodePath(m_links[i]));
        }
    }
    m_notes.finish();
}

/// What a file will need, and what it will set free.
void TreeGetter::count(const Listed &here, const TreeEntry &entry)
{
    if (entry.type == 'd') {
        return;
    }
    m_crew.addTotal(entry.type == 'l' ? 0 : entry.size);
    m_replaced += fileSize(joinPath(here.folder->local, here.odd.text(entry.name))).value_or(0);
}

Job TreeGetter::nextFile(Listed &from)
{
    auto entry = from.entries.next(from.file);
    while (entry->type == 'd' || !isWanted(from, *entry)) {
        entry = from.entries.next(from.file);
    }
    --from.files;
    --m_files;
    Job job;
    job.folder = from.folder;
    job.name = entry->name;
    job.localName = from.odd.text(entry->name);
    job.link = entry->type == 'l';
    const bool sized = !job.link && entry->size != 0 && entry->exact;
    job.size = sized ? entry->size : -1; // not every dialect has sizes
    const ServerKnowledge &server = client().session().knowledge();
    job.time = entry->time - (entry->utc || entry->time == 0 ? 0 : server.zoneOffset.value_or(0));
    // The first file with a time tells how the server's clock goes.
    const bool first
        = entry->clock && !entry->utc && !server.zoneOffset && !server.noModificationTime;
    // The listing tells nothing about what a link leads to. Where asking would cost the look ahead
    // it is not worth that.
    const bool free = server.keepsOrder || !client().session().lookAhead();
    job.unlisted = job.link ? free : first;
    return job;
}

Job TreeGetter::nextFolder(Listed &from)
{
    auto entry = from.entries.next(from.subfolder);
    while (entry->type != 'd' || !isWanted(from, *entry)) {
        entry = from.entries.next(from.subfolder);
    }
    --from.subfolders;
    auto below = std::make_shared<FolderPair>();
    below->remote = joinPath(from.folder->remote, entry->name);
    below->local = joinPath(from.folder->local, from.odd.text(entry->name));
    below->depth = from.folder->depth + 1;
    below->above = from.real;
    Job job;
    job.folder = std::move(below);
    return job;
}

} // namespace

Awaitable<Status> getTree(Client &client, std::string remoteFolder, std::string localFolder,
                          Type type)
{
    TreeGetter getter(client, type);
    co_return co_await getter.run(std::move(remoteFolder), std::move(localFolder));
}

} // namespace ftp
