#pragma once

#include "ftp/ftpcontrol.h"

#include <QDialog>

class QGridLayout;

/// Asks whether a server is to be trusted whose certificate could not be verified. Closing it in
/// any way but by its two trusting buttons rejects.
class frm_zertifikat : public QDialog {
    Q_OBJECT

public:
    explicit frm_zertifikat(const FtpCertificate &certificate, QWidget *parent = nullptr);

    [[nodiscard]] FtpTrust answer() const { return m_answer; }
    /// Shows the dialog modally. @return the user's answer
    [[nodiscard]] static FtpTrust ask(const FtpCertificate &certificate, QWidget *parent);

private:
    [[nodiscard]] QLayout *headline();
    [[nodiscard]] QGridLayout *details() const;
    [[nodiscard]] QLayout *buttons();
    void trust(FtpTrust answer);

    FtpCertificate m_certificate;
    FtpTrust m_answer = FtpTrust::Reject;
};
