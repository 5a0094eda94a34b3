#pragma once

#include "ftp/error.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ftp {

/// A failed system call on a local file, as an error of kind LocalFile or LocalDiskFull.
[[nodiscard]] tl::unexpected<Error> localError(int code, const std::string &path);

/// Writes a small file through a temporary one beside it, mode 0600.
Status replaceFile(const std::string &path, std::string_view text);

/// Size of a regular file; nothing when there is none.
[[nodiscard]] std::optional<std::int64_t> fileSize(const std::string &path);

/// Time of its last change, seconds since 1970, UTC; nothing when there is none.
[[nodiscard]] std::optional<std::int64_t> fileTime(const std::string &path);

/// Bytes that a folder's file system still takes from this user; nothing when it does not tell.
[[nodiscard]] std::optional<std::int64_t> freeSpace(const std::string &folder);

/// Bytes that a folder's file system has in all; nothing when it does not tell.
[[nodiscard]] std::optional<std::int64_t> diskSize(const std::string &folder);

/// A local file that is being fetched.
///
/// A new file is written in place, so that a broken transfer can be resumed. An existing one that
/// is replaced stays as it is until the new one is complete: the bytes go into a file beside it.
/// Its other names, in a backup of links for example, keep the older content. Only where its folder
/// takes no further file it is written in place as well.
class IncomingFile {
public:
    IncomingFile() = default;
    ~IncomingFile();
    IncomingFile(const IncomingFile &) = delete;
    IncomingFile &operator=(const IncomingFile &) = delete;

    /// @param offset  bytes of the existing file to keep; 0 writes it anew
    Status open(const std::string &path, std::int64_t offset);
    Status write(std::string_view bytes);
    /// Whether the bytes go into the file itself, so that an earlier content of it is gone.
    [[nodiscard]] bool inPlace() const { return m_temporary.empty(); }
    /// Completes the file: sets its modification time (seconds since 1970, UTC) when known and puts
    /// it in the place of an older one.
    Status commit(std::optional<std::int64_t> modified);

private:
    void openBeside(const std::string &path, unsigned mode);

    std::string m_path;
    std::string m_temporary; ///< empty when written in place
    int m_file = -1;
};

/// A local file that is being sent: its size is the one it had when opened.
class OutgoingFile {
public:
    OutgoingFile() = default;
    ~OutgoingFile();
    OutgoingFile(const OutgoingFile &) = delete;
    OutgoingFile &operator=(const OutgoingFile &) = delete;

    Status open(const std::string &path); ///< only regular files; never waits for a pipe
    /// Bytes from offset on; 0 at the end. @param size  of the buffer
    Result<std::size_t> read(std::int64_t offset, char *buffer, std::size_t size) const;
    [[nodiscard]] std::int64_t size() const { return m_size; }
    [[nodiscard]] std::int64_t modified() const { return m_modified; } ///< seconds since 1970, UTC
    [[nodiscard]] const std::string &path() const { return m_path; }

private:
    std::string m_path;
    int m_file = -1;
    std::int64_t m_size = 0, m_modified = 0;
};

} // namespace ftp
