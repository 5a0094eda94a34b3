#include "ftp/control_line.h"

#include <array>

namespace ftp {
namespace {

/// A line that never ends must not eat the memory.
constexpr std::size_t longestLine = 1 << 20;

} // namespace

Result<std::string> encodeCommand(std::string_view command, bool doubleTelnetIac)
{
    if (command.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos) {
        return fail(ErrorKind::BadArgument, "A command must not contain a line break or NUL");
    }
    if (command.size() > longestCommand) {
        return fail(ErrorKind::BadArgument, "The name is too long for a command");
    }
    std::string line;
    line.reserve(command.size() + 2);
    for (const char byte : command) {
        line += byte;
        if (doubleTelnetIac && byte == '\xFF') {
            line += byte;
        }
    }
    line += "\r\n";
    return line;
}

TcpControlLine::TcpControlLine(std::unique_ptr<Stream> stream, Milliseconds writeLimit,
                               std::uint64_t &packets)
    : m_stream(std::move(stream))
    , m_writeLimit(writeLimit)
    , m_packets(packets)
{
}

Status TcpControlLine::queue(std::string_view command)
{
    auto line = encodeCommand(command, m_doubleIac);
    if (!line) {
        return tl::unexpected(line.error());
    }
    m_out += *line;
    return {};
}

Awaitable<Status> TcpControlLine::flush()
{
    const std::string out = std::exchange(m_out, {});
    ++m_packets;
    co_return co_await m_stream->write(out, m_writeLimit);
}

Awaitable<Status> TcpControlLine::send(std::string_view command)
{
    Status queued = queue(command);
    if (!queued) {
        co_return queued;
    }
    co_return co_await flush();
}

bool TcpControlLine::takeLine(std::string &line)
{
    const std::size_t end = m_buffer.find('\n', m_begin);
    if (end == std::string::npos) {
        return false;
    }
    std::size_t size = end - m_begin;
    if (size > 0 && m_buffer[end - 1] == '\r') {
        --size;
    }
    line.assign(m_buffer, m_begin, size);
    m_begin = end + 1;
    if (m_begin == m_buffer.size()) {
        m_buffer.clear();
        m_begin = 0;
    }
    return true;
}

Awaitable<Status> TcpControlLine::readMore(Milliseconds limit)
{
    if (m_begin > 0) {
        m_buffer.erase(0, m_begin);
        m_begin = 0;
    }
    if (m_buffer.size() > longestLine) {
        co_return fail(ErrorKind::Protocol, "The server sent a line without end");
    }
    std::array<char, 4096> block {};
    auto count = co_await m_stream->readSome(block.data(), block.size(), limit);
    if (!count) {
        co_return tl::unexpected(count.error());
    }
    if (*count == 0) {
        if (m_last.code == 421) {
            co_return fail(ErrorKind::ConnectionClosed, m_last.text(), m_last.code);
        }
        co_return fail(ErrorKind::ConnectionClosed, "Connection closed by server");
    }
    m_buffer.append(block.data(), *count);
    co_return Status {};
}

Awaitable<Result<Reply>> TcpControlLine::readReply(Milliseconds limit)
{
    std::string line;
    for (;;) {
        while (takeLine(line)) {
            auto complete = m_parser.add(line);
            if (!complete) {
                co_return tl::unexpected(complete.error());
            }
            if (*complete) {
                m_last = m_parser.take();
                co_return m_last;
            }
        }
        Status more = co_await readMore(limit);
        if (!more) {
            co_return tl::unexpected(more.error());
        }
    }
}

Awaitable<Status> TcpControlLine::startTls(TlsContext &context, std::string host,
                                           Milliseconds limit)
{
    m_buffer.clear();
    m_begin = 0;
    co_return co_await m_stream->startTls(context, std::move(host), Stream::TlsRole::Control,
                                          limit);
}

} // namespace ftp
