#pragma once

#include "connections/session.h"
#include "fileops/marking.h"
#include "fileops/workplace.h"
#include "ftp/ftpcontrol.h"
#include "servers/faultserver.h"
#include "servers/fixture.h"
#include "support/benchbase.h"
#include "support/fakepane.h"
#include "transfer/conflict.h"
#include "transfer/progressmodel.h"
#include "transfer/quota.h"
#include "transfer/transfercommands.h"

#include <functional>

/// Answers every conflict by a function.
class AnsweredConflicts : public ConflictDialogs {
public:
    std::function<ConflictReply(const ConflictQuestion &)> answer
        = [](const ConflictQuestion &question) {
              ADD_FAILURE() << "not expected: " << question.message.join(u' ').toStdString();
              return ConflictReply {};
          };
    std::function<std::optional<QString>(const QString &)> newName
        = [](const QString &) { return std::optional<QString>(); };

    ConflictReply askTransfer(const ConflictQuestion &question) override
    {
        return answer(question);
    }
    std::optional<QString> askNewName(const QString &existing) override
    {
        return newName(existing);
    }
};

/// The commands over the real engine, session and all; the window alone is missing.
class ServerBench : public BenchBase {
protected:
    ServerBench()
    {
        globals.settings.encryption = static_cast<int>(FtpEncryption::Never);
        globals.connection.Timeout = 10;
        ftp.setSessionLimit(4);
        QObject::connect(&session, &Session::progress, [this](const FtpEvent &event) {
            progress.report(event, globals.transfer);
            if (onProgress) {
                onProgress();
            }
        });
        QObject::connect(&session, &Session::replied,
                         [this](const FtpEvent &event) { space.explain(event); });
    }

    /// Logs in. @return whether the session stands
    template <class Server> bool login(const Server &server)
    {
        globals.connection.RemoteHost = QStringLiteral("127.0.0.1");
        globals.connection.RemotePort = server.port();
        globals.connection.UserName = QString::fromStdString(server.user());
        globals.connection.Password = QString::fromStdString(server.password());
        session.ConnectSequence();
        if (ftp.state() != FtpControl::Connected) {
            return false;
        }
        showBoth();
        return true;
    }
    void showBoth()
    {
        local.show(root.path());
        remote.show(ftp.currentFolder());
        shell.log.clear();
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
    /// The window as an abort leaves it; to be called while a transfer runs.
    void abort()
    {
        prompts.expectConfirm(QStringLiteral("Beim Abbrechen wird die Verbindung getrennt."), true,
                              QStringLiteral("Abbrechen"));
        session.abortTransfer();
    }
    /// What must hold after every batch, however it ended.
    void expectReady()
    {
        EXPECT_FALSE(ftp.isBusy());
        EXPECT_EQ(shellCalls(QStringLiteral("SetFolderBoxesEnabled")).value(0),
                  QStringLiteral("SetFolderBoxesEnabled 0"));
        EXPECT_EQ(shellCalls(QStringLiteral("SetFolderBoxesEnabled")).last(),
                  QStringLiteral("SetFolderBoxesEnabled 1"));
        EXPECT_TRUE(shellCalls(QStringLiteral("SetCommandsEnabled")).last().endsWith(u'1'));
        EXPECT_TRUE(local.markedNames().isEmpty());
        EXPECT_TRUE(remote.markedNames().isEmpty());
        EXPECT_EQ(progress.value(), 0);
    }

    FtpControl ftp;
    FakePane local { FakePane::disk(), 3 };
    FakePane remote { FakePane::server(ftp) };
    Workplace work { ftp, globals, prompts, shell, local, remote };
    Session session { ftp, globals, prompts, shell, remote };
    ProgressModel progress;
    std::function<void()> onProgress; ///< called for every report while a transfer runs
    AnsweredConflicts dialogs;
    SpaceReplies space { prompts, shell };
    DiskLook looks { ftp, shell };
    TransferTools tools { work, progress, dialogs, looks };
    TransferCommands commands { tools };
};
