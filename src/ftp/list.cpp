#include "ftp/transfer.h"

#include <algorithm>
#include <ctime>

namespace ftp {
namespace {

/// A hostile server must not fill the memory with a listing.
constexpr std::size_t longestListing = std::size_t { 512 } << 20;

Awaitable<Result<std::string>> fetchText(Session &session, std::string command)
{
    DataConnection data(session);
    auto wanted = data.command();
    if (!wanted) {
        co_return tl::unexpected(wanted.error());
    }
    std::vector<std::string> commands;
    if (session.type() != Type::Ascii) {
        commands.emplace_back("TYPE A");
    }
    if (command == "MLSD" && !session.factsChosen) {
        // Not every server sends the permissions unless asked for them (RFC 3659, section 7.9).
        commands.emplace_back("OPTS MLST type;size;modify;UNIX.mode;");
        session.factsChosen = true;
    }
    commands.push_back(*wanted);
    auto replies = co_await session.askAll(commands);
    if (!replies) {
        co_return tl::unexpected(replies.error());
    }
    if (session.type() != Type::Ascii && replies->front().done()) {
        session.rememberType(Type::Ascii);
    }
    Status begun = co_await data.beginOrOpen(std::move(replies->back()));
    if (!begun) {
        co_return tl::unexpected(begun.error());
    }
    Status started = co_await startTransfer(session, data, std::move(command));
    std::string text;
    Status received = started;
    if (started) {
        received = co_await receiveAll(session, data, [&text](std::string_view block) -> Status {
            if (text.size() + block.size() > longestListing) {
                return fail(ErrorKind::Protocol, "The listing has no end");
            }
            text += block;
            return {};
        });
    } else if (!session.usable() || started.error().kind == ErrorKind::Refused) {
        co_return tl::unexpected(started.error());
    }
    Status finished = co_await finishTransfer(session, data, received, session.timeout());
    if (!finished) {
        co_return tl::unexpected(finished.error());
    }
    co_return text;
}

CivilTime serverNow(const ServerKnowledge &server)
{
    return fromEpoch(static_cast<std::int64_t>(std::time(nullptr)) + server.zoneOffset.value_or(0));
}

/// LIST, with hidden names where the server knows how.
Awaitable<Result<ListingText>> fetchPlainListing(Session &session)
{
    ServerKnowledge &server = session.knowledge();
    if (!server.plainListOnly) {
        auto all = co_await fetchText(session, "LIST -a");
        if (all && !all->empty()) {
            co_return ListingText { std::move(*all), false };
        }
        if (!all && all.error().kind != ErrorKind::Refused) {
            co_return tl::unexpected(all.error());
        }
        // Refused, or taken for a file of that name: this server knows no options. An empty answer
        // alone proves nothing, since hidden names such as ".." may be left out.
        server.plainListOnly = !all;
    }
    auto plain = co_await fetchText(session, "LIST");
    if (!plain) {
        co_return tl::unexpected(plain.error());
    }
    co_return ListingText { std::move(*plain), false };
}

} // namespace

Awaitable<Result<ListingText>> fetchListing(Session &session)
{
    if (session.features().mlstUnixMode()) {
        auto machine = co_await fetchText(session, "MLSD");
        if (machine) {
            co_return ListingText { std::move(*machine), true };
        }
        if (machine.error().kind != ErrorKind::Refused) {
            co_return tl::unexpected(machine.error());
        }
    }
    co_return co_await fetchPlainListing(session);
}

Awaitable<Result<Listing>> listCurrentFolder(Session &session, std::string *rawText)
{
    auto text = co_await fetchListing(session);
    if (!text) {
        co_return tl::unexpected(text.error());
    }
    Listing listing = text->machine ? parseMlsd(text->bytes)
                                    : parseList(text->bytes, serverNow(session.knowledge()));
    if (rawText != nullptr) {
        *rawText = std::move(text->bytes);
    }
    co_return listing;
}

Awaitable<Result<Listing>> listCurrentFolderPlainly(Session &session)
{
    auto text = co_await fetchPlainListing(session);
    if (!text) {
        co_return tl::unexpected(text.error());
    }
    co_return parseList(text->bytes, serverNow(session.knowledge()));
}

} // namespace ftp
