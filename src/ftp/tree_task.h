#pragma once

#include "ftp/crew_task.h"
#include "ftp/tree_walk.h"

#include <deque>
#include <optional>
#include <string>

namespace ftp {

/// A whole folder as a crew's work, in either direction.
class TreeTask : public CrewTask {
public:
    TreeTask(Client &client, Type type)
        : CrewTask(client, type)
    {
    }

    void moved(Job &job, std::int64_t bytes) override
    {
        job.counted += bytes;
        m_crew.addBytes(bytes);
    }
    void done(const Job & /*job*/) override
    {
        m_crew.progressed();
        m_crew.jobDone();
    }
    bool quiet() const override { return true; } // thousands of them
    void refused(Session &session, Job job, const Error &error) override;

protected:
    /// So many files waiting are enough work; the memory needed must not grow with the tree.
    static constexpr std::size_t enoughFiles = 512;

    /// The two folders that the tree hangs on. @param remote  UTF-8, perhaps relative
    std::shared_ptr<FolderPair> top(const std::string &remote, std::string local);
    /// How a job is called in the log.
    [[nodiscard]] virtual std::string shownPath(const Job &job) = 0;
    void leaveOut(const std::string &path, const Error &error);
    void brokeOff(Session &session, Job job, const Error &error) override;
    /// A job that only the first session may still do.
    std::optional<Job> takeAgain(const Session &session);

private:
    std::deque<Job> m_again;
};

} // namespace ftp
