#include "connections/advice.h"

using namespace Qt::StringLiterals;

QString adviceFor(ftp::ErrorKind kind)
{
    using ftp::ErrorKind;
    switch (kind) {
    case ErrorKind::LoginRefused:
        return u"Bitte geben Sie Username und Passwort noch einmal ein und achten Sie auf Groß- "
               u"und "
               "Kleinschreibung."_s;
    case ErrorKind::UnknownHost:
        return u"Bitte prüfen Sie die Schreibweise des Servernamens und ob Ihr Computer mit dem "
               "Internet verbunden ist."_s;
    case ErrorKind::ConnectRefused:
        return u"Bitte prüfen Sie Servername und Port (üblich ist 21); an dieser Adresse nimmt "
               u"kein "
               "FTP-Server Verbindungen an."_s;
    case ErrorKind::Unreachable:
        return u"Der Server ist von hier aus nicht erreichbar; bitte prüfen Sie Ihre "
               "Netzwerkverbindung und die Einstellungen der Firewall."_s;
    case ErrorKind::Timeout:
        return u"Der Server hat nicht rechtzeitig geantwortet; bitte versuchen Sie es später noch "
               "einmal oder erhöhen Sie den Timeout in der Verbindung."_s;
    case ErrorKind::TlsRequired:
        return u"Der Server verlangt eine verschlüsselte Verbindung; bitte stellen Sie die "
               "Verschlüsselung auf \"Automatisch\" oder \"Immer\"."_s;
    case ErrorKind::TlsFailed:
        return u"Die verschlüsselte Verbindung kam nicht zustande; bitte fragen Sie den Betreiber "
               u"des "
               "Servers oder prüfen Sie die Einstellung der Verschlüsselung."_s;
    case ErrorKind::CertificateRejected:
        return u"Dem Zertifikat des Servers wurde nicht vertraut; bitte vergleichen Sie den "
               "Fingerabdruck mit dem, den der Betreiber nennt."_s;
    case ErrorKind::TooManyConnections:
        return u"Der Server nimmt zurzeit keine weitere Verbindung an; bitte schließen Sie andere "
               "FTP-Programme oder warten Sie einige Minuten."_s;
    case ErrorKind::DataConnection:
        return u"Die Datenverbindung wird blockiert; bitte schalten Sie in der Verbindung "
               "\"Passiver Transfer\" um oder prüfen Sie die Firewall."_s;
    case ErrorKind::ConnectionClosed:
        return u"Der Server hat die Verbindung beendet; bitte melden Sie sich erneut an."_s;
    case ErrorKind::Protocol:
        return u"Die Gegenstelle antwortet nicht wie ein FTP-Server; bitte prüfen Sie Servername "
               "und Port."_s;
    case ErrorKind::Proxy:
        return u"Der Proxy hat die Verbindung abgelehnt; bitte prüfen Sie die Angaben auf der "
               "Karteikarte \"Proxy / Firewall\"."_s;
    case ErrorKind::Refused:
        return u"Der Server hat die Anforderung abgelehnt; seine Antwort steht in der Zeile "
               "darüber."_s;
    case ErrorKind::BadArgument:
        return u"Bitte prüfen Sie Server, Port, Timeout, Username und Passwort auf unerlaubte "
               "Werte."_s;
    case ErrorKind::LocalFile:
        return u"Bitte prüfen Sie, ob Sie auf dem eigenen Computer in den Ordner schreiben dürfen."_s;
    case ErrorKind::LocalDiskFull:
        return u"Auf dem eigenen Datenträger ist kein Platz mehr frei; bitte löschen Sie nicht "
               "benötigte Dateien."_s;
    case ErrorKind::Truncated:
        return u"Die Übertragung war nicht vollständig; bitte übertragen Sie die Datei noch einmal."_s;
    case ErrorKind::UnsafeName:
        return u"Der Server nennt einen Namen, der auf diesem Computer Schaden anrichten könnte; "
               u"die "
               "Datei wurde ausgelassen."_s;
    case ErrorKind::Aborted:
    case ErrorKind::Busy:
    case ErrorKind::NotConnected:
        return {};
    }
    return {};
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
    if (event.reason == ftp::ErrorKind::LocalFile
        && (event.operation == OpPutFile || event.operation == OpPutMultiple)) {
        return u"Bitte prüfen Sie, ob Sie die Datei auf dem eigenen Computer lesen dürfen."_s;
    }
    // 425: the server could not open the data connection.
    const bool blocked = event.text.startsWith("425"_L1);
    const auto reason = blocked ? std::optional(ftp::ErrorKind::DataConnection) : event.reason;
    return reason ? adviceFor(*reason) : QString();
}
