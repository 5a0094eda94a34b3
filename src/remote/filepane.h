#pragma once

#include "remote/pane.h"
#include "remote/panemodel.h"

#include <QComboBox>
#include <QWidget>

class PaneView;
class QHBoxLayout;
class QToolBar;

/// Where the text of a folder comes from. Only text from a folder box may hold a bracketed
/// annotation and blanks to be dropped; paths that the program derives are taken as they are.
enum class FolderSource { Box, Derived };

/// What both file panes have in common: folder box with its buttons, tool bar, list, history.
class FilePane : public QWidget, public Pane {
    Q_OBJECT

public:
    struct Names {
        QString list, box; ///< object names
        QString listLabel, boxLabel; ///< for screen readers
        QStringList headers; ///< of the columns
    };
    explicit FilePane(const Names &names, QWidget *parent = nullptr);

    [[nodiscard]] PaneModel &model() override { return m_model; }
    [[nodiscard]] QString folder() const override { return m_box->currentText(); }
    void setFolderText(const QString &folder) override;
    void rememberFolder(const QString &folder) override;
    void forgetFolder(const QString &folder) override;
    [[nodiscard]] QList<int> selectedRows() const override;
    [[nodiscard]] int currentRow() const override;
    void clearSelection() override;
    void selectAll() override;
    void selectRows(const QList<int> &rows) override;
    void editCaption(int row) override;

    [[nodiscard]] PaneView &view() { return *m_view; }
    [[nodiscard]] QComboBox &box() { return *m_box; }
    /// Puts a tool bar between the folder box and the list.
    void setToolBar(QToolBar *bar);
    /// Appends a button to the right of the folder box.
    void addBoxButton(QWidget *button);

    /// The row that decides about the enabled commands: the current one, or another selected one
    /// when that has no text; -1 for none.
    [[nodiscard]] int decidingRow() const;
    /// Sorts by a column in its fixed order and groups the rows again. The selection stays.
    void sortByColumn(int column);

    /// Columns are sized to their contents once, with the first rows that are shown.
    [[nodiscard]] bool columnsAreSized() const { return m_columnsSized; }
    /// The columns have their sizes already, from an earlier run.
    void keepColumns();

protected:
    void showEvent(QShowEvent *event) override;
    /// Shows the rows of a folder listed afresh, which are sorted by name; nothing is selected.
    void showRows(QList<PaneRow> rows);
    /// A separator at the end, or not: whether two texts mean one entry of the history.
    [[nodiscard]] virtual bool sameFolder(const QString &entry, const QString &folder) const;
    /// Whether the history holds a folder that was shown: a path, not a text that somebody typed.
    [[nodiscard]] bool isRemembered(const QString &folder) const;
    [[nodiscard]] virtual bool maySort() const { return m_model.rowCount() > 1; }
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] int entryOf(const QString &folder) const; ///< of the history, -1 for none
    void clickColumn(int column);
    void showSortArrow();
    void sizeColumns();

    PaneModel m_model;
    QComboBox *m_box;
    PaneView *m_view;
    QHBoxLayout *m_boxRow;
    int m_sortColumn = ColumnName;
    bool m_columnsSized = false;
};

/// The fixed order in which a column is sorted: names and permissions ascending, sizes and dates
/// descending.
[[nodiscard]] Qt::SortOrder columnOrder(int column);
