#include "remote/paneview.h"

#include "remote/icons.h"
#include "remote/itemkind.h"
#include "remote/liststyle.h"
#include "remote/panemodel.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QRubberBand>
#include <QScrollBar>

#include <algorithm>

PaneView::PaneView(QWidget *parent)
    : QTreeView(parent)
{
    ListStyle::apply(*this);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true); // big folders: no row is measured
    setAllColumnsShowFocus(true);
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectRows);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollMode(ScrollPerPixel);
    setTextElideMode(Qt::ElideMiddle); // keeps the extension in sight
    setIconSize(QSize(16, 16));
    setDragEnabled(true);
    setAutoScroll(true);
    header()->setSectionsMovable(false);
    header()->setSectionsClickable(true);
    header()->setStretchLastSection(true);
    header()->setHighlightSections(false);
    connect(header(), &QHeaderView::sectionClicked, this, &PaneView::columnClicked);
}

void PaneView::setHint(const QString &hint)
{
    if (m_hint != hint) {
        m_hint = hint;
        setAccessibleDescription(hint);
        viewport()->update();
    }
}

QList<int> PaneView::selectedRowNumbers() const
{
    QList<int> rows;
    if (selectionModel() == nullptr) {
        return rows;
    }
    const QItemSelection selection = selectionModel()->selection();
    for (const QItemSelectionRange &range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.append(row);
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void PaneView::selectRowNumbers(const QList<int> &rows)
{
    QItemSelection selection;
    const int last = model()->columnCount() - 1;
    for (qsizetype begin = 0; begin < rows.size();) {
        qsizetype end = begin + 1; // one range for neighbours: a list may have 100,000 of them
        while (end < rows.size() && rows.at(end) == rows.at(end - 1) + 1) {
            ++end;
        }
        selection.append(QItemSelectionRange(model()->index(rows.at(begin), 0),
                                             model()->index(rows.at(end - 1), last)));
        begin = end;
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void PaneView::editCaption(int row)
{
    const QModelIndex caption = model()->index(row, ColumnName);
    if (!model()->flags(caption).testFlag(Qt::ItemIsEditable)) {
        return;
    }
    setFocus(Qt::OtherFocusReason);
    setCurrentIndex(caption);
    scrollTo(caption);
    edit(caption);
}

void PaneView::sizeColumnsToContents()
{
    const int others = model()->columnCount() - 1;
    int used = 0;
    for (int column = 1; column <= others; ++column) {
        // sizeHintForColumn() looks at the visible rows only, so this stays cheap in big folders.
        const int width
            = std::max(sizeHintForColumn(column), header()->sectionSizeHint(column)) + 6;
        header()->resizeSection(column, width);
        used += width;
    }
    // The names take what is left; a list that is far too narrow gets a scroll bar.
    header()->resizeSection(0, std::max(viewport()->width() - used, 110));
}

void PaneView::setDropFilter(std::function<bool(const QMimeData &)> filter)
{
    m_dropFilter = std::move(filter);
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
}

bool PaneView::event(QEvent *event)
{
    if (event->type() == QEvent::KeyPress && !isEditing()) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Tab && key->modifiers() == Qt::NoModifier) {
            Q_EMIT otherPaneWanted();
            return true;
        }
    }
    return QTreeView::event(event);
}

void PaneView::keyPressEvent(QKeyEvent *event)
{
    if (isEditing()) {
        event->accept(); // the editor passes Enter on; it must not open the row as well
        return;
    }
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (plain && currentIndex().isValid()) {
            Q_EMIT rowOpened(currentIndex().row(), false);
        }
        return;
    case Qt::Key_Delete:
        if (plain) {
            Q_EMIT deletePressed();
            return;
        }
        break;
    case Qt::Key_Backspace:
        if (plain) {
            Q_EMIT upPressed();
            return;
        }
        break;
    case Qt::Key_Down:
        if (event->modifiers() == Qt::AltModifier) {
            Q_EMIT folderBoxWanted();
            return;
        }
        break;
    default:
        break;
    }
    QTreeView::keyPressEvent(event);
}

int PaneView::rowAt(const QPoint &position) const
{
    const QModelIndex index = indexAt(position);
    return index.isValid() ? index.row() : -1;
}

bool PaneView::startsRubberBand(const QPoint &position) const
{
    // A press on a name drags the row; beside the names one draws a band around rows.
    const QModelIndex index = indexAt(position);
    return !index.isValid()
        || (index.column() != ColumnName && !selectionModel()->isRowSelected(index.row()));
}

void PaneView::mousePressEvent(QMouseEvent *event)
{
    const QPoint position = event->position().toPoint();
    const bool band = event->button() == Qt::LeftButton && !(event->modifiers() & Qt::ShiftModifier)
        && model() != nullptr && startsRubberBand(position);
    const QItemSelection before
        = selectionModel() ? selectionModel()->selection() : QItemSelection();
    QTreeView::mousePressEvent(event);
    if (band) {
        m_bandOrigin = position + QPoint(horizontalOffset(), verticalOffset());
        m_bandBase = event->modifiers() & Qt::ControlModifier ? before : QItemSelection();
        m_band = m_band != nullptr ? m_band : new QRubberBand(QRubberBand::Rectangle, viewport());
        setState(DragSelectingState);
    }
}

void PaneView::moveRubberBand(const QPoint &position)
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

void PaneView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_band != nullptr && event->buttons().testFlag(Qt::LeftButton)) {
        moveRubberBand(event->position().toPoint());
        return;
    }
    QTreeView::mouseMoveEvent(event);
}

