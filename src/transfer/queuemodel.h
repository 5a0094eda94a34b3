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
    void append(const QueueRow &row);
    /// @param rows  ascending positions
    void removeRowsAt(const QList<int> &rows);
    /// The failed transfers, in the order shown. They count as dealt with afterwards.
    [[nodiscard]] QList<QueueRow> takeFailedTransfers();
    [[nodiscard]] bool hasFailedTransfers() const;

private:
    QList<QueueRow> m_rows;
};
