#pragma once

#include <QString>

// What boxes say when a connection or a login fails.

inline const QString loginText
    = QStringLiteral("Fehler beim Login. Überprüfen Sie Passwort und Username "
                     "und versuchen Sie sich erneut einzuloggen.");
inline const QString hostText
    = QStringLiteral("Unbekannter Servername bzw. keine Rückmeldung vom Server. Überprüfen Sie den "
                     "angegebenen Server bzw. "
                     "versuchen Sie den Vorgang zu einem späteren Zeitpunkt nochmals zu starten.");
inline const QString otherText
    = QStringLiteral("Allgemeiner Fehler! Versuchen Sie den Vorgang zu einem späteren "
                     "Zeitpunkt nochmals zu starten.");
