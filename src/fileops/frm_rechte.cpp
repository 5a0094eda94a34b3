#include "fileops/frm_rechte.h"

#include "common/mo_standard.h"
#include "dialogs/helpkey.h"
#include "fileops/permissions.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<int, 3> weights { 4, 2, 1 }; // read, write, run

int digitOf(const std::array<QCheckBox *, 3> &boxes)
{
    int digit = 0;
    for (std::size_t index = 0; index < boxes.size(); ++index) {
        digit += boxes.at(index)->isChecked() ? weights.at(index) : 0;
    }
    return digit;
}

} // namespace

frm_rechte::frm_rechte(PermissionChoice &choice, QWidget *parent)
    : QDialog(parent)
    , m_choice(choice)
{
    setObjectName(u"frm_rechte"_s);
    setWindowTitle(u"Dateirechte einstellen (Unix chmod)"_s);
    build();
    m_choice.PermissionsConfirmed = false;
    m_choice.alsoInside = false; // off each time: it reaches far
    setBoxes(m_choice.PermissionMode);
    rechte_aktu();
}

void frm_rechte::build()
{
    auto *groups = new QHBoxLayout;
    groups->setSpacing(12);
    const std::array<QGroupBox *, 3> columns { buildGroup(1, u"Besitzer"_s),
                                               buildGroup(2, u"Benutzergruppe"_s),
                                               buildGroup(3, u"Andere"_s) };
    int widest = 0;
    for (const QGroupBox *group : columns) {
        widest = std::max(widest, group->minimumSizeHint().width());
    }
    for (QGroupBox *group : columns) {
        group->setMinimumWidth(widest);
        groups->addWidget(group, 1);
    }

    chk_inhalt = new QCheckBox(u"auch für alles in den Ordnern (Dateien 644, Ordner 755)"_s, this);
    chk_inhalt->setObjectName(u"chk_inhalt"_s);

    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(12, 12, 12, 12);
    whole->setSpacing(12);
    whole->addLayout(groups);
    whole->addWidget(chk_inhalt);
    whole->addLayout(buildNumber());
    whole->addLayout(buildButtons());
}

QLayout *frm_rechte::buildNumber()
{
    lbl_rechte = new QLabel(this);
    lbl_rechte->setObjectName(u"lbl_rechte"_s);
    QFont bold = lbl_rechte->font();
    bold.setBold(true);
    lbl_rechte->setFont(bold);
    QPushButton *usual = addButton(u"cmd_chmod_644"_s, u"chmod 644"_s);
    usual->setToolTip(u"Üblich für Webseiten, Bilder und andere Dateien"_s);
    connect(usual, &QPushButton::clicked, this, [this] { confirmMode(644); });
    QPushButton *chmod = addButton(u"cmd_chmod"_s, u"chmod 755"_s);
    chmod->setToolTip(u"Wird häufig für Dateien im cgi-bin Ordner benötigt"_s);
    connect(chmod, &QPushButton::clicked, this, [this] { confirmMode(755); });
    auto *number = new QHBoxLayout;
    number->setSpacing(6);
    number->addWidget(new QLabel(u"Gewählte Unix Dateirechte:"_s, this));
    number->addWidget(lbl_rechte, 1);
    number->addWidget(usual);
    number->addWidget(chmod);
    return number;
}

QLayout *frm_rechte::buildButtons()
{
    QPushButton *help = addButton(u"cmd_hilfe"_s, u"Hilfe"_s); // first for Tab, too
    connect(help, &QPushButton::clicked, this, &frm_rechte::cmd_hilfe_Click);
    QPushButton *ok = addButton(u"cmd_ok"_s, u"&Ok"_s);
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &frm_rechte::cmd_ok_Click);
    QPushButton *cancel = addButton(u"cmd_abbrechen"_s, u"&Abbrechen"_s);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(6);
    buttons->addWidget(help);
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    return buttons;
}

QGroupBox *frm_rechte::buildGroup(int number, const QString &title)
{
    static const std::array<QString, 3> captions { u"lesen"_s, u"schreiben"_s, u"ausführen"_s };
    auto *group = new QGroupBox(title, this);
    auto *column = new QVBoxLayout(group);
    column->setSpacing(6);
    for (std::size_t index = 0; index < captions.size(); ++index) {
        auto *box = new QCheckBox(captions.at(index), group);
        box->setObjectName(u"chk_rechte%1_%2"_s.arg(number).arg(index));
        column->addWidget(box);
        connect(box, &QCheckBox::toggled, this, &frm_rechte::rechte_aktu);
        m_boxes.at(static_cast<std::size_t>(number - 1)).at(index) = box;
    }
    return group;
}

QPushButton *frm_rechte::addButton(const QString &name, const QString &caption)
{
    auto *button = new QPushButton(caption, this);
    button->setObjectName(name);
    return button;
}

void frm_rechte::rechte_aktu()
{
    const PermissionDigits digits { digitOf(m_boxes[0]), digitOf(m_boxes[1]), digitOf(m_boxes[2]) };
    lbl_rechte->setText(QString::number(modeOf(digits)));
}

void frm_rechte::setBoxes(int mode)
{
    const PermissionDigits digits = digitsOf(mode);
    const std::array<int, 3> values { digits.owner, digits.group, digits.others };
    for (std::size_t group = 0; group < m_boxes.size(); ++group) {
        for (std::size_t index = weights.size(); index-- > 0;) {
            m_boxes.at(group).at(index)->setChecked((values.at(group) & weights.at(index)) != 0);
        }
    }
}

void frm_rechte::cmd_ok_Click()
{
    m_choice.PermissionMode = clampMode(lenientInteger(lbl_rechte->text()));
    m_choice.PermissionsConfirmed = true;
    m_choice.alsoInside = chk_inhalt->isChecked();
    accept();
}

void frm_rechte::confirmMode(int mode)
{
    setBoxes(mode);
    cmd_ok_Click();
}

void frm_rechte::cmd_hilfe_Click() { postHelpKey(this); }
