#pragma once

#include "fileops/marking.h"
#include "fileops/workplace.h"
#include "support/benchbase.h"
#include "support/fakeftp.h"
#include "support/fakepane.h"

#include <utility>

/// Both sides without a window: a local temporary folder and a server in memory whose pane shows
/// "/www".
class Workbench : public BenchBase {
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

    FakeFtp ftp;
    FakePane local { FakePane::disk(), 3 };
    FakePane remote { FakePane::server(ftp) };
    Workplace work { ftp, globals, prompts, shell, local, remote };
};
