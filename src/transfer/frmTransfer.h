#pragma once

#include "transfer/conflict.h"

#include <QCheckBox>
#include <QDialog>
#include <QPushButton>

class PathLabel;

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
    PathLabel *lblMessage = nullptr;
    QCheckBox *chkSelectedAll = nullptr;
};
