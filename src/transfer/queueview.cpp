#include "transfer/queueview.h"

#include "common/prompts.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

QueueView::QueueView(QueueModel &model, Prompts &prompts, QWidget *parent)
    : QTreeView(parent)
    , m_model(model)
    , m_prompts(prompts)
{
    setObjectName(u"lvwStatus"_s);
    setAccessibleName(u"Übertragungen"_s);
    setModel(&model);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setTextElideMode(Qt::ElideMiddle); // keeps the file's name in sight
    setSelectionMode(ExtendedSelection);
    setContextMenuPolicy(Qt::CustomContextMenu);
    header()->setSectionsClickable(true);
    connect(header(), &QHeaderView::sectionClicked, this,
            [this](int column) { m_model.sort(column); });
    constexpr int glance = 40; // milliseconds; too short to be seen
    m_follow.setSingleShot(true);
    m_follow.setInterval(glance);
    connect(&m_follow, &QTimer::timeout, this,
            [this] { scrollTo(m_model.index(m_model.rowCount() - 1, 0)); });
    connect(this, &QWidget::customContextMenuRequested, this, &QueueView::showMenu);
}

void QueueView::sizeColumns()
{
    const std::array<QString, QueueModel::ColumnCount> longest {
        u"Löschen verweigert"_s, QString(30, u'n'), u"99999999999"_s,
        u"Richtung"_s,           QString(30, u'n'), QString(20, u'n'),
    };
    // One more than the style: what a text measures is rounded in more than one place.
    const int margins = 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 2);
    for (int column = 0; column < QueueModel::ColumnCount; ++column) {
        const int icon = column == QueueModel::Status ? iconWidth() + margins : 0;
        const int text = fontMetrics().horizontalAdvance(longest.at(column)) + margins + icon;
        setColumnWidth(column, std::max(text, header()->sectionSizeHint(column)));
    }
}

int QueueView::iconWidth() const
{
    return iconSize().isValid() ? iconSize().width()
                                : style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
}

void QueueView::AddQueueRow(const QueueRow &row)
{
    m_model.append(row);
    if (!m_follow.isActive()) {
        m_follow.start();
    }
}

void QueueView::DeleteSelectedQueueRows()
{
    // Intended: the question comes also with nothing selected.
    if (m_prompts.confirm(u"Delete queue items selected?"_s, u"Confirm Delete Queue Items"_s)) {
        m_model.removeRowsAt(selectedRows());
    }
}

QList<int> QueueView::selectedRows() const
{
    QList<int> rows;
    for (const QModelIndex &index : selectionModel()->selectedRows()) {
        rows.append(index.row());
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

void QueueView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Delete) {
        DeleteSelectedQueueRows();
    } else {
        QTreeView::keyPressEvent(event);
    }
}

void QueueView::showMenu(const QPoint &position)
{
    const QModelIndex at = indexAt(position);
    // Rows come and go while the menu stands.
    const QString local = at.isValid() ? m_model.row(at.row()).local : QString();
    const QString line = at.isValid() ? lineOf(at.row()) : QString();
    QMenu menu(this);
    QAction *retry = menu.addAction(u"Fehlgeschlagene erneut übertragen"_s);
    retry->setEnabled(m_model.hasFailedTransfers() && m_mayRetry(m_model.failedTransfers()));
    QAction *open = menu.addAction(u"Lokalen Ordner öffnen"_s);
    open->setEnabled(local.startsWith(u'/'));
    QAction *copy = menu.addAction(u"Zeile kopieren"_s);
    copy->setEnabled(at.isValid());
    const QAction *chosen = menu.exec(viewport()->mapToGlobal(position));
    if (chosen == retry) {
        Q_EMIT retryRequested(m_model.failedTransfers());
    } else if (chosen == open) {
        Q_EMIT openFolderRequested(local.left(local.lastIndexOf(u'/') + 1));
    } else if (chosen == copy) {
        QGuiApplication::clipboard()->setText(line);
    }
}

/// A row as text.
QString QueueView::lineOf(int row) const
{
    QStringList cells;
    for (int column = 0; column < QueueModel::ColumnCount; ++column) {
        cells.append(m_model.index(row, column).data().toString());
    }
    return cells.join(u'\t');
}
