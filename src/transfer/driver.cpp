#include "transfer/driver.h"

#include "remote/itemkind.h"
#include "transfer/decisions.h"
#include "transfer/refusals.h"

#include <QScopeGuard>

#include <utility>

using namespace Qt::StringLiterals;

void TransferDriver::runItems(Pane &source, const std::function<void()> &prepare,
                              const std::function<void()> &list)
{
    m_batch.run(source, prepare, list, [this](int slot) {
        m_state.IsUpload = m_upload;
        m_seen.clear(); // a question may have stood for long
        m_ahead = 1;
        const int end
            = endOfRun(slot, m_batch.behindLast(), [this](int next) { return isPlain(next); });
        if (end > slot + 1) {
            runFiles(slot, end);
            return end;
        }
        // Intended: a link is moved like a folder, since it may point to one.
        if (ItemKind::isFolderLike(m_batch.item(slot).kind)) {
            oneFolder(slot);
        } else {
            oneFile(slot);
        }
        return slot + 1;
    });
}

/// Whether an item is a file that starts at 0 without a question.
bool TransferDriver::isPlain(int record)
{
    const MarkedItem &item = m_batch.item(record);
    if (item.folder.isEmpty() || ItemKind::isFolderLike(item.kind)) {
        return false;
    }
    fill(item);
    if (!knowsTarget()) {
        return false;
    }
    const auto here = seenAhead(record);
    fill(item);
    // The first of two spellings has to be there before anybody can tell whether they are one file.
    if (!here || hasTwin() || whyNot(record, *here)) {
        return false;
    }
    targetSize() = existingSize(*here);
    return startsWithoutQuestion(m_state);
}

/// What stands at an item's local path. The next ones are looked at along with it, more each time:
/// a run takes few waits, and items that are asked about one by one are not looked at for nothing.
std::optional<LocalEntry> TransferDriver::seenAhead(int record)
{
    fill(m_batch.item(record));
    const QString path = localPath();
    if (!m_seen.contains(path)) {
        QStringList paths;
        const int end = std::min(m_batch.behindLast(), record + m_ahead);
        for (int slot = record; slot < end; ++slot) {
            fill(m_batch.item(slot));
            if (!ItemKind::isFolderLike(m_batch.item(slot).kind)) {
                paths.append(localPath());
            }
        }
        m_ahead *= 2;
        m_seen.insert(m_tools.disk.at(paths));
    }
    const auto seen = m_seen.constFind(path);
    return seen == m_seen.constEnd() ? std::nullopt : std::optional(*seen);
}

/// The batch's first target that differs from this one in upper and lower case at most.
QString TransferDriver::firstSpelling(const QString &target)
{
    const QString key = target.normalized(QString::NormalizationForm_C).toCaseFolded();
    if (!m_spellings.contains(key)) {
        m_spellings.insert(key, target);
    }
    return m_spellings.value(key);
}

/// Whether another item comes under the same name in other letters; many disks and network folders
/// take both for one file.
bool TransferDriver::hasTwin() { return !m_upload && firstSpelling(localPath()) != localPath(); }

void TransferDriver::runFile(int record)
{
    const MarkedItem item = m_batch.item(record);
    fill(item);
    const auto finished = qScopeGuard([this] { finishItem(); });
    if (m_state.SkipCurrent) {
        return;
    }
    const auto here = seenAhead(record); // no question has stood since it was looked at
    fill(item);
    if (!here || refuse(record, item.sizeText, *here)) {
        return;
    }
    targetSize() = existingSize(*here);
    askAboutFile();
    if (!stillConnected()) {
        return;
    }
    m_tools.progress.setMaximumFor(sourceSize());
    m_tools.progress.setValue(targetSize());
    if (m_state.SkipCurrent) {
        return;
    }
    m_batch.announce(u"Datei: "_s + item.name, item.sizeText);
    const auto failure = moveFile();
    this->record(item.sizeText, failure, success());
}

