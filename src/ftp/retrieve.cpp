#include "ftp/transfer.h"

#include "ftp/file_facts.h"
#include "ftp/receiver.h"

#include <optional>

namespace ftp {
namespace {

/// Asks size and time together with the way to the data connection, in one round trip.
Awaitable<Result<RemoteFacts>> prepare(Session &session, DataConnection &data, FileRequest request)
{
    auto wanted = data.command();
    if (!wanted) {
        co_return tl::unexpected(wanted.error());
    }
    const std::vector<std::string> asked = factCommands(session, request.remotePath, request.type);
    std::vector<std::string> commands = asked;
    commands.push_back(*wanted);
    auto replies = co_await session.askAll(commands);
    if (!replies) {
        co_return tl::unexpected(replies.error());
    }
    const RemoteFacts facts = takeFacts(session, asked, *replies);
    Status begun = co_await data.beginOrOpen(std::move(replies->back()));
    if (!begun) {
        co_return tl::unexpected(begun.error());
    }
    co_return facts;
}

/// The offset that the local file really allows.
std::int64_t usableOffset(const FileRequest &request, const Session &session)
{
    if (request.offset == 0) {
        return 0;
    }
    if (request.type != Type::Binary) {
        session.note(onlyInBinary);
        return 0;
    }
    if (fileSize(request.localPath) != request.offset) {
        session.note("Die vorhandene Datei hat eine andere Größe; sie wird von vorn übertragen.");
        return 0;
    }
    return request.offset;
}

/// Where the file may be continued: what is here must be the beginning of what the server has.
Awaitable<Result<std::int64_t>> startOffset(Session &session, const FileRequest &request,
                                            std::int64_t wanted, const RemoteFacts &facts)
{
    if (wanted == 0) {
        co_return 0;
    }
    if (facts.size && *facts.size < wanted) {
        session.note("Die Datei auf dem Server ist kürzer geworden; sie wird von vorn übertragen.");
        co_return 0;
    }
    const auto partTime = fileTime(request.localPath);
    if (facts.modified && partTime && changedSince(*facts.modified, *partTime)) {
        session.note(
            "Die Datei auf dem Server wurde inzwischen geändert; sie wird von vorn übertragen.");
        co_return 0;
    }
    auto restarted = co_await session.ask("REST " + std::to_string(wanted));
    if (!restarted) {
        co_return tl::unexpected(restarted.error());
    }
    if (restarted->code != 350) {
        session.note(
            "Der Server kann Dateien nicht fortsetzen; die Datei wird von vorn übertragen.");
        co_return 0;
    }
    co_return wanted;
}

/// Brings what the server sends into the file.
Awaitable<Status> receiveInto(IncomingFile &file, Session &session, DataConnection &data,
                              const FileRequest &request, std::int64_t offset, ProgressMeter &meter)
{
    Status opened = file.open(request.localPath, offset);
    if (!opened) {
        co_return opened;
    }
    Receiver receiver(request.type);
    Status received = co_await receiveAll(session, data, [&](std::string_view block) {
        Status written = receiver.write(file, block);
        meter.add(static_cast<std::int64_t>(block.size()));
        return written;
    });
    co_return received ? receiver.finish(file) : received;
}

/// Whether the file is all there now.
Status checkWhole(const Session &session, DataConnection &data, const FileRequest &request,
                  std::int64_t offset, std::int64_t have, const RemoteFacts &facts)
{
    const auto size = request.type == Type::Binary ? facts.size : std::nullopt;
    Status complete = checkComplete(session, have, size, data.stream().closeNotifyReceived());
    if (complete && offset > 0 && size && have != *size) {
        return fail(ErrorKind::Truncated, "The continued file does not have the server's size");
    }
    return complete;
}

} // namespace

Awaitable<Result<std::int64_t>> retrieve(Session &session, FileRequest request)
{
    const std::string command = "RETR " + request.remotePath;
    if (const auto sendable = encodeCommand(command); !sendable) {
        co_return tl::unexpected(sendable.error());
    }
    const std::int64_t wanted = usableOffset(request, session);
    Status typed = co_await session.setType(request.type);
    if (!typed) {
        co_return tl::unexpected(typed.error());
    }
    DataConnection data(session);
    auto facts = co_await prepare(session, data, request);
    if (!facts) {
        co_return tl::unexpected(facts.error());
    }
    auto offset = co_await startOffset(session, request, wanted, *facts);
    if (!offset) {
        co_return tl::unexpected(offset.error());
    }
    ProgressMeter meter(request.progress ? request.progress : sessionProgress(session),
                        request.offset - *offset);
    meter.start();
    Status started = co_await startTransfer(session, data, command);
    if (!started && (started.error().kind == ErrorKind::Refused || !session.usable())) {
        co_return tl::unexpected(started.error());
    }
    IncomingFile file;
    Status received = started;
    if (received) {
        received = co_await receiveInto(file, session, data, request, *offset, meter);
    }
    Status finished = co_await finishTransfer(session, data, received, session.timeout());
    if (finished) {
        finished = checkWhole(session, data, request, *offset, *offset + meter.bytes(), *facts);
    }
    if (finished) {
        finished = file.commit(facts->modified);
    }
    meter.finish();
    if (!finished) {
        co_return tl::unexpected(finished.error());
    }
    co_return offset;
}

} // namespace ftp
