#include "ftp/transfer.h"

#include <ctime>
#include <utility>

namespace ftp {
namespace {

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
/// @param before  as for receiveListing
Awaitable<Fetched> fetchOnce(Session &session, std::string command, ListingParser parser,
                             std::optional<std::size_t> before)
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
    auto end = co_await receiveListing(session, data, received, std::move(parser), before);
    co_return Fetched { std::move(end) };
}

using MakeParser = std::function<ListingParser(ListingParser::Take)>;

/// The same, and once more when the text may have been cut short. Entries are told once.
Awaitable<Fetched> fetch(Session &session, std::string command, MakeParser make,
                         ListingParser::Take take)
{
    std::size_t told = 0, seen = 0;
    std::optional<std::size_t> before;
    ListingParser parser = make([&](Entry &&entry) {
        ++told;
        take(std::move(entry));
    });
    Fetched fetched = co_await fetchOnce(session, command, std::move(parser), before);
    if (!fetched.end || fetched.end->whole) {
        co_return fetched;
    }
    ListingParser again = make([&](Entry &&entry) {
        if (++seen > told) {
            take(std::move(entry));
        }
    });
    before = fetched.end->bytes;
    fetched = co_await fetchOnce(session, command, std::move(again), before);
    if (fetched.end && (!fetched.end->whole || seen < told)) {
        fetched.end = fail(ErrorKind::Truncated, "The listing was cut short");
    }
    co_return fetched;
}

CivilTime serverNow(const ServerKnowledge &server)
{
    return fromEpoch(static_cast<std::int64_t>(std::time(nullptr)) + server.zoneOffset.value_or(0));
}

MakeParser listParserFor(const ServerKnowledge &server)
{
    return [now = serverNow(server)](ListingParser::Take take) {
        return listParser(now, std::move(take));
    };
}

} // namespace

Awaitable<Result<ListingEnd>> readPlainListing(Session &session, ListingParser::Take take)
{
    ServerKnowledge &server = session.knowledge();
    bool unknown = false;
    if (!server.plainListOnly) {
        bool begun = false; // once an entry was told, nothing may be told twice
        ListingParser::Take first = [&](Entry &&entry) {
            begun = true;
            take(std::move(entry));
        };
        MakeParser make = listParserFor(server);
        const Fetched all = co_await fetch(session, "LIST -a", std::move(make), std::move(first));
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
    MakeParser make = listParserFor(server);
    const Fetched plain = co_await fetch(session, "LIST", std::move(make), std::move(take));
    if (unknown && plain.end) { // else it is this folder that may not be listed
        server.plainListOnly = true;
    }
    co_return plain.end;
}

Awaitable<Result<ListingEnd>> readListing(Session &session, ListingParser::Take take)
{
    if (session.features().mlstUnixMode()) {
        bool begun = false; // once an entry was told, nothing may be told twice
        ListingParser::Take first = [&](Entry &&entry) {
            begun = true;
            take(std::move(entry));
        };
        MakeParser make = mlsdParser;
        const Fetched machine = co_await fetch(session, "MLSD", std::move(make), std::move(first));
        if (machine.end || begun || machine.end.error().kind != ErrorKind::Refused) {
            co_return machine.end;
        }
    }
    co_return co_await readPlainListing(session, std::move(take));
}

} // namespace ftp
