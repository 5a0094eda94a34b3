#pragma once

#include "fileops/workplace.h"
#include "ftp/ftplocalnames.h"

#include <QHash>

/// What stands at paths of this computer, asked beside the window: a slow mount must not stop it, a
/// dead one must not keep "Abbrechen" out of reach.
class DiskLook {
public:
    using Reader = std::function<LocalEntry(const QString &path)>;

    DiskLook(FtpOperations &ftp, Shell &shell)
        : m_ftp(ftp)
        , m_shell(shell)
    {
    }
    /// Another disk, for tests. It is called in another thread and must own all that it touches.
    void setReader(const Reader &reader) { m_reader = reader; }

    /// The entries of the paths. Clicks may run meanwhile; the session's end ends the waiting.
    /// @return without the paths that nothing is known about; those may not be written to
    [[nodiscard]] QHash<QString, LocalEntry> at(const QStringList &paths);
    [[nodiscard]] std::optional<LocalEntry> at(const QString &path);
    /// Whether both paths lead to one file, as on a disk that does not tell upper from lower case.
    [[nodiscard]] bool isSame(const QString &one, const QString &other);
    /// Makes a folder unless something stands there.
    void provideFolder(const QString &path);
    /// Size of a file that has just been moved; the second one when the disk is slow to tell.
    [[nodiscard]] qint64 sizeSoon(const QString &path, qint64 otherwise) const;
    /// Whether somebody waits just now. Nothing else may begin then.
    [[nodiscard]] bool isLooking() const { return m_looking; }

private:
    [[nodiscard]] bool ask(const std::function<void()> &question);

    FtpOperations &m_ftp;
    Shell &m_shell;
    Reader m_reader = localEntry;
    bool m_looking = false;
};
