#pragma once

#include "ftp/client.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ftp {

/// How often a job whose line broke is tried.
inline constexpr int mostTries = 3;

/// How a crew works.
struct CrewRules {
    bool reconnects = true; ///< a lost connection is made again
    /// Bytes of the whole work so far and in all, not more often than a person can see; empty: the
    /// session's progress hook.
    std::function<void(std::int64_t, std::int64_t)> progress = {};
};

/// The sessions that work on one tree or list. The client's own session starts alone; others join
/// while there is work for them and the server lets them in.
class Crew {
public:
    /// One session's share of the work: takes jobs until there are none. Returns an error only when
    /// its session has broken; what was begun has then been given back.
    using Worker = std::function<Awaitable<Status>(Session &)>;

    Crew(Client &client, Worker worker, CrewRules rules = {});

    /// Tells that the work has begun, before there is anything to count.
    void announce() { m_meter.start(); }
    /// Works until everything is done. @return the failure that says most
    Awaitable<Status> run();

    /// Makes the first session's lost line again, before the work is shared out.
    /// @return the loss itself when that is not possible or of no use any more
    Awaitable<Status> recover(Error lost);

    /// Brings the client's session back to its folder, which its worker has left.
    Awaitable<void> returnHome();

    /// A job came in; another session may join for it.
    void jobAdded();
    /// A job is done or was given up; everything is done when none is left.
    void jobDone();
    /// Something was brought to its end: a lost line is worth making again.
    void progressed() { m_fruitless = 0; }
    /// A job was given back; who waits looks whether it may take it.
    void jobReturned() { wakeAll(); }
    /// Waits until there may be something to take; now and then the server hears from the session
    /// meanwhile, which may turn out to be lost. @return false when all is done or stopped
    Awaitable<bool> wait(Session &session);

    /// Keeps the first failure; the others go on unless it makes going on senseless.
    void failed(const Error &error);
    /// A line for the log.
    void note(const std::string &text) const { m_client.session().note(text); }
    [[nodiscard]] bool stopped() const { return m_stopped; }

    /// Sizes as servers tell them: even absurd ones must not overflow the sum.
    void addTotal(std::int64_t bytes)
    {
        m_total += std::min(bytes, std::numeric_limits<std::int64_t>::max() - m_total);
    }
    void addBytes(std::int64_t bytes) { m_meter.add(bytes); }
    /// Bytes that are known and did not come yet.
    [[nodiscard]] std::int64_t missing() const { return m_total - m_meter.bytes(); }
    [[nodiscard]] Client &client() { return m_client; }
    [[nodiscard]] bool isFirst(const Session &session) const
    {
        return &session == &m_client.session();
    }

private:
    Awaitable<void> workAlone();
    bool goesOnAfter(const Error &lost);
    Awaitable<bool> news();
    Awaitable<void> rest(Milliseconds pause);
    Awaitable<Status> reopenWhileOthersWork();
    Awaitable<void> join(std::shared_ptr<Session> session);
    Awaitable<Status> reopen();
    Awaitable<void> dismiss();
    void hire();
    void wakeAll();
    [[nodiscard]] Hooks quietHooks() const;

    Client &m_client;
    Worker m_worker;
    CrewRules m_rules;
    std::string m_home; ///< folder of the client's session at the start
    asio::steady_timer m_news; ///< cancelled when something changes, see news()
    std::optional<Error> m_firstError;
    ProgressMeter m_meter;
    std::vector<std::shared_ptr<Session>> m_joining; ///< helpers that are still logging in
    std::int64_t m_total = 0;
    int m_fruitless = 0; ///< connections lost since something was brought to its end
    int m_open = 0; ///< jobs not done
    int m_waiting = 0; ///< workers with nothing to do
    int m_helpers = 0; ///< sessions besides the first, also those still logging in
    bool m_lost = false; ///< the first session ended before the work did
    bool m_homeward = false; ///< helpers leave, so that the server takes the first one back
    bool m_full = false; ///< the server takes no more
    bool m_stopped = false;
};

} // namespace ftp
