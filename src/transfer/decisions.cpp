#include "transfer/decisions.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Looking at more files at a time would be felt in the window.
constexpr int LongestRun = 1000;

/// Size of the file that would be overwritten; the resume offset later on.
qint64 &targetSize(TransferState &state)
{
    return state.IsUpload ? state.RemoteSize : state.LocalSize;
}

/// Intended: no blank between path and parenthesis.
QString described(const QString &path, qint64 size)
{
    return path + u'(' + (size == UnknownSize ? u"unbekannt"_s : QString::number(size)) + u')';
}

} // namespace

ConflictQuestion conflictQuestion(const TransferState &state, bool resumeSupport)
{
    const QString local = described(state.LocalDir + state.LocalName, state.LocalSize);
    const QString remote = described(state.RemoteDir + state.RemoteName, state.RemoteSize);
    const auto message = [](const QString &target, const QString &source) {
        return QStringList { u"Überschreiben "_s + target, u"mit "_s + source };
    };
    if (state.IsUpload) {
        const bool resume = state.RemoteSize != UnknownSize && state.RemoteSize < state.LocalSize;
        return { u"Dateiupload..."_s, message(remote, local), resume };
    }
    // Intended: the caption speaks of an upload for downloads, too.
    return { u"Dateiupload fortsetzen..."_s, message(local, remote),
             state.LocalSize < state.RemoteSize && resumeSupport };
}

void loadConflict(TransferState &state)
{
    state.SkipCurrent = true;
    state.RenameChosen = false;
    state.ApplyToAll = 0;
}

void applyReply(TransferState &state, const ConflictReply &reply)
{
    state.ApplyToAll = reply.applyToAll ? 1 : 0;
    state.RenameChosen = reply.answer == ConflictAnswer::Rename;
    if (reply.answer == ConflictAnswer::Overwrite || reply.answer == ConflictAnswer::Resume) {
        state.SkipCurrent = false;
        state.OverwriteChosen = reply.answer == ConflictAnswer::Overwrite;
    } else if (reply.answer == ConflictAnswer::Skip) {
        state.SkipCurrent = true;
    }
}

bool fileConflict(const TransferState &state)
{
    return (state.IsUpload ? state.RemoteSize : state.LocalSize) != 0;
}

bool asksForFile(const TransferState &state)
{
    if (state.ApplyToAll != 1) {
        return true;
    }
    // An earlier "resume" cannot be repeated without a size.
    const bool unknown = state.RemoteSize == UnknownSize && !state.OverwriteChosen;
    return state.IsUpload && (state.RenameChosen || unknown);
}

bool asksForFolder(const TransferState &state)
{
    return state.ApplyToAll != 1 || state.RenameChosen;
}

void decideAgain(TransferState &state)
{
    // Intended: "Alle" overwrites downloads even when the earlier answer was to resume, while
    // uploads repeat that answer.
    if (!state.IsUpload || state.OverwriteChosen) {
        targetSize(state) = 0;
    }
}

void applyOverwrite(TransferState &state)
{
    // The flag may still stand from an earlier item when this one was not answered in the end.
    if (state.OverwriteChosen && !state.SkipCurrent) {
        targetSize(state) = 0;
    }
}

bool startsWithoutQuestion(TransferState state)
{
    if (state.SkipCurrent) {
        return false;
    }
    if (!fileConflict(state)) {
        return true;
    }
    if (asksForFile(state)) {
        return false;
    }
    decideAgain(state);
    return targetSize(state) == 0;
}

int endOfRun(int first, int behindLast, const std::function<bool(int)> &plain)
{
    const int limit = std::min(behindLast, first + LongestRun);
    int end = first;
    while (end < limit && plain(end)) {
        ++end;
    }
    return std::max(end, first + 1);
}

void FinishTransferItem(TransferState &state)
{
    if (state.ApplyToAll != 1) {
        state.SkipCurrent = false;
    }
}

QString multiplePattern(const QString &folder, QChar separator)
{
    const QString pattern = folder + separator + u'*';
    return folder.contains(u' ') ? u'"' + pattern + u'"' : pattern;
}
