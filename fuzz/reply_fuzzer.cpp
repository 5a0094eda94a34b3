#include "ftp/reply.h"
#include "lines.h"
#include "require.h"

namespace {

void requirePromises(const ftp::Reply &reply)
{
    REQUIRE(reply.code >= 100 && reply.code <= 699);
    REQUIRE(!reply.lines.empty());
    REQUIRE(reply.lines.front().starts_with(std::to_string(reply.code)));
    REQUIRE(reply.lines.back().starts_with(std::to_string(reply.code)));
    REQUIRE(reply.preliminary() + reply.done() + (reply.code / 100 == 3) + reply.refused() == 1);
    REQUIRE(reply.message().size() <= reply.lines.back().size());
    REQUIRE(!reply.text().empty());
    const ftp::Error error = ftp::refusal(reply).value();
    REQUIRE(error.replyCode == reply.code && !error.text.empty());
}

} // namespace

/// The lines of a control connection.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    ftp::ReplyParser parser;
    forEachInputLine(data, size, [&](std::string_view line) {
        const ftp::Result<bool> complete = parser.add(line);
        if (!complete) {
            REQUIRE(!complete.error().text.empty());
            parser = ftp::ReplyParser();
        } else if (*complete) {
            requirePromises(parser.take());
            REQUIRE(!parser.inReply());
        }
    });
    return 0;
}
