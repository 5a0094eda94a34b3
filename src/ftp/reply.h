#pragma once

#include "ftp/error.h"

#include <string>
#include <string_view>
#include <vector>

namespace ftp {

/// One complete reply of the control connection (RFC 959, section 4.2).
struct Reply {
    int code = 0; ///< 100 to 699
    std::vector<std::string> lines; ///< all lines without line ends, the code still in front

    [[nodiscard]] bool preliminary() const { return code / 100 == 1; }
    [[nodiscard]] bool done() const { return code / 100 == 2; }
    [[nodiscard]] bool refused() const { return code >= 400; }
    /// All lines joined by CR LF, without one at the end.
    [[nodiscard]] std::string text() const;
    /// The text behind the code of the last line.
    [[nodiscard]] std::string_view message() const;
};

/// Collects lines until a reply is complete. Continuation lines may begin with anything; only a
/// line with the first line's code and a blank (or nothing) behind it closes.
class ReplyParser {
public:
    /// Takes one line without its line end.
    /// @return true when the reply is complete and can be taken; ErrorKind::Protocol when the
    ///         first line has no code.
    Result<bool> add(std::string_view line);
    [[nodiscard]] Reply take();
    [[nodiscard]] bool inReply() const { return !m_reply.lines.empty(); }

private:
    Reply m_reply;
    std::size_t m_bytes = 0;
};

/// The reply as an error of kind Refused with its code; the text is the whole reply.
[[nodiscard]] tl::unexpected<Error> refusal(const Reply &reply);

} // namespace ftp
