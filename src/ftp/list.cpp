#include "ftp/transfer.h"

#include <ctime>
#include <utility>

namespace ftp {
namespace {

/// A hostile server must not fill the memory with a listing.
constexpr std::size_t longestListing = std::size_t { 512 } << 20;
constexpr std::size_t mostEntries = 3'000'000;

/// So much of a text that nobody understands is kept to be shown.
constexpr std::size_t longestRawText = std::size_t { 16 } << 20;

/// Asks for the type, the facts and the way to the data connection, in one round trip.
Awaitable<Status> prepare(Session &session, DataConnection &data, bool machine)
{
    auto wanted = data.command();
    if (!wanted) {
        co_return tl::unexpected(wanted.error());
    }
    std::vector<std::string> commands;
    if (session.type() != Type::Ascii) {
        commands.emplace_back("TYPE A");
    }
    if (machine && !session.factsChosen) {
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
    co_return co_await data.beginOrOpen(std::move(replies->back()));
}

/// What became of one command for a listing.
struct Fetched {
    Result<ListingEnd> end;
    bool unknown = false; ///< the command itself was refused for good
};

/// Carries out one command for a listing and hands its text to the parser.
Awaitable<Fetched> fetch(Session &session, std::string command, ListingParser parser)
{
    DataConnection data(session);
    Status begun = co_await prepare(session, data, command == "MLSD");
    if (!begun) {
        co_return Fetched { tl::unexpected(begun.error()) };
    }
    Status received = co_await startTransfer(session, data, std::move(command));
    if (!received && (!session.usable() || received.error().kind == ErrorKind::Refused)) {
        co_return Fetched { tl::unexpected(received.error()), isFinalRefusal(received.error()) };
    }
    auto end = co_await receiveListing(session, data, received, std::move(parser));
    co_return Fetched { std::move(end) };
}

CivilTime serverNow(const ServerKnowledge &server)
{
    return fromEpoch(static_cast<std::int64_t>(std::time(nullptr)) + server.zoneOffset.value_or(0));
}

} // namespace

Awaitable<Result<ListingEnd>> receiveListing(Session &session, DataConnection &data, Status started,
                                             ListingParser parser)
{
    ListingEnd end;
    Status received = started;
    if (started) {
        received = co_await receiveAll(session, data, [&](std::string_view block) -> Status {
            end.bytes += block.size();
            if (end.bytes > longestListing || parser.entries() > mostEntries) {
                return fail(ErrorKind::Protocol, "The listing has no end");
            }
            if (!parser.understood()) {
                end.rawText += block.substr(0, longestRawText - end.rawText.size());
            }
            parser.read(block);
            return {};
        });
    }
    parser.finish();
    end.understood = parser.understood();
    if (end.understood) {
        end.rawText.clear();
    }
    Status finished = co_await finishTransfer(session, data, received, session.timeout());
    if (!finished) {
        co_return tl::unexpected(finished.error());
    }
    co_return end;
}

Awaitable<Result<ListingEnd>> readPlainListing(Session &session, ListingParser::Take take)
{
    ServerKnowledge &server = session.knowledge();
    bool unknown = false;
    if (!server.plainListOnly) {
        bool begun = false; // once an entry was told, nothing may be told twice
        ListingParser parser = listParser(serverNow(server), [&](Entry &&entry) {
            begun = true;
            take(std::move(entry));
        });
        const Fetched all = co_await fetch(session, "LIST -a", std::move(parser));
        if (all.end && all.end->bytes > 0 && all.end->understood) {
            co_return all.end;
        }
        if (begun || (!all.end && all.end.error().kind != ErrorKind::Refused)) {
            co_return all.end;
        }
        // Refused, or taken for a file of that name, perhaps with an error message in place of the
        // listing: this server knows no options. An empty answer alone proves nothing, since
        // hidden names such as ".." may be left out; nor does a refusal that passes.
        unknown = all.unknown;
    }
    ListingParser parser = listParser(serverNow(server), std::move(take));
    const Fetched plain = co_await fetch(session, "LIST", std::move(parser));
    if (unknown && plain.end) { // else it is this folder that may not be listed
        server.plainListOnly = true;
    }
    co_return plain.end;
}

Awaitable<Result<ListingEnd>> readListing(Session &session, ListingParser::Take take)
{
    if (session.features().mlstUnixMode()) {
        bool begun = false; // once an entry was told, nothing may be told twice
        ListingParser parser = mlsdParser([&](Entry &&entry) {
            begun = true;
            take(std::move(entry));
        });
        const Fetched machine = co_await fetch(session, "MLSD", std::move(parser));
        if (machine.end || begun || machine.end.error().kind != ErrorKind::Refused) {
            co_return machine.end;
        }
    }
    co_return co_await readPlainListing(session, std::move(take));
}

} // namespace ftp
