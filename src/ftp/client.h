#pragma once

#include "ftp/idle_watch.h"
#include "ftp/namebook.h"
#include "ftp/oddnames.h"
#include "ftp/transfer.h"

#include <memory>
#include <string>
#include <vector>

namespace ftp {

/// One entry of a folder for the program: names are UTF-8, times are UTC.
struct FolderEntry {
    std::string name; ///< UTF-8; not checked for safety as a local name
    char type = '-'; ///< 'd', 'l' or '-'
    std::int64_t size = 0;
    std::optional<std::int64_t> time; ///< seconds since 1970, UTC when the server's zone is known
    bool dayOnly = false; ///< time has no clock time
    bool serverClock = false; ///< time is still by the server's clock
    int permissions = -1; ///< 0 to 07777
    std::string target;
};

struct Folder {
    std::vector<FolderEntry> entries;
    bool understood = false;
    std::string rawText; ///< as received, only of a listing that was not understood
};

/// The engine for one server: a session and what belongs to it. Lives on its executor's thread;
/// paths are UTF-8, absolute or relative to the current folder. One operation at a time.
class Client {
public:
    Client(const asio::any_io_executor &executor, LoginData login, Hooks hooks,
           std::shared_ptr<ServerKnowledge> knowledge, int sessionLimit);
    ~Client();
    Client(const Client &) = delete;
    Client &operator=(const Client &) = delete;

    Awaitable<Status> open();
    Awaitable<Status> quit();
    /// Ends everything at once; the running operation fails with ErrorKind::Aborted.
    void abort();
    [[nodiscard]] bool usable() const { return m_session.usable(); }
    [[nodiscard]] bool aborted() const { return m_aborted; }
    /// Further sessions of a tree transfer, so that abort reaches them.
    void addHelper(std::shared_ptr<Session> session) { m_helpers.push_back(std::move(session)); }
    void removeHelper(const std::shared_ptr<Session> &session) { std::erase(m_helpers, session); }
    /// Watches the idle session; lost is called when the server ends it.
    void watchIdle(std::function<void()> lost, Milliseconds every = keepAliveEvery);
    Awaitable<void> stopWatching();

    [[nodiscard]] std::string folder(); ///< UTF-8
    Awaitable<Status> changeFolder(std::string path);
    Awaitable<Status> changeToParent();
    Awaitable<Result<bool>> supportsRestart() { return m_session.supportsRestart(); }
    Awaitable<Result<Folder>> list();

    /// @return the offset that was really used
    Awaitable<Result<std::int64_t>> get(std::string remotePath, std::string localPath,
                                        std::int64_t offset, Type type);
    Awaitable<Result<std::int64_t>> put(std::string localPath, std::string remotePath,
                                        std::int64_t offset, Type type);

    Awaitable<Status> makeFolder(std::string path);
    Awaitable<Status> removeFolder(std::string path);
    Awaitable<Status> removeFile(std::string path);
    Awaitable<Status> rename(std::string from, std::string to);
    Awaitable<Status> raw(std::string command);

    [[nodiscard]] Session &session() { return m_session; }
    [[nodiscard]] NameBook &names() { return m_names; }
    [[nodiscard]] int sessionLimit() const { return m_sessionLimit; }
    /// Raw bytes of a path, seen from the current folder.
    [[nodiscard]] std::string encode(const std::string &path);
    /// The same from the root, without "/" at the end.
    [[nodiscard]] std::string absolute(const std::string &path);

private:
    Awaitable<Status> learnZone(Entry telling);
    [[nodiscard]] static FolderEntry present(const Entry &entry);
    void showNames(Folder &shown, OddNames &odd);

    Session m_session;
    NameBook m_names;
    std::unique_ptr<IdleWatch> m_watch;
    std::vector<std::shared_ptr<Session>> m_helpers;
    bool m_aborted = false;
    int m_sessionLimit;
};

} // namespace ftp
