#include "ftp/file_facts.h"

#include "ftp/civiltime.h"
#include "ftp/path.h"
#include "ftp/transfer.h"

namespace ftp {

std::vector<std::string> factCommands(Session &session, const std::string &remotePath, Type type)
{
    const ServerKnowledge &server = session.knowledge();
    std::vector<std::string> commands;
    if (type == Type::Binary && !server.noSize) {
        commands.push_back("SIZE " + remotePath);
    }
    if (!server.noModificationTime) {
        commands.push_back("MDTM " + remotePath);
    }
    return commands;
}

RemoteFacts takeFacts(Session &session, std::span<const std::string> commands,
                      std::span<const Reply> replies)
{
    ServerKnowledge &server = session.knowledge();
    RemoteFacts facts;
    for (std::size_t i = 0; i < commands.size(); ++i) {
        const Reply &reply = replies[i];
        if (commands[i].starts_with("SIZE ")) {
            facts.size = sizeOf(reply);
            server.noSize = isUnknown(reply);
            continue;
        }
        if (const auto time = reply.code == 213 ? parseTimeVal(reply.message()) : std::nullopt) {
            facts.modified = toEpoch(*time);
        }
        server.noModificationTime = isUnknown(reply);
    }
    return facts;
}

Awaitable<Result<RemoteFacts>> fileFacts(Client &client, std::string path)
{
    Session &session = client.session();
    const std::string raw = client.encode(path);
    const auto muted = session.dialogue().muted();
    Status binary = co_await session.setType(Type::Binary);
    const std::vector<std::string> commands
        = factCommands(session, raw, binary ? Type::Binary : Type::Ascii);
    auto replies = co_await session.askAll(commands);
    if (!replies) {
        co_return tl::unexpected(replies.error());
    }
    co_return takeFacts(session, commands, *replies);
}

Awaitable<Result<std::optional<std::int64_t>>> listedSize(Session &session, std::string path)
{
    const std::string folder = parentOf(path);
    const std::string name = nameOf(path);
    std::optional<std::int64_t> size;
    if (!folder.empty()) {
        auto entered = co_await session.ask("CWD " + folder);
        if (!entered || !entered->done()) {
            co_return entered ? Result<std::optional<std::int64_t>>(size)
                              : tl::unexpected(entered.error());
        }
    }
    ListingParser::Take take = [&](const Entry &entry) {
        if (entry.type == '-' && entry.name == name && entry.exact) {
            size = entry.size;
        }
    };
    auto listed = co_await readListing(session, std::move(take));
    if (!folder.empty() && session.usable()) {
        auto back = co_await session.ask("CWD " + session.folder());
        ignoreError(back, "the next command would tell");
    }
    if (!session.usable()) {
        co_return fail(ErrorKind::ConnectionClosed, "Connection closed by server");
    }
    co_return listed ? size : std::nullopt;
}

Status checkComplete(const Session &session, std::int64_t have, std::optional<std::int64_t> size,
                     bool properEnd)
{
    if (size && have < *size) {
        return fail(ErrorKind::Truncated,
                    "The transfer was cut short: " + std::to_string(have) + " of "
                        + std::to_string(*size) + " bytes");
    }
    if (session.encrypted() && !properEnd && !size) {
        return fail(ErrorKind::Truncated, "The encrypted transfer ended without a proper close");
    }
    return {};
}

std::vector<std::string> checkCommands(Session &session, const std::string &remotePath,
                                       const OutgoingFile &file, Type type)
{
    const ServerKnowledge &server = session.knowledge();
    std::vector<std::string> commands;
    if (type == Type::Binary && !server.noSize) {
        commands.push_back("SIZE " + remotePath);
    }
    if (session.features().mfmt && !server.noSetTime) {
        const std::string time = formatTimeVal(fromEpoch(file.modified()));
        const std::string command = "MFMT " + time + " " + remotePath;
        if (encodeCommand(command)) { // the path may just be too long for this one
            commands.push_back(command);
        }
    }
    return commands;
}

Status takeChecks(Session &session, std::span<const std::string> commands,
                  std::span<const Reply> replies, const OutgoingFile &file)
{
    Status complete;
    for (std::size_t i = 0; i < commands.size(); ++i) {
        const Reply &reply = replies[i];
        if (!commands[i].starts_with("SIZE ")) {
            session.knowledge().noSetTime = isUnknown(reply);
        } else if (const auto size = sizeOf(reply); size && *size != file.size()) {
            complete = fail(ErrorKind::Truncated,
                            "The server holds " + std::to_string(*size) + " of "
                                + std::to_string(file.size()) + " bytes");
        }
    }
    return complete;
}

} // namespace ftp
