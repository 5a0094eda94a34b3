#include "transfer/queuemodel.h"

#include "remote/icons.h"

#include <QCollator>
#include <QTextDocument>
#include <algorithm>
#include <iterator>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {

QString cellText(const QueueRow &row, int column)
{
    switch (column) {
    case QueueModel::Status:
        return row.status;
    case QueueModel::Local:
        return row.local;
    case QueueModel::Size:
        return row.size;
    case QueueModel::Direction:
        return row.direction;
    case QueueModel::Remote:
        return row.remote;
    case QueueModel::Server:
        return row.server;
    default:
        return {};
    }
}

/// Directions stand only in rows of downloads and uploads.
bool isFailedTransfer(const QueueRow &row)
{
    return row.failed && row.repeatable && (row.direction == u"<--"_s || row.direction == u"-->"_s);
}

bool isSameTransfer(const QueueRow &one, const QueueRow &other)
{
    return one.direction == other.direction && one.local == other.local
        && one.remote == other.remote && one.webSpace == other.webSpace;
}

QVariant statusIcon(const QueueRow &row)
{
    if (row.failed) {
        return Icons::icon(u"fehler"_s);
    }
    if (row.direction == u"<--"_s) {
        return Icons::icon(u"cmd_download"_s);
    }
    if (row.direction == u"-->"_s) {
        return Icons::icon(u"cmd_upload"_s);
    }
    // A deletion has no direction, a change of permissions has one of its own.
    return Icons::icon(row.direction.isEmpty() ? u"DeleteFiles"_s : u"nameFile"_s);
}

QVariant alignmentOf(int column)
{
    return QVariant::fromValue(Qt::Alignment(
        Qt::AlignVCenter | (column == QueueModel::Size ? Qt::AlignRight : Qt::AlignLeft)));
}

QString toolTip(const QueueRow &row, int column)
{
    const QString text = column == QueueModel::Status && !row.detail.isEmpty()
        ? row.detail
        : cellText(row, column);
    // A server's words must not be taken for markup: that could name files to be opened.
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}

} // namespace

int QueueModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int QueueModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant QueueModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const QueueRow &row = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return cellText(row, index.column());
    case Qt::ToolTipRole:
        return toolTip(row, index.column());
    case Qt::DecorationRole:
        return index.column() == Status ? statusIcon(row) : QVariant();
    case Qt::TextAlignmentRole:
        return alignmentOf(index.column());
    case FailedRole:
        return row.failed;
    case DetailRole:
        return row.detail;
    default:
        return {};
    }
}

QVariant QueueModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList headers {
        u"Status"_s, u"Lokal"_s, u"Größe"_s, u"Richtung"_s, u"Server Verzeichnis"_s, u"Server"_s,
    };
    if (orientation == Qt::Horizontal && role == Qt::TextAlignmentRole) {
        return alignmentOf(section);
    }
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    return headers.value(section);
}

QHash<int, QByteArray> QueueModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractTableModel::roleNames();
    names.insert(FailedRole, "failed");
    names.insert(DetailRole, "detail");
    return names;
}

void QueueModel::sort(int column, Qt::SortOrder /*order*/)
{
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    Q_EMIT layoutAboutToBeChanged();
    // Intended: always ascending; a second click does not turn the order round.
    QList<int> order(m_rows.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        return collator.compare(cellText(m_rows.at(a), column), cellText(m_rows.at(b), column)) < 0;
    });
    QList<QueueRow> sorted;
    sorted.reserve(m_rows.size());
    QList<int> placeOf(m_rows.size());
    for (const int row : std::as_const(order)) {
        placeOf[row] = static_cast<int>(sorted.size());
        sorted.append(m_rows.at(row));
    }
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    for (const QModelIndex &old : before) {
        after.append(index(placeOf.at(old.row()), old.column()));
    }
    m_rows = sorted;
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged();
}

void QueueModel::append(const QueueRow &row)
{
    settleFailures(row);
    const int at = rowCount();
    beginInsertRows({}, at, at);
    m_rows.append(row);
    m_failures += isFailedTransfer(row) ? 1 : 0;
    endInsertRows();
}

void QueueModel::removeRowsAt(const QList<int> &rows)
{
    // From the end, so that the rows in front keep their places; neighbours go together, or
    // emptying a long queue would take minutes.
    for (qsizetype behind = rows.size(); behind > 0;) {
        qsizetype at = behind - 1;
        while (at > 0 && rows.at(at - 1) == rows.at(at) - 1) {
            --at;
        }
        const int first = rows.at(at);
        const int last = rows.at(behind - 1);
        beginRemoveRows({}, first, last);
        m_failures -= static_cast<int>(
            std::count_if(m_rows.begin() + first, m_rows.begin() + last + 1, isFailedTransfer));
        m_rows.remove(first, last - first + 1);
        endRemoveRows();
        behind = at;
    }
}

QList<QueueRow> QueueModel::failedTransfers() const
{
    QList<QueueRow> result;
    std::copy_if(m_rows.begin(), m_rows.end(), std::back_inserter(result), isFailedTransfer);
    return result;
}

void QueueModel::settleFailures(const QueueRow &again)
{
    for (int at = 0; m_failures > 0 && at < m_rows.size(); ++at) {
        if (const QueueRow &old = m_rows.at(at);
            isFailedTransfer(old) && isSameTransfer(old, again)) {
            m_rows[at].failed = false;
            --m_failures;
            Q_EMIT dataChanged(index(at, 0), index(at, ColumnCount - 1));
        }
    }
}
