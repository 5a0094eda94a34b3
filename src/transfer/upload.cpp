#include "transfer/upload.h"

#include "common/mo_standard.h"
#include "ftp/ftplocalnames.h"
#include "remote/itemkind.h"
#include "transfer/decisions.h"
#include "transfer/refusals.h"

using namespace Qt::StringLiterals;

void Upload::UploadSelection(const QString &target)
{
    m_target = withSeparator(target, u'/');
    runItems(
        m_tools.work.local, [this] { enterTarget(); }, [this] { listTarget(); });
}

void Upload::listTarget()
{
    if (m_tools.work.ftp.state() == FtpOperations::Connected) {
        const QString current = m_tools.work.ftp.currentFolder();
        m_tools.work.remote.listFolder(current);
        m_tools.work.remote.setFolderText(current);
    }
    m_tools.work.remote.clearSelection();
}

void Upload::enterTarget()
{
    const bool there = withSeparator(m_tools.work.ftp.currentFolder(), u'/') == m_target;
    if (!there) {
        // Intended: nothing is put into a folder that cannot be entered. The pane would go on
        // showing another one, by which no conflict could be seen.
        m_unreachable = errorOf(m_tools.work.ftp.setCurrentFolder(m_target));
    }
    if (!m_unreachable && !m_target.startsWith(u'/')) {
        m_target = withSeparator(m_tools.work.ftp.currentFolder(), u'/'); // once is enough
    }
    if (!m_unreachable && (!there || m_tools.work.remote.isUnread())) {
        m_tools.work.remote.listFolder(m_target);
    }
}

void Upload::fill(const MarkedItem &item)
{
    m_state.LocalDir = withSeparator(item.folder, LocalSeparator);
    m_state.LocalName = item.name;
    m_state.LocalSize = lenientInteger(item.sizeText);
    m_state.RemoteDir = m_target;
    m_state.RemoteName = nameForServer(item.name);
    m_state.RemoteSize = 0;
}

std::optional<FtpError> Upload::refusal(const MarkedItem &item, const LocalEntry &here) const
{
    const bool folder = ItemKind::isFolderLike(item.kind);
    return m_unreachable || folder ? m_unreachable : refuseSpecial(localPath(), here);
}

qint64 Upload::existingSize(const LocalEntry & /*here*/)
{
    if (m_tools.work.remote.isUnread()) {
        return askedSize();
    }
    const int row = m_tools.work.remote.model().findRow(m_state.RemoteName);
    return row < 0 ? 0 : lenientInteger(m_tools.work.remote.model().row(row).size);
}

/// The size as the server tells it for the very file, where the folder cannot be listed.
qint64 Upload::askedSize()
{
    const auto facts = m_tools.work.ftp.fileFacts(remotePath());
    if (!facts) {
        return 0; // it fails only with the session itself
    }
    if (facts->size || facts->time || m_tellsNoSizes) {
        return facts->size.value_or(UnknownSize);
    }
    // Either there is no such file, or the server does not know the command.
    const FtpStatus size = m_tools.work.ftp.sendRaw(u"SIZE "_s + remotePath());
    const bool missing = !size && size.error().replyCode == 550;
    m_tellsNoSizes = !missing;
    return missing ? 0 : UnknownSize;
}

bool Upload::isListed() const
{
    return m_tools.work.remote.model().findRow(m_state.RemoteName) >= 0;
}

bool Upload::folderExists(const LocalEntry & /*here*/) const
{
    // Files inside an accepted folder are replaced without questions: better one too many.
    return isListed() || m_tools.work.remote.isUnread();
}

std::optional<FtpError> Upload::moveFile()
{
    m_tools.work.ftp.setStoreMode(m_state.RemoteSize > 0 ? StoreContinue : StoreReplace);
    return errorOf(m_tools.work.ftp.putFile(localPath(), remotePath(), m_state.RemoteSize));
}

std::optional<FtpError> Upload::moveFolder()
{
    // Asked again: a rename may just have moved the folder away.
    if (!isListed()) {
        ignoreError(m_tools.work.ftp.makeFolder(remotePath()),
                    "it may be there unseen; otherwise the put fails and tells");
    }
    m_tools.work.ftp.setStoreMode(StoreReplace);
    return errorOf(
        m_tools.work.ftp.putMultiple(multiplePattern(localPath(), LocalSeparator), remotePath()));
}

FtpStatus Upload::moveFiles(const QList<FtpFile> &files, const FtpFileDone &done)
{
    m_tools.work.ftp.setStoreMode(StoreReplace);
    return m_tools.work.ftp.putFiles(files, done);
}

QueueRow Upload::row(bool failed) const
{
    QueueRow made;
    made.status = failed ? u"Upload verweigert"_s : u"Upload"_s;
    made.direction = u"-->"_s;
    made.failed = failed;
    return made;
}

QString Upload::success() const
{
    // It may have grown.
    return QString::number(m_tools.disk.sizeSoon(localPath(), m_state.LocalSize)) + u" Bytes"_s;
}
