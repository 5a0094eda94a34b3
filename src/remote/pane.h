#pragma once

#include <QList>
#include <QString>

class PaneModel;

/// One file pane as transfers and file operations see it. Rows are rows of model().
class Pane {
public:
    virtual ~Pane() = default;

    [[nodiscard]] virtual PaneModel &model() = 0;
    [[nodiscard]] virtual QString folder() const
        = 0; ///< remote: text of the box; local: folder shown
    virtual void setFolderText(const QString &folder) = 0; ///< changes the box only, lists nothing
    virtual void listFolder(const QString &folder) = 0; ///< lists into the pane, keeps the box
    virtual void rememberFolder(const QString &folder) = 0; ///< history and text of the box
    virtual void forgetFolder(const QString &folder) = 0; ///< removes it from the box's history
    /// Rows are missing because the folder could not be read; what stands in it is not known.
    [[nodiscard]] virtual bool isUnread() const { return false; }
    [[nodiscard]] virtual QList<int> selectedRows() const = 0; ///< ascending
    [[nodiscard]] virtual int currentRow() const = 0; ///< selected current row, -1 for none
    virtual void clearSelection() = 0;
    virtual void selectAll() = 0; ///< from the first row to the last
    virtual void selectRows(const QList<int> &rows) = 0; ///< ascending; these and no others
    virtual void editCaption(int row) = 0; ///< makes the row current and starts editing its name
};
