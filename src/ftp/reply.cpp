#include "ftp/reply.h"

#include <cctype>

namespace ftp {
namespace {

/// A reply of a hostile server must not eat the memory, not even with empty lines.
constexpr std::size_t longestReply = 1 << 20;

/// Code at the begin of a line, 0 when there is none. 6yz are protected replies (RFC 2228,
/// section 5); we cannot read them, and they count as refusals.
int codeOf(std::string_view line)
{
    if (line.size() < 3 || line[0] < '1' || line[0] > '6') {
        return 0;
    }
    for (const char digit : line.substr(0, 3)) {
        if (std::isdigit(static_cast<unsigned char>(digit)) == 0) {
            return 0;
        }
    }
    return (line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0');
}

} // namespace

std::string Reply::text() const
{
    std::string all;
    for (const std::string &line : lines) {
        if (!all.empty()) {
            all += "\r\n";
        }
        all += line;
    }
    return all;
}

std::string_view Reply::message() const
{
    const std::string_view last
        = lines.empty() ? std::string_view() : std::string_view(lines.back());
    return last.size() > 4 ? last.substr(4) : std::string_view();
}

Result<bool> ReplyParser::add(std::string_view line)
{
    m_bytes += line.size() + sizeof(std::string);
    if (m_bytes > longestReply) {
        return fail(ErrorKind::Protocol, "The server sent a reply without end");
    }
    const int code = codeOf(line);
    if (!inReply()) {
        const bool separated
            = line.size() == 3 || (line.size() > 3 && (line[3] == ' ' || line[3] == '-'));
        if (code == 0 || !separated) {
            return fail(ErrorKind::Protocol, "The server sent a line that is no reply");
        }
        m_reply.code = code;
        m_reply.lines.emplace_back(line);
        return line.size() == 3 || line[3] == ' ';
    }
    m_reply.lines.emplace_back(line);
    return code == m_reply.code && (line.size() == 3 || line[3] == ' ');
}

Reply ReplyParser::take()
{
    m_bytes = 0;
    return std::exchange(m_reply, Reply {});
}

tl::unexpected<Error> refusal(const Reply &reply)
{
    return fail(ErrorKind::Refused, reply.text(), reply.code);
}

} // namespace ftp
