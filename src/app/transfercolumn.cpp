#include "app/transfercolumn.h"

#include "app/commands.h"
#include "remote/icons.h"

#include <QButtonGroup>
#include <QGroupBox>
#include <QRadioButton>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

TransferColumn::TransferColumn(QWidget *parent)
    : QWidget(parent)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(6, 0, 6, 0);
    column->setSpacing(12);
    img_ampel_gruen
        = addLight(column, u"img_ampel_gruen"_s, u"Verbindung zum Server hergestellt"_s);
    img_ampel_rot
        = addLight(column, u"img_ampel_rot"_s, u"Keine Verbindung zum Server hergestellt"_s);
    setGreen(false);
    connect(img_ampel_gruen, &QToolButton::clicked, this, &TransferColumn::greenClicked);
    connect(img_ampel_rot, &QToolButton::clicked, this, &TransferColumn::redClicked);

    column->addStretch(1);
    auto *upload = addArrow(column, u"cmd_upload"_s, u"Upload der markierten Objekte"_s);
    auto *download = addArrow(column, u"cmd_download"_s, u"Download der markierten Objekte"_s);
    connect(upload, &QToolButton::clicked, this, &TransferColumn::uploadClicked);
    connect(download, &QToolButton::clicked, this, &TransferColumn::downloadClicked);
    column->addSpacing(6);
    column->addWidget(modeGroup());
    column->addStretch(2);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
}

QToolButton *TransferColumn::addLight(QVBoxLayout *column, const QString &name,
                                      const QString &toolTip)
{
    auto *light = new QToolButton(this);
    light->setObjectName(name);
    light->setIcon(Icons::icon(name));
    light->setIconSize(QSize(24, 24));
    light->setAutoRaise(true);
    light->setToolTip(toolTip);
    light->setAccessibleName(toolTip);
    light->setFocusPolicy(Qt::TabFocus);
    column->addWidget(light, 0, Qt::AlignHCenter);
    return light;
}

QToolButton *TransferColumn::addArrow(QVBoxLayout *column, const QString &name,
                                      const QString &toolTip)
{
    auto *arrow = new QToolButton(this);
    arrow->setObjectName(name);
    arrow->setIcon(Icons::icon(name));
    arrow->setIconSize(QSize(32, 32));
    arrow->setFixedSize(72, 48);
    arrow->setToolTip(toolTip);
    arrow->setAccessibleName(toolTip);
    arrow->setFocusPolicy(Qt::TabFocus); // a click must not take the focus from the lists
    column->addWidget(arrow, 0, Qt::AlignHCenter);
    return arrow;
}

QWidget *TransferColumn::modeGroup()
{
    auto *group = new QGroupBox(u"Übertragungsmodus"_s, this);
    group->setObjectName(u"frame_modus"_s);
    auto *rows = new QVBoxLayout(group);
    rows->setContentsMargins(6, 6, 6, 6);
    rows->setSpacing(6);
    op_transfer = new QButtonGroup(this);
    struct Option {
        QString caption, toolTip;
    };
    const Option options[] {
        { u"Binär"_s, u"Die Dateien werden Binär übertragen. (Empfohlen)"_s },
        { u"ASCII"_s,
          u"Die Dateien werden im ASCII Modus übertragen. (Erforderlich für CGI-Scripte)"_s },
        // Intended: the spelling.
        { u"EBCIDIC"_s, u"Dieser Modus wird normalerweise nicht benötigt."_s },
    };
    for (int index = 0; const Option &option : options) {
        auto *button = new QRadioButton(option.caption, group);
        button->setObjectName(u"op_transfer_"_s + QString::number(index));
        button->setToolTip(option.toolTip);
        button->setChecked(index == 0);
        op_transfer->addButton(button, index);
        rows->addWidget(button);
        ++index;
    }
    connect(op_transfer, &QButtonGroup::idClicked, this,
            [this](int option) { Q_EMIT transferTypeChosen(transferTypeOf(option)); });
    return group;
}

void TransferColumn::setGreen(bool green)
{
    img_ampel_gruen->setVisible(green);
    img_ampel_rot->setVisible(!green);
}

void TransferColumn::setTransferType(int type)
{
    op_transfer->button(optionOf(type))->setChecked(true);
}
