#include "ftp/oddnames.h"
#include "ftp/storer.h"
#include "ftp/tree.h"
#include "ftp/tree_task.h"

#include <algorithm>
#include <asio/post.hpp>
#include <asio/use_awaitable.hpp>
#include <cerrno>
#include <deque>
#include <dirent.h>
#include <string_view>
#include <sys/stat.h>

namespace ftp {
namespace {

/// MKD commands on their way at a time.
constexpr std::size_t burst = 64;

/// The names in a folder, in order, in little memory: a folder may hold hundreds of thousands.
class Names {
public:
    void add(std::string_view name)
    {
        m_starts.push_back(m_text.size());
        m_text.append(name).push_back('\0');
    }
    void sort()
    {
        std::sort(m_starts.begin(), m_starts.end(),
                  [this](auto a, auto b) { return at(a) < at(b); });
    }
    [[nodiscard]] std::size_t size() const { return m_starts.size(); }
    /// Those that are no UTF-8.
    [[nodiscard]] OddNames odd() const
    {
        OddNames odd;
        for (const std::size_t start : m_starts) {
            odd.learn(at(start));
        }
        for (std::size_t i = 0; i < size() && !odd.none(); ++i) {
            odd.compare(at(m_starts[i]));
        }
        return odd;
    }
    [[nodiscard]] std::string operator[](std::size_t index) const
    {
        return std::string(at(m_starts[index]));
    }

private:
    [[nodiscard]] std::string_view at(std::size_t start) const { return m_text.data() + start; }
    std::string m_text;
    std::vector<std::size_t> m_starts;
};

/// Names in a local folder, without "." and "..".
Result<Names> namesIn(const std::string &folder)
{
    DIR *directory = ::opendir(folder.c_str());
    if (directory == nullptr) {
        return localError(errno, folder);
    }
    Names names;
    while (const dirent *entry = ::readdir(directory)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            names.add(name);
        }
    }
    ::closedir(directory);
    names.sort();
    return names;
}

/// How the names of a local folder are called on the server: as if each were sent alone.
class RemoteNames {
public:
    RemoteNames() = default;
    RemoteNames(NameBook &book, const FolderPair &folder, const Names &names)
        : m_book(&book)
        , m_folder(book.decodePath(folder.remote))
        , m_odd(names.odd())
    {
    }
    /// Raw bytes of a name.
    [[nodiscard]] std::string of(const std::string &name) const
    {
        return m_book->encodeName(m_folder, m_odd.text(name));
    }

private:
    NameBook *m_book = nullptr;
    std::string m_folder; ///< UTF-8
    OddNames m_odd;
};

/// A local tree: surveyed first, then its folders are made, then its files are sent.
class TreePutter final : public TreeTask {
public:
    using TreeTask::TreeTask;

    Awaitable<Status> run(std::string local, std::string remote);

    void putBack(Job job) override { m_jobs.push_front(std::move(job)); }

private:
    Mover &mover() override { return m_storer; }
    std::optional<Job> take(Session &session) override;
    std::string shownPath(const Job &job) override { return job.localPath(); }
    Awaitable<Status> survey(std::shared_ptr<const FolderPair> folder);
    Awaitable<Status> makeFolders();
    Awaitable<Status> makeBurst(std::size_t begin, std::size_t end);
    Awaitable<Status> checkFolder(std::string remote, Reply refused);
    void fill();
    bool nextFolder();
    void addJob(const std::string &name);

