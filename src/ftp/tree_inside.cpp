#include "ftp/command_stream.h"
#include "ftp/path.h"
#include "ftp/tree.h"
#include "ftp/tree_walk.h"

#include <optional>

namespace ftp {
namespace {

bool isDotEntry(const Entry &entry) { return entry.name == "." || entry.name == ".."; }

/// The absolute path of a folder as raw bytes, without a separator at its end.
std::string rawFolder(Client &client, const std::string &folder)
{
    std::string raw = client.encode(folder);
    while (raw.size() > 1 && raw.back() == '/') {
        raw.pop_back();
    }
    return raw.starts_with('/') ? raw : joinPath(client.session().folder(), raw);
}

void count(const Listing &listing, FolderContent &content)
{
    for (const Entry &entry : listing.entries) {
        if (!isDotEntry(entry)) {
            ++(entry.type == 'd' ? content.folders : content.files);
        }
    }
}

/// Changes the modes of a tree and keeps what was refused.
class ModeChange {
public:
    ModeChange(Client &client, InsideModes modes)
        : m_client(client)
        , m_modes(modes)
    {
    }

    Awaitable<Status> visit(Session &session, std::string path, const Listing &listing)
    {
        std::vector<std::string> commands;
        std::vector<std::string> paths;
        for (const Entry &entry : listing.entries) {
            if (isDotEntry(entry) || entry.type == 'l' || !isSafeName(entry.name)) {
                continue; // SITE chmod would change what a link leads to
            }
            const int mode = entry.type == 'd' ? m_modes.folders : m_modes.files;
            paths.push_back(joinPath(path, entry.name));
            commands.push_back("SITE chmod " + std::to_string(mode) + ' ' + paths.back());
        }
        CommandStream stream(session, std::move(commands),
                             [&](std::size_t index, const Status &changed) {
                                 if (!changed) {
                                     refused(paths[index], changed.error());
                                 }
                             });
        co_return co_await stream.run();
    }

    void refused(const std::string &path, const Error &error)
    {
        if (const auto &note = m_client.session().hooks().note) {
            note(m_client.names().decodePath(path) + ": " + error.text);
        }
        if (!m_first) {
            m_first = error;
        }
    }

    [[nodiscard]] Status result() const
    {
        return m_first ? Status(tl::unexpected(*m_first)) : Status {};
    }

private:
    Client &m_client;
    InsideModes m_modes;
    std::optional<Error> m_first;
};

} // namespace

Awaitable<Result<FolderContent>> countInside(Client &client, std::vector<std::string> folders,
                                             std::shared_ptr<const std::atomic_bool> stop)
{
    FolderContent content;
    std::vector<std::string> tops;
    for (const std::string &folder : folders) {
        tops.push_back(rawFolder(client, folder));
    }
    FolderVisitor visit
        = [&content](Session &, std::string, const Listing &listing) -> Awaitable<Status> {
        count(listing, content);
        co_return Status {};
    };
    WalkFailed failed
        = [&content](const std::string &, const Error &) { content.complete = false; };
    Status walked
        = co_await walkFolders(client, std::move(tops), std::move(visit), std::move(failed), *stop);
    if (!walked) {
        co_return tl::unexpected(walked.error());
    }
    content.complete = content.complete && !*stop;
    co_return content;
}

Awaitable<Status> changeModesInside(Client &client, std::string folder, InsideModes modes)
{
    ModeChange change(client, modes);
    const std::atomic_bool never = false;
    std::vector<std::string> tops;
    tops.push_back(rawFolder(client, folder));
    FolderVisitor visit = [&change](Session &session, std::string path, const Listing &listing) {
        return change.visit(session, std::move(path), listing);
    };
    WalkFailed failed
        = [&change](const std::string &at, const Error &error) { change.refused(at, error); };
    Status walked
        = co_await walkFolders(client, std::move(tops), std::move(visit), std::move(failed), never);
    if (!walked) {
        co_return walked;
    }
    co_return change.result();
}

} // namespace ftp
