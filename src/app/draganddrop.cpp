#include "app/draganddrop.h"

#include "app/features.h"
#include "app/panedrag.h"
#include "common/mo_standard.h"
#include "fileops/marking.h"
#include "local/localpane.h"
#include "remote/paneview.h"
#include "remote/remotepane.h"

#include <QMimeData>
#include <QTimer>

#include <utility>

DragAndDrop::DragAndDrop(LocalPane &local, RemotePane &remote, Features &features,
                         std::function<bool()> busy, QObject *parent)
    : QObject(parent)
    , m_local(local)
    , m_remote(remote)
    , m_features(features)
    , m_busy(std::move(busy))
{
    connectPane(m_local);
    connectPane(m_remote);
}

void DragAndDrop::connectPane(FilePane &pane)
{
    PaneView &view = pane.view();
    view.setDragSource([this, &pane] { return begin(pane); });
    view.setDropFilter([this, &pane](const QMimeData &dragged) { return mayDrop(pane, dragged); });
    connect(&view, &PaneView::dragEnded, this, [this, &pane](bool taken) { finish(pane, taken); });
    connect(&view, &PaneView::dropped, this,
            [this, &pane](const QMimeData &dropped, int row) { takeDrop(pane, dropped, row); });
}

bool DragAndDrop::mayDrop(const FilePane &pane, const QMimeData &dragged)
{
    if (m_busy() || !m_remote.isReady()) {
        return false;
    }
    const bool local = &pane == &m_local;
    FilePane &other = local ? static_cast<FilePane &>(m_remote) : m_local;
    if (PaneDrag::isFrom(dragged, other.view().objectName())) {
        return true;
    }
    m_hovering = local ? QStringList() : PaneDrag::localFiles(dragged);
    return !m_hovering.isEmpty();
}

QMimeData *DragAndDrop::begin(FilePane &pane)
{
    if (m_busy() || !m_remote.isReady() || pane.model().rowCount() == 0) {
        return nullptr;
    }
    Globals &globals = m_features.work.globals;
    const bool remote = &pane == &m_remote;
    const int count = remote ? MarkSelectedRemote(m_remote, globals, false)
                             : MarkSelectedLocal(m_local, globals, false);
    if (count < 1) {
        return nullptr;
    }
    QStringList paths;
    for (int slot = 1; !remote && slot <= count; ++slot) {
        paths.append(pathOf(globals.marked.MarkedItems.at(slot), LocalSeparator));
    }
    return PaneDrag::rowsOf(pane.view().objectName(), paths);
}

void DragAndDrop::finish(FilePane &pane, bool taken)
{
    const std::function<void()> drop = std::exchange(m_pending, {});
    if (taken && drop) {
        QTimer::singleShot(0, this, drop);
    } else {
        UnmarkAll(pane, m_features.work.globals); // cancelled, or taken by another program
    }
}

void DragAndDrop::takeDrop(FilePane &pane, const QMimeData &dropped, int row)
{
    if (&pane == &m_local) {
        m_pending = [this, row] { m_features.transfers.dropOnLocal(row); };
    } else if (PaneDrag::isFrom(dropped, m_local.view().objectName())) {
        m_pending = [this, row] { m_features.transfers.dropOnRemote(row); };
    } else {
        // The other program waits for the end of the drop; the question comes after it.
        QTimer::singleShot(0, this, [this, row, paths = std::exchange(m_hovering, {})] {
            uploadFromDesktop(paths, row);
        });
    }
}

void DragAndDrop::uploadFromDesktop(const QStringList &paths, int row)
{
    if (!m_busy()) {
        m_features.work.globals.marked = PaneDrag::markedFiles(paths);
        m_features.transfers.dropOnRemote(row);
    }
}
