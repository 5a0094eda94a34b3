#pragma once

#include "ftp/control_line.h"

#include <functional>
#include <memory>
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
        Muted(const Dialogue &dialogue, bool wanted)
            : m_flag(dialogue.m_muted)
            , m_before(std::exchange(*m_flag, *m_flag || wanted))
        {
        }
        ~Muted() { *m_flag = m_before; }
        Muted(const Muted &) = delete;
        Muted &operator=(const Muted &) = delete;

    private:
        std::shared_ptr<bool> m_flag; ///< coroutines that never go on may outlive the dialogue
        bool m_before;
    };

    ControlLine &m_line;
    Milliseconds m_limit;
    Listener m_listener;
    std::string m_verb, m_secret; ///< of the command that is asked secretly
    std::shared_ptr<bool> m_muted = std::make_shared<bool>(false);
};

} // namespace ftp
