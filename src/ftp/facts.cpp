#include "ftp/facts.h"

#include <charconv>

namespace ftp {
namespace {

std::optional<std::int64_t> sizeIn(const Reply &reply)
{
    const std::string_view text = reply.message();
    std::int64_t size = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), size);
    return reply.code == 213 && end.ec == std::errc() && size >= 0 ? std::optional(size)
                                                                   : std::nullopt;
}

std::optional<std::int64_t> timeIn(const Reply &reply)
{
    const auto time = reply.code == 213 ? parseTimeVal(reply.message()) : std::nullopt;
    return time ? std::optional(toEpoch(*time)) : std::nullopt;
}

} // namespace

Awaitable<Result<FileFacts>> fileFacts(Client &client, std::string path)
{
    Session &session = client.session();
    const std::string raw = client.encode(path);
    session.dialogue().setMuted(true); // refusals mean nothing to the user
    Status binary = co_await session.setType(Type::Binary);
    std::vector<std::string> commands { "SIZE " + raw, "MDTM " + raw };
    auto replies = co_await session.askAll(std::move(commands));
    session.dialogue().setMuted(false);
    if (!replies) {
        co_return tl::unexpected(replies.error());
    }
    FileFacts facts { sizeIn(replies->front()), timeIn(replies->back()) };
    if (!binary) {
        facts.size.reset(); // counted in whatever type is on
    }
    co_return facts;
}

} // namespace ftp
