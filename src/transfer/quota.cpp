#include "transfer/quota.h"

QString quotaMessage()
{
    // Intended: the doubled "wir".
    return QStringLiteral("Der Platzbedarf auf Ihrem Server ist verbraucht.\r\n"
                          "Wir empfehlen wir Ihnen daher, ein Upgrade auf ein höherwertiges "
                          "KALMAR-Paket durchzuführen.\r\n"
                          "Bitte löschen Sie nicht benötigte Dateien, bevor Sie das Uploaden "
                          "fortsetzen.");
}

void explainSpaceReply(const FtpEvent &event, Prompts &prompts, Shell &shell)
{
    if (event.text.startsWith(QStringLiteral("451"))) {
        shell.AppendLog(quotaMessage() + QStringLiteral("\r\n"));
        prompts.message(quotaMessage());
    } else if (event.text.startsWith(QStringLiteral("452"))) {
        shell.AppendLog(QStringLiteral("Auf dem Server ist kein Platz mehr frei.\r\n"));
    } else if (event.text.startsWith(QStringLiteral("552"))) {
        shell.AppendLog(QStringLiteral("Ihr Speicherplatz auf dem Server reicht nicht aus.\r\n"));
    }
}
