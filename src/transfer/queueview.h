#pragma once

#include "transfer/queuemodel.h"

#include <QTimer>
#include <QTreeView>

#include <functional>

class Prompts;

/// lvwStatus: the queue with its delete key, column sort and context menu.
class QueueView : public QTreeView {
    Q_OBJECT

public:
    QueueView(QueueModel &model, Prompts &prompts, QWidget *parent = nullptr);

    /// Appends a row and scrolls to it, once for all rows that come in a burst.
    void AddQueueRow(const QueueRow &row);
    /// Asks, also with nothing selected, and removes the selected rows.
    void DeleteSelectedQueueRows();
    [[nodiscard]] QList<int> selectedRows() const; ///< ascending
    /// Asked whether any of the failed rows could be tried again just now.
    using RetryCheck = std::function<bool(const QList<QueueRow> &rows)>;
    void setRetryCheck(const RetryCheck &check) { m_mayRetry = check; }
    /// Gives the columns their first widths: words that are known fit, paths share a fair guess.
    void sizeColumns();

Q_SIGNALS:
    /// "Fehlgeschlagene erneut übertragen": rows for TransferCommands::RetryTransfers.
    void retryRequested(const QList<QueueRow> &rows);
    /// "Lokalen Ordner öffnen": a folder for vorschau.
    void openFolderRequested(const QString &folder);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void showMenu(const QPoint &position);
    [[nodiscard]] QString lineOf(int row) const;
    [[nodiscard]] int iconWidth() const;

    QueueModel &m_model;
    Prompts &m_prompts;
    RetryCheck m_mayRetry = [](const QList<QueueRow> &) { return true; };
    QTimer m_follow; ///< scrolling lays the whole list out, which is too much for every row
};
