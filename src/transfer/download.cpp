#include "transfer/download.h"

#include "common/mo_standard.h"
#include "ftp/ftplocalnames.h"
#include "remote/itemkind.h"
#include "transfer/decisions.h"
#include "transfer/refusals.h"

#include <QScopeGuard>

using namespace Qt::StringLiterals;

void Download::DownloadSelection(const QString &target)
{
    m_batch.run(m_tools.work.remote, [&](int slot) {
        m_state.IsUpload = false;
        // Intended: a link is fetched like a folder, since it may point to one.
        if (ItemKind::isFolderLike(m_batch.item(slot).kind)) {
            DownloadFolder(target, slot);
        } else {
            DownloadFile(target, slot);
        }
    });
    m_tools.work.local.listFolder(target);
    m_tools.work.local.setFolderText(target);
    m_tools.work.local.clearSelection();
}

void Download::fill(const QString &target, const MarkedItem &item)
{
    m_state.RemoteDir = withSeparator(item.folder, u'/');
    m_state.RemoteName = item.name;
    m_state.RemoteSize = lenientInteger(item.sizeText);
    m_state.LocalDir = withSeparator(target, LocalSeparator);
    m_state.LocalName = item.name;
    m_state.LocalSize = 0;
}

void Download::DownloadFile(const QString &target, int record)
{
    const MarkedItem item = m_batch.item(record);
    fill(target, item);
    const auto finished = qScopeGuard([this] {
        m_tools.progress.setValue(0);
        FinishTransferItem(m_state);
    });
    if (m_state.SkipCurrent) {
        return;
    }
    auto refusal = refuseName(item.name);
    refusal = refusal ? refusal : refuseSpecial(localPath());
    if (refusal) {
        m_tools.work.shell.AppendLog(refusal->text + u"\r\n"_s);
        this->record(item.sizeText, refusal, {});
        return;
    }
    m_state.LocalSize = localEntry(localPath()).size;
    askAboutFile();
    m_tools.progress.setMaximumFor(m_state.RemoteSize);
    m_tools.progress.setValue(m_state.LocalSize);
    if (m_state.SkipCurrent) {
        return;
    }
    m_batch.announce(u"Datei: "_s + item.name, item.sizeText);
    const auto failure = getFile();
    // Intended: the row says "Download" even when nothing came; icon and tool tip tell.
    this->record(item.sizeText, failure,
                 QString::number(localEntry(localPath()).size) + u" Bytes"_s);
}

void Download::askAboutFile()
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
    if (m_state.RenameChosen) {
        askConflict(m_tools.work, m_tools.dialogs);
        applyOverwrite(m_state);
    }
}

std::optional<FtpError> Download::getFile()
{
    return errorOf(m_tools.work.ftp.getFile(remotePath(), localPath(), m_state.LocalSize));
}

void Download::DownloadFolder(const QString &target, int record)
{
    const MarkedItem item = m_batch.item(record);
    fill(target, item);
    m_state.RemoteSize = 0; // folders have no size of their own
    const auto finished = qScopeGuard([this] {
        m_tools.progress.setValue(0);
        FinishTransferItem(m_state);
    });
    if (m_state.SkipCurrent) {
        return;
    }
    if (const auto refusal = refuseName(item.name)) {
        m_tools.work.shell.AppendLog(refusal->text + u"\r\n"_s);
        this->record({}, refusal, {});
        return;
    }
    if (localEntry(localPath()).isFolder && asksForFolder(m_state)) {
        askConflict(m_tools.work, m_tools.dialogs);
    }
    m_tools.progress.setValue(0);
    if (m_state.SkipCurrent) {
        return;
    }
    m_batch.announce(u"Ordner: "_s + item.name, {});
    this->record({}, getFolder(), {});
}

std::optional<FtpError> Download::getFolder()
{
    // A rename may just have moved the folder away; a failure shows when the first file comes.
    if (!localEntry(localPath()).exists) {
        (void)makeLocalFolder(localPath());
    }
    return errorOf(m_tools.work.ftp.getMultiple(multiplePattern(remotePath(), u'/'), localPath()));
}

void Download::record(const QString &sizeText, const std::optional<FtpError> &failure,
                      const QString &success)
{
    m_batch.record({ u"Download"_s, localPath(), sizeText, u"<--"_s, remotePath(), {}, {}, false },
                   failure, success);
}
