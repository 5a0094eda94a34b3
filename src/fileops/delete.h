#pragma once

#include "fileops/localtree.h"
#include "fileops/workplace.h"

#include <QObject>
#include <atomic>
#include <functional>

/// Deletes the selected rows of a pane, whole trees included, after one question.
class DeleteCommand : public QObject {
    Q_OBJECT

public:
    explicit DeleteCommand(const Workplace &work, QObject *parent = nullptr);

    /// Works on the remote pane; needs an idle session.
    void DeleteRemoteItems();
    /// Works on the local pane. The window keeps running meanwhile.
    void DeleteLocalItems();

    /// Whether a deletion is under way.
    [[nodiscard]] bool isRunning() const { return m_running; }
    /// Ends a running local deletion before its next step, for example when the window closes.
    void stop() { m_stop = true; }

private:
    [[nodiscard]] bool confirmed(const QString &details);
    void deleteMarked(Pane &pane, const std::function<void(const MarkedItem &)> &one);
    void deleteRemoteItem(const MarkedItem &item);
    void deleteLocalItem(const MarkedItem &item);
    [[nodiscard]] FtpStatus removeRemote(const MarkedItem &item, const QString &path);
    void refused(Pane &pane, const MarkedItem &item, const QString &description);

    Workplace m_work;
    bool m_running = false;
    std::atomic_bool m_stop = false;
};
