#include "remote/roworder.h"

#include "remote/itemkind.h"

#include <QCollator>

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

/// Collator of the user's language; the "C" locale knows no order of letters, so German takes over.
QCollator textOrder()
{
    const QLocale locale;
    QCollator collator(locale.language() == QLocale::C ? QLocale(QLocale::German) : locale);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    collator.setNumericMode(false);
    return collator;
}

/// Row numbers in the order of their keys; equal keys keep their order in both directions.
template <class Key> std::vector<int> sortedOrder(const std::vector<Key> &keys, Qt::SortOrder order)
{
    std::vector<int> rows(keys.size());
    std::iota(rows.begin(), rows.end(), 0);
    const auto at = [&keys](int row) -> const Key & { return keys[static_cast<std::size_t>(row)]; };
    if (order == Qt::AscendingOrder) {
        std::stable_sort(rows.begin(), rows.end(), [&](int a, int b) { return at(a) < at(b); });
    } else {
        std::stable_sort(rows.begin(), rows.end(), [&](int a, int b) { return at(b) < at(a); });
    }
    return rows;
}

/// Digits and signs of one form: their codes have the order that a language gives them. Most texts
/// differ within their first characters, which compare as two numbers without a look at the text.
class CodeKey {
public:
    explicit CodeKey(const QString &text)
        : m_text(&text)
    {
        qsizetype at = 0;
        for (quint64 *part : { &m_first, &m_second }) {
            for (int shift = 56; shift >= 0 && at < text.size(); shift -= 8, ++at) {
                const char16_t code = text.at(at).unicode();
                *part |= static_cast<quint64>(std::min<char16_t>(code, 0xff)) << shift;
                // What follows a code that does not fit must not decide; the whole texts do.
                at = code < 0xff ? at : text.size();
            }
        }
    }
    bool operator<(const CodeKey &other) const
    {
        if (m_first != other.m_first) {
            return m_first < other.m_first;
        }
        return m_second != other.m_second ? m_second < other.m_second : *m_text < *other.m_text;
    }

private:
    quint64 m_first = 0, m_second = 0;
    const QString *m_text;
};

std::vector<int> orderByCodes(const QList<PaneRow> &rows, int column, Qt::SortOrder order)
{
    std::vector<QString> texts;
    texts.reserve(static_cast<std::size_t>(rows.size()));
    for (const PaneRow &row : rows) {
        texts.push_back(cellText(row, column));
    }
    return sortedOrder(std::vector<CodeKey>(texts.begin(), texts.end()), order);
}

/// Every row's place by name; rows of equal names share theirs.
std::vector<int> foundNamePlaces(const QList<PaneRow> &rows)
{
    // A key is made once a row; comparing two keys is far cheaper than comparing two texts.
    std::vector<QCollatorSortKey> keys;
    keys.reserve(static_cast<std::size_t>(rows.size()));
    const QCollator collator = textOrder();
    for (const PaneRow &row : rows) {
        keys.push_back(collator.sortKey(row.name));
    }
    std::vector<int> places(keys.size());
    const auto number = [](int row) { return static_cast<std::size_t>(row); };
    int place = 0;
    for (int last = -1; const int row : sortedOrder(keys, Qt::AscendingOrder)) {
        const bool same = last >= 0 && keys[number(last)].compare(keys[number(row)]) == 0;
        places[number(row)] = same ? place : ++place;
        last = row;
    }
    return places;
}

/// The places that the rows know, or where one of them does not, places found afresh.
std::vector<int> namePlaces(const QList<PaneRow> &rows)
{
    const auto unknown = [](const PaneRow &row) { return row.namePlace < 0; };
    if (std::any_of(rows.begin(), rows.end(), unknown)) {
        return foundNamePlaces(rows);
    }
    std::vector<int> places;
    places.reserve(static_cast<std::size_t>(rows.size()));
    for (const PaneRow &row : rows) {
        places.push_back(row.namePlace);
    }
    return places;
}

} // namespace

PaneRow upRow()
{
    PaneRow row;
    row.kind = ItemKind::Cdup;
    return row;
}

QString cellText(const PaneRow &row, int column)
{
    switch (column) {
    case ColumnName:
        return row.name;
    case ColumnSize:
        return row.size;
    case ColumnDate:
        return row.date;
    case ColumnPermission:
        return row.permissions;
    default:
        return {};
    }
}

QList<PaneRow> RegroupRows(QList<PaneRow> sorted)
{
    QList<PaneRow> result;
    result.reserve(sorted.size() + 1);
    result.append(upRow());
    // Intended: links, also those to folders, stay among the files.
    std::vector<qsizetype> rest;
    rest.reserve(static_cast<std::size_t>(sorted.size()));
    for (qsizetype at = 0; at < sorted.size(); ++at) {
        const QString &kind = sorted.at(at).kind;
        if (kind == ItemKind::FolderClose) {
            result.append(std::move(sorted[at]));
        } else if (kind != ItemKind::Cdup) {
            rest.push_back(at);
        }
    }
    for (const qsizetype at : rest) {
        result.append(std::move(sorted[at]));
    }
    return result;
}

QList<PaneRow> inOrder(QList<PaneRow> rows, const std::vector<int> &order)
{
    QList<PaneRow> result;
    result.reserve(rows.size());
    for (const int row : order) {
        result.append(std::move(rows[row]));
    }
    return result;
}

QList<PaneRow> sortRows(QList<PaneRow> rows, int column, Qt::SortOrder order)
{
    if (column != ColumnName) {
        return inOrder(rows, orderByCodes(rows, column, order));
    }
    const std::vector<int> places = namePlaces(rows);
    for (qsizetype at = 0; at < rows.size(); ++at) {
        rows[at].namePlace = places[static_cast<std::size_t>(at)];
    }
    return inOrder(std::move(rows), sortedOrder(places, order));
}

std::vector<int> groupedOrder(const QList<PaneRow> &rows, int column, Qt::SortOrder order)
{
    std::vector<int> result = column == ColumnName ? sortedOrder(namePlaces(rows), order)
                                                   : orderByCodes(rows, column, order);
    const auto rest = std::stable_partition(result.begin(), result.end(), [&rows](int row) {
        return rows.at(row).kind == ItemKind::Cdup;
    });
    std::stable_partition(rest, result.end(),
                          [&rows](int row) { return rows.at(row).kind == ItemKind::FolderClose; });
    return result;
}
