#include "ftp/transfer.h"

#include <asio/post.hpp>
#include <memory>

namespace ftp {
namespace {

constexpr std::size_t blockSize = 256 * 1024;
constexpr std::chrono::milliseconds reportEvery { 33 };
constexpr Milliseconds afterBlockedData { 3000 };

/// Codes that never end a transfer.
bool isForeign(int code)
{
    return code == 211 || code == 213 || code == 227 || code == 229 || code == 257;
}

} // namespace

void ProgressMeter::tell(std::int64_t bytes)
{
    m_next = std::chrono::steady_clock::now() + reportEvery;
    if (m_report) {
        m_report(bytes - m_lost);
    }
}

void ProgressMeter::add(std::int64_t bytes)
{
    m_bytes += bytes;
    if (std::chrono::steady_clock::now() >= m_next) {
        tell(m_bytes);
    }
}

ProgressMeter::Report sessionProgress(Session &session)
{
    return [&session](std::int64_t bytes) {
        if (session.hooks().progress) {
            session.hooks().progress(bytes, 0);
        }
    };
}

Awaitable<Status> receiveAll(Session &session, DataConnection &data,
                             std::function<Status(std::string_view)> sink)
{
    const auto block = std::make_unique_for_overwrite<char[]>(blockSize);
    std::size_t inARow = 0;
    for (;;) {
        auto count = co_await data.stream().readSome(block.get(), blockSize, session.timeout());
        if (!count) {
            co_return tl::unexpected(count.error());
        }
        if (*count == 0) {
            // Servers that close carefully wait for our end before they answer.
            Status ended = co_await data.stream().finishSending(session.timeout());
            ignoreError(ended, "everything is here");
            data.drainAndClose();
            co_return Status {};
        }
        Status taken = sink(std::string_view(block.get(), *count));
        if (!taken) {
            co_return taken;
        }
        inARow += *count;
        if (inARow >= fairShare) {
            inARow = 0;
            co_await asio::post(session.executor(), asio::use_awaitable);
        }
    }
}

Awaitable<Status> awaitPreliminary(Session &session, DataConnection &data, SideTask &running)
{
    auto answer = co_await session.dialogue().reply();
    if (answer && answer->preliminary()) {
        data.permit();
        co_return Status {};
    }
    data.abort();
    Status ended = co_await running.join();
    ignoreError(ended, "the reply tells why nothing comes");
    if (answer && !answer->done()) {
        co_return refusal(*answer);
    }
    session.markBroken();
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    co_return fail(ErrorKind::Protocol,
                   "The server ended a transfer before it began (" + answer->text() + ")");
}

Awaitable<Status> awaitStart(Session &session, DataConnection &data)
{
    // Some servers answer before the TLS handshake, some behind it: both are waited for at once.
    SideTask standing(session.executor(), data.establish());
    Status begun = co_await awaitPreliminary(session, data, standing);
    if (!begun) {
        co_return begun;
    }
    co_return co_await standing.join();
}

Awaitable<Status> startTransfer(Session &session, DataConnection &data, std::string command)
{
    Status sent = co_await session.line().send(command);
    if (!sent) {
        co_return sent;
    }
    co_return co_await awaitStart(session, data);
}

Awaitable<Status> finishTransfer(Session &session, DataConnection &data, Status broken,
                                 Milliseconds limit)
{
    const bool stalled = !broken
        && (broken.error().kind == ErrorKind::Timeout || broken.error().kind == ErrorKind::Aborted);
    if (!broken) {
        data.abort();
    }
    if (stalled) {
        session.markBroken(); // whatever the server does now, it does not concern us any more
        co_return broken;
    }
    if (!broken && broken.error().kind == ErrorKind::DataConnection) {
        limit = std::min(limit, afterBlockedData); // it was waited for long enough
    }
    auto answer = co_await session.dialogue().finalReply(limit);
    data.drainAndClose();
    if (!answer) {
        session.markBroken();
        co_return tl::unexpected(broken || answer.error().replyCode != 0 ? answer.error()
                                                                         : broken.error());
    }
    if (answer->done() && isForeign(answer->code)) {
        session.markBroken(); // the answer to a later command: the server did not keep the order
        co_return fail(ErrorKind::Protocol,
                       "The server answered out of order (" + answer->text() + ")");
    }
    if (!answer->done()) {
        // Our full disk says more than the server's "aborted"; a broken line says less.
        const bool lineOnly = broken || broken.error().kind == ErrorKind::ConnectionClosed
            || broken.error().kind == ErrorKind::Unreachable;
        co_return lineOnly ? Status(refusal(*answer)) : broken;
    }
    co_return broken;
}

} // namespace ftp
