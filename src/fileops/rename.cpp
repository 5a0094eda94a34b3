#include "fileops/rename.h"

#include "common/mo_standard.h"
#include "common/names.h"
#include "ftp/ftplocalnames.h"

#include <QScopeGuard>

#include <algorithm>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

QString taken(const QString &name) { return name + u": Der Name ist schon vergeben."_s; }

/// For file systems that cannot rename without replacing: looks first. A name that differs only in
/// case may be the same entry there.
int renameAfterLook(const char *from, const char *to)
{
    struct stat source { };
    struct stat target { };
    if (::lstat(to, &target) == 0
        && (::lstat(from, &source) != 0 || source.st_ino != target.st_ino
            || source.st_dev != target.st_dev)) {
        errno = EEXIST;
        return -1;
    }
    return ::rename(from, to);
}

void changeName(Pane &pane, const QString &oldName, const QString &newName, const QString &tag)
{
    // Rows may have come and gone while the server was asked.
    if (const int row = pane.model().findRow(oldName); row >= 0) {
        PaneRow entry = pane.model().row(row);
        entry.name = newName;
        entry.tag = tag;
        pane.model().changeRow(row, entry);
    }
}

/// The caption that an edit changes; empty when there is nothing to do.
QString captionToChange(Pane &pane, int row, const QString &newText)
{
    if (newText.isEmpty() || row < 0 || row >= pane.model().rowCount()) {
        return {};
    }
    const QString caption = pane.model().row(row).name;
    return caption == newText ? QString() : caption;
}

} // namespace

std::optional<QString> renameLocal(const QString &from, const QString &to)
{
    const QByteArray source = bytesOfName(from);
    const QByteArray target = bytesOfName(to);
    int result
        = ::renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE);
    if (result != 0 && (errno == EINVAL || errno == ENOSYS)) {
        result = renameAfterLook(source.constData(), target.constData());
    }
    if (result == 0) {
        return std::nullopt;
    }
    return errno == EEXIST ? taken(to)
                           : from + u": "_s + QString::fromLocal8Bit(std::strerror(errno));
}

std::optional<QString> refuseNewName(const QString &name)
{
    if (isSafeName(name)) {
        return std::nullopt;
    }
    return name + u": Der Name ist als Dateiname nicht zulässig."_s;
}

FtpResult<bool> remoteNameTaken(FtpOperations &ftp, const QString &name)
{
    if (const FtpStatus listed = ftp.list(); !listed) {
        return tl::unexpected(listed.error());
    }
    const QList<ListingEntry> &entries = ftp.listing().entries;
    return std::any_of(entries.begin(), entries.end(),
                       [&name](const ListingEntry &entry) { return entry.name == name; });
}

void RenameCommand::RenameSelected()
{
    Pane &pane = m_work.globals.active.RemoteListActive ? m_work.remote : m_work.local;
    if (const int row = pane.currentRow(); row >= 0 && !pane.model().row(row).name.isEmpty()) {
        pane.editCaption(row);
    }
}

void RenameCommand::RenameRemoteAfterEdit(int row, const QString &newText)
{
    const QString caption = captionToChange(m_work.remote, row, newText);
    if (caption.isEmpty() || !mayStart(m_work.ftp)) {
        return;
    }
    m_work.shell.SetToolbarsEnabled(false);
    const auto restore = qScopeGuard([this] {
        m_work.shell.SetToolbarsEnabled(true);
        updateCommandStates(m_work);
    });
    if (const auto refused = renameRemote(caption, newText)) {
        m_work.shell.AppendLog(*refused + u"\r\n"_s);
        return;
    }
    changeName(m_work.remote, caption, newText,
               withSeparator(m_work.ftp.currentFolder(), u'/') + newText);
}

std::optional<QString> RenameCommand::renameRemote(const QString &from, const QString &to)
{
    if (const auto refused = refuseNewName(to)) {
        return refused;
    }
    if (m_work.remote.model().findRow(to) >= 0) {
        return taken(to);
    }
    // Many servers replace an existing file without a word, so they are asked what is there now.
    const FtpResult<bool> exists = remoteNameTaken(m_work.ftp, to);
    if (!exists) {
        return from + u": Nicht umbenannt, der Ordner konnte nicht gelesen werden."_s;
    }
    if (*exists) {
        return taken(to);
    }
    if (const FtpStatus renamed = m_work.ftp.rename(from, to); !renamed) {
        return from + u": Umbenennen verweigert."_s;
    }
    return std::nullopt;
}

void RenameCommand::RenameLocalAfterEdit(int row, const QString &newText)
{
    const QString caption = captionToChange(m_work.local, row, newText);
    if (caption.isEmpty()) {
        return;
    }
    const QString folder = withSeparator(m_work.local.folder(), LocalSeparator);
    const auto refused = refuseNewName(newText);
    if (const auto failed = refused ? refused : renameLocal(folder + caption, folder + newText)) {
        m_work.shell.AppendLog(*failed + u"\r\n"_s);
        return;
    }
    changeName(m_work.local, caption, newText, folder + newText);
}
