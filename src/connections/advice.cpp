#include "connections/advice.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

using ftp::ErrorKind;

struct Advice {
    ErrorKind kind;
    const char16_t *sentence;
};

/// In the order of the kinds; those behind the last one are no failures to be advised about.
constexpr Advice advices[] = {
    { ErrorKind::Refused,
      u"Der Server hat die Anforderung abgelehnt; seine Antwort steht in der Zeile "
      u"darüber." },
    { ErrorKind::LoginRefused,
      u"Bitte geben Sie Username und Passwort noch einmal ein und achten Sie auf Groß- "
      u"und Kleinschreibung." },
    { ErrorKind::TooManyConnections,
      u"Der Server nimmt zurzeit keine weitere Verbindung an; bitte schließen Sie "
      u"andere FTP-Programme oder warten Sie einige Minuten." },
    { ErrorKind::TlsRequired,
      u"Der Server verlangt eine verschlüsselte Verbindung; bitte stellen Sie die "
      u"Verschlüsselung auf \"Automatisch\" oder \"Immer\"." },
    { ErrorKind::TlsFailed,
      u"Die verschlüsselte Verbindung kam nicht zustande; bitte fragen Sie den "
      u"Betreiber des Servers oder prüfen Sie die Einstellung der Verschlüsselung." },
    { ErrorKind::CertificateRejected,
      u"Dem Zertifikat des Servers wurde nicht vertraut; bitte vergleichen Sie den "
      u"Fingerabdruck mit dem, den der Betreiber nennt." },
    { ErrorKind::UnknownHost,
      u"Bitte prüfen Sie die Schreibweise des Servernamens und ob Ihr Computer mit dem "
      u"Internet verbunden ist." },
    { ErrorKind::ConnectRefused,
      u"Bitte prüfen Sie Servername und Port (üblich ist 21); an dieser Adresse nimmt "
      u"kein FTP-Server Verbindungen an." },
    { ErrorKind::Unreachable,
      u"Der Server ist von hier aus nicht erreichbar; bitte prüfen Sie Ihre "
      u"Netzwerkverbindung und die Einstellungen der Firewall." },
    { ErrorKind::ConnectionClosed,
      u"Der Server hat die Verbindung beendet; bitte melden Sie sich erneut an." },
    { ErrorKind::DataConnection,
      u"Die Datenverbindung wird blockiert; bitte schalten Sie in der Verbindung "
      u"\"Passiver Transfer\" um oder prüfen Sie die Firewall." },
    { ErrorKind::Timeout,
      u"Der Server hat nicht rechtzeitig geantwortet; bitte versuchen Sie es später "
      u"noch einmal oder erhöhen Sie den Timeout in der Verbindung." },
    { ErrorKind::Protocol,
      u"Die Gegenstelle antwortet nicht wie ein FTP-Server; bitte prüfen Sie Servername "
      u"und Port." },
    { ErrorKind::Proxy,
      u"Der Proxy hat die Verbindung abgelehnt; bitte prüfen Sie die Angaben auf der "
      u"Karteikarte \"Proxy / Firewall\"." },
    { ErrorKind::BadArgument,
      u"Bitte prüfen Sie Server, Port, Timeout, Username und Passwort auf unerlaubte "
      u"Werte." },
    { ErrorKind::UnsafeName,
      u"Der Server nennt einen Namen, der auf diesem Computer Schaden anrichten könnte; "
      u"die Datei wurde ausgelassen." },
    { ErrorKind::LocalFile,
      u"Bitte prüfen Sie, ob Sie auf dem eigenen Computer in den Ordner schreiben "
      u"dürfen." },
    { ErrorKind::LocalDiskFull,
      u"Auf dem eigenen Datenträger ist kein Platz mehr frei; bitte löschen Sie nicht "
      u"benötigte Dateien." },
    { ErrorKind::Truncated,
      u"Die Übertragung war nicht vollständig; bitte übertragen Sie die Datei noch "
      u"einmal." },
    { ErrorKind::TooDeep,
      u"Ordner sind zu tief ineinander verschachtelt; was in ihnen steht, wurde "
      u"ausgelassen." },
    { ErrorKind::RemoteLonger,
      u"Bitte übertragen Sie die Datei von vorn, wenn die auf dem Server ersetzt werden "
      u"soll." },
};
static_assert(std::size(advices) == static_cast<std::size_t>(ErrorKind::Aborted));

} // namespace

QString adviceFor(ftp::ErrorKind kind)
{
    const auto *advice = std::find_if(std::begin(advices), std::end(advices),
                                      [kind](const Advice &each) { return each.kind == kind; });
    return advice == std::end(advices) ? QString() : QString::fromUtf16(advice->sentence);
}

QString adviceFor(const FtpEvent &event)
{
    if (event.status != FtpEvent::Failed) {
        return {};
    }
    // After the login the value that cannot be sent is a name, not one of the connection's.
    if (event.reason == ftp::ErrorKind::BadArgument && event.operation > OpLogout) {
        return u"Der Server kann diesen Namen nicht annehmen; bitte prüfen Sie ihn auf unerlaubte "
               "Zeichen und auf seine Länge."_s;
    }
    const auto isOneOf = [&event](int one, int other) {
        return event.operation == one || event.operation == other;
    };
    if (event.reason == ftp::ErrorKind::UnsafeName && !isOneOf(OpGetFile, OpGetMultiple)) {
        return u"Der Server nennt einen unzulässigen Namen; er wurde ausgelassen."_s;
    }
    if (event.reason == ftp::ErrorKind::LocalFile && isOneOf(OpPutFile, OpPutMultiple)) {
        return u"Bitte prüfen Sie, ob Sie die Datei auf dem eigenen Computer lesen dürfen, ob es "
               "sie noch gibt und ob ein anderes Programm sie gerade ändert."_s;
    }
    // 425: the server could not open the data connection.
    const bool blocked = event.text.startsWith("425"_L1);
    const auto reason = blocked ? std::optional(ftp::ErrorKind::DataConnection) : event.reason;
    return reason ? adviceFor(*reason) : QString();
}
