#pragma once

#include "ftp/session.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace ftp {

/// Commands that go out while the replies to the earlier ones still come in, so that many of them
/// share a round trip. For commands none of which decides about a later one. A server that stumbles
/// over that is sent one at a time.
class CommandStream {
public:
    /// Hears the answer to the command of that index, in their order; a refusal or a command that
    /// cannot be sent is an error.
    using Answered = std::function<void(std::size_t index, Status answer)>;

    CommandStream(Session &session, std::vector<std::string> commands, Answered answered)
        : m_session(session)
        , m_commands(std::move(commands))
        , m_answered(std::move(answered))
    {
    }

    /// Asked before more is sent; what is on its way is waited for.
    std::function<bool()> stopped = [] { return false; };

    /// @return an error when the line broke, and then the session cannot be used any more
    Awaitable<Status> run();

    /// What was sent and got no answer because the line broke: it may or may not have been done.
    [[nodiscard]] const std::deque<std::size_t> &unanswered() const { return m_underway; }

private:
    Awaitable<Status> send(std::size_t most);

    Session &m_session;
    std::vector<std::string> m_commands;
    Answered m_answered;
    std::size_t m_next = 0; ///< not sent yet from here on
    std::deque<std::size_t> m_underway;
};

} // namespace ftp
