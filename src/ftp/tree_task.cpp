#include "ftp/tree_task.h"

namespace ftp {

std::shared_ptr<FolderPair> TreeTask::top(const std::string &remote, std::string local)
{
    auto pair = std::make_shared<FolderPair>();
    pair->remote = client().absolute(remote);
    pair->local = std::move(local);
    return pair;
}

void TreeTask::leaveOut(const std::string &path, const Error &error)
{
    const Hooks &hooks = client().session().hooks();
    if (hooks.reply
        && (error.replyCode == 451 || error.replyCode == 452 || error.replyCode == 552)) {
        hooks.reply(
            Reply { error.replyCode, { error.text } }); // the program explains full web space
    }
    m_crew.note(path + ": " + error.text);
    m_crew.failed(error);
}

/// A session besides the first is this program's own idea: what only it may not do just now, the
/// first one tries again.
void TreeTask::refused(Session &session, Job job, const Error &error)
{
    if (!m_crew.isFirst(session) && isPassingRefusal(error)) {
        m_again.push_back(std::move(job));
        m_crew.jobReturned();
        return;
    }
    leaveOut(shownPath(job), error);
    m_crew.jobDone();
}

std::optional<Job> TreeTask::takeAgain(const Session &session)
{
    if (m_again.empty() || !m_crew.isFirst(session)) {
        return std::nullopt;
    }
    Job job = std::move(m_again.front());
    m_again.pop_front();
    return job;
}

void TreeTask::brokeOff(Session &session, Job job, const Error &error)
{
    if (++job.tries >= mostTries || error.kind == ErrorKind::Aborted) {
        refused(session, std::move(job), error);
    } else {
        putBack(std::move(job));
        m_crew.jobReturned();
    }
}

} // namespace ftp
