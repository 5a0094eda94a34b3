#include "transfer/conflict.h"

#include "common/mo_standard.h"
#include "fileops/rename.h"
#include "transfer/decisions.h"

using namespace Qt::StringLiterals;

namespace {

const QString lineBreak = u"\r\n"_s;

bool paneHolds(Pane &pane, const QString &folder, const QString &name)
{
    return withSeparator(pane.folder(), folder.back()) == folder && pane.model().findRow(name) >= 0;
}

/// The question comes back just as after a renaming; without a word it would be taken for one.
void tellTaken(const Workplace &work, const QString &name)
{
    work.shell.AppendLog(name + u": Der Name ist schon vergeben."_s + lineBreak);
}

void renameRemote(const Workplace &work, const QString &name)
{
    const TransferState &item = work.globals.transfer;
    if (work.remote.model().findRow(name) >= 0) {
        tellTaken(work, name);
        return;
    }
    const FtpResult<bool> taken = remoteNameTaken(work.ftp, name);
    if (!taken) {
        work.shell.AppendLog(
            name + u": Ob der Name frei ist, ließ sich nicht feststellen; nichts wurde umbenannt."_s
            + lineBreak);
        return;
    }
    if (*taken) {
        tellTaken(work, name);
        return;
    }
    ignoreError(work.ftp.rename(item.RemoteDir + item.RemoteName, item.RemoteDir + name),
                "the reply is in the log, and the question comes back");
    work.remote.listFolder(item.RemoteDir);
}

void renameLocalFile(const Workplace &work, const QString &name)
{
    const TransferState &item = work.globals.transfer;
    if (paneHolds(work.local, item.LocalDir, name)) {
        tellTaken(work, name);
        return;
    }
    if (const auto failed = renameLocal(item.LocalDir + item.LocalName, item.LocalDir + name)) {
        work.shell.AppendLog(lineBreak + *failed + lineBreak);
    }
}

void renameExisting(const Workplace &work, const QString &name)
{
    if (const auto refused = refuseNewName(name)) {
        work.shell.AppendLog(*refused + lineBreak);
    } else if (work.globals.transfer.IsUpload) {
        renameRemote(work, name);
    } else {
        renameLocalFile(work, name);
    }
}

} // namespace

void askConflict(const Workplace &work, ConflictDialogs &dialogs)
{
    TransferState &item = work.globals.transfer;
    for (;;) {
        loadConflict(item);
        // Intended: after a rename the question comes back with the sizes of the first one.
        const ConflictReply reply
            = dialogs.askTransfer(conflictQuestion(item, work.globals.session.ResumeSupport));
        applyReply(item, reply);
        if (reply.answer != ConflictAnswer::Rename) {
            return;
        }
        const auto name = dialogs.askNewName(item.IsUpload ? item.RemoteName : item.LocalName);
        if (!name) {
            item.SkipCurrent = true;
            return;
        }
        renameExisting(work, *name);
    }
}
