#include "ftp/ftpfilelist.h"

#include "ftp/ftpconvert.h"
#include "ftp/ftplocalnames.h"

#include <QScopeGuard>

void FtpFileList::post(Report report)
{
    m_bridge->post([self = shared_from_this(), report = std::move(report)]() mutable {
        self->deliver(std::move(report));
    });
}

void FtpFileList::deliver(Report report)
{
    m_waiting.push_back(std::move(report));
    if (m_delivering) {
        return; // a report further down the stack has opened a box
    }
    m_delivering = true;
    const auto idle = qScopeGuard([this] { m_delivering = false; });
    while (!m_waiting.empty() && !m_closed) {
        const Report next = std::move(m_waiting.front());
        m_waiting.pop_front();
        next(*this);
    }
}

ftp::FileReports FtpFileList::reports()
{
    const auto self = shared_from_this();
    ftp::FileReports made;
    made.reply = [self](const ftp::Reply &reply) {
        const FtpEvent event { self->m_operation, ftpStatus(reply),
                               ftpText(reply.text()) + QStringLiteral("\r\n"), 0, 0 };
        self->post([event](FtpFileList &list) { list.m_event(event); });
    };
    made.progress = [self](std::size_t, std::int64_t bytes) {
        const FtpEvent event { self->m_operation, FtpEvent::InProgress, {}, bytes, 0 };
        self->post([event](FtpFileList &list) { list.m_event(event); });
    };
    made.done = [self](std::size_t file, const ftp::Status &outcome) {
        const FtpStatus told
            = outcome ? FtpStatus() : tl::unexpected<FtpError>(ftpError(outcome.error()));
        self->post(
            [file, told](FtpFileList &list) { list.m_done(static_cast<qsizetype>(file), told); });
    };
    return made;
}

std::vector<ftp::FilePair> enginePairs(const QList<FtpFile> &files)
{
    std::vector<ftp::FilePair> pairs;
    pairs.reserve(static_cast<std::size_t>(files.size()));
    for (const FtpFile &file : files) {
        pairs.push_back(
            { file.remotePath.toStdString(), bytesOfName(file.localPath).toStdString() });
    }
    return pairs;
}
