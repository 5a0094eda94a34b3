#include "ftp/tree_walk.h"

#include "ftp/path.h"
#include "ftp/transfer.h"

#include <string_view>

namespace ftp {
namespace {

/// A folder that is still to be visited.
struct Pending {
    std::string path;
    std::string above; ///< where the server says that its parent is; empty = unknown
    int depth = 0;
};

/// A path for comparing: servers differ in quotes and in the case of letters, and neither makes a
/// place another one.
std::string comparable(std::string_view path)
{
    std::string result;
    for (const char letter : path) {
        if (letter != '"') {
            result
                += letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
        }
    }
    return withoutEndSlashes(result);
}

/// One walk over trees.
class Walk {
public:
    Walk(Session &session, LinksOf of, FolderVisitor visit, WalkFailed failed)
        : m_session(session)
        , m_of(of)
        , m_visit(std::move(visit))
        , m_failed(std::move(failed))
    {
    }

    Awaitable<Status> run(std::vector<std::string> tops, const std::atomic_bool &stop)
    {
        for (auto top = tops.rbegin(); top != tops.rend(); ++top) {
            m_pending.push_back({ std::move(*top), {}, 0 });
        }
        while (!m_pending.empty() && !stop) {
            Pending folder = std::move(m_pending.back());
            m_pending.pop_back();
            Status visited = co_await visit(folder);
            if (!visited && !m_session.usable()) {
                co_return visited;
            }
            if (!visited) {
                m_failed(folder.path, visited.error());
            }
        }
        co_return Status {};
    }

private:
    Awaitable<Status> visit(const Pending &folder)
    {
        std::string above = folder.above;
        if (folder.depth == 0) {
            auto nature = co_await natureOf(m_session, folder.path);
            if (!nature) {
                co_return tl::unexpected(nature.error());
            }
            if (nature->link) {
                co_return Status {};
            }
            above = nature->above;
        }
        auto here = co_await enterFolder(m_session, folder.path);
        if (!here) {
            co_return tl::unexpected(here.error());
        }
        if (leadsElsewhere(above, nameOf(folder.path), *here)) {
            co_return Status {}; // a link that the listing hid
        }
        auto listing = co_await listWithLinks(m_session, m_of);
        if (!listing) {
            co_return tl::unexpected(listing.error());
        }
        addFolders(folder, *here, *listing);
        co_return co_await m_visit(m_session, folder.path, *listing);
    }

    /// What may not be entered is told once for each folder, since a listing can hold any number.
    void addFolders(const Pending &folder, const std::string &here, const TreeListing &listing)
    {
        bool unsafe = false, deep = false;
        TreeListing::Position at;
        while (const auto entry = listing.next(at)) {
            if (entry->type != 'd' || entry->isDot()) {
                continue;
            }
            if (!isSafeName(entry->name)) {
                unsafe = true;
            } else if (folder.depth >= deepestFolder) {
                deep = true;
            } else {
                m_pending.push_back({ joinPath(folder.path, entry->name), here, folder.depth + 1 });
            }
        }
        if (unsafe) {
            m_failed(folder.path, { ErrorKind::UnsafeName, 0, "Unsafe name from the server" });
        }
        if (deep) {
            m_failed(folder.path, { ErrorKind::TooDeep, 0, "Folders are nested too deeply" });
        }
    }

    Session &m_session;
    LinksOf m_of;
    FolderVisitor m_visit;
    WalkFailed m_failed;
    std::vector<Pending> m_pending;
};

} // namespace

Awaitable<Result<std::string>> enterFolder(Session &session, std::string path)
{
    std::vector<std::string> commands { "CWD " + path, "PWD" };
    auto replies = co_await session.askAll(std::move(commands));
    if (!replies) {
        co_return tl::unexpected(replies.error());
    }
    if (!replies->front().done()) {
        co_return refusal(replies->front());
    }
    co_return folderTold(replies->back());
}

std::string folderTold(const Reply &told)
{
    return told.code == 257 ? parsePwd(told.lines.back()).value_or(std::string()) : std::string();
}

bool leadsElsewhere(const std::string &above, const std::string &name, const std::string &here)
{
    const bool telling = above.starts_with('/') && here.starts_with('/');
    return telling && comparable(joinPath(above, name)) != comparable(here);
}

Awaitable<Result<FolderNature>> natureOf(Session &session, std::string path)
{
    const std::string name = nameOf(path);
    if (name.empty()) {
        co_return FolderNature {}; // the root
    }
    auto above = co_await enterFolder(session, parentOf(path));
    if (!above) {
        co_return session.usable() ? Result<FolderNature>(FolderNature { false, false, {} })
                                   : Result<FolderNature>(tl::unexpected(above.error()));
    }
    FolderNature nature { false, true, std::move(*above) };
    ListingParser::Take take = [&](const Entry &entry) {
        nature.link = nature.link || (entry.type == 'l' && entry.name == name);
    };
    auto listed = co_await readPlainListing(session, std::move(take));
    if (!listed && (!session.usable() || !isFinalRefusal(listed.error()))) {
        co_return tl::unexpected(listed.error());
    }
    nature.known = listed && !listed->isStrange();
    co_return nature;
}

Awaitable<Result<TreeListing>> listWithLinks(Session &session, LinksOf of)
{
    TreeListing listing;
    ListingParser::Take take = [&](const Entry &entry) { listing.add(entry); };
    auto listed = co_await readListing(session, std::move(take));
    if (!listed) {
        co_return tl::unexpected(listed.error());
    }
    if (session.features().mlstUnixMode() && (of == LinksOf::Everything || listing.hasFolders())) {
        TreeListing links;
        ListingParser::Take takeLink = [&](const Entry &entry) {
            if (entry.type == 'l') {
                links.add(entry);
            }
        };
        auto plain = co_await readPlainListing(session, std::move(takeLink));
        if (!plain) { // without it a link would be taken for a folder
            co_return tl::unexpected(plain.error());
        }
        if (plain->isStrange()) {
            co_return fail(ErrorKind::Protocol, "The listing could not be understood");
        }
        listing.markLinks(links);
    }
    co_return listing;
}

Awaitable<Status> walkFolders(Client &client, std::vector<std::string> tops, LinksOf of,
                              FolderVisitor visit, WalkFailed failed, const std::atomic_bool &stop)
{
    Session &session = client.session();
    const auto muted = session.dialogue().muted();
    Walk walk(session, of, std::move(visit), std::move(failed));
    Status walked = co_await walk.run(std::move(tops), stop);
    if (session.usable()) {
        auto back = co_await session.ask("CWD " + session.folder());
        ignoreError(back, "the next command would tell");
    }
    co_return walked;
}

} // namespace ftp
