#include "ftp/ftpconvert.h"

#include "ftp/ftplocalnames.h"
#include "ftp/text.h"

#include <array>
#include <ctime>

QString ftpText(const std::string &raw) { return textOfName(ftp::toUtf8(raw)); }

FtpError ftpError(const ftp::Error &error)
{
    return { error.kind, error.replyCode, ftpText(error.text) };
}

FtpEvent::Status ftpStatus(const ftp::Reply &reply)
{
    if (reply.preliminary()) {
        return FtpEvent::InProgress;
    }
    return reply.refused() ? FtpEvent::Failed : FtpEvent::Completed;
}

namespace {

QString reasonText(ftp::CertificateProblem problem)
{
    switch (problem) {
    case ftp::CertificateProblem::None:
        break;
    case ftp::CertificateProblem::SelfSigned:
        return QStringLiteral(
            "Der Server hat sein Zertifikat selbst ausgestellt; niemand sonst bürgt dafür.");
    case ftp::CertificateProblem::UnknownIssuer:
        return QStringLiteral(
            "Der Aussteller des Zertifikats ist auf diesem Computer nicht bekannt.");
    case ftp::CertificateProblem::WrongHost:
        return QStringLiteral("Das Zertifikat wurde für einen anderen Servernamen ausgestellt.");
    case ftp::CertificateProblem::Expired:
        return QStringLiteral("Das Zertifikat ist abgelaufen.");
    case ftp::CertificateProblem::NotYetValid:
        return QStringLiteral("Das Zertifikat ist noch nicht gültig.");
    case ftp::CertificateProblem::Other:
        return QStringLiteral("Das Zertifikat konnte nicht geprüft werden.");
    }
    return {};
}

/// yyyy-MM-dd HH:mm in local time; a day without a clock time stays that day. Neighbours in a
/// listing often share their minute, and then the text: that counts in big folders.
class DateTexts {
public:
    QString text(const ftp::FolderEntry &entry)
    {
        if (!entry.time) {
            return {};
        }
        const auto seconds = static_cast<std::time_t>(*entry.time);
        if (m_text.isEmpty() || seconds != m_seconds || entry.dayOnly != m_dayOnly) {
            m_seconds = seconds;
            m_dayOnly = entry.dayOnly;
            m_text = made();
        }
        return m_text;
    }

private:
    [[nodiscard]] QString made() const
    {
        std::tm parts {};
        m_dayOnly ? gmtime_r(&m_seconds, &parts) : localtime_r(&m_seconds, &parts);
        std::array<char, 32> text {};
        const auto size = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &parts);
        return QString::fromLatin1(text.data(), static_cast<qsizetype>(size));
    }

    std::time_t m_seconds = 0;
    bool m_dayOnly = false;
    QString m_text;
};

/// The octal digits of the nine bits as a decimal number: 0755 reads 755.
int permissionNumber(int bits)
{
    return bits < 0 ? 0 : ((bits >> 6) & 7) * 100 + ((bits >> 3) & 7) * 10 + (bits & 7);
}

QString typeText(char type)
{
    return type == 'd' ? QStringLiteral("d")
        : type == 'l'  ? QStringLiteral("l")
                       : QStringLiteral("-");
}

} // namespace

FtpCertificate ftpCertificate(const ftp::CertificateQuestion &question)
{
    const ftp::Certificate &shown = question.certificate;
    return { QString::fromStdString(question.host),
             ftpText(shown.subject),
             ftpText(shown.issuer),
             QString::fromStdString(shown.validFrom),
             QString::fromStdString(shown.validUntil),
             QString::fromStdString(shown.fingerprint),
             reasonText(question.problem),
             question.changed };
}

RemoteListing ftpListing(const ftp::Folder &folder)
{
    RemoteListing listing;
    listing.format = folder.understood ? 1 : RemoteListing::Uninterpretable;
    listing.rawText = ftpText(folder.rawText);
    listing.entries.reserve(static_cast<qsizetype>(folder.entries.size()));
    DateTexts dates;
    for (const ftp::FolderEntry &entry : folder.entries) {
        listing.entries.append({ textOfName(entry.name), typeText(entry.type), entry.size,
                                 dates.text(entry), permissionNumber(entry.permissions),
                                 entry.target.empty() ? QString() : ftpText(entry.target) });
    }
    return listing;
}

ftp::Type engineType(int transferType)
{
    switch (transferType) {
    case TypeAscii:
        return ftp::Type::Ascii;
    case TypeEbcdic:
        return ftp::Type::Ebcdic;
    default:
        return ftp::Type::Binary;
    }
}

ftp::Proxy engineProxy(const FtpProxy &proxy)
{
    const bool known = proxy.type >= 1 && proxy.type <= 7;
    return { known ? static_cast<ftp::ProxyKind>(proxy.type) : ftp::ProxyKind::None,
             proxy.host.toStdString(), static_cast<std::uint16_t>(proxy.port),
             proxy.user.toStdString(), proxy.password.toStdString() };
}

QString folderOfPattern(const QString &pattern)
{
    QString folder = pattern;
    if (folder.size() >= 2 && folder.startsWith(u'"') && folder.endsWith(u'"')) {
        folder = folder.mid(1, folder.size() - 2);
    }
    if (folder.endsWith(QStringLiteral("/*")) || folder.endsWith(QStringLiteral("\\*"))) {
        folder.chop(2);
    }
    return folder;
}
