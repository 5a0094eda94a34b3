#include "remote/paneview.h"

#include "remote/liststyle.h"
#include "remote/panemodel.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>

#include <algorithm>

PaneView::PaneView(QWidget *parent)
    : DropView(parent)
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
    header()->setStretchLastSection(false);
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

void PaneView::endEditing()
{
    if (QWidget *editor = isEditing() ? indexWidget(currentIndex()) : nullptr; editor != nullptr) {
        commitData(editor);
        closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
}

void PaneView::sizeColumnsToContents()
{
    for (int column = 1; column < model()->columnCount(); ++column) {
        // sizeHintForColumn() looks at the visible rows only, so this stays cheap in big folders.
        const int width
            = std::max(sizeHintForColumn(column), header()->sectionSizeHint(column)) + 6;
        header()->resizeSection(column, width);
    }
    header()->resizeSection(ColumnName, nameWidth(viewport()->width()));
}

/// The names take what the other columns leave; a list that is too narrow gets a scroll bar.
int PaneView::nameWidth(int room) const
{
    const int others = header()->length() - header()->sectionSize(ColumnName);
    return std::max(room - others, 28 * fontMetrics().averageCharWidth());
}

void PaneView::resizeEvent(QResizeEvent *event)
{
    // Names that filled the list go on doing so; a width that the user gave them stays.
    const bool filling = header()->sectionSize(ColumnName) == nameWidth(event->oldSize().width());
    if (filling) { // before the scroll bars are looked at
        header()->resizeSection(ColumnName, nameWidth(viewport()->width()));
    }
    DropView::resizeEvent(event);
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
    return DropView::event(event);
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
        // Tab into the list makes a row current without selecting it.
        if (plain && selectionModel()->isRowSelected(currentIndex().row())) {
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
    DropView::keyPressEvent(event);
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
    DropView::mouseDoubleClickEvent(event);
}

void PaneView::focusInEvent(QFocusEvent *event)
{
    DropView::focusInEvent(event);
    Q_EMIT gotFocus();
}

void PaneView::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    DropView::selectionChanged(selected, deselected);
    Q_EMIT selectionMoved();
}

void PaneView::paintEvent(QPaintEvent *event)
{
    DropView::paintEvent(event);
    QPainter painter(viewport());
    if (!m_hint.isEmpty()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport()->rect().adjusted(12, 12, -12, -12),
                         Qt::AlignCenter | Qt::TextWordWrap, m_hint);
    }
}
