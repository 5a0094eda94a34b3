#include "transfer/frmRename.h"

#include "common/mo_standard.h"
#include "common/prompts.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

frmRename::frmRename(const QString &existing, Prompts &prompts, QWidget *parent)
    : QDialog(parent)
    , m_prompts(prompts)
{
    setObjectName(QStringLiteral("frmRename"));
    setWindowTitle(QStringLiteral("Umbenennen"));
    build();
    txtRename->setText(existing);
    txtRename->selectAll();
}

void frmRename::build()
{
    auto *Label1 = new QLabel(QStringLiteral("Neuer Name für die vorhandene Datei"), this);
    Label1->setObjectName(QStringLiteral("Label1"));
    txtRename = new QLineEdit(this);
    txtRename->setObjectName(QStringLiteral("txtRename"));
    txtRename->setMinimumWidth(340);
    Label1->setBuddy(txtRename);
    auto *cmdOK = new QPushButton(QStringLiteral("&OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    connect(cmdOK, &QPushButton::clicked, this, &frmRename::cmdOK_Click);
    auto *cmdCancel = new QPushButton(QStringLiteral("&Abbrechen"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
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
        m_prompts.message(QStringLiteral(
            "Bitte geben Sie einen gültigen Dateinamen an oder wählen Sie 'Abbrechen'."));
        txtRename->setFocus();
        return;
    }
    accept();
}
