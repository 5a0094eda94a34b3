#include "common/globals.h"
#include "common/mo_standard.h"
#include "connections/connecttabs.h"
#include "connections/formparts.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

/// Captions of the proxy types, by their number.
QStringList proxyCaptions()
{
    return { u"Kein Proxyserver bzw. Firewall verwenden"_s,
             u"Proxy Socks4"_s,
             u"Proxy Socks5"_s,
             u"SITE hostname"_s,
             u"Proxy UserLogin"_s,
             u"Proxy UserNoLogin"_s,
             u"Proxy OPEN"_s,
             u"Proxy PIPE"_s };
}

QGridLayout *optionGrid(QButtonGroup &group)
{
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(24);
    grid->setVerticalSpacing(6);
    const QStringList captions = proxyCaptions();
    for (int type = 0; type < captions.size(); ++type) {
        auto *option = new QRadioButton(captions.at(type));
        option->setObjectName(u"op_proxy_%1"_s.arg(type));
        group.addButton(option, type);
        if (type == 0) {
            grid->addWidget(option, 0, 0, 1, 3);
            grid->addWidget(new QLabel(u"oder Proxy bzw. Firewall-Type festlegen"_s), 1, 0, 1, 3);
        } else {
            grid->addWidget(option, 2 + (type - 1) % 4, (type - 1) / 4);
        }
    }
    grid->setColumnStretch(2, 1);
    return grid;
}

} // namespace

ProxyTab::ProxyTab(QWidget *parent)
    : QWidget(parent)
    , m_op_proxy(new QButtonGroup(this))
    , m_txtProxyHost(FormParts::lineEdit(u"txtProxyHost"_s))
    , m_txtProxyUsername(FormParts::lineEdit(u"txtProxyUsername"_s))
    , m_txtProxyPasswort(FormParts::passwordEdit(u"txtProxyPasswort"_s))
    , m_txtProxyPort(FormParts::numberEdit(u"txtProxyPort"_s))
{
    setObjectName(u"tab_proxy"_s); // the help knows the page by it
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(12);
    column->addLayout(optionGrid(*m_op_proxy));
    auto *fields = new QWidget;
    QGridLayout *grid = FormParts::grid(fields);
    grid->setContentsMargins(0, 0, 0, 0);
    FormParts::addRow(*grid, u"Server - Name / Ad&resse"_s, m_txtProxyHost);
    FormParts::addRow(*grid, u"&Username"_s, m_txtProxyUsername);
    FormParts::addRow(*grid, u"&Passwort"_s, m_txtProxyPasswort);
    FormParts::addRow(*grid, u"P&ort"_s, m_txtProxyPort);
    column->addWidget(fields);
    column->addStretch();
}

void ProxyTab::show(const ConnectionProfile &connection)
{
    QAbstractButton *option = m_op_proxy->button(connection.ProxyType);
    (option != nullptr ? option : m_op_proxy->button(0))->setChecked(true);
    m_txtProxyHost->setText(connection.ProxyHost);
    m_txtProxyUsername->setText(connection.ProxyUsername);
    m_txtProxyPasswort->setText(connection.ProxyPassword);
    m_txtProxyPort->setText(QString::number(connection.Proxyport));
}

void ProxyTab::collect(ConnectionProfile &connection) const
{
    connection.ProxyType = qMax(0, m_op_proxy->checkedId());
    connection.ProxyHost = m_txtProxyHost->text();
    connection.ProxyUsername = m_txtProxyUsername->text();
    connection.ProxyPassword = m_txtProxyPasswort->text();
    connection.Proxyport = lenientInt(m_txtProxyPort->text());
}
