#include "transfer/download.h"

#include "common/mo_standard.h"
#include "ftp/ftplocalnames.h"
#include "remote/itemkind.h"
#include "transfer/decisions.h"
#include "transfer/refusals.h"

using namespace Qt::StringLiterals;

void Download::DownloadSelection(const QString &target)
{
    m_target = withSeparator(target, LocalSeparator);
    runItems(m_tools.work.remote, {}, [&] {
        m_tools.work.local.listFolder(target);
        m_tools.work.local.setFolderText(target);
        m_tools.work.local.clearSelection();
    });
}

void Download::DownloadFile(const QString &target, int record)
{
    m_target = withSeparator(target, LocalSeparator);
    runFile(record);
}

void Download::DownloadFolder(const QString &target, int record)
{
    m_target = withSeparator(target, LocalSeparator);
    runFolder(record);
}

void Download::fill(const MarkedItem &item)
{
    m_state.RemoteDir = withSeparator(item.folder, u'/');
    m_state.RemoteName = item.name;
    m_state.RemoteSize = lenientInteger(item.sizeText);
    m_state.LocalDir = m_target;
    m_state.LocalName = item.name;
    m_state.LocalSize = 0;
}

std::optional<FtpError> Download::refusal(const MarkedItem &item, const LocalEntry &here) const
{
    const auto name = refuseName(item.name);
    return name || ItemKind::isFolderLike(item.kind) ? name : refuseSpecial(localPath(), here);
}

std::optional<FtpError> Download::moveFile()
{
    return errorOf(m_tools.work.ftp.getFile(remotePath(), localPath(), m_state.LocalSize));
}

std::optional<FtpError> Download::moveFolder()
{
    m_tools.disk.provideFolder(localPath()); // a rename may just have moved it away
    return errorOf(m_tools.work.ftp.getMultiple(multiplePattern(remotePath(), u'/'), localPath()));
}

FtpStatus Download::moveFiles(const QList<FtpFile> &files, const FtpFileDone &done)
{
    return m_tools.work.ftp.getFiles(files, done);
}

QueueRow Download::row(bool failed) const
{
    // Intended: the row says "Download" even when nothing came; icon and tool tip tell.
    QueueRow made;
    made.status = u"Download"_s;
    made.direction = u"<--"_s;
    made.failed = failed;
    return made;
}

QString Download::success() const
{
    return QString::number(m_tools.disk.sizeSoon(localPath(), m_state.RemoteSize)) + u" Bytes"_s;
}
