#pragma once

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

    servers::FaultServer server;
};
