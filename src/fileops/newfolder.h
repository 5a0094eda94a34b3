#pragma once

#include "fileops/workplace.h"

/// The base name, or the base followed by 0, 1, 2, ...: the first that no row has; nothing when
/// all are taken up to 32767.
[[nodiscard]] QString UniqueRowName(const PaneModel &pane, const QString &base);

/// Makes a folder with a generated name and lets the user type the wanted one at once.
class NewFolderCommand {
public:
    explicit NewFolderCommand(const Workplace &work)
        : m_work(work)
    {
    }

    /// In the pane that was used last.
    void MakeDirectory();
    void MakeRemoteFolder();
    void MakeLocalFolder();

private:
    [[nodiscard]] QString makeUntilDone(const QString &name);

    Workplace m_work;
};
