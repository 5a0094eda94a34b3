#pragma once

#include "ftp/crew.h"
#include "ftp/data_connection.h"
#include "ftp/path.h"
#include "ftp/tree_listing.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ftp {

/// A folder on both sides, kept as long as something in it is to be done.
struct FolderPair {
    std::string remote; ///< raw bytes, absolute
    std::string local;
    int depth = 0;
    std::string above = {}; ///< where the server says that the folder above is; empty = unknown
};

/// One file to be moved, or a remote folder to be listed.
struct Job {
    std::shared_ptr<const FolderPair> folder;
    std::string name; ///< raw bytes; empty: the folder itself is to be listed
    std::string localName;
    std::size_t place = 0; ///< in a list of files
    std::int64_t size = -1; ///< as listed, -1 unknown
    std::int64_t time = 0; ///< seconds since 1970; 0 unknown; by the server's clock if that is all
    std::int64_t counted = 0; ///< bytes that the progress knows of
    int tries = 0;
    /// What stands at the target is what this transfer brought so far.
    bool begun = false;
    std::optional<std::int64_t> before; ///< size of what stood at an upload's target; 0 nothing
    bool link = false;
    /// What MLSD told of a folder, until LIST shows the links.
    std::shared_ptr<TreeListing> machine;
    std::string real = {}; ///< where the server says that the listed folder is; empty = unknown
    bool plain = false; ///< to be listed without any option
    bool optionRefused = false; ///< that is because the server refused it
    bool noMachine = false; ///< MLSD was refused
    std::optional<std::size_t> cut; ///< bytes of its listing when that was not whole
    bool unlisted
        = false; ///< size and time are to be asked for, since no listing tells them for sure

    [[nodiscard]] bool isFolder() const { return name.empty(); }
    [[nodiscard]] std::string remotePath() const
    {
        return isFolder() ? folder->remote : joinPath(folder->remote, name);
    }
    [[nodiscard]] std::string localPath() const { return joinPath(folder->local, localName); }
};

/// What is on its way for one job.
struct Flow {
    Job job;
    std::unique_ptr<DataConnection> data;
    std::vector<std::string> facts; ///< those of its preparations that ask for size and time
    std::size_t owed = 0; ///< replies to its preparations that are still to come
    bool withOption = false; ///< it is a listing with hidden names
    bool asked = false; ///< the transfer command went out with the preparations
};

/// Sends the preparations of the next job behind the transfer command of the one that flows.
using LookAhead = std::function<Status()>;

/// How one job is carried out; one object for each direction.
class Mover {
public:
    virtual ~Mover() = default;

    /// The commands that come before the transfer command, all of which may travel in one packet.
    virtual Result<std::vector<std::string>> preparations(Session &session, Flow &flow) = 0;
    /// The transfer command, where it may travel with the preparations of a job that is only next.
    virtual std::optional<std::string> transferAhead(Session & /*session*/, const Flow & /*flow*/)
    {
        return std::nullopt;
    }
    /// The rest. The outcome is told to the task, except that of a job that broke off, which is the
    /// error returned; the session goes on when it is usable and brokeInTheMiddle().
    /// @param replies  those to the preparations
    virtual Awaitable<Status> flow(Session &session, Flow &flow, std::vector<Reply> replies,
                                   LookAhead ahead)
        = 0;
    /// A file that broke off once: continued step by step.
    virtual Awaitable<Status> again(Session &session, Job &job) = 0;
    /// Nothing else is to be done just now: whatever waited for the next job is done alone.
    virtual Awaitable<Status> settle(Session & /*session*/) { co_return Status {}; }
};

/// Work that a crew does job by job: where the jobs come from and what becomes of them.
class CrewTask {
public:
    virtual ~CrewTask() = default;
    CrewTask(const CrewTask &) = delete;
    CrewTask &operator=(const CrewTask &) = delete;

    [[nodiscard]] Type type() const { return m_type; }
    [[nodiscard]] Client &client() { return m_crew.client(); }

    /// Bytes of a job that went over the line.
    virtual void moved(Job &job, std::int64_t bytes) = 0;
    virtual void done(const Job &job) = 0;
    /// The server or the disk does not want it.
    virtual void refused(Session &session, Job job, const Error &error) = 0;
    /// A link that cannot be fetched as a file; it may lead to a folder.
    virtual void linkRefused(const Job &job) { done(job); }
    virtual void listed(const Job & /*job*/, TreeListing /*listing*/) { }
    /// A job that was not begun, or a listing that has to be asked for in another way.
    virtual void putBack(Job job) = 0;
    /// Whether the replies are of no interest to the user.
    [[nodiscard]] virtual bool quiet() const { return false; }
    /// Whether commands may follow a transfer command at once.
    [[nodiscard]] virtual bool looksAhead(Session &session) const { return session.lookAhead(); }

protected:
    CrewTask(Client &client, Type type, CrewRules rules = {})
        : m_crew(
            client, [this](Session &session) { return work(session); }, std::move(rules))
        , m_type(type)
    {
    }

    /// One session's share: takes jobs until there are none.
    Awaitable<Status> work(Session &session);

    virtual Mover &mover() = 0;
    virtual std::optional<Job> take(Session &session) = 0;
    /// A session turns to a job that was taken.
    virtual void begun(Session & /*session*/, const Job & /*job*/) { }
    /// A job stopped in the middle; it may be tried again.
    virtual void brokeOff(Session &session, Job job, const Error &error) = 0;

    Crew m_crew;

private:
    Awaitable<Status> workOff(Session &session);
    Awaitable<Status> carryOut(Session &session, Flow &current, std::optional<Flow> &next);
    Awaitable<Result<std::vector<Reply>>> prepare(Session &session, Flow &flow);
    Status lookAhead(Session &session, std::optional<Flow> &next);
    bool blamesLookAhead(const Error &error);

    Type m_type;
    int m_cutShort = 0; ///< jobs that ended too early for no fault of the server, as it seems
};

} // namespace ftp
