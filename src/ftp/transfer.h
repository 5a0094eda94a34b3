#pragma once

#include "ftp/data_connection.h"
#include "ftp/listing.h"
#include "ftp/localfile.h"
#include "ftp/side_task.h"

#include <chrono>
#include <functional>
#include <optional>

namespace ftp {

/// Reports bytes not more often than a person can see, and the last count for sure.
class ProgressMeter {
public:
    using Report = std::function<void(std::int64_t bytes)>;
    /// @param lost  bytes of a wanted offset that could not be kept after all: reports count from
    ///              that offset on, so those of a file that starts again begin below zero
    explicit ProgressMeter(Report report, std::int64_t lost = 0)
        : m_report(std::move(report))
        , m_lost(lost)
    {
    }
    void start() { tell(0); }
    void add(std::int64_t bytes);
    void finish() { tell(m_bytes); }
    [[nodiscard]] std::int64_t bytes() const { return m_bytes; } ///< that were really moved

private:
    void tell(std::int64_t bytes);
    Report m_report;
    std::int64_t m_lost;
    std::int64_t m_bytes = 0;
    std::chrono::steady_clock::time_point m_next {};
};

/// The report that tells a session's progress hook.
[[nodiscard]] ProgressMeter::Report sessionProgress(Session &session);

/// After so many bytes in a row others get their turn.
inline constexpr std::size_t fairShare = 4 * 1024 * 1024;

/// Reads a data connection to its end, block by block.
Awaitable<Status> receiveAll(Session &session, DataConnection &data,
                             std::function<Status(std::string_view)> sink);

/// Waits for the preliminary reply to a transfer command that was sent, and permits sending.
/// Without it the data connection and what runs over it end; a refusal leaves the session usable.
Awaitable<Status> awaitPreliminary(Session &session, DataConnection &data, SideTask &running);
/// The same, and until the data connection stands.
Awaitable<Status> awaitStart(Session &session, DataConnection &data);
/// Sends a transfer command over a begun data connection and waits for its start.
Awaitable<Status> startTransfer(Session &session, DataConnection &data, std::string command);

/// Big files may take their time to reach the server's disk before it answers.
[[nodiscard]] inline Milliseconds patience(Milliseconds limit, std::int64_t size)
{
    return limit + Milliseconds(size / 20000);
}

/// Waits for the final reply of a transfer (RFC 959, section 5.4: 226 or 250).
/// @param broken  what went wrong on the data connection, if anything; the server's reply, which
///                tells the reason, wins over it
Awaitable<Status> finishTransfer(Session &session, DataConnection &data, Status broken,
                                 Milliseconds limit);

/// What is known of a listing when it is over.
struct ListingEnd {
    std::size_t bytes = 0; ///< length of the text
    bool understood = false; ///< as Listing::understood
    bool whole = true; ///< false when the text may have been cut short
    std::string rawText; ///< the text as received, only of one that was not understood

    /// There is a text that nobody understands.
    [[nodiscard]] bool isStrange() const
    {
        return rawText.find_first_not_of(" \t\r\n") != std::string::npos;
    }
};
/// Receives the text of a listing whose transfer command was sent.
/// @param started  what became of that command
/// @param before  bytes of the same listing when it was read before and was not whole: a server
/// that
///                ends it there again may just not know better
Awaitable<Result<ListingEnd>> receiveListing(Session &session, DataConnection &data, Status started,
                                             ListingParser parser,
                                             std::optional<std::size_t> before = {});
/// Lists the current folder, by MLSD where that tells the permissions, else by LIST with hidden
/// names where the server knows how. Entries are told as they arrive, times as the server told
/// them; a failure may come behind some of them.
Awaitable<Result<ListingEnd>> readListing(Session &session, ListingParser::Take take);
/// The same by LIST, which shows links as such on every known server; machine listings do not
/// always.
Awaitable<Result<ListingEnd>> readPlainListing(Session &session, ListingParser::Take take);

/// A single file to be fetched or stored.
struct FileRequest {
    std::string remotePath, localPath;
    std::int64_t offset = 0; ///< bytes of the target to keep
    Type type = Type::Binary;
    /// Bytes so far, counted from the wanted offset; empty: the session's progress hook.
    ProgressMeter::Report progress = {};
};
/// Why an offset was not used, for the log.
inline constexpr const char *onlyInBinary
    = "Fortsetzen ist nur im Binärmodus möglich; die Datei wird von vorn übertragen.";

/// Fetches the file. @return the offset that was really used
Awaitable<Result<std::int64_t>> retrieve(Session &session, FileRequest request);

/// The whole way of a file's bytes: waits for the connection, sends from offset on, ends the
/// stream.
Awaitable<Status> sendFile(Session &session, DataConnection &data, const OutgoingFile &file,
                           std::int64_t offset, Type type, ProgressMeter &meter);

/// Stores the file. @return the offset that was really used
Awaitable<Result<std::int64_t>> store(Session &session, FileRequest request);

} // namespace ftp
