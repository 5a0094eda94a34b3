#pragma once

#include "remote/panerow.h"

#include <vector>

/// Rows in the order up row, folders, the rest; each group keeps its order. The up row is rebuilt.
[[nodiscard]] QList<PaneRow> RegroupRows(QList<PaneRow> sorted);

/// Rows sorted by the text of a column, stable; names and texts compare by locale, without regard
/// to case, as text ("10" before "9"). Sorting by name leaves every row its place, so that rows
/// which come back to that order need no comparing of names.
[[nodiscard]] QList<PaneRow> sortRows(QList<PaneRow> rows, int column, Qt::SortOrder order);

/// Row numbers in the order up row, folders, the rest, each group sorted by the text of a column.
[[nodiscard]] std::vector<int> groupedOrder(const QList<PaneRow> &rows, int column,
                                            Qt::SortOrder order);
/// The rows in another order; rows that nobody shares are moved, which is cheap.
[[nodiscard]] QList<PaneRow> inOrder(QList<PaneRow> rows, const std::vector<int> &order);
