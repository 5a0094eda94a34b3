#pragma once

#include "ftp/client.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ftp {

/// The sessions that work on one tree. The client's own session starts alone; others join while
/// there is work for them and the server lets them in.
class Crew {
public:
    /// One session's share of the work: takes jobs until there are none. Returns an error only when
    /// its session has broken; what was begun has then been given back.
    using Worker = std::function<Awaitable<Status>(Session &)>;

    Crew(Client &client, Worker worker);

    /// Works until everything is done. @return the first failure
    Awaitable<Status> run();

    /// Brings the client's session back to its folder, which its worker has left.
    Awaitable<void> returnHome();

    /// A job came in; another session may join for it.
    void jobAdded();
    /// A job is done or was given up; everything is done when none is left.
    void jobDone();
    /// Waits until there may be something to take. @return false when all is done or stopped
    Awaitable<bool> wait();

    /// Keeps the first failure; the others go on unless it makes going on senseless.
    void failed(const Error &error);
    /// A line for the log.
    void note(const std::string &text) const;
    [[nodiscard]] bool stopped() const { return m_stopped; }

    void addTotal(std::int64_t bytes) { m_total += bytes; }
    void addBytes(std::int64_t bytes);
    [[nodiscard]] Client &client() { return m_client; }

private:
    Awaitable<void> workAlone();
    Awaitable<void> join(std::shared_ptr<Session> session);
    Awaitable<Status> reopen();
    void hire();
    void wakeAll();
    [[nodiscard]] Hooks quietHooks() const;

    Client &m_client;
    Worker m_worker;
    std::string m_home; ///< folder of the client's session at the start
    asio::steady_timer m_news; ///< cancelled when something changes
    std::optional<Error> m_firstError;
    std::function<void(std::int64_t, std::int64_t)> m_progress;
    ProgressMeter m_meter;
    std::int64_t m_total = 0;
    int m_open = 0; ///< jobs not done
    int m_waiting = 0; ///< workers with nothing to do
    int m_helpers = 0; ///< sessions besides the first, also those still logging in
    bool m_full = false; ///< the server takes no more
    bool m_stopped = false;
};

} // namespace ftp
