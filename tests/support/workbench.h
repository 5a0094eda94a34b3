#pragma once

#include "fileops/marking.h"
#include "fileops/workplace.h"
#include "support/fakeftp.h"
#include "support/fakepane.h"
#include "support/fakeshell.h"
#include "support/scriptedprompts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <utility>

/// Both sides without a window: a local temporary folder and a server in memory whose pane shows
/// "/www".
class Workbench : public ::testing::Test {
protected:
    Workbench()
    {
        globals.connection.RemoteHost = QStringLiteral("files01");
        globals.session.ResumeSupport = true;
        ftp.addFolder(QStringLiteral("/www"));
        ftp.onEvent = [this](const FtpEvent &event) {
            if (event.status != FtpEvent::InProgress) {
                shell.log += event.text;
            }
        };
    }

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
    [[nodiscard]] bool onDisk(const QString &name) const
    {
        const QFileInfo info(disk(name));
        return info.exists() || info.isSymLink();
    }
    /// Lists both sides and forgets the commands. Listing is not what a test is about: nothing is
    /// refused, and nothing happens meanwhile.
    void showBoth()
    {
        const auto refuse = std::exchange(ftp.refuse, nullptr);
        const auto during = std::exchange(ftp.during, nullptr);
        local.show(root.path());
        remote.show(QStringLiteral("/www"));
        ftp.commands.clear();
        shell.log.clear();
        ftp.refuse = refuse;
        ftp.during = during;
    }
    [[nodiscard]] QStringList statuses() const
    {
        QStringList result;
        for (const QueueRow &row : shell.queue) {
            result.append(row.status);
        }
        return result;
    }
    /// The cells of a queue row.
    [[nodiscard]] QStringList queueRow(int number) const
    {
        const QueueRow row = shell.queue.value(number);
        return { row.status, row.local, row.size, row.direction, row.remote, row.server };
    }
    /// The calls of the shell that begin with a name.
    [[nodiscard]] QStringList shellCalls(const QString &name) const
    {
        return shell.calls.filter(QRegularExpression(u'^' + name + QStringLiteral("\\b")));
    }

    QTemporaryDir root;
    FakeFtp ftp;
    Globals globals;
    ScriptedPrompts prompts;
    FakeShell shell;
    FakePane local { FakePane::disk(), 3 };
    FakePane remote { FakePane::server(ftp) };
    Workplace work { ftp, globals, prompts, shell, local, remote };
};
