#pragma once

#include "fileops/workplace.h"

#include <atomic>
#include <functional>
#include <optional>

/// Deletes the selected rows of a pane, whole trees included, after one question.
class DeleteCommand {
public:
    explicit DeleteCommand(const Workplace &work)
        : m_work(work)
    {
    }

    /// Works on the remote pane; needs an idle session.
    void DeleteRemoteItems();
    /// Works on the local pane; not while the session is busy. The window lives meanwhile.
    void DeleteLocalItems();

    /// How long the question may be late because the content of local folders is counted for it.
    void setCountLimit(int milliseconds) { m_countLimit = milliseconds; }

    /// Whether a deletion is under way.
    [[nodiscard]] bool isRunning() const { return m_running; }
    /// Ends a running local deletion before its next step, for example when the window closes.
    void stop() { m_stop = true; }

private:
    using Reason = std::optional<QString>; ///< why something was left standing; nothing on success

    void deleteMarked(Pane &pane, const MarkedItemList &items,
                      const std::function<void(const MarkedItem &)> &one);
    [[nodiscard]] bool confirmed(int count, const QString &details);
    [[nodiscard]] QString localDetails(const MarkedItemList &items) const;
    void deleteRemoteItem(const MarkedItem &item);
    void deleteLocalItem(const MarkedItem &item);
    [[nodiscard]] Reason removeRemote(const MarkedItem &item, const QString &path);
    [[nodiscard]] Reason removeLocal(const MarkedItem &item, const QString &path);
    void refuse(Pane &pane, const MarkedItem &item, const QString &reason);

    Workplace m_work;
    int m_countLimit = 30;
    bool m_running = false;
    std::atomic_bool m_stop = false;
};
