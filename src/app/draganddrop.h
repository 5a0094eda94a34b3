#pragma once

#include <QObject>
#include <functional>

class FilePane;
class LocalPane;
class QMimeData;
class RemotePane;
struct Features;

/// Drags between the panes and from other programs: marks what is dragged, says where it may be
/// dropped, and starts the transfer once the drag has come to its end.
class DragAndDrop : public QObject {
    Q_OBJECT

public:
    /// @param busy  whether something runs that must not be disturbed
    DragAndDrop(LocalPane &local, RemotePane &remote, Features &features,
                std::function<bool()> busy, QObject *parent);

private:
    void connectPane(FilePane &pane);
    [[nodiscard]] bool mayDrop(const FilePane &pane, const QMimeData &dragged);
    [[nodiscard]] QMimeData *begin(FilePane &pane);
    void finish(FilePane &pane, bool taken);
    void takeDrop(FilePane &pane, const QMimeData &dropped, int row);
    void uploadFromDesktop(const QStringList &paths, int row);

    LocalPane &m_local;
    RemotePane &m_remote;
    Features &m_features;
    std::function<bool()> m_busy;
    QStringList m_hovering; ///< files of another program, as told while they were over the pane
    std::function<void()> m_pending; ///< what a drop inside the window began
};
