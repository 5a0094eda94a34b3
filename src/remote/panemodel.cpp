#include "remote/panemodel.h"

#include "ftp/ftplocalnames.h"
#include "remote/background.h"
#include "remote/icons.h"
#include "remote/itemkind.h"
#include "remote/roworder.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

namespace {

constexpr int manyRows = 5000; ///< freeing more of them is felt

/// The blue of rows that an operation works on; readable on the palette's background.
QColor markedColour()
{
    const bool dark = QGuiApplication::palette().color(QPalette::Base).lightness() < 128;
    return dark ? QColor(0x8c, 0xb8, 0xff) : QColor(0x1b, 0x3f, 0xb5);
}

} // namespace

PaneModel::PaneModel(const QStringList &headers, QObject *parent)
    : QAbstractTableModel(parent)
    , m_headers(headers)
{
}

int PaneModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int PaneModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_headers.size());
}

QVariant PaneModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const PaneRow &row = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == ColumnName ? shownName(row.name) : cellText(row, index.column());
    case Qt::EditRole:
        return cellText(row, index.column());
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::Alignment(
            Qt::AlignVCenter | (index.column() == ColumnSize ? Qt::AlignRight : Qt::AlignLeft)));
    case Qt::ForegroundRole:
        return row.marked ? QVariant(markedColour()) : QVariant();
    default:
        return index.column() == ColumnName ? nameData(row, role) : QVariant();
    }
}

QVariant PaneModel::nameData(const PaneRow &row, int role)
{
    const bool up = row.kind == ItemKind::Cdup;
    switch (role) {
    case Qt::DecorationRole:
        return row.marked ? Icons::ghosted(row.kind) : Icons::icon(row.kind);
    case Qt::AccessibleTextRole:
        return up ? QStringLiteral("Übergeordneter Ordner") : row.name;
    case KindRole:
        return row.kind;
    case TagRole:
        return row.tag;
    case KeyRole:
        return up ? ItemKind::Cdup : QString();
    case GhostedRole:
        return row.marked;
    default:
        return {};
    }
}

QVariant PaneModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_headers.size()) {
        return {};
    }
    if (role == Qt::TextAlignmentRole) {
        return QVariant::fromValue(Qt::Alignment(
            Qt::AlignVCenter | (section == ColumnSize ? Qt::AlignRight : Qt::AlignLeft)));
    }
    return role == Qt::DisplayRole ? QVariant(m_headers.at(section)) : QVariant();
}

Qt::ItemFlags PaneModel::flags(const QModelIndex &index) const
{
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    Qt::ItemFlags result = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled
        | Qt::ItemNeverHasChildren;
    result.setFlag(Qt::ItemIsEditable,
                   index.column() == ColumnName && m_rows.at(index.row()).kind != ItemKind::Cdup);
    return result;
}

QHash<int, QByteArray> PaneModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractTableModel::roleNames();
    names.insert(KindRole, "kind");
    names.insert(TagRole, "tag");
    names.insert(KeyRole, "key");
    names.insert(GhostedRole, "ghosted");
    return names;
}

bool PaneModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !flags(index).testFlag(Qt::ItemIsEditable)) {
        return false;
    }
    const QString text = value.toString();
    if (!text.isEmpty() && text != m_rows.at(index.row()).name) {
        Q_EMIT captionEdited(index.row(), text);
    }
    return false; // the caption follows only when the rename has succeeded
}

void PaneModel::setRows(QList<PaneRow> rows)
{
    beginResetModel();
    m_rows.swap(rows);
    endResetModel();
    if (rows.size() > manyRows) {
        freeBesideWindow(std::move(rows));
    }
}

void PaneModel::reorder(const std::vector<int> &order)
{
    beginResetModel();
    m_rows = inOrder(std::exchange(m_rows, {}), order);
    endResetModel();
}

int PaneModel::appendRow(const PaneRow &row)
{
    const int at = rowCount();
    beginInsertRows({}, at, at);
    m_rows.append(row);
    endInsertRows();
    return at;
}

void PaneModel::removeRowAt(int index)
{
    beginRemoveRows({}, index, index);
    m_rows.removeAt(index);
    endRemoveRows();
}

void PaneModel::changeRow(int index, const PaneRow &row)
{
    const bool renamed = m_rows.at(index).name != row.name;
    m_rows[index] = row;
    m_rows[index].namePlace = renamed ? -1 : row.namePlace;
    rowsChanged(index, index);
}

void PaneModel::setMarked(int index, bool marked)
{
    if (m_rows.at(index).marked != marked) {
        m_rows[index].marked = marked;
        rowsChanged(index, index);
    }
}

void PaneModel::unmarkAll()
{
    int first = -1;
    int last = -1;
    for (int index = 0; index < rowCount(); ++index) {
        if (m_rows.at(index).marked) {
            m_rows[index].marked = false;
            first = first < 0 ? index : first;
            last = index;
        }
    }
    if (first >= 0) {
        rowsChanged(first, last);
    }
}

int PaneModel::findRow(const QString &name) const
{
    const auto found = std::find_if(m_rows.begin(), m_rows.end(),
                                    [&name](const PaneRow &row) { return row.name == name; });
    return found == m_rows.end() ? -1 : static_cast<int>(found - m_rows.begin());
}

void PaneModel::rowsChanged(int first, int last)
{
    Q_EMIT dataChanged(index(first, 0), index(last, columnCount() - 1));
}
