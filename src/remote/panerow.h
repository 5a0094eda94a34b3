#pragma once

#include <QList>
#include <QString>

/// One row of a pane, as plain data.
struct PaneRow {
    QString name; ///< empty for the up row
    QString kind; ///< ItemKind key, also the key of the icon
    QString size, date, permissions; ///< texts of the other columns
    QString tag; ///< full path: folder + name; empty for the up row
    bool marked = false; ///< ghosted while an operation works on it
    int namePlace = -1; ///< place by name among the rows it was sorted with; -1 when not known
};

Q_DECLARE_TYPEINFO(PaneRow, Q_RELOCATABLE_TYPE); // lists of 100,000 are moved as blocks

/// The up row, always first.
[[nodiscard]] PaneRow upRow();

/// Column indexes of a pane.
enum PaneColumn { ColumnName = 0, ColumnSize = 1, ColumnDate = 2, ColumnPermission = 3 };

/// Text of a cell; empty for columns that there are not.
[[nodiscard]] QString cellText(const PaneRow &row, int column);
