#include "ftp/crew.h"
#include "ftp/path.h"
#include "ftp/tree.h"

#include <algorithm>
#include <ctime>
#include <set>
#include <string_view>
#include <vector>

namespace ftp {
namespace {

constexpr int deepest = 64;
constexpr int mostTries = 3;
/// Commands on their way at a time.
constexpr std::size_t window = 128;

/// A folder on its way out. It goes when nothing is left to do in it.
struct Doomed {
    std::shared_ptr<Doomed> parent;
    std::string path; ///< raw bytes
    int depth = 0;
    int pending = 1; ///< its own listing and files, and its subfolders
    int tries = 0;
    bool walked = false; ///< its subfolders are known; only its files are still to go
};
using DoomedPointer = std::shared_ptr<Doomed>;

bool hasFolders(const Listing &listing)
{
    return std::any_of(listing.entries.begin(), listing.entries.end(), [](const Entry &entry) {
        return entry.type == 'd' && entry.name != "." && entry.name != "..";
    });
}

/// Some servers follow links in machine listings, and a link to a folder looks like a folder there.
/// What LIST shows as a link is one.
void markLinks(Listing &listing, const Listing &plain)
{
    std::set<std::string_view> links;
    for (const Entry &entry : plain.entries) {
        if (entry.type == 'l') {
            links.insert(entry.name);
        }
    }
    for (Entry &entry : listing.entries) {
        if (links.contains(entry.name)) {
            entry.type = 'l';
        }
    }
}

class TreeRemover {
public:
    explicit TreeRemover(Client &client)
        : m_crew(client, [this](Session &session) { return work(session); })
    {
    }

    Awaitable<Status> run(std::string folder)
    {
        Client &client = m_crew.client();
        auto top = std::make_shared<Doomed>();
        top->path = client.encode(folder);
        // Intended: a path that ends with "/" is emptied but not removed.
        m_keepTop = folder.ends_with('/');
        while (top->path.size() > 1 && top->path.back() == '/') {
            top->path.pop_back();
        }
        if (!top->path.starts_with('/')) {
            top->path = joinPath(client.session().folder(), top->path);
        }
        m_top = top;
        add(top);
        Status removed = co_await m_crew.run();
        co_await m_crew.returnHome();
        co_return removed;
    }

private:
    Awaitable<Status> work(Session &session);
    Awaitable<Status> empty(Session &session, DoomedPointer folder);
    Awaitable<Status> removeFiles(Session &session, std::vector<std::string> files);
    Awaitable<Status> leave(Session &session, DoomedPointer folder);
    Awaitable<Result<Listing>> listOf(Session &session, const DoomedPointer &folder);
    Awaitable<Result<bool>> isLink(Session &session, const DoomedPointer &folder);
    Awaitable<Status> removeLink(Session &session, const DoomedPointer &link);

    void add(DoomedPointer folder)
    {
        m_jobs.push_back(std::move(folder));
        m_crew.jobAdded();
    }
    void refuse(const std::string &path, const Error &error)
    {
        m_crew.note(m_crew.client().names().decodePath(path) + ": " + error.text);
        m_crew.failed(error);
    }

