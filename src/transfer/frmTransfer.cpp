#include "transfer/frmTransfer.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

frmTransfer::frmTransfer(const ConflictQuestion &question, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmTransfer"));
    build();
    setWindowTitle(question.caption);
    lblMessage->setText(question.message);
    findChild<QPushButton *>(QStringLiteral("cmdResume"))->setEnabled(question.mayResume);
}

ConflictReply frmTransfer::reply() const
{
    return { m_answer, chkSelectedAll->isChecked() };
}

void frmTransfer::build()
{
    lblMessage = new QLabel(this);
    lblMessage->setObjectName(QStringLiteral("lblMessage"));
    lblMessage->setTextFormat(Qt::PlainText); // names come from servers
    lblMessage->setWordWrap(true);
    lblMessage->setMinimumWidth(440);
    chkSelectedAll = new QCheckBox(QStringLiteral("Alle"), this);
    chkSelectedAll->setObjectName(QStringLiteral("chkSelectedAll"));

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(6);
    buttons->addWidget(chkSelectedAll);
    buttons->addStretch();
    buttons->addWidget(addButton(QStringLiteral("cmdTransfer"), QStringLiteral("Über&schreiben"),
                                 ConflictAnswer::Overwrite));
    buttons->addWidget(addButton(QStringLiteral("cmdResume"), QStringLiteral("&Fortsetzen"),
                                 ConflictAnswer::Resume));
    buttons->addWidget(addButton(QStringLiteral("cmdRename"), QStringLiteral("&Umbenennen"),
                                 ConflictAnswer::Rename));
    QPushButton *cancel = addButton(QStringLiteral("cmdCancel"), QStringLiteral("&Abbrechen"),
                                    ConflictAnswer::Skip);
    buttons->addWidget(cancel);
    cancel->setDefault(true); // Enter must not overwrite a file
    cancel->setFocus();

    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(12, 12, 12, 12);
    whole->setSpacing(12);
    whole->addWidget(lblMessage);
    whole->addLayout(buttons);
}

QPushButton *frmTransfer::addButton(const QString &name, const QString &caption,
                                    ConflictAnswer answer)
{
    auto *button = new QPushButton(caption, this);
    button->setObjectName(name);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, answer] {
        m_answer = answer;
        done(answer == ConflictAnswer::Skip ? Rejected : Accepted);
    });
    return button;
}
