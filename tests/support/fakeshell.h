#pragma once

#include "common/shell.h"

#include <QStringList>

/// A Shell that writes down what it was asked: the log's text and one line for every call.
class FakeShell : public Shell {
public:
    QString log; ///< all text appended so far
    QStringList calls; ///< for example "SetCommandsEnabled 0 1 1 1", "SetAbortEnabled 0"
    QList<QueueRow> queue;
    int opened = 33; ///< what vorschau answers

    void AppendLog(const QString &text) override { log += text; }
    void SetFtpProperties() override { note("SetFtpProperties"); }
    void DoRemoteRefresh(const QString &folder) override { note("DoRemoteRefresh", folder); }
    void SetCommandsEnabled(bool login, bool logout, bool /*unused*/, bool commands,
                            bool toolbars) override
    {
        note("SetCommandsEnabled",
             QStringLiteral("%1 %2 %3 %4").arg(login).arg(logout).arg(commands).arg(toolbars));
    }
    void SetToolbarsEnabled(bool enabled) override { note("SetToolbarsEnabled", number(enabled)); }
    void SetFolderBoxesEnabled(bool enabled) override
    {
        note("SetFolderBoxesEnabled", number(enabled));
    }
    void SetAbortEnabled(bool enabled) override { note("SetAbortEnabled", number(enabled)); }
    void UpdateRemoteCommandStates() override { note("UpdateRemoteCommandStates"); }
    void UpdateLocalCommandStates() override { note("UpdateLocalCommandStates"); }
    void AddQueueRow(const QueueRow &row) override { queue.append(row); }
    void ShowTransferItem(const QString &text, const QString &sizeText) override
    {
        note("ShowTransferItem", text + u'|' + sizeText);
    }
    int vorschau(const QString &path) override
    {
        note("vorschau", path);
        return opened;
    }

private:
    static QString number(bool enabled) { return QString::number(enabled ? 1 : 0); }
    void note(const char *call, const QString &argument = {})
    {
        const QString name = QString::fromLatin1(call);
        calls.append(argument.isEmpty() ? name : name + u' ' + argument);
    }
};
