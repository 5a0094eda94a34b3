#include "transfer/transfercommands.h"

#include "common/mo_standard.h"
#include "fileops/marking.h"
#include "remote/itemkind.h"
#include "transfer/download.h"
#include "transfer/upload.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Folder that a drop goes to: the folder row under the pointer, else the folder of the pane.
QString dropTarget(Pane &pane, int row, const QString &folder, QChar separator)
{
    if (row >= 0 && row < pane.model().rowCount()) {
        const PaneRow &entry = pane.model().row(row);
        if (ItemKind::isFolderLike(entry.kind)) {
            return folder + entry.name + separator;
        }
    }
    return folder;
}

/// One batch of the queue's repeat: rows of one direction between the same two folders.
struct Retry {
    bool upload = false;
    QString source, target;
    [[nodiscard]] bool operator==(const Retry &) const = default;
};

QString folderOf(const QString &path) { return path.left(path.lastIndexOf(u'/') + 1); }

Retry retryOf(const QueueRow &row)
{
    const bool upload = row.direction == u"-->"_s;
    return { upload, folderOf(upload ? row.local : row.remote),
             folderOf(upload ? row.remote : row.local) };
}

/// Whether a row's transfer can be tried again on a web space.
bool isOf(const QueueRow &row, const QString &webSpace)
{
    return row.repeatable && row.webSpace == webSpace;
}

MarkedItem itemOf(const QueueRow &row)
{
    // Only folders have no size in the queue.
    return { row.local.mid(row.local.lastIndexOf(u'/') + 1), retryOf(row).source,
             row.size.isEmpty() ? ItemKind::FolderClose : ItemKind::File, row.size, -1 };
}

} // namespace

QString TransferCommands::localTarget() const
{
    // The folder shown, not the text of the box: brackets belong to its name, also when it has
    // vanished since. Then the transfer fails and says so.
    return withSeparator(m_tools.work.local.folder(), LocalSeparator);
}

QString TransferCommands::remoteTarget() const
{
    QString text = m_tools.work.remote.folder();
    const QString current = withSeparator(m_tools.work.ftp.currentFolder(), u'/');
    const bool isCurrent = trimBlanks(text).isEmpty() || withSeparator(text, u'/') == current;
    return isCurrent ? current : NormalizeFolderPath(text, u'/');
}

void TransferCommands::cmd_download_Click()
{
    if (!mayStart(m_tools.work.ftp) || m_tools.work.remote.model().rowCount() < 1) {
        return;
    }
    if (MarkSelectedRemote(m_tools.work.remote, m_tools.work.globals, false) > 0) {
        Download(m_tools).DownloadSelection(localTarget());
    }
}

void TransferCommands::cmd_upload_Click()
{
    if (!mayStart(m_tools.work.ftp)) {
        return;
    }
    if (MarkSelectedLocal(m_tools.work.local, m_tools.work.globals, false) > 0) {
        Upload(m_tools).UploadSelection(remoteTarget());
    }
}

void TransferCommands::dropOnLocal(int row)
{
    const QString target = dropTarget(m_tools.work.local, row, localTarget(), LocalSeparator);
    if (dropConfirmed(m_tools.work.remote, u" Dateien oder Ordner Downloaden?"_s,
                      u"Retrieve..."_s)) {
        Download(m_tools).DownloadSelection(target);
    }
}

void TransferCommands::dropOnRemote(int row)
{
    // The folder shown, not the text of the box: the row under the pointer stands in it.
    const QString current = withSeparator(m_tools.work.ftp.currentFolder(), u'/');
    const QString target = dropTarget(m_tools.work.remote, row, current, u'/');
    if (dropConfirmed(m_tools.work.local, u" Dateien oder Ordner Uploaden?"_s, u"Store..."_s)) {
        Upload(m_tools).UploadSelection(target);
    }
}

bool TransferCommands::dropConfirmed(Pane &source, const QString &text, const QString &title)
{
    const int count = m_tools.work.globals.marked.count();
    if (count > 0 && mayStart(m_tools.work.ftp)
        && m_tools.work.prompts.confirm(QString::number(count) + text, title)) {
        return true;
    }
    UnmarkAll(source, m_tools.work.globals);
    return false;
}

bool TransferCommands::mayRetry(const QList<QueueRow> &rows) const
{
    const QString here = webSpaceOf(m_tools.work.globals.connection);
    return mayStart(m_tools.work.ftp)
        && std::any_of(rows.begin(), rows.end(),
                       [&here](const QueueRow &row) { return isOf(row, here); });
}

void TransferCommands::RetryTransfers(const QList<QueueRow> &rows)
{
    Globals &globals = m_tools.work.globals;
    const QString here = webSpaceOf(globals.connection);
    for (qsizetype at = 0; at < rows.size();) {
        if (!mayStart(m_tools.work.ftp)) {
            return;
        }
        const Retry batch = retryOf(rows.at(at));
        globals.marked = {};
        for (; at < rows.size() && retryOf(rows.at(at)) == batch; ++at) {
            if (isOf(rows.at(at), here)) {
                globals.marked.MarkedItems.append(itemOf(rows.at(at)));
                ++globals.marked.MarkedCount;
            }
        }
        if (globals.marked.count() > 0 && batch.upload) {
            Upload(m_tools).UploadSelection(batch.target);
        } else if (globals.marked.count() > 0) {
            Download download(m_tools);
            download.DownloadSelection(batch.target);
            if (download.isDiskFull()) {
                return; // every further batch would only say so again
            }
        }
    }
}
