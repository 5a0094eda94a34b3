#pragma once

#include "support/workbench.h"
#include "transfer/download.h"
#include "transfer/progressmodel.h"
#include "transfer/transfercommands.h"
#include "transfer/upload.h"

#include <deque>

/// One showing of frmTransfer and, for Rename, what frmRename is answered (nothing = cancelled).
struct ConflictStep {
    ConflictAnswer answer = ConflictAnswer::Skip;
    bool all = false;
    std::optional<QString> newName;
};

/// Answers the conflict dialogs in order and notes the questions. Without an answer left it fails
/// the test and skips.
class ScriptedConflicts : public ConflictDialogs {
public:
    std::deque<ConflictStep> steps;
    QList<ConflictQuestion> questions;
    QStringList offeredNames;
    std::function<void()> whileAsked = [] {}; ///< happens while frmTransfer stands

    ConflictReply askTransfer(const ConflictQuestion &question) override
    {
        questions.append(question);
        if (steps.empty()) {
            ADD_FAILURE() << "not expected: " << question.message.join(u' ').toStdString();
            return {};
        }
        whileAsked();
        m_current = steps.front();
        steps.pop_front();
        return { m_current.answer, m_current.all };
    }
    std::optional<QString> askNewName(const QString &existing) override
    {
        offeredNames.append(existing);
        return m_current.newName;
    }

private:
    ConflictStep m_current;
};

/// A workbench with the transfer commands.
class TransferBench : public Workbench {
protected:
    TransferBench()
    {
        ftp.onEvent = [this, log = ftp.onEvent](const FtpEvent &event) {
            progress.report(event, globals.transfer);
            log(event);
        };
    }
    ~TransferBench() override { EXPECT_TRUE(dialogs.steps.empty()) << "unused conflict answers"; }

    void download(const QStringList &names)
    {
        showBoth();
        remote.select(names);
        commands.cmd_download_Click();
    }
    void upload(const QStringList &names)
    {
        showBoth();
        local.select(names);
        commands.cmd_upload_Click();
    }

    ProgressModel progress;
    ScriptedConflicts dialogs;
    DiskLook looks { ftp, shell };
    TransferTools tools { work, progress, dialogs, looks };
    TransferCommands commands { tools };
};
