#include "connections/loginmessage.h"

#include <limits>

using namespace Qt::StringLiterals;

LoginMessage loginMessageFor(const QString &description, int number, bool errorMsg)
{
    if (description.isEmpty() || number < 1) {
        return {};
    }
    // Intended: the two known texts win over errorMsg, and 530 counts anywhere in the text.
    if (description.contains("530"_L1)) {
        return { true,
                 u"Fehler beim Login. Überprüfen Sie Passwort und Username und versuchen Sie sich "
                 "erneut einzuloggen."_s };
    }
    if (description.contains("No such host is known"_L1)) {
        return { true,
                 u"Unbekannter Servername bzw. keine Rückmeldung vom Server. Überprüfen Sie den "
                 "angegebenen Server bzw. versuchen Sie den Vorgang zu einem späteren Zeitpunkt "
                 "nochmals zu starten."_s };
    }
    if (errorMsg) {
        return { true, {} };
    }
    return { true,
             u"Allgemeiner Fehler! Versuchen Sie den Vorgang zu einem späteren Zeitpunkt nochmals "
             "zu starten."_s };
}

QString windowCaption(const QString &server)
{
    const QString name = u"Tarvelo FTP"_s;
    return server.isEmpty() ? name : name + u" (Connected to: "_s + server + u')';
}

int timeoutMilliseconds(int seconds)
{
    const qint64 milliseconds = qint64 { seconds } * 1000;
    const bool fits = milliseconds >= std::numeric_limits<int>::min()
        && milliseconds <= std::numeric_limits<int>::max();
    return fits ? static_cast<int>(milliseconds) : -1;
}
