#pragma once

#include "remote/panerow.h"

#include <QAbstractTableModel>

#include <vector>

/// Table of pane rows that both panes share. Knows neither FTP nor the disk.
class PaneModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Role { KindRole = Qt::UserRole + 1, TagRole, KeyRole, GhostedRole };

    /// @param headers  header texts; their number is the number of columns (3 or 4)
    explicit PaneModel(const QStringList &headers, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index,
                                int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
    /// A caption edit: emits captionEdited and changes nothing by itself.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

    [[nodiscard]] const QList<PaneRow> &rows() const { return m_rows; }
    [[nodiscard]] const PaneRow &row(int index) const { return m_rows.at(index); }
    void setRows(QList<PaneRow> rows);
    /// @param order  the number that each row has now, in the order that it shall have
    void reorder(const std::vector<int> &order);
    void clear() { setRows({}); }
    int appendRow(const PaneRow &row); ///< @return its index
    void removeRowAt(int index);
    void changeRow(int index, const PaneRow &row);
    void setMarked(int index, bool marked);
    void unmarkAll();
    [[nodiscard]] int findRow(const QString &name) const; ///< exact, whole name; -1 = none

Q_SIGNALS:
    /// The user ended a caption edit with a text that differs from the caption.
    void captionEdited(int row, const QString &newText);

private:
    [[nodiscard]] static QVariant nameData(const PaneRow &row, int role);
    void rowsChanged(int first, int last);

    QStringList m_headers;
    QList<PaneRow> m_rows;
};
