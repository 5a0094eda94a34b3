#include "connections/connecttabs.h"
#include "connections/formparts.h"
#include "connections/profile.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

/// A label above its field, over both columns; nearer to it than to the field above.
void addBelow(QGridLayout &grid, const QString &label, QWidget *field, QLayout *line)
{
    grid.setRowMinimumHeight(grid.rowCount(), 6);
    auto *text = new QLabel(label);
    text->setBuddy(field);
    grid.addWidget(text, grid.rowCount(), 0, 1, 2);
    grid.addLayout(line, grid.rowCount(), 0, 1, 2);
}

QHBoxLayout *lineOf(std::initializer_list<QWidget *> widgets)
{
    auto *line = new QHBoxLayout;
    line->setSpacing(6);
    for (QWidget *widget : widgets) {
        line->addWidget(widget);
    }
    return line;
}

} // namespace

ErweitertTab::ErweitertTab(QWidget *parent)
    : QWidget(parent)
    , m_txtRemotePort(FormParts::numberEdit(u"txtRemotePort"_s))
    , m_txtTimeout(FormParts::numberEdit(u"txtTimeout"_s))
    , m_txtLocalDir(FormParts::lineEdit(u"txtLocalDir"_s))
    , m_txtRemoteDir(FormParts::lineEdit(u"txtRemoteDir"_s, true))
    , m_txtAccount(FormParts::lineEdit(u"txtAccount"_s))
    , m_lstTransferType(new QComboBox)
    , m_cbo_verschluesselung(FormParts::encryptionBox())
    , m_chkPassive(new QCheckBox(u"Passiver Transfer"_s))
    , m_Command1(new QPushButton(u"..."_s))
    , m_cmd_reset(new QPushButton(u"Reset"_s))
{
    m_lstTransferType->setObjectName(u"lstTransferType"_s);
    // Intended: the last one is spelled so.
    m_lstTransferType->addItems({ u"Binary"_s, u"Ascii"_s, u"EBCIDIC"_s });
    m_chkPassive->setObjectName(u"chkPassive"_s);
    m_Command1->setObjectName(u"Command1"_s);
    m_Command1->setToolTip(u"Ordner wählen"_s);
    m_Command1->setAccessibleName(m_Command1->toolTip());
    m_Command1->setAutoDefault(false);
    m_Command1->setFixedWidth(m_Command1->fontMetrics().horizontalAdvance(u"..."_s) + 24);
    m_cmd_reset->setObjectName(u"cmd_reset"_s);
    m_cmd_reset->setToolTip(u"Setzt diese Karteikarte auf die üblichen Werte zurück"_s);
    m_cmd_reset->setAutoDefault(false);
    connect(m_Command1, &QPushButton::clicked, this, &ErweitertTab::browsePressed);
    connect(m_cmd_reset, &QPushButton::clicked, this, &ErweitertTab::resetPressed);

    QGridLayout *grid = FormParts::grid(this);
    FormParts::addRow(*grid, u"P&ort"_s, m_txtRemotePort);
    FormParts::addRow(*grid, u"Ti&meout in Sekunden"_s, m_txtTimeout);
    FormParts::addRow(*grid, u"&Transfer Typ"_s, m_lstTransferType);
    grid->addWidget(m_chkPassive, grid->rowCount(), 1);
    FormParts::addRow(*grid, u"Verschlüssel&ung"_s, m_cbo_verschluesselung);
    FormParts::addRow(*grid, u"A&ccount"_s, m_txtAccount);
    addBelow(*grid, u"&Zu diesem Verzeichnis auf Ihrem Computer automatisch wechseln"_s,
             m_txtLocalDir, lineOf({ m_txtLocalDir, m_Command1 }));
    addBelow(*grid, u"Zu diesem Verzeichnis auf dem Serve&r automatisch wechseln"_s, m_txtRemoteDir,
             lineOf({ m_txtRemoteDir }));
    grid->setRowStretch(grid->rowCount(), 1);
    grid->addWidget(m_cmd_reset, grid->rowCount(), 1, Qt::AlignRight);
    for (QComboBox *box : { m_lstTransferType, m_cbo_verschluesselung }) {
        FormParts::ignoreWheel(box);
        box->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    }
}

void ErweitertTab::show(const ProfileFields &fields)
{
    m_txtRemotePort->setText(fields.RemotePort);
    m_lstTransferType->setCurrentIndex(fields.TransferPosition);
    m_chkPassive->setChecked(fields.Passive);
    m_txtTimeout->setText(fields.Timeout);
    m_txtLocalDir->setText(fields.LocalDir);
    m_txtRemoteDir->setText(fields.RemoteDir);
    m_txtAccount->setText(fields.Account);
    m_cbo_verschluesselung->setCurrentIndex(fields.encryption + 1);
}

void ErweitertTab::collect(ProfileFields &fields) const
{
    fields.RemotePort = m_txtRemotePort->text();
    fields.TransferPosition = m_lstTransferType->currentIndex();
    fields.Passive = m_chkPassive->isChecked();
    fields.Timeout = m_txtTimeout->text();
    fields.LocalDir = m_txtLocalDir->text();
    fields.RemoteDir = m_txtRemoteDir->text();
    fields.Account = m_txtAccount->text();
    fields.encryption = m_cbo_verschluesselung->currentIndex() - 1;
}

void ErweitertTab::lock()
{
    for (QWidget *field :
         std::initializer_list<QWidget *> { m_txtRemotePort, m_chkPassive, m_txtTimeout,
                                            m_txtLocalDir, m_Command1, m_txtRemoteDir }) {
        field->setEnabled(false);
    }
}
