#pragma once

#include "ftp/crew_task.h"
#include "ftp/localfile.h"

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

private:
    Awaitable<Status> send(Session &session, Flow &flow, OutgoingFile &file,
                           std::vector<std::string> checks, bool checksSent);
    Awaitable<Status> sendBytes(Session &session, Flow &flow, OutgoingFile &file);
    Awaitable<Status> verify(Session &session, OutgoingFile &file, std::vector<std::string> checks,
                             bool checksSent, Status stored);
    Awaitable<Result<std::int64_t>> resumeOffset(Session &session, const Job &job);

    CrewTask &m_task;
};

} // namespace ftp
