#include "common/workingfolders.h"

#include "common/intime.h"
#include "common/mo_standard.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr mode_t ownerOnly = 0700;
constexpr int mostWindows = 9; ///< whose temporary folders have names that come back

/// Whether the path is a real folder, not a link, that belongs to this user.
bool isOwnFolder(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode)
        && status.st_uid == ::geteuid();
}

/// Makes the folder, or takes one of this user's own, closed to everybody else.
bool makeOwnFolder(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    (void)::mkdir(name.constData(), ownerOnly); // it may be there already
    return isOwnFolder(path) && ::chmod(name.constData(), ownerOnly) == 0;
}

/// Descriptor of the folder that this process works in, -1 for none; its lock goes with it.
int &heldFolder()
{
    static int descriptor = -1;
    return descriptor;
}

/// Takes a folder for this process. @return false when another process has it
bool takeFolder(const QString &path)
{
    const int folder
        = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // A file system without locks leaves it to the user to open one window at a time.
    if (folder >= 0 && ::flock(folder, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        ::close(folder);
        return false;
    }
    heldFolder() = folder;
    return true;
}

/// Packages install below /usr, where nothing is to be written even when root runs the program.
bool mayHoldProfiles(const QString &folder)
{
    const QString path = QDir(folder).canonicalPath();
    return path != u"/usr"_s && !path.startsWith(u"/usr/"_s) && QFileInfo(folder).isWritable();
}

/// Octal escapes of a mount table ("\040" is a blank) undone.
QString unescaped(const QByteArray &field)
{
    QByteArray bytes;
    for (qsizetype at = 0; at < field.size(); ++at) {
        bool octal = false;
        const int code = field.at(at) == '\\' ? field.mid(at + 1, 3).toInt(&octal, 8) : 0;
        bytes += octal ? static_cast<char>(code) : field.at(at);
        at += octal ? 3 : 0;
    }
    return QFile::decodeName(bytes);
}

} // namespace

QString Drive::display() const { return label.isEmpty() ? path : path + u" ["_s + label + u']'; }

FolderSources FolderSources::ofThisUser()
{
    FolderSources sources;
    sources.executableFolder = QCoreApplication::applicationDirPath();
    sources.dataFolder
        = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Tarvelo FTP"_s;
    const QString temp = qEnvironmentVariable("TEMP");
    sources.temporary = temp.isEmpty() ? QDir::tempPath() : temp;
    sources.desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    sources.home = QDir::homePath();
    return sources;
}

WorkingFolders workingFolders(const FolderSources &sources)
{
    WorkingFolders folders;
    const QString &program
        = mayHoldProfiles(sources.executableFolder) ? sources.executableFolder : sources.dataFolder;
    folders.program = withSeparator(program, LocalSeparator);
    folders.profiles = joinPath(folders.program, u"mo_def"_s);
    folders.temporary
        = withSeparator(joinPath(sources.temporary, u"tarvelo_ftp_temp"_s), LocalSeparator);
    const bool hasDesktop = !sources.desktop.isEmpty() && isFolderInTime(sources.desktop);
    folders.desktop = hasDesktop ? sources.desktop : sources.home;
    return folders;
}

void makeProfileFolder(const WorkingFolders &folders)
{
    if (!QFileInfo(folders.profiles).isDir()) {
        EnsureFolder(folders.program, true);
        makeOwnFolder(folders.profiles);
    }
}

QString makeTemporaryFolder(const QString &folder)
{
    if (const int held = std::exchange(heldFolder(), -1); held >= 0) {
        ::close(held);
    }
    const QString name = folder.chopped(1);
    EnsureFolder(name, true); // everything above it
    const QString own = name + u'_' + QString::number(::geteuid());
    QStringList names { name, own };
    for (int window = 3; window <= mostWindows; ++window) {
        names.append(own + u'_' + QString::number(window));
    }
    for (const QString &each : std::as_const(names)) {
        if (makeOwnFolder(each) && takeFolder(each)) {
            return each + LocalSeparator;
        }
    }
    // Whoever holds all these names means harm; then one that cannot be known beforehand, since
    // mkdtemp fills in the six X.
    QByteArray unique = QFile::encodeName(own) + "_XXXXXX";
    if (::mkdtemp(unique.data()) != nullptr) {
        return QFile::decodeName(unique) + LocalSeparator;
    }
    return own + LocalSeparator;
}

QList<Drive> drives(const QString &home, const QByteArray &mountInfo)
{
    QList<Drive> found { { home, {} }, { u"/"_s, {} } };
    for (const QByteArray &line : mountInfo.split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() < 5) {
            continue;
        }
        const QString path = unescaped(fields.at(4));
        const bool listed = std::any_of(found.cbegin(), found.cend(),
                                        [&path](const Drive &drive) { return drive.path == path; });
        if (listed) {
            continue; // mounted over itself
        }
        if (path == u"/mnt") {
            found.append({ path, u"mnt"_s });
        }
        for (const auto place : { "/media/"_L1, "/run/media/"_L1, "/mnt/"_L1 }) {
            if (path.startsWith(place)) {
                found.append({ path, path.section(u'/', -1) });
            }
        }
    }
    return found;
}

QList<Drive> drives()
{
    // The mount table instead of the file systems themselves: asking a dead network mount for its
    // properties would hang.
    QFile table(u"/proc/self/mountinfo"_s);
    const QByteArray text = table.open(QIODevice::ReadOnly) ? table.readAll() : QByteArray();
    return drives(QDir::homePath(), text);
}
