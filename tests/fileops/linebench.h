#pragma once

#include "fileops/delete.h"
#include "support/serverbench.h"

/// The commands over the real engine, against a server that remembers what came over the line.
class CommandsOnTheLine : public ServerBench {
protected:
    using Lines = std::vector<std::string>;

    void makeTree(const std::string &name)
    {
        servers::writeFile(server.root() / name / "a", "x");
        servers::writeFile(server.root() / name / "tief/tiefer/b", "x");
    }
    /// A folder in a folder, and so on. @return the file in the last one
    std::filesystem::path makeDeepTree(int levels)
    {
        std::filesystem::path path = server.root() / "baum";
        for (int level = 0; level < levels; ++level) {
            path /= "ebene";
        }
        servers::writeFile(path / "a", "x");
        return path / "a";
    }
    bool start()
    {
        if (!login(server)) {
            return false;
        }
        server.clearCommands();
        return true;
    }
    void expectDelete(int count, const QString &details = {})
    {
        prompts.expectConfirm(
            QStringLiteral("Sind Sie sicher, dass Sie %1 Dateien oder Ordner löschen möchten?")
                .arg(count),
            true, QStringLiteral("Confirm Delete"), details);
    }
    /// Logs in and deletes the folder "baum". @param details  what the question says of its content
    void deleteTree(const QString &details)
    {
        ASSERT_TRUE(start());
        remote.select({ QStringLiteral("baum") });
        expectDelete(1, details);
        DeleteCommand command(work);
        command.setCountLimit(60000); // deep trees take a while to count
        command.DeleteRemoteItems();
    }

    servers::FaultServer server;
};
