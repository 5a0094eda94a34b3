#pragma once

#include "common/workingfolders.h"

#include <QDialog>
#include <QIcon>
#include <memory>

class Prompts;
class QAbstractFileIconProvider;
class QComboBox;
class QFileSystemModel;
class QLineEdit;
class QTreeView;

/// Lets the user choose a local folder, and make one. Exchanges the folder through
/// Globals::folderChoice: PickedFolder is the start on entry and the choice on exit.
class frm_get_folder : public QDialog {
    Q_OBJECT

public:
    /// @param folderIcon  for every folder of the tree; the style's own when it is null
    frm_get_folder(Globals &globals, Prompts &prompts, const QList<Drive> &drives,
                   const QIcon &folderIcon = {}, QWidget *parent = nullptr);

    ~frm_get_folder() override;

    /// Folder that the tree shows, without a separator at the end except "/".
    [[nodiscard]] QString shownFolder() const;

private:
    void buildLayout();
    [[nodiscard]] QLayout *driveRow();
    [[nodiscard]] QLayout *buttonRow();
    void showFolder(const QString &folder);
    void keepInSight();
    void showDrive(int index);
    void selectDriveOf(const QString &folder);
    void makeFolder();
    void confirm();

    Globals &m_globals;
    Prompts &m_prompts;
    QList<Drive> m_drives;
    std::unique_ptr<QAbstractFileIconProvider> m_icons;
    QFileSystemModel *m_model;
    QComboBox *m_Drive1;
    QTreeView *m_Dir1;
    QLineEdit *m_tx_pfad;
    bool m_keepsInSight = true; ///< the shown folder; until the user scrolls
};
