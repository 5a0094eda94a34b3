#include "ftp/feat.h"
#include "lines.h"
#include "require.h"

#include <algorithm>

/// The lines of a reply to FEAT.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    ftp::Reply reply;
    reply.code = 211;
    forEachInputLine(data, size, [&](std::string_view line) { reply.lines.emplace_back(line); });
    const ftp::Features features = ftp::parseFeat(reply);
    REQUIRE(features.known);
    REQUIRE(features.mlst || features.mlstFacts.empty());
    for (const std::string &fact : features.mlstFacts) {
        REQUIRE(!fact.empty());
        REQUIRE(std::none_of(fact.begin(), fact.end(),
                             [](char c) { return (c >= 'A' && c <= 'Z') || c == ';'; }));
    }
    reply.code = 500;
    REQUIRE(!ftp::parseFeat(reply).known);
    return 0;
}
