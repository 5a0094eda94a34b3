// What deletions on both sides share; they stand in deletelocal.cpp and deleteremote.cpp.
#include "fileops/delete.h"

#include "fileops/localtree.h"
#include "fileops/marking.h"
#include "remote/itemkind.h"

#include <QScopeGuard>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

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

DeleteCommand::Reason removeLocal(const QString &path, bool folder, const std::atomic_bool &stop)
{
    return folder ? RemoveLocalTree(path, stop) : removeLocalFile(path);
}

} // namespace

DeleteCommand::DeleteCommand(const Workplace &work)
    : m_work(work)
    , m_removeLocal(removeLocal)
{
}

bool DeleteCommand::confirmed(const MarkedItemList &items, QChar separator, const Count &count)
{
    const QStringList folders = foldersIn(items, separator);
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

QString DeleteCommand::labelOf(const MarkedItem &item)
{
    return (ItemKind::isFolderLike(item.kind) ? u"Ordner: "_s : u"Datei: "_s) + item.name;
}

void DeleteCommand::removeRow(Pane &pane, const MarkedItem &item)
{
    if (const int row = rowOf(pane, item); row >= 0) {
        pane.model().removeRowAt(row);
    }
}

/// Shows an item's outcome in its pane, in the log and in the queue.
void DeleteCommand::record(Pane &pane, const MarkedItem &item, QueueRow row, const Reason &reason)
{
    if (reason) {
        m_work.shell.AppendLog(u"\r\n"_s + *reason);
        unmark(pane, item);
    } else {
        removeRow(pane, item);
    }
    row.status = reason ? u"Löschen verweigert"_s : u"Löschen"_s;
    row.size = item.sizeText;
    row.detail = reason.value_or(QString());
    row.failed = reason.has_value();
    m_work.shell.AddQueueRow(row);
}
