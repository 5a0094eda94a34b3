#include "dialogs/frmAbout.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QLabel *valueLabel(const QString &name, const QString &text, const QString &caption)
{
    auto *label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText); // a host name must not be taken for mark-up
    label->setText(text);
    label->setAccessibleName(caption);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}

} // namespace

frmAbout::frmAbout(const NetworkInfo &info, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(u"frmAbout"_s);
    setWindowTitle(u"Winsock Info"_s);

    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(6);
    const auto addRow = [grid](int row, const QString &caption, QWidget *value) {
        auto *label = new QLabel(caption);
        label->setBuddy(value);
        grid->addWidget(label, row, 0,
                        value->sizePolicy().verticalPolicy() == QSizePolicy::Expanding
                            ? Qt::AlignTop
                            : Qt::AlignBaseline);
        grid->addWidget(value, row, 1);
    };
    addRow(0, u"Local Hostname:"_s,
           valueLabel(u"lblHostname"_s, info.hostName, u"Local Hostname:"_s));
    auto *addresses = new QListWidget;
    addresses->setObjectName(u"lbxAddress"_s);
    addresses->setAccessibleName(u"Local Address(es):"_s);
    addresses->addItems(info.addresses);
    addresses->setMinimumSize(300, 90);
    addresses->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    addRow(1, u"Local Address(es):"_s, addresses);
    addRow(2, u"Winsock Version:"_s,
           valueLabel(u"lblVersion"_s, info.version, u"Winsock Version:"_s));
    addRow(3, u"Status:"_s, valueLabel(u"lblStatus"_s, info.status, u"Status:"_s));
    addRow(4, u"Beschreibung"_s,
           valueLabel(u"lblDescription"_s, info.description, u"Beschreibung"_s));

    auto *buttons = new QDialogButtonBox;
    QPushButton *ok = buttons->addButton(u"OK"_s, QDialogButtonBox::AcceptRole);
    ok->setObjectName(u"cmdOk"_s);
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->setSpacing(12);
    layout->addLayout(grid);
    layout->addWidget(buttons);
    resize(420, 270);
    ok->setFocus();
}
