#include "fileops/newfolder.h"

#include "common/mo_standard.h"
#include "ftp/ftplocalnames.h"
#include "remote/itemkind.h"

#include <QScopeGuard>

#include <cerrno>
#include <cstring>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr int LastCount = std::numeric_limits<qint16>::max();
const QString baseName = u"Ordner"_s;

void addAndEdit(Pane &pane, const QString &name, const QString &folder)
{
    PaneRow entry;
    entry.name = name;
    entry.kind = ItemKind::FolderClose;
    entry.tag = folder + name;
    pane.editCaption(pane.model().appendRow(entry));
}

} // namespace

QString UniqueRowName(const PaneModel &pane, const QString &base)
{
    QString name = base;
    // Intended: the counter starts at 0 and follows without a separator.
    for (int count = 0; pane.findRow(name) >= 0; ++count) {
        if (count > LastCount) {
            return {};
        }
        name = base + QString::number(count);
    }
    return name;
}

void NewFolderCommand::MakeDirectory()
{
    if (m_work.globals.active.RemoteListActive) {
        MakeRemoteFolder();
    } else if (m_work.globals.active.LocalListActive) {
        MakeLocalFolder();
    }
}

void NewFolderCommand::MakeRemoteFolder()
{
    const QString unique = UniqueRowName(m_work.remote.model(), baseName);
    if (!mayStart(m_work.ftp) || unique.isEmpty()) {
        return;
    }
    m_work.shell.SetToolbarsEnabled(false);
    const auto restore = qScopeGuard([this] {
        m_work.shell.SetAbortEnabled(false);
        m_work.shell.SetToolbarsEnabled(true);
        updateCommandStates(m_work);
    });
    m_work.shell.SetFtpProperties();
    if (const QString made = makeUntilDone(unique); !made.isEmpty()) {
        addAndEdit(m_work.remote, made, withSeparator(m_work.ftp.currentFolder(), u'/'));
    }
}

QString NewFolderCommand::makeUntilDone(const QString &name)
{
    NewFolderState &state = m_work.globals.newFolder;
    state = {};
    QString candidate = name;
    for (int count = 1; count <= LastCount; ++count) {
        // A server that calls every name taken must not hold the user for thousands of tries.
        m_work.shell.SetAbortEnabled(count > 1);
        const FtpStatus made = m_work.ftp.makeFolder(candidate);
        if (made) {
            return candidate;
        }
        // The reply event leaves both flags alone while the name is taken; without a reply of the
        // server no other name would fare better.
        if (state.MkdirDone || made.error().replyCode == 0) {
            return {};
        }
        candidate = name + u'(' + QString::number(count) + u')';
    }
    return {};
}

void NewFolderCommand::MakeLocalFolder()
{
    const QString name = UniqueRowName(m_work.local.model(), baseName);
    const QString folder = withSeparator(m_work.local.folder(), LocalSeparator);
    if (name.isEmpty()) {
        return;
    }
    if (!makeLocalFolder(folder + name)) {
        const QString reason = QString::fromLocal8Bit(std::strerror(errno));
        m_work.shell.AppendLog(folder + name + u": Der Ordner konnte nicht angelegt werden ("_s
                               + reason + u").\r\n"_s);
        return;
    }
    addAndEdit(m_work.local, name, folder);
}
