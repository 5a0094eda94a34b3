#pragma once

#include "common/shell.h"

#include <QAbstractTableModel>
#include <QList>

/// The record of finished transfer steps: the six columns of lvwStatus.
class QueueModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Status, Local, Size, Direction, Remote, Server, ColumnCount };
    enum Role { FailedRole = Qt::UserRole + 1, DetailRole };

    using QAbstractTableModel::QAbstractTableModel;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index,
                                int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
    /// Sorts the rows that are there once; later rows go to the end all the same.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    [[nodiscard]] const QueueRow &row(int index) const { return m_rows.at(index); }
    /// A transfer tried again takes the place of its earlier failures: they count as dealt with.
    void append(const QueueRow &row);
    /// @param rows  ascending positions
    void removeRowsAt(const QList<int> &rows);
    /// The failed transfers that were not tried again since, in the order shown.
    [[nodiscard]] QList<QueueRow> failedTransfers() const;
    [[nodiscard]] bool hasFailedTransfers() const { return m_failures > 0; }

private:
    void settleFailures(const QueueRow &again);

    QList<QueueRow> m_rows;
    int m_failures = 0; ///< rows that failedTransfers() gives
};
