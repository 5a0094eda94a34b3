#include "fileops/permissions.h"

#include "fileops/marking.h"
#include "remote/itemkind.h"

#include <QScopeGuard>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int ModeOfFiles = 644;
constexpr int ModeOfFolders = 755;

} // namespace

PermissionDigits digitsOf(int mode)
{
    const int value = std::max(mode, 0);
    return { value / 100 % 10, value / 10 % 10, value % 10 };
}

int modeOf(const PermissionDigits &digits)
{
    return digits.owner * 100 + digits.group * 10 + digits.others;
}

int clampMode(qint64 mode) { return static_cast<int>(std::clamp<qint64>(mode, 0, 777)); }

void PermissionCommand::mnu_rechte_Click()
{
    const PermissionChoice &chosen = m_work.globals.permissions;
    if (!mayStart(m_work.ftp)) {
        return;
    }
    m_dialog();
    if (!chosen.PermissionsConfirmed || !mayStart(m_work.ftp)) {
        return;
    }
    const QString mode = QString::number(chosen.PermissionMode);
    QueueRow record;
    record.status = u"Dateirechte"_s;
    record.local = u"setzen auf"_s;
    record.size = mode;
    record.direction = u">"_s;
    record.remote = m_work.remote.folder();
    record.server = m_work.globals.connection.RemoteHost;
    m_work.shell.SetToolbarsEnabled(false);
    m_work.shell.SetFolderBoxesEnabled(false);
    const auto restore = qScopeGuard([this] {
        m_work.shell.SetFolderBoxesEnabled(true);
        m_work.shell.SetToolbarsEnabled(true);
        m_work.shell.UpdateRemoteCommandStates();
    });
    const QStringList refusals = setModes(mode);
    record.failed = !refusals.isEmpty();
    record.detail = refusals.join(u'\n');
    // Intended: the row comes behind the commands, since it tells what was refused.
    m_work.shell.AddQueueRow(record);
}

/// Sets the mode of everything that is selected. @return what was refused
QStringList PermissionCommand::setModes(const QString &mode)
{
    MarkSelectedRemote(m_work.remote, m_work.globals, false);
    const MarkedItemList items = m_work.globals.marked;
    QStringList refusals;
    for (int slot = 1; slot < items.MarkedCount; ++slot) {
        const MarkedItem &item = items.MarkedItems.at(slot);
        if (m_work.ftp.state() != FtpOperations::Connected) {
            unmark(m_work.remote, item);
            continue;
        }
        if (const auto refusal = setMode(item, mode)) {
            refusals.append(item.name + u": "_s + *refusal);
        }
        if (m_work.globals.permissions.alsoInside && item.kind == ItemKind::FolderClose
            && m_work.ftp.state() == FtpOperations::Connected) {
            if (const auto refusal = setModesInside(item)) {
                refusals.append(u"In "_s + item.name + u": "_s + *refusal);
            }
        }
    }
    return refusals;
}

std::optional<QString> PermissionCommand::setMode(const MarkedItem &item, const QString &mode)
{
    // The reply completes the line.
    m_work.shell.AppendLog(item.name + u" > "_s);
    const FtpStatus sent = m_work.ftp.sendRaw(u"SITE chmod "_s + mode + u' ' + item.name);
    if (const int row = rowOf(m_work.remote, item); row >= 0) {
        PaneRow entry = m_work.remote.model().row(row);
        entry.marked = false;
        // Intended: also after a refusal; the log tells.
        entry.permissions = mode;
        m_work.remote.model().changeRow(row, entry);
    }
    if (!sent) {
        return sent.error().text;
    }
    return std::nullopt;
}

std::optional<QString> PermissionCommand::setModesInside(const MarkedItem &item)
{
    m_work.shell.AppendLog(item.name
                           + u": Dateien darin werden auf 644 gesetzt, Ordner auf 755.\r\n"_s);
    const FtpStatus changed
        = m_work.ftp.changeModesInside(pathOf(item, u'/'), ModeOfFiles, ModeOfFolders);
    if (!changed) {
        return changed.error().text;
    }
    return std::nullopt;
}
