#pragma once

#include "remote/pane.h"
#include "remote/panemodel.h"

#include <QStringList>
#include <functional>

class FtpOperations;

/// A pane without a widget: selection and current row are plain members, and listing a folder asks
/// a function for the rows. Notes the calls as "list folder", "text folder", "remember folder",
/// "forget folder", "clear selection", "edit row".
class FakePane : public Pane {
public:
    using Lister = std::function<QList<PaneRow>(const QString &folder)>;

    explicit FakePane(Lister lister, int columns = 4);

    /// Rows of the disk: folders, then files.
    [[nodiscard]] static Lister disk();
    /// Rows of a server; changes its folder as the real pane does.
    [[nodiscard]] static Lister server(FtpOperations &ftp);

    /// Lists a folder, shows it in the box and forgets the calls so far.
    void show(const QString &folder);
    /// Selects rows by name; the last one becomes current.
    void select(const QStringList &names);
    [[nodiscard]] QStringList names() const; ///< of all rows, the up row left out
    [[nodiscard]] QStringList markedNames() const;

    QStringList calls;
    QList<int> selected;
    int current = -1;
    QString text;
    std::function<bool()> unread = [] { return false; }; ///< answers isUnread()

    [[nodiscard]] PaneModel &model() override { return m_model; }
    [[nodiscard]] QString folder() const override { return text; }
    void setFolderText(const QString &folder) override;
    void listFolder(const QString &folder) override;
    void rememberFolder(const QString &folder) override;
    void forgetFolder(const QString &folder) override;
    [[nodiscard]] bool isUnread() const override { return unread(); }
    [[nodiscard]] QList<int> selectedRows() const override { return selected; }
    [[nodiscard]] int currentRow() const override { return current; }
    void clearSelection() override;
    void selectAll() override;
    void selectRows(const QList<int> &rows) override { selected = rows; }
    void editCaption(int row) override;

private:
    Lister m_lister;
    PaneModel m_model;
};
