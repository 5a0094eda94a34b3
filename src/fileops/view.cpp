#include "fileops/view.h"

#include "common/mo_standard.h"
#include "common/names.h"
#include "ftp/ftplocalnames.h"
#include "remote/itemkind.h"

#include <QDesktopServices>
#include <QFile>
#include <QScopeGuard>
#include <QTime>

using namespace Qt::StringLiterals;

namespace {

constexpr int Opened = 33;
constexpr int NoProgram = 31;

/// What a server sends is never a program to run.
void takeExecuteBits(const QString &path)
{
    const QFile::Permissions execute
        = QFile::ExeOwner | QFile::ExeUser | QFile::ExeGroup | QFile::ExeOther;
    if (const QFile::Permissions now = QFile::permissions(path); now & execute) {
        QFile::setPermissions(path, now & ~execute);
    }
}

} // namespace

QUrl vorschauUrl(const QString &path)
{
    return path.startsWith(LocalSeparator) ? urlOfPath(path) : QUrl(path, QUrl::TolerantMode);
}

int openWithDesktop(const QString &path)
{
    return QDesktopServices::openUrl(vorschauUrl(path)) ? Opened : NoProgram;
}

void ViewCommand::ViewSelected()
{
    if (m_work.globals.active.RemoteListActive) {
        ViewRemoteFile(m_work.remote.currentRow());
    } else {
        ViewLocalFile(m_work.local.currentRow());
    }
}

void ViewCommand::ViewLocalFile(int row)
{
    if (row >= 0 && !m_work.local.model().row(row).tag.isEmpty()) {
        m_work.shell.vorschau(m_work.local.model().row(row).tag);
    }
}

void ViewCommand::ViewRemoteFile(int row)
{
    if (row < 0 || !mayStart(m_work.ftp)) {
        return;
    }
    const PaneRow entry = m_work.remote.model().row(row);
    if (entry.tag.isEmpty() || ItemKind::isFolderLike(entry.kind)) {
        return;
    }
    if (!isSafeName(entry.name)) {
        m_work.shell.AppendLog(entry.name + u": Der Name ist als Dateiname nicht zulässig.\r\n"_s);
        return;
    }
    m_work.shell.SetToolbarsEnabled(false);
    m_work.shell.SetFolderBoxesEnabled(false);
    const auto restore = qScopeGuard([this] {
        m_progress.finish();
        // The last progress report may have come after the last reply.
        m_work.shell.SetAbortEnabled(false);
        m_work.shell.SetToolbarsEnabled(true);
        m_work.shell.SetFolderBoxesEnabled(true);
        updateCommandStates(m_work);
    });
    if (fetch(entry)) {
        m_work.shell.vorschau(m_work.globals.folders.temporary + entry.name);
    }
}

bool ViewCommand::fetch(const PaneRow &entry)
{
    TransferState &item = m_work.globals.transfer;
    item.RemoteSize = lenientInteger(entry.size);
    item.LocalSize = 0; // from the beginning: the progress counts from here
    m_progress.setMaximumFor(item.RemoteSize);
    m_progress.setValue(0);
    m_work.shell.SetFtpProperties();
    m_work.ftp.setTransferType(m_work.globals.connection.TransferType);
    item.TransferStart = QTime::currentTime().msecsSinceStartOfDay() / 1000.0;
    const QString path = m_work.globals.folders.temporary + entry.name;
    if (!m_putBack.beforeFetch(path, entry.tag)) {
        return false;
    }
    const FtpStatus fetched = m_work.ftp.getFile(entry.tag, path, item.LocalSize);
    takeExecuteBits(path);
    if (fetched) {
        m_putBack.afterFetch(path);
    } else {
        m_putBack.fetchFailed(path);
    }
    return fetched.has_value();
}
