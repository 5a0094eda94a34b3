#pragma once

#include "ftp/reply.h"
#include "ftp/stream.h"

#include <string>
#include <string_view>

namespace ftp {

/// Longest command that is sent; longer ones make servers hang up.
inline constexpr std::size_t longestCommand = 4096;

/// A command as it goes over the wire, with CR LF. The one place that refuses CR, LF and NUL,
/// which would end the command early and let a name carry commands of its own.
/// @param doubleTelnetIac  send the byte FF twice (RFC 959, section 5.3; RFC 854)
[[nodiscard]] Result<std::string> encodeCommand(std::string_view command,
                                                bool doubleTelnetIac = false);

/// The control connection as the dialogues see it; tests put a script in its place.
struct ControlLine {
    virtual ~ControlLine() = default;
    /// The next complete reply.
    virtual Awaitable<Result<Reply>> readReply(Milliseconds limit) = 0;
    /// Sends one command; refuses CR, LF and NUL.
    virtual Awaitable<Status> send(std::string_view command) = 0;
    /// Keeps a command for the next send or flush, so that several travel in one packet.
    virtual Status queue(std::string_view command) = 0;
    virtual Awaitable<Status> flush() = 0;
};

/// The control connection over a socket.
class TcpControlLine final : public ControlLine {
public:
    /// @param packets  counts the packets of commands sent; each waits for its answers once
    TcpControlLine(std::unique_ptr<Stream> stream, Milliseconds writeLimit, std::uint64_t &packets);

    Awaitable<Result<Reply>> readReply(Milliseconds limit) override;
    Awaitable<Status> send(std::string_view command) override;
    Status queue(std::string_view command) override;
    Awaitable<Status> flush() override;

    /// Starts TLS; bytes that came before the handshake are thrown away, since they were not
    /// protected (RFC 4217 leaves room for injected replies otherwise).
    Awaitable<Status> startTls(TlsContext &context, std::string host, Milliseconds limit);

    [[nodiscard]] Stream &stream() { return *m_stream; }
    void setDoubleTelnetIac(bool wanted) { m_doubleIac = wanted; }
    /// Bytes that arrived and belong to no reply read so far.
    [[nodiscard]] bool hasUnreadBytes()
    {
        return m_begin < m_buffer.size() || m_parser.inReply() || m_stream->holdsBytes();
    }
    void abort() { m_stream->abort(); }

private:
    /// Next line without its end (CR LF or LF alone). @return false when more must be read first
    [[nodiscard]] bool takeLine(std::string &line);
    Awaitable<Status> readMore(Milliseconds limit);

    std::unique_ptr<Stream> m_stream;
    Milliseconds m_writeLimit;
    std::uint64_t &m_packets;
    std::string m_buffer; ///< received, from m_begin on not yet taken
    std::size_t m_begin = 0;
    std::string m_out; ///< queued commands
    ReplyParser m_parser;
    Reply m_last; ///< for the case that the server hangs up behind a 421
    bool m_doubleIac = false;
};

} // namespace ftp
