#include "ftp/client.h"

#include "ftp/file_facts.h"
#include "ftp/path.h"

#include <algorithm>
#include <cctype>

namespace ftp {
namespace {

/// Where the file name of a command typed by the program begins: only that is in the server's
/// bytes.
std::size_t nameIn(const std::string &command)
{
    constexpr std::size_t modeAt = std::string_view("SITE chmod ").size();
    const std::size_t blank
        = command.starts_with("SITE chmod ") ? command.find(' ', modeAt) : std::string::npos;
    return blank == std::string::npos ? 0 : blank + 1;
}

/// Whether an entry's time and the file's MDTM tell the server's zone.
bool tellsZone(const Entry &entry)
{
    return entry.type == '-' && entry.time && !entry.utc
        && entry.precision != Entry::Precision::Day;
}

bool saysExists(const std::string &text)
{
    std::string upper = text;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    return upper.find("EXISTS") != std::string::npos;
}

} // namespace

Client::Client(const asio::any_io_executor &executor, LoginData login, Hooks hooks,
               std::shared_ptr<ServerKnowledge> knowledge, int sessionLimit)
    : m_session(executor, std::move(login), std::move(hooks), std::move(knowledge))
    , m_sessionLimit(std::max(sessionLimit, 1))
{
}

Client::~Client() = default;

Awaitable<Status> Client::open()
{
    Status opened = co_await m_session.open();
    m_names.setUtf8Announced(m_session.features().utf8);
    co_return opened;
}

Awaitable<Status> Client::quit() { co_return co_await m_session.quit(); }

void Client::abort()
{
    m_aborted = true;
    m_session.abort();
    for (const auto &helper : m_helpers) {
        helper->abort();
    }
}

void Client::watchIdle(std::function<void()> lost, Milliseconds every)
{
    m_watch = std::make_unique<IdleWatch>(m_session, std::move(lost), every);
    m_watch->start();
}

Awaitable<void> Client::stopWatching()
{
    if (m_watch) {
        co_await m_watch->stop();
        m_watch.reset();
    }
    // Some servers say more than was asked. Left unread it would answer the next command.
    constexpr int mostStray = 100; // one that never stops is of no use
    constexpr Milliseconds patience { 2000 }; // with the rest of a line that was begun
    for (int stray = 0; usable() && m_session.line().hasUnreadBytes(); ++stray) {
        auto reply = co_await m_session.dialogue().reply(patience);
        if (!reply || stray == mostStray) {
            m_session.markBroken();
        }
    }
}

std::string Client::folder() { return m_names.decodePath(m_session.folder()); }

std::string Client::encode(const std::string &path) { return m_names.encode(path, folder()); }

std::string Client::absolute(const std::string &path)
{
    const std::string raw = withoutEndSlashes(encode(path));
    return raw.starts_with('/') ? raw : joinPath(m_session.folder(), raw);
}

Awaitable<Status> Client::changeFolder(std::string path)
{
    std::string raw = encode(withoutEndSlashes(path));
    co_return co_await m_session.changeFolder(std::move(raw));
}

Awaitable<Status> Client::changeToParent() { co_return co_await m_session.changeToParent(); }

Awaitable<Status> Client::learnZone(Entry telling)
{
    ServerKnowledge &server = m_session.knowledge();
    if (server.zoneOffset || server.noModificationTime || !tellsZone(telling)) {
        co_return Status {};
    }
    const auto muted = m_session.dialogue().muted();
    auto answer = co_await m_session.ask("MDTM " + telling.name);
    if (!answer) {
        co_return answer.error().kind == ErrorKind::BadArgument
            ? Status {}
            : Status(tl::unexpected(answer.error()));
    }
    const auto utc = answer->code == 213 ? parseTimeVal(answer->message()) : std::nullopt;
    if (utc) {
        server.zoneOffset = zoneOf(toEpoch(*telling.time), toEpoch(*utc));
    }
    server.noModificationTime = answer->code == 500 || answer->code == 502;
    co_return Status {};
}

FolderEntry Client::present(const Entry &entry)
{
    FolderEntry shown;
    shown.name = entry.name;
    shown.type = entry.type;
    shown.size = entry.size;
    shown.permissions = entry.permissions;
    shown.target = entry.target;
    shown.dayOnly = entry.time && entry.precision == Entry::Precision::Day;
    shown.serverClock = entry.time && !entry.utc && !shown.dayOnly;
    if (entry.time) {
        shown.time = toEpoch(*entry.time);
    }
    return shown;
}

/// Names come raw and are shown as text.
void Client::showNames(Folder &shown, OddNames &odd)
{
    if (!odd.none()) {
        for (const FolderEntry &entry : shown.entries) {
            odd.compare(entry.name);
        }
    }
    const std::string here = folder();
    for (FolderEntry &entry : shown.entries) {
        const std::string raw = std::exchange(entry.name, odd.text(entry.name));
        m_names.keep(here, entry.name, raw);
    }
}

Awaitable<Result<Folder>> Client::list()
{
    Folder result;
    Entry telling;
    OddNames odd;
    ListingParser::Take take = [&](Entry &&entry) {
        odd.learn(entry.name);
        result.entries.push_back(present(entry));
        if (!tellsZone(telling)) {
            telling = std::move(entry);
        }
    };
    auto end = co_await readListing(m_session, std::move(take));
    if (!end) {
        co_return tl::unexpected(end.error());
    }
    showNames(result, odd);
    Status zone = co_await learnZone(std::move(telling));
    if (!zone) {
        co_return tl::unexpected(zone.error());
    }
    const std::int64_t offset = m_session.knowledge().zoneOffset.value_or(0);
    for (FolderEntry &entry : result.entries) {
        if (entry.serverClock) {
            entry.time = *entry.time - offset;
            entry.serverClock = false;
        }
    }
    result.understood = end->understood;
    result.rawText = std::move(end->rawText);
    co_return result;
}

Awaitable<Result<std::int64_t>> Client::get(std::string remotePath, std::string localPath,
                                            std::int64_t offset, Type type)
{
    FileRequest request { .remotePath = encode(remotePath),
                          .localPath = std::move(localPath),
                          .offset = offset,
                          .type = type };
    co_return co_await retrieve(m_session, std::move(request));
}

Awaitable<Result<std::int64_t>> Client::put(std::string localPath, std::string remotePath,
                                            std::int64_t offset, Type type)
{
    FileRequest request { .remotePath = encode(remotePath),
                          .localPath = std::move(localPath),
                          .offset = offset,
                          .type = type };
    co_return co_await store(m_session, std::move(request));
}

Awaitable<Status> Client::makeFolder(std::string path)
{
    const std::string raw = encode(path);
    const auto muted = m_session.dialogue().muted(); // told below, perhaps with an addition
    auto answer = co_await m_session.ask("MKD " + raw);
    if (answer && answer->refused() && !saysExists(answer->text())) {
        auto exists = co_await m_session.folderExists(raw);
        if (exists && *exists) {
            answer->lines.back() += " (exists)"; // not every server says that the name is taken
        }
    }
    if (!answer) {
        co_return tl::unexpected(answer.error());
    }
    if (m_session.hooks().reply) {
        m_session.hooks().reply(*answer);
    }
    co_return answer->done() ? Status {} : Status(refusal(*answer));
}

Awaitable<Status> Client::removeFolder(std::string path)
{
    const std::string raw = encode(withoutEndSlashes(path));
    co_return co_await m_session.expectDone("RMD " + raw);
}

Awaitable<Status> Client::removeFile(std::string path)
{
    co_return co_await m_session.expectDone("DELE " + encode(path));
}

Awaitable<Status> Client::rename(std::string from, std::string to)
{
    std::vector<std::string> commands { "RNFR " + encode(from), "RNTO " + encode(to) };
    if (auto possible = encodeCommand(commands.back()); !possible) {
        co_return tl::unexpected(possible.error()); // before the first one is on its way
    }
    // Callers have just looked whether the new name is free. Both in one packet leave others the
    // least time to take it, for most servers replace without a word.
    const auto muted = m_session.dialogue().muted();
    auto answers = co_await m_session.askAll(std::move(commands));
    if (!answers) {
        co_return tl::unexpected(answers.error());
    }
    // When the old name is refused, the answer about the new one says nothing.
    if (answers->front().refused()) {
        answers->pop_back();
    }
    if (const auto &told = m_session.hooks().reply) {
        std::for_each(answers->begin(), answers->end(), told);
    }
    co_return answers->back().done() ? Status {} : Status(refusal(answers->back()));
}

Awaitable<Status> Client::raw(std::string command)
{
    const std::size_t name = nameIn(command);
    co_return co_await m_session.expectDone(command.substr(0, name) + encode(command.substr(name)));
}

} // namespace ftp
