#include "fileops/localtree.h"

#include "ftp/ftplocalnames.h"

#include <QDirIterator>

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// A file descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    Descriptor(Descriptor &&other) noexcept
        : m_number(std::exchange(other.m_number, -1))
    {
    }
    Descriptor &operator=(Descriptor &&) = delete;
    ~Descriptor()
    {
        if (m_number >= 0) {
            ::close(m_number);
        }
    }
    [[nodiscard]] int get() const { return m_number; }
    [[nodiscard]] int release() { return std::exchange(m_number, -1); }

private:
    int m_number;
};

struct CloseFolder {
    void operator()(DIR *folder) const { ::closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

/// Opens a real folder for reading and gives its owner all rights first. A link in its place is an
/// error: nothing is ever followed, not even when it was put there a moment ago.
OpenFolder openFolder(int parent, const char *name)
{
    const Descriptor handle(::openat(parent, name, O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat info { };
    if (handle.get() < 0 || ::fstat(handle.get(), &info) != 0) {
        return nullptr;
    }
    if ((info.st_mode & S_IRWXU) != S_IRWXU) {
        const QByteArray self = "/proc/self/fd/" + QByteArray::number(handle.get());
        if (::chmod(self.constData(), (info.st_mode & 07777U) | S_IRWXU) != 0) {
            return nullptr;
        }
    }
    Descriptor readable(::openat(handle.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (readable.get() < 0) {
        return nullptr;
    }
    return OpenFolder(::fdopendir(readable.release()));
}

/// The walk of one removal.
class Removal {
public:
    explicit Removal(const std::atomic_bool &stop)
        : m_stop(stop)
    {
    }

    /// Empties a folder; whether it is removed, too, is the second step.
    void empty(int parent, const QByteArray &name, const QByteArray &path);
    void remove(int parent, const QByteArray &name, const QByteArray &path);
    [[nodiscard]] std::optional<QString> result() const { return m_first; }

private:
    /// One pass over a folder. @return how many entries went
    int pass(DIR *folder, const QByteArray &path);
    bool removeEntry(int parent, const char *name, const QByteArray &path);
    void failed(const QByteArray &path, int error);

    const std::atomic_bool &m_stop;
    std::optional<QString> m_first; ///< why the first thing was left standing
};

void Removal::failed(const QByteArray &path, int error)
{
    if (!m_first) {
        m_first = textOfName(path) + u": "_s + QString::fromLocal8Bit(std::strerror(error));
    }
}

void Removal::empty(int parent, const QByteArray &name, const QByteArray &path)
{
    const OpenFolder folder = openFolder(parent, name.constData());
    if (!folder) {
        failed(path, errno);
        return;
    }
    // Removing entries may make the reading skip others, and somebody may still be writing into
    // the folder: it is read again for as long as that helps.
    constexpr int mostPasses = 100;
    for (int passes = 0; passes < mostPasses && pass(folder.get(), path) > 0; ++passes) {
        ::rewinddir(folder.get());
    }
}

int Removal::pass(DIR *folder, const QByteArray &path)
{
    int gone = 0;
    while (!m_stop) {
        errno = 0;
        const dirent *entry = ::readdir(folder);
        if (!entry) {
            if (errno != 0) {
                failed(path, errno);
            }
            break;
        }
        const QByteArray name(entry->d_name);
        if (name != "." && name != ".." && removeEntry(::dirfd(folder), name, path + '/' + name)) {
            ++gone;
        }
    }
    if (m_stop) {
        failed(path, ECANCELED);
    }
    return m_stop ? 0 : gone;
}

bool Removal::removeEntry(int parent, const char *name, const QByteArray &path)
{
    struct stat info { };
    if (::fstatat(parent, name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
        return false; // gone already
    }
    if (S_ISDIR(info.st_mode)) {
        empty(parent, name, path);
        if (!m_stop && ::unlinkat(parent, name, AT_REMOVEDIR) == 0) {
            return true;
        }
    } else if (::unlinkat(parent, name, 0) == 0) {
        return true;
    }
    failed(path, errno);
    return false;
}

void Removal::remove(int parent, const QByteArray &name, const QByteArray &path)
{
    struct stat info { };
    if (::fstatat(parent, name.constData(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
        failed(path, errno);
        return;
    }
    (void)removeEntry(parent, name.constData(), path);
}

} // namespace

std::optional<QString> RemoveLocalTree(const QString &path, const std::atomic_bool &stop)
{
    QByteArray name = bytesOfName(path);
    const bool keepsFolder = name.endsWith('/');
    while (name.size() > 1 && name.endsWith('/')) {
        name.chop(1);
    }
    Removal removal(stop);
    if (keepsFolder) {
        removal.empty(AT_FDCWD, name, name);
    } else {
        removal.remove(AT_FDCWD, name, name);
    }
    return removal.result();
}

std::optional<QString> removeLocalFile(const QString &path)
{
    if (::unlink(bytesOfName(path).constData()) == 0) {
        return std::nullopt;
    }
    return path + u": "_s + QString::fromLocal8Bit(std::strerror(errno));
}

bool isLocalLink(const QString &path)
{
    struct stat info { };
    return ::lstat(bytesOfName(path).constData(), &info) == 0 && S_ISLNK(info.st_mode);
}

FtpFolderContent countLocalTree(const QString &path, const std::atomic_bool &stop)
{
    FtpFolderContent content;
    // Links are not followed by the iterator and are no folders here.
    QDirIterator it(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (!stop && it.hasNext()) {
        it.next();
        const bool folder = it.fileInfo().isDir() && !it.fileInfo().isSymLink();
        ++(folder ? content.folders : content.files);
    }
    content.complete = !stop;
    return content;
}
