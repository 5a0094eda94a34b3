#include "connections/frm_zertifikat.h"

#include "support/accesskeys.h"
#include "support/helpkeys.h"
#include "support/modalbox.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

FtpCertificate sample()
{
    FtpCertificate certificate;
    certificate.host = u"files01.example.net"_s;
    certificate.subject = u"CN=files01 <b>fett</b>"_s;
    certificate.issuer = u"CN=Eigene CA"_s;
    certificate.validFrom = u"2025-01-02"_s;
    certificate.validUntil = u"2027-03-04"_s;
    QStringList pairs;
    for (int i = 0; i < 32; ++i) {
        pairs << u"%1"_s.arg(i, 2, 16, QChar(u'0')).toUpper();
    }
    certificate.fingerprint = pairs.join(u':');
    certificate.reason = u"Das Zertifikat hat der Server selbst ausgestellt."_s;
    return certificate;
}

QString textOf(const QDialog &dialog)
{
    QStringList texts;
    for (const auto *label : dialog.findChildren<QLabel *>()) {
        texts << label->text();
    }
    return texts.join(u'\n');
}

} // namespace

TEST(CertificateDialog, NoTwoPartsShareAnAccessKey)
{
    EXPECT_EQ(sharedAccessKeys(frm_zertifikat(sample())), QStringList());
}

TEST(CertificateDialog, ShowsWhoWhyAndTheFingerprint)
{
    const frm_zertifikat dialog(sample());
    EXPECT_EQ(dialog.objectName(), u"frm_zertifikat"_s);
    EXPECT_EQ(dialog.findChild<QLabel *>(u"lbl_grund"_s)->text(), sample().reason);
    QString print = dialog.findChild<QLabel *>(u"lbl_fingerabdruck"_s)->text();
    EXPECT_EQ(print.count(u'\n'), 1);
    EXPECT_EQ(print.remove(u'\n'), sample().fingerprint);
    const QString all = textOf(dialog);
    for (const QString &part : { sample().host, sample().subject, sample().issuer,
                                 sample().validFrom, sample().validUntil }) {
        EXPECT_TRUE(all.contains(part)) << part.toStdString();
    }
    EXPECT_FALSE(all.contains(u"Achtung"_s));
}

TEST(CertificateDialog, AChangedCertificateIsSaidToBeOne)
{
    FtpCertificate changed = sample();
    changed.changed = true;
    EXPECT_TRUE(textOf(frm_zertifikat(changed)).contains(u"anderen Zertifikat aus als bisher"_s));
}

TEST(CertificateDialog, NothingFromTheServerIsTakenForMarkup)
{
    const frm_zertifikat dialog(sample());
    for (const auto *label : dialog.findChildren<QLabel *>()) {
        EXPECT_TRUE(label->textFormat() == Qt::PlainText || !label->text().contains(u'<'));
    }
}

TEST(CertificateDialog, NamesOfAnyLengthFitIntoTheWindow)
{
    FtpCertificate longNames = sample();
    longNames.subject = QString(20000, u'W');
    longNames.issuer = QString(20000, u'W');
    frm_zertifikat dialog(longNames);
    dialog.show();
    EXPECT_LT(dialog.width(), 900);
    EXPECT_LT(dialog.height(), 700);
}

TEST(CertificateDialog, TheButtonsAnswer)
{
    const QList<std::pair<QString, FtpTrust>> table { { u"cmd_einmal"_s, FtpTrust::Once },
                                                      { u"cmd_immer"_s, FtpTrust::Always },
                                                      { u"cmd_abbrechen"_s, FtpTrust::Reject } };
    for (const auto &[name, expected] : table) {
        const WhenModalOpens<frm_zertifikat> box([&name = name](frm_zertifikat &dialog) {
            dialog.findChild<QPushButton *>(name)->click();
        });
        EXPECT_EQ(frm_zertifikat::ask(sample(), nullptr), expected);
    }
}

TEST(CertificateDialog, EnterEscapeAndTheFrameTrustNobody)
{
    const QList<std::function<void(frm_zertifikat &)>> ways {
        [](frm_zertifikat &dialog) { QTest::keyClick(&dialog, Qt::Key_Return); },
        [](frm_zertifikat &dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); },
        [](frm_zertifikat &dialog) { dialog.close(); },
    };
    for (const auto &leave : ways) {
        const WhenModalOpens<frm_zertifikat> box(leave);
        EXPECT_EQ(frm_zertifikat::ask(sample(), nullptr), FtpTrust::Reject);
    }
}

TEST(CertificateDialog, TheHelpButtonSendsF1AndTrustsNobody)
{
    frm_zertifikat dialog(sample());
    dialog.show();
    const HelpKeys keys(dialog);
    auto *help = dialog.findChild<QPushButton *>(u"cmd_hilfe"_s);
    ASSERT_NE(help, nullptr);
    EXPECT_EQ(help->text(), u"&Hilfe"_s);
    help->click();
    EXPECT_TRUE(keys.one());
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.answer(), FtpTrust::Reject);
}
