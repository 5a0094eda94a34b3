#include "transfer/frmRename.h"

#include "common/mo_standard.h"
#include "common/prompts.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

frmRename::frmRename(const QString &existing, Prompts &prompts, QWidget *parent)
    : QDialog(parent)
    , m_prompts(prompts)
{
    setObjectName(u"frmRename"_s);
    setWindowTitle(u"Umbenennen"_s);
    build();
    txtRename->setText(existing);
    txtRename->selectAll();
}

void frmRename::build()
{
    auto *Label1 = new QLabel(u"Neuer Name für die vorhandene Datei"_s, this);
    Label1->setObjectName(u"Label1"_s);
    txtRename = new QLineEdit(this);
    txtRename->setObjectName(u"txtRename"_s);
    txtRename->setMinimumWidth(340);
    Label1->setBuddy(txtRename);
    auto *cmdOK = new QPushButton(u"&OK"_s, this);
    cmdOK->setObjectName(u"cmdOK"_s);
    cmdOK->setDefault(true);
    connect(cmdOK, &QPushButton::clicked, this, &frmRename::cmdOK_Click);
    auto *cmdCancel = new QPushButton(u"&Abbrechen"_s, this);
    cmdCancel->setObjectName(u"cmdCancel"_s);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(6);
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(12, 12, 12, 12);
    whole->setSpacing(6);
    whole->addWidget(Label1);
    whole->addWidget(txtRename);
    whole->addSpacing(6);
    whole->addLayout(buttons);
}

void frmRename::cmdOK_Click()
{
    txtRename->setText(trimBlanks(txtRename->text()));
    if (txtRename->text().isEmpty()) {
        m_prompts.message(
            u"Bitte geben Sie einen gültigen Dateinamen an oder wählen Sie 'Abbrechen'."_s);
        txtRename->setFocus();
        return;
    }
    accept();
}
