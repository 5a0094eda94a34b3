#include "connections/frm_zertifikat.h"

#include "dialogs/dialogparts.h"
#include "dialogs/helpkey.h"

#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using DialogParts::button;

namespace {

constexpr int textWidth = 520; ///< lines that are comfortable to read

/// Everything shown comes from a server: plain text, never markup.
QLabel *plainLabel(const QString &text)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

/// A name from a certificate may be of any length; the window must not be.
QString shortened(const QString &name)
{
    constexpr qsizetype longest = 120;
    return name.size() <= longest ? name : name.left(longest) + u" ..."_s;
}

/// The fingerprint in two lines of sixteen pairs, easy to compare with a paper or a web page.
QString inTwoLines(const QString &fingerprint)
{
    const QStringList pairs = fingerprint.split(u':');
    const qsizetype half = (pairs.size() + 1) / 2;
    return pairs.size() < 2 ? fingerprint
                            : pairs.first(half).join(u':') + u":\n"_s + pairs.mid(half).join(u':');
}

} // namespace

frm_zertifikat::frm_zertifikat(const FtpCertificate &certificate, QWidget *parent)
    : QDialog(parent)
    , m_certificate(certificate)
{
    setObjectName(u"frm_zertifikat"_s);
    setWindowTitle(u"Zertifikat des Servers"_s);
    setModal(true);

    auto *reason = plainLabel(certificate.reason);
    reason->setObjectName(u"lbl_grund"_s);
    QFont bold = reason->font();
    bold.setBold(true);
    reason->setFont(bold);
    auto *advice = plainLabel(
        u"Fragen Sie den Betreiber des Servers nach dem Fingerabdruck seines Zertifikats. Ist es "
        "genau dieser, können Sie dem Server vertrauen. Im Zweifel wählen Sie \"Abbrechen\"."_s);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(12);
    column->addLayout(headline());
    column->addWidget(reason);
    column->addLayout(details());
    column->addWidget(advice);
    column->addSpacing(6);
    column->addLayout(buttons());
    column->setSizeConstraint(QLayout::SetFixedSize);
}

QLayout *frm_zertifikat::headline()
{
    const QString text = m_certificate.changed
        ? u"Achtung: Der Server \"%1\" weist sich mit einem anderen Zertifikat aus als bisher. "
          "Vielleicht wurde es erneuert, vielleicht gibt sich ein anderer Rechner für Ihren Server "
          "aus. Es wurde noch nichts gesendet, auch nicht Ihr Passwort."_s
        : u"Die Verbindung wird verschlüsselt, aber es lässt sich nicht prüfen, ob am anderen Ende "
          "wirklich der Server \"%1\" ist. Es wurde noch nichts gesendet, auch nicht Ihr Passwort."_s;
    auto *icon = new QLabel;
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    const auto kind
        = m_certificate.changed ? QStyle::SP_MessageBoxCritical : QStyle::SP_MessageBoxWarning;
    icon->setPixmap(style()->standardIcon(kind, nullptr, this).pixmap(size));
    auto *label = plainLabel(text.arg(shortened(m_certificate.host)));
    label->setMinimumWidth(textWidth - size - 12);
    auto *row = new QHBoxLayout;
    row->setSpacing(12);
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addWidget(label, 1);
    return row;
}

QGridLayout *frm_zertifikat::details() const
{
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(6);
    grid->setColumnStretch(1, 1);
    const auto add = [grid](const QString &caption, const QString &text) {
        const int row = grid->rowCount();
        auto *value = plainLabel(text);
        value->setMaximumWidth(textWidth);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        grid->addWidget(new QLabel(caption), row, 0, Qt::AlignTop);
        grid->addWidget(value, row, 1);
        return value;
    };
    add(u"Ausgestellt für"_s, shortened(m_certificate.subject));
    add(u"Ausgestellt von"_s, shortened(m_certificate.issuer));
    add(u"Gültig"_s, u"von %1 bis %2"_s.arg(m_certificate.validFrom, m_certificate.validUntil));
    QLabel *print = add(u"Fingerabdruck\n(SHA-256)"_s, inTwoLines(m_certificate.fingerprint));
    print->setObjectName(u"lbl_fingerabdruck"_s);
    print->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    print->setWordWrap(false);
    return grid;
}

QLayout *frm_zertifikat::buttons()
{
    auto *once = button(u"cmd_einmal"_s, u"Nur &dieses Mal vertrauen"_s);
    auto *always = button(u"cmd_immer"_s, u"Diesem Server &immer vertrauen"_s);
    auto *cancel = button(u"cmd_abbrechen"_s, u"&Abbrechen"_s);
    cancel->setDefault(true); // Enter in passing must not trust anybody
    cancel->setFocus();
    connect(once, &QPushButton::clicked, this, [this] { trust(FtpTrust::Once); });
    connect(always, &QPushButton::clicked, this, [this] { trust(FtpTrust::Always); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *help = button(u"cmd_hilfe"_s, u"&Hilfe"_s);
    connect(help, &QPushButton::clicked, this, [this] { postHelpKey(this); });
    auto *row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(help);
    row->addStretch();
    row->addWidget(once);
    row->addWidget(always);
    row->addWidget(cancel);
    return row;
}

void frm_zertifikat::trust(FtpTrust answer)
{
    m_answer = answer;
    accept();
}

FtpTrust frm_zertifikat::ask(const FtpCertificate &certificate, QWidget *parent)
{
    frm_zertifikat dialog(certificate, parent);
    dialog.exec();
    return dialog.answer();
}