void PaneView::mouseReleaseEvent(QMouseEvent *event)
{
    if (m_band != nullptr) {
        const bool moved = m_band->isVisible();
        m_band->deleteLater();
        m_band = nullptr;
        setState(NoState);
        if (moved) {
            return;
        }
    }
    QTreeView::mouseReleaseEvent(event);
}

void PaneView::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int row = rowAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && row >= 0) {
        const bool selected = selectionModel()->isRowSelected(row);
        selectionModel()->setCurrentIndex(model()->index(row, 0),
                                          selected ? QItemSelectionModel::NoUpdate
                                                   : QItemSelectionModel::ClearAndSelect
                                                  | QItemSelectionModel::Rows);
        Q_EMIT rowOpened(row, true);
        return;
    }
    QTreeView::mouseDoubleClickEvent(event);
}

void PaneView::focusInEvent(QFocusEvent *event)
{
    QTreeView::focusInEvent(event);
    Q_EMIT gotFocus();
}

void PaneView::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    QTreeView::selectionChanged(selected, deselected);
    Q_EMIT selectionMoved();
}

void PaneView::paintEvent(QPaintEvent *event)
{
    QTreeView::paintEvent(event);
    QPainter painter(viewport());
    if (!m_hint.isEmpty()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport()->rect().adjusted(12, 12, -12, -12),
                         Qt::AlignCenter | Qt::TextWordWrap, m_hint);
    }
    if (m_dropRow >= 0 && m_dropRow < model()->rowCount()) {
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
}

void PaneView::startDrag(Qt::DropActions /*actions*/)
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

void PaneView::setDropRow(int row)
{
    if (m_dropRow != row) {
        m_dropRow = row;
        viewport()->update();
    }
}

void PaneView::dragEnterEvent(QDragEnterEvent *event)
{
    if (m_dropFilter && event->mimeData() != nullptr && m_dropFilter(*event->mimeData())) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    } else {
        event->ignore();
    }
}

void PaneView::dragMoveEvent(QDragMoveEvent *event)
{
    dragEnterEvent(static_cast<QDragEnterEvent *>(event));
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

void PaneView::dragLeaveEvent(QDragLeaveEvent *event)
{
    setDropRow(-1);
    event->accept();
}

void PaneView::dropEvent(QDropEvent *event)
{
    setDropRow(-1);
    if (!m_dropFilter || event->mimeData() == nullptr || !m_dropFilter(*event->mimeData())) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    Q_EMIT dropped(*event->mimeData(), rowAt(event->position().toPoint()));
}