void TransferDriver::runFolder(int record)
{
    const MarkedItem item = m_batch.item(record);
    fill(item);
    sourceSize() = 0; // folders have no size of their own
    const auto finished = qScopeGuard([this] { finishItem(); });
    if (m_state.SkipCurrent) {
        return;
    }
    const auto here = m_tools.disk.at(localPath());
    if (!here || refuse(record, {}, *here)) {
        return;
    }
    if (folderExists(*here) && asksForFolder(m_state)) {
        askConflict(m_tools.work, m_tools.dialogs);
    }
    if (!stillConnected()) {
        return;
    }
    m_tools.progress.setValue(0);
    // Intended: a folder that was renamed and then skipped leaves no empty one of the old name.
    if (m_state.SkipCurrent) {
        return;
    }
    m_batch.announce(u"Ordner: "_s + item.name, {});
    this->record({}, moveFolder(), {});
}

/// Several files in one call. What is shown is the file whose row comes next; the others may be on
/// their way already.
void TransferDriver::runFiles(int first, int end)
{
    QList<FtpFile> files;
    for (int slot = first; slot < end; ++slot) {
        fill(m_batch.item(slot));
        files.append({ remotePath(), localPath() });
    }
    present(first);
    const auto told = [&](qsizetype file, const FtpStatus &outcome) {
        const int slot = first + static_cast<int>(file);
        fill(m_batch.item(slot)); // files before it that were never begun have no outcome
        record(m_batch.item(slot).sizeText, errorOf(outcome), success());
        finishItem();
        if (slot + 1 < end) {
            present(slot + 1);
        }
    };
    const FtpStatus begun = moveFiles(files, told);
    if (!begun) {
        record(m_batch.item(first).sizeText, errorOf(begun), {});
    }
    m_tools.work.shell.ShowTransferItem({}, {});
    finishItem();
}

void TransferDriver::present(int record)
{
    const MarkedItem &item = m_batch.item(record);
    fill(item);
    m_tools.progress.setMaximumFor(sourceSize());
    m_tools.progress.setValue(0);
    m_batch.announce(u"Datei: "_s + item.name, item.sizeText);
}

/// Why an item is not even tried; fill() was called for it.
std::optional<FtpError> TransferDriver::whyNot(int record, const LocalEntry &here)
{
    // Files of two folders may be dropped together, and two names may become one on the other side.
    // No question would tell of it, and in a run both would be written at once.
    const QString target = m_upload ? remotePath() : localPath();
    const auto owner = m_targets.constFind(target);
    const bool taken = (owner != m_targets.constEnd() && *owner != record)
        || (hasTwin() && here.exists && m_tools.disk.isSame(firstSpelling(target), target));
    if (taken) {
        return FtpError { ftp::ErrorKind::LocalFile, 0,
                          target
                              + u": Mehrere der markierten Objekte haben dieses Ziel, nur das "
                                u"erste wird übertragen."_s };
    }
    m_targets.insert(target, record);
    return refusal(m_batch.item(record), here);
}

bool TransferDriver::refuse(int record, const QString &sizeText, const LocalEntry &here)
{
    const auto why = whyNot(record, here);
    if (why) {
        // One reason may hold for thousands of items; each has it in its row.
        if (why->text != std::exchange(m_lastRefusal, why->text)) {
            m_tools.work.shell.AppendLog(why->text + u"\r\n"_s);
        }
        this->record(sizeText, why, {});
    }
    return why.has_value();
}

/// The line may go while a question stands; what was never begun has no row.
bool TransferDriver::stillConnected() const
{
    return m_tools.work.ftp.state() == FtpOperations::Connected;
}

void TransferDriver::askAboutFile()
{
    if (!fileConflict(m_state)) {
        return;
    }
    if (!asksForFile(m_state)) {
        decideAgain(m_state);
        return;
    }
    askConflict(m_tools.work, m_tools.dialogs);
    applyOverwrite(m_state);
    if (!m_upload && m_state.RenameChosen) {
        askConflict(m_tools.work, m_tools.dialogs);
        applyOverwrite(m_state);
    }
}

void TransferDriver::finishItem()
{
    m_tools.progress.setValue(0);
    FinishTransferItem(m_state);
}

void TransferDriver::record(const QString &sizeText, const std::optional<FtpError> &failure,
                            const QString &success)
{
    QueueRow told = row(failure.has_value());
    told.local = localPath();
    told.size = sizeText;
    told.remote = remotePath();
    told.repeatable = isSafeName(m_state.LocalName) && isSafeName(m_state.RemoteName);
    m_batch.record(told, failure, success);
}
