#include "remote/dropview.h"

#include "remote/icons.h"
#include "remote/itemkind.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>

#include <utility>

void DropView::setDropFilter(std::function<bool(const QMimeData &)> filter)
{
    m_dropFilter = std::move(filter);
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
}

int DropView::rowAt(const QPoint &position) const
{
    const QModelIndex index = indexAt(position);
    return index.isValid() ? index.row() : -1;
}

void DropView::startDrag(Qt::DropActions /*actions*/)
{
    QMimeData *dragged = m_dragSource ? m_dragSource() : nullptr;
    if (dragged == nullptr) {
        return;
    }
    auto *drag = new QDrag(this);
    drag->setMimeData(dragged);
    drag->setPixmap(Icons::icon(ItemKind::File).pixmap(QSize(32, 32), devicePixelRatioF()));
    drag->setHotSpot(QPoint(8, 4));
    const Qt::DropAction result = m_dragRunner ? m_dragRunner(*drag) : drag->exec(Qt::CopyAction);
    Q_EMIT dragEnded(result != Qt::IgnoreAction);
}

void DropView::setDropRow(int row)
{
    if (m_dropRow != row) {
        m_dropRow = row;
        viewport()->update();
    }
}

void DropView::dragEnterEvent(QDragEnterEvent *event)
{
    // Asked once: a file manager may hand over thousands of addresses anew with every move.
    m_taking = m_dropFilter && event->mimeData() != nullptr && m_dropFilter(*event->mimeData());
    answerDrag(*event);
}

void DropView::answerDrag(QDropEvent &event)
{
    if (m_taking) {
        event.setDropAction(Qt::CopyAction);
        event.accept();
    } else {
        event.ignore();
    }
}

void DropView::dragMoveEvent(QDragMoveEvent *event)
{
    answerDrag(*event);
    if (!event->isAccepted()) {
        return;
    }
    const QPoint position = event->position().toPoint();
    setDropRow(rowAt(position));
    constexpr int edge = 24; // near the edges the list scrolls, so that every folder can be reached
    QScrollBar *bar = verticalScrollBar();
    if (position.y() < edge || position.y() > viewport()->height() - edge) {
        bar->setValue(bar->value() + (position.y() < edge ? -8 : 8));
    }
}

void DropView::dragLeaveEvent(QDragLeaveEvent *event)
{
    setDropRow(-1);
    event->accept();
}

void DropView::dropEvent(QDropEvent *event)
{
    setDropRow(-1);
    // What was said at first holds: another program may be slow to hand over its data a second
    // time, or refuse to.
    if (!std::exchange(m_taking, false) || event->mimeData() == nullptr) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    Q_EMIT dropped(*event->mimeData(), rowAt(event->position().toPoint()));
}

void DropView::paintEvent(QPaintEvent *event)
{
    BandView::paintEvent(event);
    if (m_dropRow < 0 || m_dropRow >= model()->rowCount()) {
        return;
    }
    QPainter painter(viewport());
    QRect row = visualRect(model()->index(m_dropRow, 0));
    row.setLeft(0);
    row.setRight(viewport()->width() - 1);
    QColor fill = palette().color(QPalette::Highlight);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(fill, 1.5));
    fill.setAlpha(60);
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(row).adjusted(1.5, 1, -1.5, -1), 3, 3);
}
