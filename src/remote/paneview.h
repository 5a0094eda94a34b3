#pragma once

#include "remote/dropview.h"

/// List of a pane: shows a PaneModel and turns keys, clicks and drags into signals. Knows neither
/// FTP nor the disk.
class PaneView : public DropView {
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
    /// Takes the name that is being typed as it stands, as Enter does; nothing without an editor.
    void endEditing();

    /// Columns as wide as their contents in a sample of the rows and as the list allows.
    void sizeColumnsToContents();

Q_SIGNALS:
    void rowOpened(int row, bool byMouse); ///< double click, or Enter on the current row
    void deletePressed();
    void upPressed(); ///< Backspace
    void otherPaneWanted(); ///< Tab
    void folderBoxWanted(); ///< Alt+Down
    void columnClicked(int column);
    void gotFocus();
    void selectionMoved(); ///< click or key changed what is selected

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void selectionChanged(const QItemSelection &selected,
                          const QItemSelection &deselected) override;

private:
    [[nodiscard]] int nameWidth(int room) const;

    QString m_hint;
};
