// Deletions in both panes, with the question that comes first.
#pragma once

#include "fileops/delete.h"
#include "support/workbench.h"

class DeleteTest : public Workbench {
protected:
    DeleteTest() { command.setCountLimit(60000); }

    void expectQuestion(int count, bool answer, const QString &details = {})
    {
        prompts.expectConfirm(
            QStringLiteral("Sind Sie sicher, dass Sie %1 Dateien oder Ordner löschen möchten?")
                .arg(count),
            answer, QStringLiteral("Confirm Delete"), details);
    }
    void deleteRemote(const QStringList &names, const QString &details = {}, bool answer = true)
    {
        showBoth();
        remote.select(names);
        expectQuestion(static_cast<int>(names.size()), answer, details);
        command.DeleteRemoteItems();
    }
    void deleteLocal(const QStringList &names, const QString &details = {}, bool answer = true)
    {
        showBoth();
        local.select(names);
        expectQuestion(static_cast<int>(names.size()), answer, details);
        command.DeleteLocalItems();
    }

    DeleteCommand command { work };
};
