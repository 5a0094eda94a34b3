#pragma once

#include "common/globals.h"

#include <QDialog>
#include <array>

class QCheckBox;
class QGroupBox;
class QLabel;
class QLayout;
class QPushButton;

/// "Dateirechte einstellen (Unix chmod)": nine boxes; the answer goes into a PermissionChoice.
class frm_rechte : public QDialog {
    Q_OBJECT

public:
    explicit frm_rechte(PermissionChoice &choice, QWidget *parent = nullptr);

    /// Shows the number of the ticked boxes.
    void rechte_aktu();

private:
    using Boxes = std::array<QCheckBox *, 3>; ///< read, write, run

    void build();
    [[nodiscard]] QGroupBox *buildGroup(int number, const QString &title);
    [[nodiscard]] QLayout *buildNumber();
    [[nodiscard]] QLayout *buildButtons();
    [[nodiscard]] QPushButton *addButton(const QString &name, const QString &caption);
    void setBoxes(int mode);
    void cmd_ok_Click();
    /// Sets the boxes to a common mode and confirms at once.
    void confirmMode(int mode);
    void cmd_hilfe_Click();

    PermissionChoice &m_choice;
    std::array<Boxes, 3> m_boxes {}; ///< owner, group, others
    QLabel *lbl_rechte = nullptr;
    QCheckBox *chk_inhalt = nullptr; ///< everything inside marked folders, too
};
