#pragma once

#include "fileops/marking.h"
#include "support/fakeftp.h"
#include "support/fakepane.h"
#include "support/fakeshell.h"
#include "support/scriptedprompts.h"
#include "transfer/download.h"
#include "transfer/progressmodel.h"
#include "transfer/transfercommands.h"
#include "transfer/upload.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <deque>
#include <gtest/gtest.h>

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

    ConflictReply askTransfer(const ConflictQuestion &question) override
    {
        questions.append(question);
        if (steps.empty()) {
            ADD_FAILURE() << "not expected: " << question.message.toStdString();
            return {};
        }
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

/// Both sides of a transfer without a window: a local temporary folder and a server in memory.
class TransferBench : public ::testing::Test {
protected:
    TransferBench()
    {
        globals.connection.RemoteHost = QStringLiteral("files01");
        globals.session.ResumeSupport = true;
        ftp.onEvent = [this](const FtpEvent &event) {
            progress.report(event, globals.transfer);
            if (event.status != FtpEvent::InProgress) {
                shell.log += event.text;
            }
        };
    }
    ~TransferBench() override { EXPECT_TRUE(dialogs.steps.empty()) << "unused conflict answers"; }

    [[nodiscard]] QString disk(const QString &name = {}) const { return root.path() + u'/' + name; }
    void writeLocal(const QString &name, const QByteArray &content) const
    {
        QDir().mkpath(QFileInfo(disk(name)).path());
        QFile file(disk(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    [[nodiscard]] QByteArray readLocal(const QString &name) const
    {
        QFile file(disk(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
    }
    void showBoth()
    {
        // Listing is not what a test is about: nothing is refused, and nothing happens meanwhile.
        const auto refuse = std::exchange(ftp.refuse, nullptr);
        const auto during = std::exchange(ftp.during, nullptr);
        local.show(root.path());
        remote.show(QStringLiteral("/www"));
        ftp.commands.clear();
        ftp.refuse = refuse;
        ftp.during = during;
    }
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
    [[nodiscard]] QStringList statuses() const
    {
        QStringList result;
        for (const QueueRow &row : shell.queue) {
            result.append(row.status);
        }
        return result;
    }
    [[nodiscard]] int callIndex(const QString &call) const
    {
        return static_cast<int>(shell.calls.indexOf(call));
    }

    QTemporaryDir root;
    FakeFtp ftp;
    Globals globals;
    ScriptedPrompts prompts;
    FakeShell shell;
    FakePane local { FakePane::disk(), 3 };
    FakePane remote { FakePane::server(ftp) };
    ProgressModel progress;
    ScriptedConflicts dialogs;
    TransferTools tools { { ftp, globals, prompts, shell, local, remote }, progress, dialogs };
    TransferCommands commands { tools };
};
