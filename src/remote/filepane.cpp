#include "remote/filepane.h"

#include "remote/background.h"
#include "remote/paneview.h"
#include "remote/roworder.h"

#include <QEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QSet>
#include <QSignalBlocker>
#include <QToolBar>
#include <QVBoxLayout>

namespace {
/// From this many rows on sorting is felt, and the window paints meanwhile.
constexpr int manyRows = 5000;
/// Beyond this many selected rows looking them up again costs more than the selection is worth.
constexpr int fewSelected = 2000;
/// Of an entry of the folder box: the program has put it there.
constexpr int RememberedRole = Qt::UserRole + 1;
} // namespace

Qt::SortOrder columnOrder(int column)
{
    // Intended: the order belongs to the column; a second click does not turn it round.
    return column == ColumnSize || column == ColumnDate ? Qt::DescendingOrder : Qt::AscendingOrder;
}

FilePane::FilePane(const Names &names, QWidget *parent)
    : QWidget(parent)
    , m_model(names.headers)
    , m_box(new QComboBox(this))
    , m_view(new PaneView(this))
    , m_boxRow(new QHBoxLayout)
{
    m_box->setObjectName(names.box);
    m_box->setAccessibleName(names.boxLabel);
    m_box->setEditable(true);
    m_box->setInsertPolicy(QComboBox::NoInsert);
    m_box->setCompleter(nullptr); // a completer would change the text while the user types
    m_box->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_box->setMinimumContentsLength(8);
    m_box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_box->setMaxVisibleItems(20);
    m_box->installEventFilter(this);

    m_view->setObjectName(names.list);
    m_view->setAccessibleName(names.listLabel);
    m_view->setModel(&m_model);
    m_view->header()->setSortIndicatorShown(true);
    showSortArrow();
    connect(m_view, &PaneView::columnClicked, this, &FilePane::clickColumn);
    connect(m_view, &PaneView::folderBoxWanted, this, [this] {
        m_box->setFocus(Qt::ShortcutFocusReason);
        m_box->showPopup();
    });

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    m_boxRow->setSpacing(6);
    m_boxRow->addWidget(m_box, 1);
    column->addLayout(m_boxRow);
    column->addWidget(m_view, 1);
}

void FilePane::setToolBar(QToolBar *bar)
{
    static_cast<QVBoxLayout *>(layout())->insertWidget(1, bar);
}

void FilePane::addBoxButton(QWidget *button) { m_boxRow->addWidget(button); }

void FilePane::setFolderText(const QString &folder)
{
    const QSignalBlocker quiet(m_box);
    // The entry of that name becomes the current one; else leaving the box would choose it anew,
    // and the box would show the picture of another folder.
    m_box->setCurrentIndex(entryOf(folder));
    m_box->setEditText(folder);
}

int FilePane::entryOf(const QString &folder) const
{
    return m_box->findText(folder, Qt::MatchExactly | Qt::MatchCaseSensitive);
}

bool FilePane::eventFilter(QObject *watched, QEvent *event)
{
    // The wheel over a box would walk through the history and list every folder on its way.
    if (watched == m_box && event->type() == QEvent::Wheel) {
        event->ignore();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void FilePane::rememberFolder(const QString &folder)
{
    {
        const QSignalBlocker quiet(m_box);
        if (entryOf(folder) < 0) {
            m_box->addItem(folder);
        }
        m_box->setItemData(entryOf(folder), true, RememberedRole);
    }
    setFolderText(folder);
}

bool FilePane::isRemembered(const QString &folder) const
{
    const int entry = entryOf(folder);
    return entry >= 0 && m_box->itemData(entry, RememberedRole).toBool();
}

bool FilePane::sameFolder(const QString &entry, const QString &folder) const
{
    return entry == folder;
}

void FilePane::forgetFolder(const QString &folder)
{
    const QString shown = m_box->currentText();
    const QSignalBlocker quiet(m_box);
    for (int entry = 0; entry < m_box->count(); ++entry) {
        if (sameFolder(m_box->itemText(entry), folder)) {
            m_box->removeItem(entry);
            break;
        }
    }
    m_box->setEditText(shown); // removing an entry must not change what the box shows
}

QList<int> FilePane::selectedRows() const { return m_view->selectedRowNumbers(); }

int FilePane::currentRow() const
{
    const QItemSelectionModel *selection = m_view->selectionModel();
    const QModelIndex current = selection->currentIndex();
    if (current.isValid() && selection->isRowSelected(current.row())) {
        return current.row();
    }
    const QList<int> rows = selection->hasSelection() ? selectedRows() : QList<int>();
    return rows.isEmpty() ? -1 : rows.first();
}

int FilePane::decidingRow() const
{
    const int current = currentRow();
    if (current < 0 || !m_model.row(current).name.isEmpty()) {
        return current;
    }
    const QList<int> rows = selectedRows();
    return rows.size() > 1 ? rows.at(1) : current;
}

void FilePane::clearSelection()
{
    m_view->clearSelection();
    m_view->selectionModel()->clearCurrentIndex();
}

void FilePane::selectAll() { m_view->selectAll(); }

void FilePane::selectRows(const QList<int> &rows) { m_view->selectRowNumbers(rows); }

void FilePane::editCaption(int row) { m_view->editCaption(row); }

void FilePane::showRows(QList<PaneRow> rows)
{
    m_sortColumn = ColumnName;
    showSortArrow();
    m_model.setRows(std::move(rows));
    m_view->scrollToTop();
    sizeColumns();
}

void FilePane::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // The layout has given the list its width only when the event has been handled.
    QMetaObject::invokeMethod(this, &FilePane::sizeColumns, Qt::QueuedConnection);
}

void FilePane::sizeColumns()
{
    if (!m_columnsSized && isVisible()) {
        m_columnsSized = m_model.rowCount() > 1; // the headers alone are only a first guess
        m_view->sizeColumnsToContents();
    }
}

void FilePane::keepColumns()
{
    m_columnsSized = true;
    m_view->header()->setStretchLastSection(false); // part of the state that came back
    showSortArrow();
}

void FilePane::clickColumn(int column)
{
    m_view->endEditing(); // sorting would close the editor and drop what was typed
    if (maySort()) {
        sortByColumn(column);
    }
    showSortArrow();
}

void FilePane::showSortArrow()
{
    m_view->header()->setSortIndicator(m_sortColumn, columnOrder(m_sortColumn));
}

void FilePane::sortByColumn(int column)
{
    QSet<QString> selected;
    const QList<int> before = selectedRows();
    for (const int row : before.size() <= fewSelected ? before : QList<int>()) {
        selected.insert(m_model.row(row).tag);
    }
    std::vector<int> order;
    {
        const QList<PaneRow> rows = m_model.rows();
        const auto sort = [&] { order = groupedOrder(rows, column, columnOrder(column)); };
        rows.size() < manyRows ? sort() : runBesideWindow(sort);
        if (m_model.rows().constData() != rows.constData()) {
            return; // others have come meanwhile, and are in their own order
        }
    } // nobody shares the rows any more: they can be moved
    m_sortColumn = column;
    m_model.reorder(order);
    if (selected.isEmpty()) {
        return;
    }
    QList<int> after;
    for (int row = 0; row < m_model.rowCount(); ++row) {
        if (selected.contains(m_model.row(row).tag)) {
            after.append(row);
        }
    }
    m_view->selectRowNumbers(after);
}
