#pragma once

#include "ftp/crew_task.h"
#include "ftp/localfile.h"

#include <map>

namespace ftp {

/// Stores the files of a task.
class Storer final : public Mover {
public:
    explicit Storer(CrewTask &task)
        : m_task(task)
    {
    }

    Result<std::vector<std::string>> preparations(Session &session, Flow &flow) override;
    Awaitable<Status> flow(Session &session, Flow &flow, std::vector<Reply> replies,
                           LookAhead ahead) override;
    Awaitable<Status> again(Session &session, Job &job) override;
    Awaitable<Status> settle(Session &session) override;

private:
    /// What belongs to one upload besides its bytes.
    struct Checks {
        std::vector<std::string> commands; ///< that prove it
        bool sent = false; ///< they travel behind its STOR
        std::string time; ///< MFMT, once the file is known to be there
        bool timeOwed = false; ///< the reply to the MFMT of the file before is still to come
    };
    Awaitable<Status> lookBefore(Session &session, Job &job, const OutgoingFile &file);
    Status queueAll(Session &session, const Flow &flow, const OutgoingFile &file, Checks &checks);
    void takeTime(Session &session, const Reply &reply);
    Awaitable<Status> send(Session &session, Flow &flow, OutgoingFile &file, Checks checks);
    Awaitable<Status> sendBytes(Session &session, Flow &flow, OutgoingFile &file, bool timeOwed);
    Awaitable<Status> verify(Session &session, OutgoingFile &file, const Checks &checks,
                             Status stored);
    Awaitable<Result<std::int64_t>> resumeOffset(Session &session, const Job &job);

    CrewTask &m_task;
    /// MFMT of the last file of each session. It goes ahead of the next STOR: sent behind its own,
    /// it would give an older file that the server did not let us replace a new time.
    std::map<const Session *, std::string> m_times;
};

} // namespace ftp
