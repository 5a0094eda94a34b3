#pragma once

#include "common/globals.h"
#include "support/fakeshell.h"
#include "support/scriptedprompts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

/// A local folder, the program's state, a shell that takes notes and scripted questions: what tests
/// of commands need whatever server they talk to.
class BenchBase : public ::testing::Test {
protected:
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
    Globals globals;
    ScriptedPrompts prompts;
    FakeShell shell;
};
