#include "transfer/upload.h"

#include "common/mo_standard.h"
#include "remote/itemkind.h"
#include "transfer/decisions.h"
#include "transfer/refusals.h"

#include <QScopeGuard>
#include <utility>

using namespace Qt::StringLiterals;

void Upload::UploadSelection(const QString &target)
{
    m_target = withSeparator(target, u'/');
    bool entered = false;
    m_batch.run(m_tools.work.local, [&](int slot) {
        if (!std::exchange(entered, true)) {
            enterTarget();
        }
        m_state.IsUpload = true;
        if (ItemKind::isFolderLike(m_batch.item(slot).kind)) {
            UploadFolder(m_batch.item(slot).folder, slot);
        } else {
            UploadFile(m_batch.item(slot).folder, slot);
        }
    });
    if (m_tools.work.ftp.state() == FtpOperations::Connected) {
        const QString current = m_tools.work.ftp.currentFolder();
        m_tools.work.remote.listFolder(current);
        m_tools.work.remote.setFolderText(current);
    }
    m_tools.work.remote.clearSelection();
}

void Upload::enterTarget()
{
    if (withSeparator(m_tools.work.ftp.currentFolder(), u'/') == m_target) {
        return;
    }
    // The pane ignores a folder that cannot be entered and would go on showing another one, by
    // which no conflict could be seen.
    m_unreachable = errorOf(m_tools.work.ftp.setCurrentFolder(m_target));
    if (!m_unreachable) {
        m_tools.work.remote.listFolder(m_target);
    }
}

void Upload::fill(const QString &folder, const MarkedItem &item)
{
    m_state.LocalDir = withSeparator(folder, LocalSeparator);
    m_state.LocalName = item.name;
    m_state.LocalSize = lenientInteger(item.sizeText);
    m_state.RemoteDir = m_target;
    m_state.RemoteName = nameForServer(item.name);
    m_state.RemoteSize = 0;
}

void Upload::UploadFile(const QString &folder, int record)
{
    const MarkedItem item = m_batch.item(record);
    fill(folder, item);
    const auto finished = qScopeGuard([this] {
        m_tools.progress.setValue(0);
        FinishTransferItem(m_state);
    });
    if (m_state.SkipCurrent) {
        return;
    }
    if (const auto refusal = m_unreachable ? m_unreachable : refuseSpecial(localPath())) {
        m_tools.work.shell.AppendLog(refusal->text + u"\r\n"_s);
        this->record(item.sizeText, refusal, {});
        return;
    }
    if (const int row = m_tools.work.remote.model().findRow(m_state.RemoteName); row >= 0) {
        m_state.RemoteSize = lenientInteger(m_tools.work.remote.model().row(row).size);
    }
    askAboutFile();
    m_tools.progress.setMaximumFor(m_state.LocalSize);
    m_tools.progress.setValue(m_state.RemoteSize);
    if (m_state.SkipCurrent) {
        return;
    }
    m_batch.announce(u"Datei: "_s + item.name, item.sizeText);
    const auto failure = putFile();
    this->record(item.sizeText, failure, QString::number(m_state.LocalSize) + u" Bytes"_s);
}

void Upload::askAboutFile()
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
}

std::optional<FtpError> Upload::putFile()
{
    m_tools.work.ftp.setStoreMode(m_state.RemoteSize > 0 ? StoreContinue : StoreReplace);
    return errorOf(m_tools.work.ftp.putFile(localPath(), remotePath(), m_state.RemoteSize));
}

void Upload::UploadFolder(const QString &folder, int record)
{
    const MarkedItem item = m_batch.item(record);
    fill(folder, item);
    m_state.LocalSize = 0; // folders have no size of their own
    const auto finished = qScopeGuard([this] {
        m_tools.progress.setValue(0);
        FinishTransferItem(m_state);
    });
    if (m_state.SkipCurrent) {
        return;
    }
    if (m_unreachable) {
        this->record({}, m_unreachable, {});
        return;
    }
    if (m_tools.work.remote.model().findRow(m_state.RemoteName) >= 0 && asksForFolder(m_state)) {
        askConflict(m_tools.work, m_tools.dialogs);
    }
    m_tools.progress.setValue(0);
    if (m_state.SkipCurrent) {
        return;
    }
    m_batch.announce(u"Ordner: "_s + item.name, {});
    this->record({}, putFolder(), {});
}

std::optional<FtpError> Upload::putFolder()
{
    // Asked again: a rename may just have moved the folder away.
    if (m_tools.work.remote.model().findRow(m_state.RemoteName) < 0) {
        ignoreError(m_tools.work.ftp.makeFolder(remotePath()),
                    "it may be there unseen; otherwise the put fails and tells");
    }
    m_tools.work.ftp.setStoreMode(StoreReplace);
    return errorOf(
        m_tools.work.ftp.putMultiple(multiplePattern(localPath(), LocalSeparator), remotePath()));
}

void Upload::record(const QString &sizeText, const std::optional<FtpError> &failure,
                    const QString &success)
{
    m_batch.record({ failure ? u"Upload verweigert"_s : u"Upload"_s,
                     localPath(),
                     sizeText,
                     u"-->"_s,
                     remotePath(),
                     {},
                     {},
                     false },
                   failure, success);
}
