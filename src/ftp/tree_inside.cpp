#include "ftp/command_stream.h"
#include "ftp/path.h"
#include "ftp/tree.h"
#include "ftp/tree_walk.h"

#include <optional>

namespace ftp {
namespace {

void count(const TreeListing &listing, FolderContent &content)
{
    TreeListing::Position at;
    while (const auto entry = listing.next(at)) {
        if (!entry->isDot()) {
            ++(entry->type == 'd' ? content.folders : content.files);
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

    Awaitable<Status> visit(Session &session, std::string path, const TreeListing &listing)
    {
        TreeListing::Position at;
        CommandStream::Source source = [&] { return nextCommand(path, listing, at); };
        CommandStream::Answered answered
            = [this](const CommandStream::Command &command, const Status &changed) {
                  if (!changed) {
                      refused(pathOf(command.text), changed.error());
                  }
              };
        CommandStream stream(session, std::move(source), std::move(answered));
        co_return co_await stream.run();
    }

    void refused(const std::string &path, const Error &error)
    {
        m_client.session().note(m_client.names().decodePath(path) + ": " + error.text);
        if (!m_first) {
            m_first = error;
        }
    }

    [[nodiscard]] Status result() const
    {
        return m_first ? Status(tl::unexpected(*m_first)) : Status {};
    }

private:
    [[nodiscard]] std::optional<std::string> nextCommand(const std::string &path,
                                                         const TreeListing &listing,
                                                         TreeListing::Position &at) const
    {
        while (const auto entry = listing.next(at)) {
            if (entry->isDot() || entry->type == 'l' || !isSafeName(entry->name)) {
                continue; // SITE chmod would change what a link leads to
            }
            const int mode = entry->type == 'd' ? m_modes.folders : m_modes.files;
            return "SITE chmod " + std::to_string(mode) + ' ' + joinPath(path, entry->name);
        }
        return std::nullopt;
    }
    /// What a command is about; paths are absolute.
    [[nodiscard]] static std::string pathOf(const std::string &command)
    {
        return command.substr(command.find('/'));
    }

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
        tops.push_back(client.absolute(folder));
    }
    FolderVisitor visit
        = [&content](Session &, std::string, const TreeListing &listing) -> Awaitable<Status> {
        count(listing, content);
        co_return Status {};
    };
    WalkFailed failed
        = [&content](const std::string &, const Error &) { content.complete = false; };
    Status walked = co_await walkFolders(client, std::move(tops), LinksOf::Folders,
                                         std::move(visit), std::move(failed), *stop);
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
    tops.push_back(client.absolute(folder));
    FolderVisitor visit
        = [&change](Session &session, std::string path, const TreeListing &listing) {
              return change.visit(session, std::move(path), listing);
          };
    WalkFailed failed
        = [&change](const std::string &at, const Error &error) { change.refused(at, error); };
    Status walked = co_await walkFolders(client, std::move(tops), LinksOf::Everything,
                                         std::move(visit), std::move(failed), never);
    if (!walked) {
        co_return walked;
    }
    co_return change.result();
}

} // namespace ftp
