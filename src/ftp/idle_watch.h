#pragma once

#include "ftp/session.h"
#include "ftp/side_task.h"

#include <functional>
#include <memory>

namespace ftp {

/// How often an idle line is kept alive: firewalls forget lines after some minutes. For a session
/// that waits in the middle of work see LoginData::keepAlive.
constexpr Milliseconds keepAliveEvery { 60000 };

/// Looks after a session while nothing runs: notices at once when the server hangs up, and keeps
/// the line alive with small commands.
class IdleWatch {
public:
    /// @param lost  called once when the connection has ended
    /// @param every  time without any command before one is sent
    IdleWatch(Session &session, std::function<void()> lost, Milliseconds every);
    void start();
    /// Ends the watch; the session may be used when this returns.
    Awaitable<void> stop();

private:
    Awaitable<Status> watch();
    Awaitable<Status> keepAlive();

    Session &m_session;
    std::function<void()> m_lost;
    Milliseconds m_every;
    std::unique_ptr<SideTask> m_task;
    asio::steady_timer m_timer;
    bool m_stopping = false;
    bool m_asking = false; ///< a keep-alive waits for its reply
    int m_turn = 0;
};

} // namespace ftp
