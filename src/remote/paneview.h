#pragma once

#include <QTreeView>
#include <functional>

class QDrag;
class QMimeData;
class QRubberBand;

/// List of a pane: shows a PaneModel and turns keys, clicks and drags into signals. Knows neither
/// FTP nor the disk.
class PaneView : public QTreeView {
    Q_OBJECT

public:
    explicit PaneView(QWidget *parent = nullptr);

    /// One grey line in the middle of the list, for panes that have nothing to show; empty for
    /// none.
    void setHint(const QString &hint);
    [[nodiscard]] QString hint() const { return m_hint; }

    [[nodiscard]] QList<int> selectedRowNumbers() const; ///< ascending
    void selectRowNumbers(const QList<int> &rows); ///< replaces the selection
    [[nodiscard]] bool isEditing() const { return state() == EditingState; }
    /// Makes the row current and starts editing its name.
    void editCaption(int row);

    /// Columns as wide as their contents in a sample of the rows and as the list allows.
    void sizeColumnsToContents();

    /// Asked when the user begins to drag; hands over what is dragged, null when nothing may be.
    void setDragSource(std::function<QMimeData *()> source) { m_dragSource = std::move(source); }
    /// Runs a drag to its end; tests put their own, where no platform can drag.
    using DragRunner = std::function<Qt::DropAction(QDrag &)>;
    void setDragRunner(DragRunner runner) { m_dragRunner = std::move(runner); }
    /// Asked whether something that is dragged over the list may be dropped here.
    void setDropFilter(std::function<bool(const QMimeData &)> filter);
    [[nodiscard]] int dropRow() const { return m_dropRow; } ///< highlighted row, -1 for none

Q_SIGNALS:
    void rowOpened(int row, bool byMouse); ///< double click, or Enter on the current row
    void deletePressed();
    void upPressed(); ///< Backspace
    void otherPaneWanted(); ///< Tab
    void folderBoxWanted(); ///< Alt+Down
    void columnClicked(int column);
    void gotFocus();
    void selectionMoved(); ///< click or key changed what is selected
    void dropped(const QMimeData &data, int row); ///< row under the pointer, -1 for none
    void dragEnded(bool taken); ///< taken false: cancelled or refused

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void startDrag(Qt::DropActions actions) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void selectionChanged(const QItemSelection &selected,
                          const QItemSelection &deselected) override;

private:
    [[nodiscard]] bool startsRubberBand(const QPoint &position) const;
    void moveRubberBand(const QPoint &position);
    [[nodiscard]] int rowAt(const QPoint &position) const;
    void setDropRow(int row);

    QString m_hint;
    std::function<QMimeData *()> m_dragSource;
    std::function<bool(const QMimeData &)> m_dropFilter;
    DragRunner m_dragRunner;
    QRubberBand *m_band = nullptr;
    QPoint m_bandOrigin; ///< in the coordinates of the whole list
    QItemSelection m_bandBase; ///< what was selected before, kept with Ctrl
    int m_dropRow = -1;
};
