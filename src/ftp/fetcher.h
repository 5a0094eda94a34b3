#pragma once

#include "ftp/crew_task.h"

namespace ftp {

/// Fetches the files of a task, and the listings that tell of more.
class Fetcher final : public Mover {
public:
    explicit Fetcher(CrewTask &task)
        : m_task(task)
    {
    }

    Result<std::vector<std::string>> preparations(Session &session, Flow &flow) override;
    /// In active mode the server needs nothing from us before it may begin.
    std::optional<std::string> transferAhead(Session &session, const Flow &flow) override;
    Awaitable<Status> flow(Session &session, Flow &flow, std::vector<Reply> replies,
                           LookAhead ahead) override;
    Awaitable<Status> again(Session &session, Job &job) override;
    /// Whether sessions left their folder for a listing.
    [[nodiscard]] bool entered() const { return m_entered; }

private:
    Awaitable<Result<bool>> takeReplies(Session &session, Flow &flow, std::vector<Reply> replies);
    Awaitable<Status> receiveFile(Session &session, Flow &flow);
    Awaitable<Status> receiveBytes(Session &session, Flow &flow);
    Awaitable<Status> receiveListing(Session &session, Flow &flow);
    [[nodiscard]] static std::string transferCommand(Session &session, const Job &job);

    Status listingRefused(Session &session, Flow &flow, const Error &error);
    Status listingCut(Session &session, Flow &flow, std::size_t bytes);
    void machineMustDo(const Job &job);
    Status takeListing(Session &session, Job &job, TreeListing listing);

    CrewTask &m_task;
    bool m_entered = false;
};

} // namespace ftp
