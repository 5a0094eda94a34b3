#include "transfer/disklook.h"

#include "common/intime.h"
#include "fileops/aside.h"

#include <QScopeGuard>

#include <filesystem>

namespace {

/// What reporting a file may wait for its size.
constexpr std::chrono::milliseconds patience(25);

} // namespace

/// @return false when the session ended before the answer came
bool DiskLook::ask(const std::function<void()> &question)
{
    m_looking = true;
    const auto done = qScopeGuard([this] { m_looking = false; });
    const auto givenUp = [this] { return m_ftp.state() != FtpOperations::Connected; };
    return runAsideUntil(question, givenUp, [this] { m_shell.SetAbortEnabled(true); });
}

QHash<QString, LocalEntry> DiskLook::at(const QStringList &paths)
{
    const auto found = std::make_shared<QHash<QString, LocalEntry>>();
    const auto read = [found, paths, reader = m_reader] {
        for (const QString &path : paths) {
            found->insert(path, reader(path));
        }
    };
    // What is not done may go on filling the table.
    return ask(read) ? *found : QHash<QString, LocalEntry>();
}

std::optional<LocalEntry> DiskLook::at(const QString &path)
{
    const auto found = at(QStringList { path });
    const auto entry = found.constFind(path);
    return entry == found.constEnd() ? std::nullopt : std::optional(*entry);
}

bool DiskLook::isSame(const QString &one, const QString &other)
{
    const auto same = std::make_shared<bool>(false);
    const auto compare = [same, one = bytesOfName(one), other = bytesOfName(other)] {
        std::error_code missing;
        *same = std::filesystem::equivalent(one.toStdString(), other.toStdString(), missing);
    };
    return ask(compare) && *same;
}

void DiskLook::provideFolder(const QString &path)
{
    const auto provide = [path, reader = m_reader] {
        if (!reader(path).exists) {
            (void)makeLocalFolder(path); // a failure shows when the first file comes
        }
    };
    (void)ask(provide); // as above, or the session is gone
}

qint64 DiskLook::sizeSoon(const QString &path, qint64 otherwise) const
{
    const auto size = std::make_shared<qint64>(0);
    const auto read = [size, path, reader = m_reader] {
        *size = reader(path).size;
        return true;
    };
    return yesInTime(read, patience) ? *size : otherwise;
}
