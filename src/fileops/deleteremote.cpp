// Deleting on the server.
#include "fileops/delete.h"

#include "common/mo_standard.h"
#include "fileops/marking.h"
#include "remote/itemkind.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

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
    if (MarkSelectedRemote(m_work.remote, m_work.globals, false) < 1) {
        return;
    }
    const MarkedItemList items = m_work.globals.marked;
    const auto count
        = [this](const auto &folders, const auto &stop) { return countRemote(folders, stop); };
    if (confirmed(items, u'/', count)) {
        m_work.shell.SetFtpProperties();
        deleteMarked(m_work.remote, items, [&] { deleteRemoteItems(items); });
        m_work.shell.DoRemoteRefresh(folder);
        if (withSeparator(m_work.ftp.currentFolder(), u'/') != withSeparator(folder, u'/')) {
            return; // the box held a folder that was never entered; it says by now what is shown
        }
    } else {
        UnmarkAll(m_work.remote, m_work.globals);
    }
    m_work.remote.setFolderText(folder);
}

FtpFolderContent DeleteCommand::countRemote(const QStringList &folders,
                                            const std::shared_ptr<std::atomic_bool> &stop)
{
    const auto content = m_work.ftp.countInside(folders, stop);
    return content ? *content : FtpFolderContent { 0, 0, false };
}

void DeleteCommand::deleteRemoteItems(const MarkedItemList &items)
{
    QList<MarkedItem> files; // neighbours, which go in one stream
    for (int slot = 1; slot < items.MarkedCount; ++slot) {
        const MarkedItem &item = items.MarkedItems.at(slot);
        if (!ItemKind::isFolderLike(item.kind)) {
            files.append(item);
            continue;
        }
        deleteRemoteFiles(std::exchange(files, {}));
        if (m_work.ftp.state() == FtpOperations::Connected) {
            deleteRemoteFolder(item);
        }
    }
    deleteRemoteFiles(files);
}

void DeleteCommand::deleteRemoteFiles(const QList<MarkedItem> &files)
{
    if (files.isEmpty() || m_work.ftp.state() != FtpOperations::Connected) {
        return;
    }
    QStringList paths;
    for (const MarkedItem &file : files) {
        paths.append(pathOf(file, u'/'));
    }
    m_work.shell.ShowTransferItem(labelOf(files.first()), {});
    const FtpStatus removed
        = m_work.ftp.removeFiles(paths, [&](qsizetype index, const FtpStatus &done) {
              recordRemote(files.at(index), reasonOf(done));
              if (index + 1 < files.size()) {
                  m_work.shell.ShowTransferItem(labelOf(files.at(index + 1)), {});
              }
          });
    ignoreError(removed, "every file that was tried has told its own outcome");
    m_work.shell.ShowTransferItem({}, {});
}

void DeleteCommand::deleteRemoteFolder(const MarkedItem &item)
{
    const QString path = pathOf(item, u'/');
    m_work.shell.ShowTransferItem(labelOf(item), {});
    const Reason reason = removeRemote(item, path);
    m_work.remote.forgetFolder(path);
    m_work.shell.ShowTransferItem({}, {});
    recordRemote(item, reason);
}

DeleteCommand::Reason DeleteCommand::removeRemote(const MarkedItem &item, const QString &path)
{
    if (item.kind == ItemKind::FolderClose) {
        return reasonOf(m_work.ftp.removeTree(path));
    }
    const FtpStatus deleted = m_work.ftp.deleteFile(path);
    if (!deleted && deleted.error().kind == ftp::ErrorKind::Refused) {
        // Some servers take links to folders for folders; what a link points to is never touched.
        return reasonOf(m_work.ftp.removeFolder(path));
    }
    return reasonOf(deleted);
}

void DeleteCommand::recordRemote(const MarkedItem &item, const Reason &reason)
{
    QueueRow row;
    row.remote = pathOf(item, u'/');
    row.server = m_work.globals.connection.RemoteHost;
    record(m_work.remote, item, std::move(row), reason);
}
