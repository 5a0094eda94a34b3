#include "ftp/localfile.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace ftp {
namespace {

/// A name beside path that nobody else uses; long names are cut to what file systems take.
std::string temporaryBeside(const std::string &path)
{
    const std::size_t slash = path.rfind('/');
    const std::string folder
        = slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
    const std::string name = path.substr(folder.size());
    // The six X are what mkostemp fills in.
    return folder + "." + name.substr(0, 200) + ".tarvelo-XXXXXX";
}

Status writeAll(int file, std::string_view bytes, const std::string &path)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(file, bytes.data(), bytes.size());
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            return localError(errno, path);
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return {};
}

} // namespace

tl::unexpected<Error> localError(int code, const std::string &path)
{
    // EFBIG is none of them: a file beyond 4 GB on a FAT stick leaves room for every other one.
    const bool full = code == ENOSPC || code == EDQUOT;
    return fail(full ? ErrorKind::LocalDiskFull : ErrorKind::LocalFile,
                std::string(std::strerror(code)) + ": " + path);
}

Status replaceFile(const std::string &path, std::string_view text)
{
    std::string temporary = temporaryBeside(path);
    const int file = ::mkostemp(temporary.data(), O_CLOEXEC); // mode 0600
    if (file < 0) {
        return localError(errno, path);
    }
    Status written = writeAll(file, text, path);
    if (written && ::fsync(file) != 0) {
        written = localError(errno, path);
    }
    ::close(file);
    if (written && ::rename(temporary.c_str(), path.c_str()) != 0) {
        written = localError(errno, path);
    }
    if (!written) {
        ::unlink(temporary.c_str());
    }
    return written;
}

std::optional<std::int64_t> fileSize(const std::string &path)
{
    struct stat status { };
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return status.st_size;
}

std::optional<std::int64_t> fileTime(const std::string &path)
{
    struct stat status { };
    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return status.st_mtime;
}

namespace {

struct DiskSpace {
    std::int64_t all = 0, free = 0; ///< bytes
};

std::optional<DiskSpace> spaceOf(const std::string &folder)
{
    struct statvfs status { };
    if (::statvfs(folder.c_str(), &status) != 0 || status.f_blocks == 0) {
        return std::nullopt; // some network file systems have nothing to say
    }
    const auto block = static_cast<std::int64_t>(status.f_frsize);
    return DiskSpace { static_cast<std::int64_t>(status.f_blocks) * block,
                       static_cast<std::int64_t>(status.f_bavail) * block };
}

} // namespace

std::optional<std::int64_t> freeSpace(const std::string &folder)
{
    const auto space = spaceOf(folder);
    return space ? std::optional(space->free) : std::nullopt;
}

std::optional<std::int64_t> diskSize(const std::string &folder)
{
    const auto space = spaceOf(folder);
    return space ? std::optional(space->all) : std::nullopt;
}

IncomingFile::~IncomingFile()
{
    if (m_file >= 0) {
        ::close(m_file);
        if (!m_temporary.empty()) {
            ::unlink(m_temporary.c_str());
        }
    }
}

void IncomingFile::openBeside(const std::string &path, unsigned mode)
{
    std::error_code error;
    // What a link leads to is replaced, not the link.
    const std::filesystem::path target = std::filesystem::canonical(path, error);
    m_path = error ? path : target.string();
    m_temporary = temporaryBeside(m_path);
    m_file = ::mkostemp(m_temporary.data(), O_CLOEXEC);
    if (m_file < 0) {
        m_temporary.clear();
        return;
    }
    (void)::fchmod(m_file, mode & 07777); // a file system without modes is no reason to fail
}

Status IncomingFile::open(const std::string &path, std::int64_t offset)
{
    m_path = path;
    struct stat status { };
    const bool exists = ::stat(path.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        return fail(ErrorKind::LocalFile, "Not a regular file: " + path);
    }
    if (offset > 0) {
        m_file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (m_file >= 0 && ::lseek(m_file, offset, SEEK_SET) < 0) {
            return localError(errno, path);
        }
        return m_file >= 0 ? Status {} : Status(localError(errno, path));
    }
    const bool aside = exists && status.st_size > 0 && ::access(path.c_str(), W_OK) == 0;
    if (aside) {
        openBeside(path, status.st_mode);
    }
    if (!aside || (m_file < 0 && errno == EACCES)) {
        m_file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    }
    return m_file >= 0 ? Status {} : Status(localError(errno, path));
}

Status IncomingFile::write(std::string_view bytes) { return writeAll(m_file, bytes, m_path); }

Status IncomingFile::commit(std::optional<std::int64_t> modified)
{
    if (modified) {
        const std::array<timespec, 2> times { timespec { 0, UTIME_OMIT },
                                              timespec { *modified, 0 } };
        // A file system that keeps no times is no reason to fail.
        if (::futimens(m_file, times.data()) != 0) {
            errno = 0;
        }
    }
    bool kept = ::close(std::exchange(m_file, -1)) == 0; // a network disk may be full only now
    if (!m_temporary.empty()) {
        kept = kept && ::rename(m_temporary.c_str(), m_path.c_str()) == 0;
        if (!kept) {
            const int code = errno;
            ::unlink(m_temporary.c_str());
            errno = code;
        }
    }
    return kept ? Status {} : Status(localError(errno, m_path));
}

OutgoingFile::~OutgoingFile()
{
    if (m_file >= 0) {
        ::close(m_file);
    }
}

Status OutgoingFile::open(const std::string &path)
{
    m_path = path;
    m_file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (m_file < 0) {
        return localError(errno, path);
    }
    struct stat status { };
    if (::fstat(m_file, &status) != 0) {
        return localError(errno, path);
    }
    if (!S_ISREG(status.st_mode)) {
        return fail(ErrorKind::LocalFile, "Not a regular file: " + path);
    }
    m_size = status.st_size;
    m_modified = status.st_mtim.tv_sec;
    return {};
}

Result<std::size_t> OutgoingFile::read(std::int64_t offset, char *buffer, std::size_t size) const
{
    for (;;) {
        const ssize_t count = ::pread(m_file, buffer, size, offset);
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        if (errno != EINTR) {
            return localError(errno, m_path);
        }
    }
}

} // namespace ftp
