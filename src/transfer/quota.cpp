#include "transfer/quota.h"

using namespace Qt::StringLiterals;

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
    if (event.text.startsWith(u"451"_s)) {
        shell.AppendLog(quotaMessage() + u"\r\n"_s);
        prompts.message(quotaMessage());
    } else if (event.text.startsWith(u"452"_s)) {
        shell.AppendLog(u"Auf dem Server ist kein Platz mehr frei.\r\n"_s);
    } else if (event.text.startsWith(u"552"_s)) {
        shell.AppendLog(u"Ihr Speicherplatz auf dem Server reicht nicht aus.\r\n"_s);
    }
}
