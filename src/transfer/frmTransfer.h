#pragma once

#include "transfer/conflict.h"

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>

/// "Dateitransfer": which file would be overwritten by which, and four answers.
class frmTransfer : public QDialog {
    Q_OBJECT

public:
    explicit frmTransfer(const ConflictQuestion &question, QWidget *parent = nullptr);

    /// The answer; Skip until a button was clicked.
    [[nodiscard]] ConflictReply reply() const;

private:
    void build();
    QPushButton *addButton(const QString &name, const QString &caption, ConflictAnswer answer);

    ConflictAnswer m_answer = ConflictAnswer::Skip;
    QLabel *lblMessage = nullptr;
    QCheckBox *chkSelectedAll = nullptr;
};
