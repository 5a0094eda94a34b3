// How the text of a listing comes in, and when it is all there.
#include "ftp/transfer.h"

namespace ftp {
namespace {

/// A hostile server must not fill the memory with a listing.
constexpr std::size_t longestListing = std::size_t { 256 } << 20;
constexpr std::size_t mostEntries = 1'000'000;

/// So much of a text that nobody understands is kept to be shown.
constexpr std::size_t longestRawText = std::size_t { 16 } << 20;

/// Whether a text that has ended is all there: nobody tells how long a listing is. A line that is
/// cut would name another file, and an encrypted stream without a proper close may have been cut
/// by anybody on the way.
bool isWhole(Session &session, bool properEnd, ListingParser &parser, const ListingEnd &end,
             std::optional<std::size_t> before)
{
    ServerKnowledge &server = session.knowledge();
    const bool closed = !session.encrypted() || properEnd || server.endsProperly == false;
    const bool lineEnded = !parser.inLine() || server.noLastLineEnd;
    if (session.encrypted() && properEnd) {
        server.endsProperly = true;
    }
    if (closed && lineEnded) {
        return true;
    }
    if (before != end.bytes || (!closed && server.endsProperly)) {
        return false;
    }
    parser.finish();
    if (!closed) { // twice the same: that is how this server ends
        server.endsProperly = false;
    }
    server.noLastLineEnd = server.noLastLineEnd || (!lineEnded && parser.understood());
    return true;
}

} // namespace

Awaitable<Result<ListingEnd>> receiveListing(Session &session, DataConnection &data, Status started,
                                             ListingParser parser,
                                             std::optional<std::size_t> before)
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
    if (received) {
        const bool properEnd = data.stream().closeNotifyReceived();
        end.whole = isWhole(session, properEnd, parser, end, before);
    }
    if (end.whole) {
        parser.finish();
    }
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

} // namespace ftp
