#include "app/commandline.h"

#include "common/mo_standard.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype fieldCount = 11;

} // namespace

QString commandLineText(const QStringList &arguments) { return trimBlanks(arguments.join(u' ')); }

CommandLine commandLineKind(const QString &text)
{
    if (trimBlanks(text).isEmpty()) {
        return CommandLine::Empty;
    }
    if (text == "--help"_L1) {
        return CommandLine::Help;
    }
    if (text == "--version"_L1) {
        return CommandLine::Version;
    }
    const bool address = text.startsWith("ftp://"_L1, Qt::CaseInsensitive)
        || text.startsWith("ftpes://"_L1, Qt::CaseInsensitive);
    // A tab means fields, even when somebody typed "ftp://" in front of the server's name.
    return address && !text.contains(u'\t') ? CommandLine::Address : CommandLine::Fields;
}

StartDecision startDecision(const QString &commandLine)
{
    return commandLineKind(commandLine) == CommandLine::Fields ? StartDecision::LoadCommands
                                                               : StartDecision::ShowLogin;
}

tl::expected<ConnectionProfile, QString> connectionFromFields(const QString &commandLine,
                                                              const ConnectionProfile &current)
{
    const QStringList fields = commandLine.split(u'\t');
    if (fields.size() < fieldCount) {
        return tl::unexpected(
            u"Es werden %1 durch Tabulatoren getrennte Felder erwartet, übergeben "
            "wurden %2."_s.arg(fieldCount)
                .arg(fields.size()));
    }
    ConnectionProfile connection = current;
    connection.RemoteHost = fields.at(0);
    connection.UserName = fields.at(1);
    connection.Password = fields.at(2);
    connection.LocalDir = fields.at(3);
    connection.RemoteDir = fields.at(4);
    connection.Timeout = lenientInt(fields.at(5));
    connection.RemotePort = lenientInt(fields.at(6));
    const double type = lenientNumber(fields.at(7));
    connection.TransferType = type == 0.0 ? 0 : type == 1.0 ? 1 : 2;
    connection.Passive = lenientNumber(fields.at(8)) == 1.0;
    connection.Account = fields.at(9);
    connection.Bemerkungen = fields.at(10);
    connection.encryption = -1; // there is no profile that could say otherwise
    return connection;
}

QString helpText()
{
    return u"Aufruf: tarvelo-ftp [Verbindung | ftp://Benutzer@Server/Ordner]\n"
           "\n"
           "Ohne Angabe öffnet sich das Fenster \"Verbindung\", mit einer Adresse ist es schon\n"
           "ausgefüllt. ftpes:// statt ftp:// verlangt Verschlüsselung.\n"
           "\n"
           "Verbindung: elf Felder, durch Tabulatoren getrennt:\n"
           "  Server, Username, Passwort, lokaler Ordner, Ordner auf dem Server,\n"
           "  Timeout in Sekunden, Port, Transfer-Typ (0 ASCII, 1 binär, 2 EBCDIC),\n"
           "  passiv (1 ja, 0 nein), Account, Bemerkungen\n"
           "\n"
           "  --help     zeigt diesen Text\n"
           "  --version  zeigt die Version\n"_s;
}

QString versionText() { return u"Tarvelo FTP 2.20\n"_s; }
