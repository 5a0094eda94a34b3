// The settings dialog: the three tabs and their controls.
#include "dialogs/frm_einstellungen.h"

#include "common/globals.h"
#include "dialogs/dialogparts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using DialogParts::button;
using DialogParts::labelFor;

namespace {

constexpr int mostConnections = 10; ///< servers rarely allow more from one address

template <class T> T *named(const QString &name, const QString &caption)
{
    auto *made = new T(caption);
    made->setObjectName(name);
    return made;
}

QVBoxLayout *columnOf(QWidget *tab)
{
    auto *column = new QVBoxLayout(tab);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(6);
    return column;
}

} // namespace

QWidget *frm_einstellungen::logTab()
{
    m_tx_logfolder = new QLineEdit;
    m_tx_logfolder->setObjectName(u"tx_logfolder"_s);
    m_tx_logfolder->setMinimumWidth(m_tx_logfolder->fontMetrics().averageCharWidth() * 50);
    m_chk_logname
        = named<QCheckBox>(u"chk_logname"_s, u"Namen für die Logdateien automatisch vergeben."_s);
    auto *pick = button(u"cmd_ordner_log"_s, u"..."_s);
    pick->setToolTip(u"Ordner wählen"_s);
    pick->setAccessibleName(pick->toolTip());
    pick->setFixedWidth(pick->fontMetrics().horizontalAdvance(u"..."_s) + 24);
    auto *standard = button(u"cmd_ordner_log_def"_s, u"Standard Ordner"_s);
    connect(pick, &QPushButton::clicked, this, &frm_einstellungen::browse);
    connect(standard, &QPushButton::clicked, this,
            [this] { m_tx_logfolder->setText(m_globals.folders.profiles); });

    auto *tab = new QWidget;
    auto *line = new QHBoxLayout;
    line->setSpacing(6);
    line->addWidget(m_tx_logfolder);
    line->addWidget(pick);
    QVBoxLayout *column = columnOf(tab);
    column->addWidget(
        labelFor(m_tx_logfolder, u"&Ordner in dem die LOG-Dateien gespeichert werden."_s));
    column->addLayout(line);
    column->addWidget(standard, 0, Qt::AlignLeft);
    column->addSpacing(6);
    column->addWidget(m_chk_logname);
    column->addStretch();
    return tab;
}

QWidget *frm_einstellungen::otherTab()
{
    m_op_fehlermeldungen_0
        = named<QRadioButton>(u"op_fehlermeldungen_0"_s, u"Fehlermeldungen (Deutsch)"_s);
    m_op_fehlermeldungen_1 = named<QRadioButton>(u"op_fehlermeldungen_1"_s,
                                                 u"Detailierte Fehlermeldungen (Englisch)"_s);
    m_chk_hidden
        = named<QCheckBox>(u"chk_hidden"_s, u"Versteckte-Dateien und System-Dateien anzeigen"_s);
    auto *tab = new QWidget;
    QVBoxLayout *column = columnOf(tab);
    column->addWidget(m_op_fehlermeldungen_0);
    column->addWidget(m_op_fehlermeldungen_1);
    column->addSpacing(6);
    column->addWidget(m_chk_hidden);
    column->addStretch();
    return tab;
}

void frm_einstellungen::buildSecurity()
{
    m_cbo_verschluesselung = new QComboBox;
    m_cbo_verschluesselung->setObjectName(u"cbo_verschluesselung"_s);
    m_cbo_verschluesselung->addItems({ u"Automatisch"_s, u"Immer"_s, u"Nie"_s });
    m_cbo_verschluesselung->setToolTip(
        u"Automatisch: verschlüsselt, wenn der Server es kann. Immer: nie ohne. "
        "Nie: alles, auch das Passwort, geht lesbar über das Netz."_s);
    m_spn_verbindungen = new QSpinBox;
    m_spn_verbindungen->setObjectName(u"spn_verbindungen"_s);
    m_spn_verbindungen->setRange(1, mostConnections);
    m_spn_verbindungen->setToolTip(
        u"So viele Dateien eines Ordners werden höchstens zugleich übertragen."_s);
    m_lst_vertraut = new QListWidget;
    m_lst_vertraut->setObjectName(u"lst_vertraut"_s);
    m_lst_vertraut->setMinimumHeight(m_lst_vertraut->fontMetrics().lineSpacing() * 6);
    m_lst_vertraut->setSelectionMode(QAbstractItemView::SingleSelection);
    m_cmd_vertrauen_entfernen = button(u"cmd_vertrauen_entfernen"_s, u"&Entfernen"_s);
    m_cmd_vertrauen_entfernen->setToolTip(
        u"Beim nächsten Mal wird wieder gefragt, ob diesem Server zu trauen ist."_s);
    connect(m_cmd_vertrauen_entfernen, &QPushButton::clicked, this,
            &frm_einstellungen::forgetSelected);
    connect(m_lst_vertraut, &QListWidget::currentRowChanged, this,
            [this](int row) { m_cmd_vertrauen_entfernen->setEnabled(row >= 0); });
}

QWidget *frm_einstellungen::securityTab()
{
    buildSecurity();
    auto *tab = new QWidget;
    auto *grid = new QGridLayout(tab);
    grid->setContentsMargins(12, 12, 12, 12);
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(6);
    grid->addWidget(labelFor(m_cbo_verschluesselung, u"&Verschlüsselung"_s), 0, 0);
    grid->addWidget(m_cbo_verschluesselung, 0, 1, Qt::AlignLeft);
    grid->addWidget(labelFor(m_spn_verbindungen, u"&Gleichzeitige Verbindungen, höchstens"_s), 1,
                    0);
    grid->addWidget(m_spn_verbindungen, 1, 1, Qt::AlignLeft);
    grid->setRowMinimumHeight(2, 6);
    grid->addWidget(labelFor(m_lst_vertraut, u"Ve&rtraute Server"_s), 3, 0, 1, 2);
    grid->addWidget(m_lst_vertraut, 4, 0, 1, 2);
    grid->addWidget(m_cmd_vertrauen_entfernen, 5, 0, 1, 2, Qt::AlignLeft);
    grid->setColumnStretch(1, 1);
    return tab;
}