    Storer m_storer { *this };
    std::deque<Job> m_jobs;
    std::deque<std::shared_ptr<const FolderPair>> m_folders; ///< in order, parents first
    std::size_t m_filled = 0; ///< folders whose names are or were in m_names
    Names m_names; ///< of the folder whose files become jobs
    RemoteNames m_remoteNames; ///< of that folder
    std::size_t m_nextName = 0;
};

Awaitable<Status> TreePutter::run(std::string local, std::string remote)
{
    m_crew.announce(); // looking around and making folders takes its time, too
    Status ready = co_await survey(top(remote, std::move(local)));
    if (ready) {
        ready = co_await makeFolders();
    }
    if (!ready) {
        co_return ready;
    }
    fill();
    co_return co_await m_crew.run();
}

/// Walks the local tree: finds the folders, and the bytes that there are to send.
Awaitable<Status> TreePutter::survey(std::shared_ptr<const FolderPair> folder)
{
    m_folders.push_back(folder);
    auto names = namesIn(folder->local);
    if (!names) {
        leaveOut(folder->local, names.error());
        co_return folder->depth == 0 ? Status(tl::unexpected(names.error())) : Status {};
    }
    const RemoteNames remote(client().names(), *folder, *names);
    for (std::size_t i = 0; i < names->size(); ++i) {
        const std::string name = (*names)[i];
        const std::string path = joinPath(folder->local, name);
        struct stat entry { };
        if (i % 1000 == 999) { // others get their turn
            co_await asio::post(client().session().executor(), asio::use_awaitable);
        }
        if (::lstat(path.c_str(), &entry) != 0) {
            continue; // vanished
        }
        if (S_ISDIR(entry.st_mode)) {
            if (folder->depth >= deepestFolder) {
                leaveOut(path, { ErrorKind::TooDeep, 0, "Folders are nested too deeply" });
                continue;
            }
            auto below = std::make_shared<FolderPair>();
            below->local = path;
            below->remote = joinPath(folder->remote, remote.of(name));
            below->depth = folder->depth + 1;
            if (const auto sendable = encodeCommand("MKD " + below->remote); !sendable) {
                leaveOut(path, sendable.error());
                continue;
            }
            Status walked = co_await survey(std::move(below));
            ignoreError(walked, "told where it happened");
        } else if (::stat(path.c_str(), &entry) == 0 && S_ISREG(entry.st_mode)) {
            m_crew.addTotal(entry.st_size);
        }
    }
    co_return Status {};
}

Awaitable<Status> TreePutter::checkFolder(std::string remote, Reply refused)
{
    auto exists = co_await client().session().folderExists(remote);
    if (!exists) {
        co_return tl::unexpected(exists.error());
    }
    if (!*exists) {
        leaveOut(remote, refusal(refused).value());
    }
    co_return Status {};
}

/// All folders before the first file, many commands at a time: parents come first, and a server
/// works in order.
Awaitable<Status> TreePutter::makeFolders()
{
    Status result;
    for (std::size_t at = 0; at < m_folders.size() && result;) {
        const std::size_t end = std::min(at + burst, m_folders.size());
        result = co_await makeBurst(at, end);
        if (result) {
            m_crew.progressed();
            at = end;
        } else {
            result = co_await m_crew.recover(result.error());
        }
    }
    co_return result;
}

Awaitable<Status> TreePutter::makeBurst(std::size_t begin, std::size_t end)
{
    std::vector<std::string> commands;
    for (std::size_t i = begin; i < end; ++i) {
        commands.push_back("MKD " + m_folders[i]->remote);
    }
    Session &session = client().session();
    const auto muted = session.dialogue().muted(); // "exists" is no news
    auto replies = co_await session.askAll(std::move(commands));
    if (!replies) {
        co_return tl::unexpected(replies.error());
    }
    Status result;
    for (std::size_t i = begin; i < end && result; ++i) {
        if (!(*replies)[i - begin].done()) {
            result = co_await checkFolder(m_folders[i]->remote, (*replies)[i - begin]);
        }
    }
    co_return result;
}

/// Turns the next files into jobs, as many as are useful at a time.
void TreePutter::fill()
{
    while (m_jobs.size() < enoughFiles && !m_crew.stopped()) {
        if (m_nextName < m_names.size()) {
            addJob(m_names[m_nextName++]);
        } else if (!nextFolder()) {
            return;
        }
    }
}

/// @return false when there is none
bool TreePutter::nextFolder()
{
    if (m_filled == m_folders.size()) {
        return false;
    }
    m_names = namesIn(m_folders[m_filled++]->local).value_or(Names()); // told by the survey
    m_remoteNames = RemoteNames(client().names(), *m_folders[m_filled - 1], m_names);
    m_nextName = 0;
    return true;
}

void TreePutter::addJob(const std::string &name)
{
    Job job;
    job.folder = m_folders[m_filled - 1];
    job.localName = name;
    job.name = m_remoteNames.of(name);
    struct stat entry { };
    if (::stat(job.localPath().c_str(), &entry) == 0 && S_ISREG(entry.st_mode)) {
        m_jobs.push_back(std::move(job));
        m_crew.jobAdded();
    }
}

std::optional<Job> TreePutter::take(Session &session)
{
    if (m_jobs.size() < enoughFiles / 2) {
        fill();
    }
    if (m_crew.stopped()) {
        return std::nullopt;
    }
    if (auto again = takeAgain(session)) {
        return again;
    }
    if (m_jobs.empty()) {
        return std::nullopt;
    }
    Job job = std::move(m_jobs.front());
    m_jobs.pop_front();
    return job;
}

} // namespace

Awaitable<Status> putTree(Client &client, std::string localFolder, std::string remoteFolder,
                          Type type)
{
    TreePutter putter(client, type);
    co_return co_await putter.run(std::move(localFolder), std::move(remoteFolder));
}

} // namespace ftp
