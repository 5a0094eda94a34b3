#pragma once

#include "fileops/workplace.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

/// Deletes the selected rows of a pane, whole trees included, after one question.
class DeleteCommand {
public:
    explicit DeleteCommand(const Workplace &work);

    /// Works on the remote pane; needs an idle session.
    void DeleteRemoteItems();
    /// Works on the local pane; not while the session is busy. The window lives meanwhile.
    void DeleteLocalItems();

    using Reason = std::optional<QString>; ///< why something was left standing; nothing on success
    /// Deletes a local file, or a folder with all that is in it. Called in another thread.
    using LocalRemover
        = std::function<Reason(const QString &path, bool folder, const std::atomic_bool &stop)>;
    /// Another disk, for tests.
    void setLocalRemover(const LocalRemover &remover) { m_removeLocal = remover; }

    /// How long the content of the folders is counted while the question stands.
    void setCountLimit(int milliseconds) { m_countLimit = milliseconds; }

    /// Whether a deletion is under way.
    [[nodiscard]] bool isRunning() const { return m_running; }
    /// Ends a running local deletion before its next step, for example when the window closes. A
    /// disk that does not answer is left alone soon after.
    void stop() { *m_stop = true; }

private:
    using Count = std::function<FtpFolderContent(const QStringList &folders,
                                                 const std::shared_ptr<std::atomic_bool> &stop)>;

    void listAgain(const QString &folder);
    void deleteMarked(Pane &pane, const MarkedItemList &items, const std::function<void()> &work);
    /// @param count  tells what is in the marked folders, while the question stands
    [[nodiscard]] bool confirmed(const MarkedItemList &items, QChar separator, const Count &count);
    [[nodiscard]] FtpFolderContent countRemote(const QStringList &folders,
                                               const std::shared_ptr<std::atomic_bool> &stop);
    void deleteRemoteItems(const MarkedItemList &items);
    void deleteRemoteFiles(const QList<MarkedItem> &files);
    void deleteRemoteFolder(const MarkedItem &item);
    void recordRemote(const MarkedItem &item, const Reason &reason);
    void deleteLocalItems(const MarkedItemList &items);
    void deleteLocalFiles(const QList<MarkedItem> &files);
    [[nodiscard]] QList<Reason> removeSome(const QStringList &paths);
    void deleteLocalFolder(const MarkedItem &item);
    void recordLocal(const MarkedItem &item, const Reason &reason);
    [[nodiscard]] Reason removeRemote(const MarkedItem &item, const QString &path);
    [[nodiscard]] static QString labelOf(const MarkedItem &item);
    static void removeRow(Pane &pane, const MarkedItem &item);
    void record(Pane &pane, const MarkedItem &item, QueueRow row, const Reason &reason);

    Workplace m_work;
    LocalRemover m_removeLocal;
    int m_countLimit = 3000; ///< milliseconds
    bool m_running = false;
    /// Of the deletion that runs; a thread that was left alone keeps its own.
    std::shared_ptr<std::atomic_bool> m_stop = std::make_shared<std::atomic_bool>(false);
};
