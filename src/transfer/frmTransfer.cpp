#include "transfer/frmTransfer.h"

#include "transfer/pathlabel.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

frmTransfer::frmTransfer(const ConflictQuestion &question, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(u"frmTransfer"_s);
    build();
    setWindowTitle(question.caption);
    lblMessage->setLines(question.message);
    findChild<QPushButton *>(u"cmdResume"_s)->setEnabled(question.mayResume);
}

ConflictReply frmTransfer::reply() const { return { m_answer, chkSelectedAll->isChecked() }; }

void frmTransfer::build()
{
    lblMessage = new PathLabel(this);
    lblMessage->setObjectName(u"lblMessage"_s);
    chkSelectedAll = new QCheckBox(u"Alle"_s, this);
    chkSelectedAll->setObjectName(u"chkSelectedAll"_s);

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(6);
    buttons->addWidget(chkSelectedAll);
    buttons->addStretch();
    buttons->addWidget(addButton(u"cmdTransfer"_s, u"Über&schreiben"_s, ConflictAnswer::Overwrite));
    buttons->addWidget(addButton(u"cmdResume"_s, u"&Fortsetzen"_s, ConflictAnswer::Resume));
    buttons->addWidget(addButton(u"cmdRename"_s, u"&Umbenennen"_s, ConflictAnswer::Rename));
    QPushButton *cancel = addButton(u"cmdCancel"_s, u"&Abbrechen"_s, ConflictAnswer::Skip);
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
    connect(button, &QPushButton::clicked, this, [this, answer] {
        m_answer = answer;
        done(answer == ConflictAnswer::Skip ? Rejected : Accepted);
    });
    return button;
}
