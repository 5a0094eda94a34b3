#include "transfer/batch.h"

#include "fileops/marking.h"
#include "transfer/decisions.h"

#include <QScopeGuard>
#include <QTime>

Batch::Batch(const TransferTools &tools)
    : m_tools(tools)
    , m_items(tools.work.globals.marked)
{
}

void Batch::run(Pane &source, const std::function<void()> &prepare,
                const std::function<void()> &list, const std::function<int(int)> &some)
{
    begin();
    const auto restore = qScopeGuard([this] { end(); });
    if (prepare && behindLast() > 1 && goesOn()) {
        m_tools.work.shell.SetToolbarsEnabled(false);
        prepare();
    }
    for (int slot = 1; slot < behindLast();) {
        int next = slot + 1;
        if (!item(slot).folder.isEmpty() && goesOn()) {
            m_tools.work.shell.SetToolbarsEnabled(false);
            next = some(slot);
        }
        for (; slot < next; ++slot) {
            unmark(source, item(slot));
        }
    }
    list();
}

bool Batch::goesOn() const
{
    return !m_stopped && !m_tools.work.globals.session.ConnectionLost
        && m_tools.work.ftp.state() == FtpOperations::Connected;
}

void Batch::begin()
{
    m_tools.work.shell.SetFolderBoxesEnabled(false);
    m_tools.progress.beginBatch();
    m_tools.work.globals.transfer.ApplyToAll = 0;
    m_tools.work.globals.transfer.SkipCurrent = false;
}

void Batch::end()
{
    Shell &shell = m_tools.work.shell;
    const bool lost = m_tools.work.globals.session.ConnectionLost;
    shell.SetCommandsEnabled(lost, !lost, false, true, true);
    shell.UpdateRemoteCommandStates();
    shell.UpdateLocalCommandStates();
    m_tools.progress.finish();
    shell.SetAbortEnabled(false); // the last progress report may have come after the last reply
    shell.SetFolderBoxesEnabled(true);
}

void Batch::announce(const QString &label, const QString &sizeText)
{
    m_tools.work.shell.ShowTransferItem(label, sizeText);
    m_tools.work.ftp.setTransferType(m_tools.work.globals.connection.TransferType);
    m_tools.work.globals.transfer.TransferStart = now();
}

void Batch::record(QueueRow row, const std::optional<FtpError> &failure, const QString &success)
{
    m_tools.work.shell.ShowTransferItem({}, {});
    row.server = m_tools.work.globals.connection.RemoteHost;
    row.webSpace = webSpaceOf(m_tools.work.globals.connection);
    row.failed = failure.has_value();
    row.detail = failure ? failure->text : success;
    m_tools.work.shell.AddQueueRow(row);
    if (failure && failure->kind == ftp::ErrorKind::LocalDiskFull && !m_stopped) {
        m_tools.work.shell.AppendLog(
            QStringLiteral("Auf dem lokalen Datenträger ist kein Platz mehr frei. Die Übertragung "
                           "wurde angehalten.\r\n"));
        stop();
    }
}

double Batch::now() { return QTime::currentTime().msecsSinceStartOfDay() / 1000.0; }
