#include "ftp/command_stream.h"
#include "ftp/crew.h"
#include "ftp/path.h"
#include "ftp/tree.h"
#include "ftp/tree_walk.h"

#include <vector>

namespace ftp {
namespace {

const std::string deletion = "DELE ";

/// A folder on its way out. It goes when nothing is left to do in it.
struct Doomed {
    std::shared_ptr<Doomed> parent;
    std::string path; ///< raw bytes
    int depth = 0;
    int pending = 1; ///< its own listing and files, and its subfolders
    int tries = 0;
    bool walked = false; ///< its subfolders are known; only its files are still to go
    bool kept = false; ///< turned out to be a link inside the tree, or is gone already
    bool leaving = false; ///< its RMD went out; when the line broke then, it may be gone
    std::string real; ///< where the server says it is; empty = unknown
};
using DoomedPointer = std::shared_ptr<Doomed>;

/// Intended: links inside a tree are neither followed nor deleted.
bool isDoomed(const TreeEntry &entry)
{
    return !entry.isDot() && entry.type != 'l' && isSafeName(entry.name);
}

class TreeRemover {
public:
    explicit TreeRemover(Client &client)
        : m_crew(client, [this](Session &session) { return work(session); })
    {
    }

    Awaitable<Status> run(std::string folder)
    {
        auto top = std::make_shared<Doomed>();
        top->path = m_crew.client().absolute(folder);
        // Intended: a path that ends with "/" is emptied but not removed.
        m_keepTop = folder.ends_with('/');
        m_top = top;
        add(top);
        Status removed = co_await m_crew.run();
        co_await m_crew.returnHome();
        co_return removed;
    }

private:
    Awaitable<Status> work(Session &session);
    Awaitable<Status> empty(Session &session, DoomedPointer &folder);
    Awaitable<Status> removeFiles(Session &session, DoomedPointer folder,
                                  const TreeListing &listing);
    Awaitable<Status> leave(Session &session, DoomedPointer &folder);
    Awaitable<Result<bool>> enter(Session &session, DoomedPointer folder);
    void addFolders(const TreeListing &listing, const DoomedPointer &folder);
    void addFolder(std::string path, const DoomedPointer &parent);
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
    bool m_linkGone = false; ///< the top was a link and was removed as such
};

/// Enters a folder. @return whether that led into another one, so that it is a link
Awaitable<Result<bool>> TreeRemover::enter(Session &session, DoomedPointer folder)
{
    std::string above = folder->parent ? folder->parent->real : std::string();
    if (folder == m_top) {
        auto nature = co_await natureOf(session, folder->path);
        if (!nature) {
            co_return tl::unexpected(nature.error());
        }
        if (nature->link) {
            co_return true;
        }
        if (!nature->known && !m_keepTop) { // no server removes a folder as a file
            auto removed = co_await session.ask(deletion + folder->path);
            if (!removed) {
                co_return tl::unexpected(removed.error());
            }
            if (removed->done()) {
                m_linkGone = true;
                co_return true;
            }
        }
        above = nature->above;
    }
    auto here = co_await enterFolder(session, folder->path);
    if (!here) {
        co_return tl::unexpected(here.error());
    }
    folder->real = *here;
    co_return leadsElsewhere(above, nameOf(folder->path), *here);
}

/// Removes the link itself and nothing that it leads to.
Awaitable<Status> TreeRemover::removeLink(Session &session, const DoomedPointer &link)
{
    if (m_keepTop || m_linkGone) {
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

Awaitable<Status> TreeRemover::removeFiles(Session &session, DoomedPointer folder,
                                           const TreeListing &listing)
{
    TreeListing::Position at;
    CommandStream::Source source = [&]() -> std::optional<std::string> {
        auto entry = listing.next(at);
        while (entry && (entry->type == 'd' || !isDoomed(*entry))) {
            entry = listing.next(at);
        }
        return entry ? std::optional(deletion + joinPath(folder->path, entry->name)) : std::nullopt;
    };
    CommandStream::Answered answered
        = [this](const CommandStream::Command &command, const Status &done) {
              if (!done) {
                  refuse(command.text.substr(deletion.size()), done.error());
              }
          };
    CommandStream stream(session, std::move(source), std::move(answered));
    stream.stopped = [this] { return m_crew.stopped(); };
    // When the line breaks, the folder is listed once more, and that tells what is still there.
    co_return co_await stream.run();
}

/// Adds the folders of a listing as jobs, when it is the first one of its folder. What has to stay
/// is told once, since a listing can hold any number.
void TreeRemover::addFolders(const TreeListing &listing, const DoomedPointer &folder)
{
    bool unsafe = false, deep = false;
    TreeListing::Position at;
    while (const auto entry = listing.next(at)) {
        if (!entry->isDot() && entry->type != 'l' && !isSafeName(entry->name)) {
            unsafe = true;
        } else if (entry->type != 'd' || !isDoomed(*entry) || folder->walked) {
            continue;
        } else if (folder->depth >= deepestFolder) {
            deep = true;
        } else {
            addFolder(joinPath(folder->path, entry->name), folder);
        }
    }
    folder->walked = true;
    if (unsafe) {
        refuse(folder->path, { ErrorKind::UnsafeName, 0, "Unsafe name from the server" });
    }
    if (deep) {
        refuse(folder->path, { ErrorKind::TooDeep, 0, "Folders are nested too deeply" });
    }
}

void TreeRemover::addFolder(std::string path, const DoomedPointer &parent)
{
    ++parent->pending;
    auto below = std::make_shared<Doomed>();
    below->parent = parent;
    below->path = std::move(path);
    below->depth = parent->depth + 1;
    add(std::move(below));
}

/// Empties and leaves one folder. @param folder  afterwards the one whose turn it was, an ancestor
/// perhaps: what broke off goes on there
Awaitable<Status> TreeRemover::empty(Session &session, DoomedPointer &folder)
{
    auto link = co_await enter(session, folder);
    if (link && *link && folder == m_top) {
        co_return co_await removeLink(session, folder);
    }
    if (link && *link) {
        folder->kept = true;
        co_return co_await leave(session, folder);
    }
    Result<TreeListing> listing;
    if (link) {
        listing = co_await listWithLinks(session, LinksOf::Folders);
    } else {
        listing = tl::unexpected(link.error());
    }
    if (!listing) {
        if (session.usable()) {
            if (folder->leaving) {
                folder->kept = true; // it went, and then the line did
            } else {
                refuse(folder->path, listing.error());
            }
            co_return co_await leave(session, folder);
        }
        co_return tl::unexpected(listing.error());
    }
    addFolders(*listing, folder);
    Status removed = co_await removeFiles(session, folder, *listing);
    if (!removed) {
        co_return removed;
    }
    co_return co_await leave(session, folder);
}

/// One thing less to do in a folder; the last one out removes it, and then its parent's turn may
/// have come.
Awaitable<Status> TreeRemover::leave(Session &session, DoomedPointer &folder)
{
    while (folder && --folder->pending == 0) {
        if (m_crew.stopped() || (folder == m_top && m_keepTop)) {
            break;
        }
        if (folder->kept) {
            folder = folder->parent;
            continue;
        }
        folder->leaving = true;
        // Some servers do not remove a folder that a session stands in.
        const std::vector<std::string> commands { "CWD " + parentOf(folder->path),
                                                  "RMD " + folder->path };
        auto replies = co_await session.askAll(commands);
        if (!replies) {
            folder->pending = 1;
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
    const auto muted = session.dialogue().muted();
    for (;;) {
        if (m_jobs.empty() || m_crew.stopped()) {
            const bool more = co_await m_crew.wait(session);
            if (!more) {
                break;
            }
            if (!session.usable()) {
                co_return fail(ErrorKind::ConnectionClosed, "Connection closed by server");
            }
            continue;
        }
        DoomedPointer folder = std::move(m_jobs.back());
        m_jobs.pop_back();
        Status emptied = co_await empty(session, folder);
        if (!emptied) {
            if (++folder->tries < mostTries && emptied.error().kind != ErrorKind::Aborted) {
                m_jobs.push_back(folder);
                m_crew.jobReturned();
            } else {
                refuse(folder->path, emptied.error());
                m_crew.jobDone();
            }
            session.markBroken();
            co_return emptied;
        }
        m_crew.progressed();
        m_crew.jobDone();
    }
    co_return Status {};
}

} // namespace

Awaitable<Status> removeTree(Client &client, std::string folder)
{
    TreeRemover remover(client);
    co_return co_await remover.run(std::move(folder));
}

Awaitable<Status> removeFiles(Client &client, std::vector<std::string> paths, FileDone done)
{
    CommandStream::Source source = [&, next = paths.begin()]() mutable {
        return next == paths.end() ? std::nullopt
                                   : std::optional(deletion + client.encode(*next++));
    };
    CommandStream::Answered answered
        = [&done](const CommandStream::Command &command, const Status &removed) {
              done(command.index, removed);
          };
    CommandStream stream(client.session(), std::move(source), std::move(answered));
    Status broken = co_await stream.run();
    for (const CommandStream::Command &command : stream.unanswered()) {
        done(command.index, command.sendable ? broken : command.sendable);
    }
    co_return broken;
}

} // namespace ftp
