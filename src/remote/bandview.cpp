#include "remote/bandview.h"

#include <QMouseEvent>
#include <QRubberBand>
#include <QScrollBar>

#include <algorithm>

bool BandView::startsRubberBand(const QPoint &position) const
{
    // A press on a name drags the row; beside the names one draws a band around rows.
    const QModelIndex index = indexAt(position);
    return !index.isValid()
        || (index.column() != 0 && !selectionModel()->isRowSelected(index.row()));
}

void BandView::mousePressEvent(QMouseEvent *event)
{
    const QPoint position = event->position().toPoint();
    const bool band = event->button() == Qt::LeftButton && !(event->modifiers() & Qt::ShiftModifier)
        && model() != nullptr && startsRubberBand(position);
    endBand(); // of a press whose release went to a box that came up meanwhile
    const QItemSelection before
        = selectionModel() ? selectionModel()->selection() : QItemSelection();
    QTreeView::mousePressEvent(event);
    if (band) {
        m_bandOrigin = position + QPoint(horizontalOffset(), verticalOffset());
        m_bandBase = event->modifiers() & Qt::ControlModifier ? before : QItemSelection();
        m_band = new QRubberBand(QRubberBand::Rectangle, viewport());
        setState(DragSelectingState);
    }
}

void BandView::moveRubberBand(const QPoint &position)
{
    const QPoint offset(horizontalOffset(), verticalOffset());
    m_band->setGeometry(QRect(m_bandOrigin - offset, position).normalized());
    m_band->show();
    const QModelIndex first = model()->index(0, 0);
    const int height = rowHeight(first);
    QItemSelection selection = m_bandBase;
    if (height > 0) {
        const int y = position.y() + offset.y();
        const int top = std::max(std::min(y, m_bandOrigin.y()) / height, 0);
        const int bottom
            = std::min(std::max(y, m_bandOrigin.y()) / height, model()->rowCount() - 1);
        if (top <= bottom) {
            selection.merge(QItemSelection(model()->index(top, 0),
                                           model()->index(bottom, model()->columnCount() - 1)),
                            QItemSelectionModel::Select);
        }
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (!viewport()->rect().contains(position)) {
        QScrollBar *bar = verticalScrollBar();
        bar->setValue(bar->value()
                      + (position.y() < 0                          ? -height
                             : position.y() > viewport()->height() ? height
                                                                   : 0));
    }
}

void BandView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_band != nullptr && event->buttons().testFlag(Qt::LeftButton)) {
        moveRubberBand(event->position().toPoint());
        return;
    }
    QTreeView::mouseMoveEvent(event);
}

void BandView::mouseReleaseEvent(QMouseEvent *event)
{
    if (m_band != nullptr) {
        const bool moved = m_band->isVisible();
        endBand();
        if (moved) {
            return;
        }
    }
    QTreeView::mouseReleaseEvent(event);
}

void BandView::focusOutEvent(QFocusEvent *event)
{
    endBand(); // a box takes the mouse, too
    QTreeView::focusOutEvent(event);
}

void BandView::endBand()
{
    if (m_band != nullptr) {
        m_band->hide();
        m_band->deleteLater();
        m_band = nullptr;
        setState(NoState);
    }
}
