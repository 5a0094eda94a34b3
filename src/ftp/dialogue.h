#pragma once

#include "ftp/control_line.h"

#include <functional>
#include <string>
#include <utility>

namespace ftp {

/// A control line with its time limit and somebody who hears every reply. All dialogues (login,
/// proxies, transfers) are written over it, so that tests can put a scripted line in its place.
class Dialogue {
public:
    using Listener = std::function<void(const Reply &)>;

    Dialogue(ControlLine &line, Milliseconds limit, Listener listener)
        : m_line(line)
        , m_limit(limit)
        , m_listener(std::move(listener))
    {
    }

    /// Next reply, preliminary ones included. A 421 is ErrorKind::ConnectionClosed, since the
    /// server hangs up behind it (RFC 959, section 5.4).
    Awaitable<Result<Reply>> reply();
    Awaitable<Result<Reply>> reply(Milliseconds limit);
    /// Next reply that is not preliminary.
    Awaitable<Result<Reply>> finalReply() { return finalReply(m_limit); }
    Awaitable<Result<Reply>> finalReply(Milliseconds limit);
    /// Sends a command and returns its final reply, whatever it says.
    Awaitable<Result<Reply>> ask(std::string command);

    /// The same for a command that nobody may read: servers that repeat it in their replies are
    /// told with stars in its place.
    Awaitable<Result<Reply>> askSecretly(std::string verb, std::string secret);

    [[nodiscard]] ControlLine &line() { return m_line; }
    void setLimit(Milliseconds limit) { m_limit = limit; }
    /// Replies are not reported while what this returns lives: probes whose refusal means nothing
    /// to the user.
    /// @param wanted  false: nothing changes
    [[nodiscard]] auto muted(bool wanted = true) { return Muted(*this, wanted); }
    /// Lets another one hear the replies. @return who did before
    [[nodiscard]] Listener exchangeListener(Listener listener)
    {
        return std::exchange(m_listener, std::move(listener));
    }

private:
    /// Mutes and sets back what was before.
    class Muted {
    public:
        Muted(Dialogue &dialogue, bool wanted)
            : m_dialogue(dialogue)
            , m_before(std::exchange(dialogue.m_muted, dialogue.m_muted || wanted))
        {
        }
        ~Muted() { m_dialogue.m_muted = m_before; }
        Muted(const Muted &) = delete;
        Muted &operator=(const Muted &) = delete;

    private:
        Dialogue &m_dialogue;
        bool m_before;
    };

    ControlLine &m_line;
    Milliseconds m_limit;
    Listener m_listener;
    std::string m_verb, m_secret; ///< of the command that is asked secretly
    bool m_muted = false;
};

} // namespace ftp
