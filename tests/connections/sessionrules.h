#pragma once

#include "connections/session.h"

#include "common/globals.h"
#include "support/fakeftp.h"
#include "support/fakepane.h"
#include "support/fakeshell.h"
#include "support/scriptedprompts.h"

#include <gtest/gtest.h>

/// The session over a server in memory; the window takes notes.
struct SessionRules : ::testing::Test {
    FakeFtp ftp;
    Globals globals;
    ScriptedPrompts prompts;
    FakeShell shell;
    FakePane remote { FakePane::disk() };
    Session session { ftp, globals, prompts, shell, remote };
    QStringList captions;
    QList<FtpEvent> progress, replied;

    SessionRules()
    {
        ftp.connectionState = FtpOperations::Closed;
        globals.connection.RemoteHost = QStringLiteral("files01");
        globals.connection.UserName = QStringLiteral("web01");
        globals.connection.Password = QStringLiteral("geheim");
        globals.connection.Account = QStringLiteral("konto");
        globals.connection.RemoteDir = QStringLiteral("/html");
        QObject::connect(&session, &Session::logToBeCleared, [this] {
            shell.log.clear();
            shell.calls << QStringLiteral("clear");
        });
        QObject::connect(&session, &Session::captionChanged,
                         [this](const QString &caption) { captions << caption; });
        QObject::connect(&session, &Session::progress,
                         [this](const FtpEvent &event) { progress << event; });
        QObject::connect(&session, &Session::replied,
                         [this](const FtpEvent &event) { replied << event; });
        remote.model().setRows({ upRow() });
    }
    void failLogin(ftp::ErrorKind kind, const QString &text, int code = 0)
    {
        ftp.login = [=](const QString &command) -> std::optional<FtpError> {
            return command.startsWith(QStringLiteral("CONNECT"))
                ? std::optional(FtpError { kind, code, text })
                : std::nullopt;
        };
    }
    static QStringList disconnected()
    {
        return { QStringLiteral("SetCommandsEnabled 1 0 1 1"),
                 QStringLiteral("UpdateRemoteCommandStates"),
                 QStringLiteral("UpdateLocalCommandStates") };
    }
    bool endsDisconnected() const
    {
        return shell.calls.mid(shell.calls.size() - 3) == disconnected();
    }
    static FtpEvent event(int operation, int status, const QString &text, qint64 bytes = 0)
    {
        return { operation, status, text, bytes };
    }
};
