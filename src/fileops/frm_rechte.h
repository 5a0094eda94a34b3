#pragma once

#include "common/globals.h"

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <array>

/// "Dateirechte einstellen (Unix chmod)": nine boxes; the answer goes into a PermissionChoice.
class frm_rechte : public QDialog {
    Q_OBJECT

public:
    explicit frm_rechte(PermissionChoice &choice, QWidget *parent = nullptr);

    /// Shows the number of the ticked boxes.
    void rechte_aktu();

private:
    void build();
    void loadMode(int mode);
    void cmd_ok_Click();
    void applyPreset(int mode);

    PermissionChoice &m_choice;
    std::array<std::array<QCheckBox *, 3>, 3> m_boxes {}; ///< owner, group, others; read, write, run
    QLabel *lbl_rechte = nullptr;
};
