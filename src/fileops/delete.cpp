#include "fileops/delete.h"

#include "common/mo_standard.h"
#include "fileops/aside.h"
#include "fileops/localtree.h"
#include "fileops/marking.h"
#include "remote/itemkind.h"

#include <QElapsedTimer>
#include <QScopeGuard>
#include <QTimer>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Files deleted beside the window before their rows are told; whatever comes first.
constexpr qsizetype mostAtOnce = 200;
constexpr qint64 longestAside = 50; ///< milliseconds

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

/// The marked folders; links to folders, where the pane tells them apart, hold nothing of their
/// own.
QStringList foldersIn(const MarkedItemList &items, QChar separator)
{
    QStringList folders;
    for (int slot = 1; slot < items.MarkedCount; ++slot) {
        if (items.MarkedItems.at(slot).kind == ItemKind::FolderClose) {
            folders.append(pathOf(items.MarkedItems.at(slot), separator));
        }
    }
    return folders;
}

/// The question's line about the folders; empty when nothing is known.
QString contentText(const FtpFolderContent &content)
{
    if (!content.complete && content.files + content.folders == 0) {
        return {};
    }
    return u"In den Ordnern: %1%2 %3 und %4 Ordner."_s.arg(
        content.complete ? QString() : u"mehr als "_s, QString::number(content.files),
        content.files == 1 ? u"Datei"_s : u"Dateien"_s, QString::number(content.folders));
}

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

DeleteCommand::Reason removeLocal(const QString &path, bool folder, const std::atomic_bool &stop)
{
    return folder ? RemoveLocalTree(path, stop) : removeLocalFile(path);
}

QString noAnswer(const QString &path)
{
    return path + u": Der Datenträger hat nicht geantwortet."_s;
}

std::optional<QString> reasonOf(const FtpStatus &status)
{
    return status ? std::nullopt : std::optional<QString>(status.error().text);
}

} // namespace

DeleteCommand::DeleteCommand(const Workplace &work)
    : m_work(work)
    , m_removeLocal(removeLocal)
{
}

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
    if (confirmed(items, foldersIn(items, u'/'), count)) {
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

void DeleteCommand::DeleteLocalItems()
{
    if (m_running || m_work.ftp.isBusy()) {
        return;
    }
    if (MarkSelectedLocal(m_work.local, m_work.globals, false) < 1) {
        return;
    }
    const MarkedItemList items = m_work.globals.marked;
    if (confirmed(items, foldersIn(items, LocalSeparator), countLocal)) {
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

FtpFolderContent DeleteCommand::countRemote(const QStringList &folders,
                                            const std::shared_ptr<std::atomic_bool> &stop)
{
    const auto content = m_work.ftp.countInside(folders, stop);
    return content ? *content : FtpFolderContent { 0, 0, false };
}

bool DeleteCommand::confirmed(const MarkedItemList &items, const QStringList &folders,
                              const Count &count)
{
    const QString text = u"Sind Sie sicher, dass Sie "_s + QString::number(items.count())
        + u" Dateien oder Ordner löschen möchten?"_s;
    const QString title = u"Confirm Delete"_s;
    m_running = true;
    m_stop = std::make_shared<std::atomic_bool>(false);
    const auto idle = qScopeGuard([this] { m_running = false; });
    if (folders.isEmpty()) {
        return m_work.prompts.confirm(text, title) && !*m_stop;
    }
    Prompts::LateDetails details;
    details.placeholder = u"Der Inhalt der Ordner wird gezählt ..."_s;
    details.stop = std::make_shared<std::atomic_bool>(false);
    details.find = [&] {
        QTimer limit;
        limit.setSingleShot(true);
        QObject::connect(&limit, &QTimer::timeout, &limit, [this, stop = details.stop] {
            *stop = true;
            // A server that does not answer now would keep everything waiting for its time-out.
            m_work.shell.SetAbortEnabled(m_work.ftp.isBusy());
        });
        limit.start(m_countLimit);
        const FtpFolderContent content = count(folders, details.stop);
        m_work.shell.SetAbortEnabled(false);
        return contentText(content);
    };
    return m_work.prompts.confirmLate(text, title, details) && !*m_stop;
}

void DeleteCommand::deleteMarked(Pane &pane, const MarkedItemList &items,
                                 const std::function<void()> &work)
{
    m_running = true;
    m_work.shell.SetToolbarsEnabled(false);
    m_work.shell.SetFolderBoxesEnabled(false);
    const auto restore = qScopeGuard([&] {
        m_running = false; // the window leaves its bars off until then
        m_work.shell.SetFolderBoxesEnabled(true);
        m_work.shell.SetToolbarsEnabled(true);
    });
    work();
    for (int slot = 1; slot < items.MarkedCount; ++slot) {
        unmark(pane, items.MarkedItems.at(slot));
    }
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

void DeleteCommand::recordRemote(const MarkedItem &item, const Reason &reason)
{
    if (reason) {
        refuse(m_work.remote, item, *reason);
    } else {
        removeRow(m_work.remote, item);
    }
    QueueRow row = outcome(reason);
    row.size = item.sizeText;
    row.remote = pathOf(item, u'/');
    row.server = m_work.globals.connection.RemoteHost;
    m_work.shell.AddQueueRow(row);
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
    if (reason) {
        refuse(m_work.local, item, *reason);
    } else {
        removeRow(m_work.local, item);
    }
    QueueRow row = outcome(reason);
    row.local = pathOf(item, LocalSeparator);
    row.size = item.sizeText;
    m_work.shell.AddQueueRow(row);
}

void DeleteCommand::refuse(Pane &pane, const MarkedItem &item, const QString &reason)
{
    m_work.shell.AppendLog(u"\r\n"_s + reason);
    unmark(pane, item);
}
