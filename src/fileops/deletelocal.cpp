// Deleting on this computer, beside the window.
#include "fileops/delete.h"

#include "common/mo_standard.h"
#include "fileops/aside.h"
#include "fileops/localtree.h"
#include "fileops/marking.h"
#include "remote/itemkind.h"

#include <QElapsedTimer>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Files deleted beside the window before their rows are told; whatever comes first.
constexpr qsizetype mostAtOnce = 200;
constexpr qint64 longestAside = 50; ///< milliseconds

FtpFolderContent countLocal(const QStringList &folders,
                            const std::shared_ptr<std::atomic_bool> &stop)
{
    const auto whole = std::make_shared<FtpFolderContent>();
    const auto count = [folders, stop, whole] {
        whole->complete = false;
        for (const QString &folder : folders) {
            // The local pane shows a link to a folder like a folder, but only the link itself will
            // go.
            if (isLocalLink(folder)) {
                continue;
            }
            const FtpFolderContent inside = countLocalTree(folder, *stop);
            whole->files += inside.files;
            whole->folders += inside.folders;
            whole->complete = inside.complete; // the last one tells: a stop ends them all
        }
    };
    return runAsideUntil(count, stop) ? *whole : FtpFolderContent { 0, 0, false };
}

QString noAnswer(const QString &path)
{
    return path + u": Der Datenträger hat nicht geantwortet."_s;
}

} // namespace

void DeleteCommand::DeleteLocalItems()
{
    if (m_running || m_work.ftp.isBusy()) {
        return;
    }
    if (MarkSelectedLocal(m_work.local, m_work.globals, false) < 1) {
        return;
    }
    const MarkedItemList items = m_work.globals.marked;
    if (confirmed(items, LocalSeparator, countLocal)) {
        deleteMarked(m_work.local, items, [&] { deleteLocalItems(items); });
        listAgain(items.MarkedItems.last().folder);
    } else {
        UnmarkAll(m_work.local, m_work.globals);
    }
    m_work.local.clearSelection();
}

/// The window lives while files are deleted: the pane may show another folder by now.
void DeleteCommand::listAgain(const QString &folder)
{
    if (withSeparator(m_work.local.folder(), LocalSeparator)
        == withSeparator(folder, LocalSeparator)) {
        m_work.local.listFolder(folder);
    }
}

void DeleteCommand::deleteLocalItems(const MarkedItemList &items)
{
    QList<MarkedItem> files; // neighbours, which go together
    for (int slot = 1; slot < items.MarkedCount && !*m_stop; ++slot) {
        const MarkedItem &item = items.MarkedItems.at(slot);
        if (!ItemKind::isFolderLike(item.kind)) {
            files.append(item);
            continue;
        }
        deleteLocalFiles(std::exchange(files, {}));
        if (!*m_stop) {
            deleteLocalFolder(item);
        }
    }
    deleteLocalFiles(files);
}

/// A slow disk must not hold up the window, nor a thread for every file the disk.
void DeleteCommand::deleteLocalFiles(const QList<MarkedItem> &files)
{
    if (files.isEmpty() || *m_stop) {
        return;
    }
    m_work.shell.ShowTransferItem(labelOf(files.first()), {});
    for (qsizetype told = 0; told < files.size() && !*m_stop;) {
        QStringList paths;
        for (const MarkedItem &file : files.mid(told, mostAtOnce)) {
            paths.append(pathOf(file, LocalSeparator));
        }
        const QList<Reason> reasons = removeSome(paths);
        for (const Reason &reason : reasons) {
            // Intended: the row goes also when the file could not be deleted; the next listing
            // shows it again.
            removeRow(m_work.local, files.at(told));
            recordLocal(files.at(told), reason);
            if (++told < files.size()) {
                m_work.shell.ShowTransferItem(labelOf(files.at(told)), {});
            }
        }
    }
    m_work.shell.ShowTransferItem({}, {});
}

/// Deletes local files, the first one at least, as many as go in a short time.
/// @return how that went, file by file
QList<DeleteCommand::Reason> DeleteCommand::removeSome(const QStringList &paths)
{
    const auto reasons = std::make_shared<QList<Reason>>();
    const auto remove = [reasons, paths, stop = m_stop, removeOne = m_removeLocal] {
        QElapsedTimer since;
        since.start();
        for (const QString &path : paths) {
            reasons->append(removeOne(path, false, *stop));
            if (*stop || since.hasExpired(longestAside)) {
                break;
            }
        }
    };
    return runAsideUntil(remove, m_stop) ? *reasons : QList<Reason> { noAnswer(paths.first()) };
}

void DeleteCommand::deleteLocalFolder(const MarkedItem &item)
{
    const QString path = pathOf(item, LocalSeparator);
    m_work.shell.ShowTransferItem(labelOf(item), {});
    const auto reason = std::make_shared<Reason>();
    const auto remove = [reason, path, stop = m_stop, removeTree = m_removeLocal] {
        *reason = removeTree(path, true, *stop);
    };
    const bool done = runAsideUntil(remove, m_stop);
    m_work.shell.ShowTransferItem({}, {});
    m_work.local.forgetFolder(path);
    recordLocal(item, done ? *reason : noAnswer(path));
}

void DeleteCommand::recordLocal(const MarkedItem &item, const Reason &reason)
{
    QueueRow row;
    row.local = pathOf(item, LocalSeparator);
    record(m_work.local, item, std::move(row), reason);
}
