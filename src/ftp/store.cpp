#include "ftp/transfer.h"

#include "ftp/file_facts.h"
#include "ftp/sender.h"

#include <asio/post.hpp>
#include <vector>

namespace ftp {
namespace {

/// Small enough to stay in the processor's cache between file and socket: measured faster than both
/// bigger blocks and sendfile, whose pages the receiver finds cold.
constexpr std::size_t blockSize = 64 * 1024;

Awaitable<Status> pumpBlocks(Session &session, Stream &stream, const OutgoingFile &file,
                             std::int64_t at, Type type, ProgressMeter &meter)
{
    Sender sender(type);
    std::vector<char> block(blockSize);
    std::size_t inARow = 0;
    while (at < file.size()) {
        const auto most
            = static_cast<std::size_t>(std::min<std::int64_t>(blockSize, file.size() - at));
        auto count = file.read(at, block.data(), most);
        if (!count) {
            co_return tl::unexpected(count.error());
        }
        if (*count == 0) {
            co_return fail(ErrorKind::LocalFile,
                           "The file became shorter while it was sent: " + file.path());
        }
        Status sent = co_await stream.write(sender.convert(std::string_view(block.data(), *count)),
                                            session.timeout());
        if (!sent) {
            co_return sent;
        }
        at += static_cast<std::int64_t>(*count);
        meter.add(static_cast<std::int64_t>(*count));
        inARow += *count;
        if (inARow >= fairShare) {
            inARow = 0;
            co_await asio::post(session.executor(), asio::use_awaitable);
        }
    }
    co_return co_await stream.write(sender.plain() ? std::string_view() : sender.convert({}),
                                    session.timeout());
}

struct StorePlan {
    std::int64_t offset = 0;
    bool append = false; ///< APPE in place of REST and STOR
};

/// What the server tells of the file that is to be continued.
Awaitable<Result<RemoteFacts>> factsOfPart(Session &session, std::string path)
{
    const std::vector<std::string> commands = factCommands(session, path, Type::Binary);
    auto replies = co_await session.askAll(commands);
    if (!replies) {
        co_return tl::unexpected(replies.error());
    }
    RemoteFacts facts = takeFacts(session, commands, *replies);
    if (session.knowledge().noSize) {
        auto size = co_await listedSize(session, path);
        if (!size) {
            co_return tl::unexpected(size.error());
        }
        facts.size = *size;
    }
    co_return facts;
}

/// Where the upload may start: a continued file must have exactly the wanted size on the server.
Awaitable<Result<StorePlan>> plan(Session &session, const FileRequest &request,
                                  const OutgoingFile &file)
{
    StorePlan result;
    if (request.offset == 0) {
        co_return result;
    }
    if (request.type != Type::Binary) {
        session.note(onlyInBinary);
        co_return result;
    }
    auto part = co_await factsOfPart(session, request.remotePath);
    if (!part) {
        co_return tl::unexpected(part.error());
    }
    if (part->size.value_or(0) > file.size()) {
        session.note(
            "Die Datei auf dem Server ist größer als die lokale; sie bleibt, wie sie ist.");
        co_return fail(ErrorKind::RemoteLonger,
                       "The file on the server is longer than the local one");
    }
    if (part->size != request.offset) { // or it is gone
        session.note(
            "Die Datei auf dem Server hat eine andere Größe; sie wird von vorn übertragen.");
        co_return result;
    }
    if (part->modified && changedSince(file.modified(), *part->modified)) {
        session.note("Die lokale Datei wurde inzwischen geändert; sie wird von vorn übertragen.");
        co_return result;
    }
    result.offset = request.offset;
    result.append = session.knowledge().noSize; // then only appending is safe
    co_return result;
}

/// Checks an upload by the server's own count (RFC 3659, section 4) and keeps the file's time.
Awaitable<Status> verify(Session &session, const FileRequest &request, const OutgoingFile &file)
{
    const std::vector<std::string> commands
        = checkCommands(session, request.remotePath, file, request.type);
    if (commands.empty()) {
        co_return Status {};
    }
    auto replies = co_await session.askAll(commands);
    if (!replies) {
        co_return tl::unexpected(replies.error());
    }
    co_return takeChecks(session, commands, *replies, file);
}

} // namespace

Awaitable<Status> sendFile(Session &session, DataConnection &data, const OutgoingFile &file,
                           std::int64_t offset, Type type, ProgressMeter &meter)
{
    Status step = co_await data.establish();
    if (!step) {
        co_return step;
    }
    co_await data.permission();
    step = co_await pumpBlocks(session, data.stream(), file, offset, type, meter);
    if (!step) {
        co_return step;
    }
    co_return co_await data.stream().finishSending(session.timeout());
}

Awaitable<Result<std::int64_t>> store(Session &session, FileRequest request)
{
    OutgoingFile file;
    Status step = file.open(request.localPath);
    if (step) {
        step = co_await session.setType(request.type);
    }
    if (!step) {
        co_return tl::unexpected(step.error());
    }
    auto planned = co_await plan(session, request, file);
    if (!planned) {
        co_return tl::unexpected(planned.error());
    }
    step = co_await session.setType(request.type); // a listing has one of its own
    if (!step) {
        co_return tl::unexpected(step.error());
    }
    DataConnection data(session);
    step = co_await data.open();
    if (!step) {
        co_return tl::unexpected(step.error());
    }
    if (planned->offset > 0 && !planned->append) {
        auto restarted = co_await session.ask("REST " + std::to_string(planned->offset));
        if (!restarted) {
            co_return tl::unexpected(restarted.error());
        }
        planned->append = restarted->code != 350;
    }
    ProgressMeter meter(request.progress ? request.progress : sessionProgress(session),
                        request.offset - planned->offset);
    meter.start();
    const std::string command = (planned->append ? "APPE " : "STOR ") + request.remotePath;
    step = co_await session.line().send(command);
    if (!step) {
        co_return tl::unexpected(step.error());
    }
    SideTask pumping(session.executor(),
                     sendFile(session, data, file, planned->offset, request.type, meter));
    step = co_await awaitPreliminary(session, data, pumping);
    if (!step) {
        co_return tl::unexpected(step.error());
    }
    Status sent = co_await pumping.join();
    Status finished
        = co_await finishTransfer(session, data, sent, patience(session.timeout(), file.size()));
    meter.finish();
    if (finished) {
        finished = co_await verify(session, request, file);
    }
    if (!finished) {
        co_return tl::unexpected(finished.error());
    }
    co_return planned->offset;
}

} // namespace ftp
