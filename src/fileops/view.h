#pragma once

#include "fileops/progressdisplay.h"
#include "fileops/putback.h"
#include "fileops/workplace.h"

#include <QUrl>

/// The address that a path, web address or mail address is opened by. Paths begin with the
/// separator; every other text is an address and keeps its percent signs as they are.
[[nodiscard]] QUrl vorschauUrl(const QString &path);
/// Opens a path or address with its program. @return above 32 when the desktop took it
int openWithDesktop(const QString &path);

/// Opens a file of a pane with the program that the desktop has for it.
class ViewCommand {
public:
    /// @param putBack  hears of every fetched file
    ViewCommand(const Workplace &work, ProgressDisplay &progress, PutBack &putBack)
        : m_work(work)
        , m_progress(progress)
        , m_putBack(putBack)
    {
    }

    /// The selected row of the pane that was used last.
    void ViewSelected();
    /// Fetches the file into the temporary folder first.
    void ViewRemoteFile(int row);
    void ViewLocalFile(int row);

private:
    [[nodiscard]] bool fetch(const PaneRow &entry);

    Workplace m_work;
    ProgressDisplay &m_progress;
    PutBack &m_putBack;
};
