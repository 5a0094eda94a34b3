#include "fileops/delete.h"

#include "common/mo_standard.h"
#include "fileops/aside.h"
#include "fileops/localtree.h"
#include "fileops/marking.h"
#include "remote/itemkind.h"

#include <QScopeGuard>

using namespace Qt::StringLiterals;

namespace {

QString labelOf(const MarkedItem &item)
{
    return (ItemKind::isFolderLike(item.kind) ? u"Ordner: "_s : u"Datei: "_s) + item.name;
}

QueueRow outcome(const std::optional<QString> &reason)
{
    QueueRow row;
    row.status = reason ? u"Löschen verweigert"_s : u"Löschen"_s;
    row.detail = reason.value_or(QString());
    row.failed = reason.has_value();
    return row;
}

void removeRow(Pane &pane, const MarkedItem &item)
{
    if (const int row = rowOf(pane, item); row >= 0) {
        pane.model().removeRowAt(row);
    }
}

std::optional<QString> reasonOf(const FtpStatus &status)
{
    return status ? std::nullopt : std::optional<QString>(status.error().text);
}

} // namespace

void DeleteCommand::DeleteRemoteItems()
{
    if (m_running || !mayStart(m_work.ftp)) {
        return;
    }
    const QString folder = m_work.remote.folder();
    const int count = MarkSelectedRemote(m_work.remote, m_work.globals, false);
    if (count < 1) {
        return;
    }
    const MarkedItemList items = m_work.globals.marked;
    if (confirmed(count, {})) {
        m_work.shell.SetFtpProperties();
        deleteMarked(m_work.remote, items, [this](const MarkedItem &item) {
            if (m_work.ftp.state() == FtpOperations::Connected) {
                deleteRemoteItem(item);
            }
        });
        m_work.shell.DoRemoteRefresh(folder);
    } else {
        UnmarkAll(m_work.remote, m_work.globals);
    }
    m_work.remote.setFolderText(folder);
}

void DeleteCommand::DeleteLocalItems()
{
    if (m_running || m_work.ftp.isBusy()) {
        return;
    }
    const int count = MarkSelectedLocal(m_work.local, m_work.globals, false);
    if (count < 1) {
        return;
    }
    const MarkedItemList items = m_work.globals.marked;
    if (confirmed(count, localDetails(items))) {
        deleteMarked(m_work.local, items, [this](const MarkedItem &item) {
            if (!m_stop) {
                deleteLocalItem(item);
            }
        });
        m_work.local.listFolder(items.MarkedItems.last().folder);
    } else {
        UnmarkAll(m_work.local, m_work.globals);
    }
    m_work.local.clearSelection();
}

bool DeleteCommand::confirmed(int count, const QString &details)
{
    return m_work.prompts.confirm(u"Sind Sie sicher, dass Sie "_s + QString::number(count)
                                      + u" Dateien oder Ordner löschen möchten?"_s,
                                  u"Confirm Delete"_s, details);
}

QString DeleteCommand::localDetails(const MarkedItemList &items) const
{
    TreeCount whole;
    bool folders = false;
    for (int slot = 1; slot < items.MarkedCount; ++slot) {
        const MarkedItem &item = items.MarkedItems.at(slot);
        if (item.kind != ItemKind::FolderClose) {
            continue;
        }
        const auto inside = countLocalTree(pathOf(item, LocalSeparator), m_countLimit);
        if (!inside) {
            return {};
        }
        folders = true;
        whole.files += inside->files;
        whole.folders += inside->folders;
    }
    return folders
        ? u"In den Ordnern: %1 Dateien und %2 Ordner."_s.arg(whole.files).arg(whole.folders)
        : QString();
}

void DeleteCommand::deleteMarked(Pane &pane, const MarkedItemList &items,
                                 const std::function<void(const MarkedItem &)> &one)
{
    m_running = true;
    m_stop = false;
    m_work.shell.SetToolbarsEnabled(false);
    m_work.shell.SetFolderBoxesEnabled(false);
    const auto restore = qScopeGuard([&] {
        m_work.shell.SetFolderBoxesEnabled(true);
        m_work.shell.SetToolbarsEnabled(true);
        m_running = false;
    });
    for (int slot = 1; slot < items.MarkedCount; ++slot) {
        one(items.MarkedItems.at(slot));
        unmark(pane, items.MarkedItems.at(slot));
    }
}

void DeleteCommand::deleteRemoteItem(const MarkedItem &item)
{
    const QString path = pathOf(item, u'/');
    m_work.shell.ShowTransferItem(labelOf(item), {});
    const Reason reason = removeRemote(item, path);
    if (ItemKind::isFolderLike(item.kind)) {
        m_work.remote.forgetFolder(path);
    }
    m_work.shell.ShowTransferItem({}, {});
    if (reason) {
        refuse(m_work.remote, item, *reason);
    } else {
        removeRow(m_work.remote, item);
    }
    QueueRow row = outcome(reason);
    row.size = item.sizeText;
    row.remote = path;
    row.server = m_work.globals.connection.RemoteHost;
    m_work.shell.AddQueueRow(row);
}

DeleteCommand::Reason DeleteCommand::removeRemote(const MarkedItem &item, const QString &path)
{
    if (item.kind == ItemKind::FolderClose) {
        return reasonOf(m_work.ftp.removeTree(path));
    }
    const FtpStatus deleted = m_work.ftp.deleteFile(path);
    if (!deleted && ItemKind::isFolderLike(item.kind)
        && deleted.error().kind == ftp::ErrorKind::Refused) {
        // Some servers take links to folders for folders; what a link points to is never touched.
        return reasonOf(m_work.ftp.removeFolder(path));
    }
    return reasonOf(deleted);
}

void DeleteCommand::deleteLocalItem(const MarkedItem &item)
{
    const QString path = pathOf(item, LocalSeparator);
    m_work.shell.ShowTransferItem(labelOf(item), {});
    const Reason reason = removeLocal(item, path);
    m_work.shell.ShowTransferItem({}, {});
    if (!ItemKind::isFolderLike(item.kind)) {
        // Intended: also when the file could not be deleted; the next listing shows it again.
        removeRow(m_work.local, item);
    } else {
        m_work.local.forgetFolder(path);
    }
    if (reason) {
        refuse(m_work.local, item, *reason);
    } else {
        removeRow(m_work.local, item);
    }
    QueueRow row = outcome(reason);
    row.local = path;
    row.size = item.sizeText;
    m_work.shell.AddQueueRow(row);
}

DeleteCommand::Reason DeleteCommand::removeLocal(const MarkedItem &item, const QString &path)
{
    if (!ItemKind::isFolderLike(item.kind)) {
        return removeLocalFile(path);
    }
    Reason reason;
    runAside([&] { reason = RemoveLocalTree(path, m_stop); });
    return reason;
}

void DeleteCommand::refuse(Pane &pane, const MarkedItem &item, const QString &reason)
{
    m_work.shell.AppendLog(u"\r\n"_s + reason);
    unmark(pane, item);
}
