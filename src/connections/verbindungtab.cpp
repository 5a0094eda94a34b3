#include "connections/connecttabs.h"
#include "connections/formparts.h"
#include "connections/profile.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

using namespace Qt::StringLiterals;

VerbindungTab::VerbindungTab(QWidget *parent)
    : QWidget(parent)
    , m_txtRemoteHost(FormParts::lineEdit(u"txtRemoteHost"_s, true))
    , m_txtUserName(FormParts::lineEdit(u"txtUserName"_s, true))
    , m_txtPassword(FormParts::passwordEdit(u"txtPassword"_s, true))
    , m_txt_bemerkungen(new QPlainTextEdit)
{
    m_txt_bemerkungen->setObjectName(u"txt_bemerkungen"_s);
    const QString hint = u"In diesem Feld können Sie einen beliebigen Text eingeben."_s;
    m_txt_bemerkungen->setToolTip(hint);
    m_txt_bemerkungen->setPlaceholderText(hint);
    m_txt_bemerkungen->setTabChangesFocus(true);
    m_txt_bemerkungen->setMinimumHeight(m_txt_bemerkungen->fontMetrics().lineSpacing() * 5);

    QGridLayout *grid = FormParts::grid(this);
    FormParts::addRow(*grid, u"Server - Name / Ad&resse"_s, m_txtRemoteHost);
    FormParts::addRow(*grid, u"&Username"_s, m_txtUserName);
    FormParts::addRow(*grid, u"&Passwort"_s, m_txtPassword);
    QLabel *remarks = FormParts::addRow(*grid, u"&Bemerkungen"_s, m_txt_bemerkungen);
    grid->setAlignment(remarks, Qt::AlignTop);
    remarks->setContentsMargins(0, 4, 0, 0); // level with the first line of the text
    grid->setRowStretch(grid->rowCount() - 1, 1);
}

void VerbindungTab::show(const ProfileFields &fields)
{
    m_txtRemoteHost->setText(fields.RemoteHost);
    m_txtUserName->setText(fields.UserName);
    m_txtPassword->setText(fields.Password);
    m_txt_bemerkungen->setPlainText(QString(fields.Bemerkungen).replace(u"\r\n"_s, u"\n"_s));
}

void VerbindungTab::collect(ProfileFields &fields) const
{
    fields.RemoteHost = m_txtRemoteHost->text();
    fields.UserName = m_txtUserName->text();
    fields.Password = m_txtPassword->text();
    // toPlainText() would make blanks of no-break spaces: a change that nobody made.
    fields.Bemerkungen = m_txt_bemerkungen->document()->toRawText();
    for (const QChar lineEnd : { QChar(QChar::ParagraphSeparator), QChar(QChar::LineSeparator) }) {
        fields.Bemerkungen.replace(lineEnd, u"\r\n"_s);
    }
}

void VerbindungTab::lock()
{
    for (QLineEdit *edit : { m_txtRemoteHost, m_txtUserName, m_txtPassword }) {
        edit->setEnabled(false);
    }
}
