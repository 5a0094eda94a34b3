#pragma once

#include "ftp/session.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>

namespace ftp {

/// Commands that go out while the replies to the earlier ones still come in, so that many of them
/// share a round trip. For commands none of which decides about a later one. A server that stumbles
/// over that is sent one at a time.
class CommandStream {
public:
    /// Gives the next command, nothing behind the last one.
    using Source = std::function<std::optional<std::string>()>;
    struct Command {
        std::size_t index = 0; ///< counts from 0
        std::string text;
        Status sendable {}; ///< else it waits for its turn to be told, and no reply will come
    };
    /// Hears the answer to a command; a refusal or a command that cannot be sent is an error.
    using Answered = std::function<void(const Command &command, Status answer)>;

    CommandStream(Session &session, Source source, Answered answered)
        : m_session(session)
        , m_source(std::move(source))
        , m_answered(std::move(answered))
        , m_next(m_source())
    {
    }

    /// Asked before more is sent; what is on its way is waited for.
    std::function<bool()> stopped = [] { return false; };

    /// @return an error when the line broke, and then the session cannot be used any more
    Awaitable<Status> run();

    /// What was sent and got no answer because the line broke: it may or may not have been done.
    [[nodiscard]] const std::deque<Command> &unanswered() const { return m_underway; }

private:
    Awaitable<Status> send(std::size_t most);

    Session &m_session;
    Source m_source;
    Answered m_answered;
    std::optional<std::string> m_next; ///< not sent yet
    std::size_t m_sent = 0;
    std::deque<Command> m_underway;
};

} // namespace ftp
