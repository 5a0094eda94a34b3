#pragma once

#include "remote/bandview.h"

#include <functional>

class QDrag;
class QMimeData;

/// List whose rows can be dragged away and that takes what is dropped on it. What may be dragged
/// or dropped is for others to say.
class DropView : public BandView {
    Q_OBJECT

public:
    using BandView::BandView;

    /// Asked when the user begins to drag; hands over what is dragged, null when nothing may be.
    void setDragSource(std::function<QMimeData *()> source) { m_dragSource = std::move(source); }
    /// Runs a drag to its end; tests put their own, where no platform can drag.
    using DragRunner = std::function<Qt::DropAction(QDrag &)>;
    void setDragRunner(DragRunner runner) { m_dragRunner = std::move(runner); }
    /// Asked whether something that is dragged over the list may be dropped here.
    void setDropFilter(std::function<bool(const QMimeData &)> filter);
    [[nodiscard]] int dropRow() const { return m_dropRow; } ///< highlighted row, -1 for none

Q_SIGNALS:
    void dropped(const QMimeData &data, int row); ///< row under the pointer, -1 for none
    void dragEnded(bool taken); ///< taken false: cancelled or refused

protected:
    [[nodiscard]] int rowAt(const QPoint &position) const; ///< -1 for none
    void paintEvent(QPaintEvent *event) override;
    void startDrag(Qt::DropActions actions) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void answerDrag(QDropEvent &event); ///< says whether a drop would be taken
    void setDropRow(int row);

    std::function<QMimeData *()> m_dragSource;
    std::function<bool(const QMimeData &)> m_dropFilter;
    DragRunner m_dragRunner;
    int m_dropRow = -1;
    bool m_taking = false; ///< what is dragged over the list may be dropped
};