    Crew m_crew;
    std::vector<DoomedPointer> m_jobs;
    DoomedPointer m_top;
    bool m_keepTop = false;
};

Awaitable<Result<Listing>> TreeRemover::listOf(Session &session, const DoomedPointer &folder)
{
    auto entered = co_await session.ask("CWD " + folder->path);
    if (!entered) {
        co_return tl::unexpected(entered.error());
    }
    if (!entered->done()) {
        co_return refusal(*entered);
    }
    auto listing = co_await listCurrentFolder(session);
    if (listing && session.features().mlstUnixMode() && hasFolders(*listing)) {
        auto plain = co_await listCurrentFolderPlainly(session);
        if (plain) {
            markLinks(*listing, *plain);
        } else if (!session.usable()) {
            co_return tl::unexpected(plain.error());
        }
    }
    co_return listing;
}

/// Whether what shall be removed is no folder but a link to one.
Awaitable<Result<bool>> TreeRemover::isLink(Session &session, const DoomedPointer &folder)
{
    const std::string name = folder->path.substr(folder->path.rfind('/') + 1);
    auto entered = co_await session.ask("CWD " + parentOf(folder->path));
    if (!entered) {
        co_return tl::unexpected(entered.error());
    }
    if (!entered->done() || name.empty()) {
        co_return false;
    }
    auto listing = co_await listCurrentFolderPlainly(session);
    if (!listing) {
        co_return session.usable() ? Result<bool>(false)
                                   : Result<bool>(tl::unexpected(listing.error()));
    }
    co_return std::any_of(
        listing->entries.begin(), listing->entries.end(),
        [&name](const Entry &entry) { return entry.type == 'l' && entry.name == name; });
}

/// Removes the link itself and nothing that it leads to.
Awaitable<Status> TreeRemover::removeLink(Session &session, const DoomedPointer &link)
{
    if (m_keepTop) {
        co_return Status {};
    }
    for (const char *verb : { "DELE ", "RMD " }) {
        auto reply = co_await session.ask(verb + link->path);
        if (!reply) {
            co_return tl::unexpected(reply.error());
        }
        if (reply->done()) {
            co_return Status {};
        }
        if (*verb == 'R') {
            refuse(link->path, refusal(*reply).value());
        }
    }
    co_return Status {};
}

/// A stream of deletes: the next commands go out while the replies to the earlier ones come in.
Awaitable<Status> TreeRemover::removeFiles(Session &session, std::vector<std::string> files)
{
    const std::size_t ahead = session.pipelining() ? window : 1;
    std::vector<std::string> sent;
    std::size_t next = 0;
    std::size_t answered = 0;
    while (answered < sent.size() || next < files.size()) {
        bool queued = false;
        while (next < files.size() && sent.size() - answered < ahead && !m_crew.stopped()) {
            Status possible = session.line().queue("DELE " + files[next]);
            if (possible) {
                sent.push_back(std::move(files[next]));
                queued = true;
            } else {
                refuse(files[next], possible.error());
            }
            ++next;
        }
        if (queued) {
            Status flushed = co_await session.line().flush();
            if (!flushed) {
                co_return flushed;
            }
        }
        if (answered == sent.size()) {
            break; // stopped
        }
        // Half a window of answers before the next packet keeps packets big.
        const std::size_t until
            = next < files.size() ? std::min(sent.size(), answered + (ahead + 1) / 2) : sent.size();
        for (; answered < until; ++answered) {
            auto reply = co_await session.dialogue().reply();
            if (!reply) {
                co_return tl::unexpected(reply.error());
            }
            if (!reply->done()) {
                refuse(sent[answered], refusal(*reply).value());
            }
        }
    }
    co_return Status {};
}

Awaitable<Status> TreeRemover::empty(Session &session, DoomedPointer folder)
{
    if (folder == m_top) {
        auto link = co_await isLink(session, folder);
        if (!link) {
            co_return tl::unexpected(link.error());
        }
        if (*link) {
            co_return co_await removeLink(session, folder);
        }
    }
    auto listing = co_await listOf(session, folder);
    if (!listing) {
        if (session.usable()) {
            refuse(folder->path, listing.error());
            co_return co_await leave(session, folder);
        }
        co_return tl::unexpected(listing.error());
    }
    std::vector<std::string> files;
    for (const Entry &entry : listing->entries) {
        // Intended: links inside a tree are neither followed nor deleted.
        if (entry.name == "." || entry.name == ".." || entry.type == 'l') {
            continue;
        }
        if (!isSafeName(entry.name)) {
            refuse(folder->path, { ErrorKind::UnsafeName, 0, "Unsafe name from the server" });
            continue;
        }
        const std::string path = joinPath(folder->path, entry.name);
        if (entry.type != 'd') {
            files.push_back(path);
        } else if (folder->walked) {
            continue;
        } else if (folder->depth >= deepest) {
            refuse(path, { ErrorKind::UnsafeName, 0, "Folders are nested too deeply" });
        } else {
            ++folder->pending;
            auto below = std::make_shared<Doomed>();
            below->parent = folder;
            below->path = path;
            below->depth = folder->depth + 1;
            add(std::move(below));
        }
    }
    folder->walked = true;
    listing = Listing {};
    Status removed = co_await removeFiles(session, std::move(files));
    if (!removed) {
        co_return removed;
    }
    co_return co_await leave(session, folder);
}

/// One thing less to do in a folder; the last one out removes it, and then its parent's turn may
/// have come.
Awaitable<Status> TreeRemover::leave(Session &session, DoomedPointer folder)
{
    while (folder && --folder->pending == 0) {
        if (m_crew.stopped() || (folder == m_top && m_keepTop)) {
            break;
        }
        // Some servers do not remove a folder that a session stands in.
        const std::vector<std::string> commands { "CWD " + parentOf(folder->path),
                                                  "RMD " + folder->path };
        auto replies = co_await session.askAll(commands);
        if (!replies) {
            co_return tl::unexpected(replies.error());
        }
        if (!replies->back().done()) {
            refuse(folder->path, refusal(replies->back()).value());
        }
        folder = folder->parent;
    }
    co_return Status {};
}

Awaitable<Status> TreeRemover::work(Session &session)
{
    session.dialogue().setMuted(true);
    for (;;) {
        if (m_jobs.empty() || m_crew.stopped()) {
            const bool more = co_await m_crew.wait();
            if (!more) {
                break;
            }
            continue;
        }
        const DoomedPointer folder = std::move(m_jobs.back());
        m_jobs.pop_back();
        Status emptied = co_await empty(session, folder);
        if (!emptied) {
            if (++folder->tries < mostTries && emptied.error().kind != ErrorKind::Aborted) {
                m_jobs.push_back(folder);
            } else {
                refuse(folder->path, emptied.error());
                m_crew.jobDone();
            }
            session.dialogue().setMuted(false);
            session.markBroken();
            co_return emptied;
        }
        m_crew.jobDone();
    }
    session.dialogue().setMuted(false);
    co_return Status {};
}

} // namespace

Awaitable<Status> removeTree(Client &client, std::string folder)
{
    TreeRemover remover(client);
    co_return co_await remover.run(std::move(folder));
}

} // namespace ftp
