#include "transfer/quota.h"

#include <QScopeGuard>

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

void SpaceReplies::explain(const FtpEvent &event)
{
    if (event.text.startsWith(u"451"_s)) {
        m_shell.AppendLog(quotaMessage() + u"\r\n"_s);
        showBox();
    } else if (event.text.startsWith(u"452"_s)) {
        m_shell.AppendLog(u"Auf dem Server ist kein Platz mehr frei.\r\n"_s);
    } else if (event.text.startsWith(u"552"_s)) {
        m_shell.AppendLog(u"Ihr Speicherplatz auf dem Server reicht nicht aus.\r\n"_s);
    }
}

void SpaceReplies::showBox()
{
    if (m_boxStandsOpen) {
        return; // Intended: one box at a time; the log has every reply.
    }
    m_boxStandsOpen = true;
    const auto closed = qScopeGuard([this] { m_boxStandsOpen = false; });
    m_prompts.message(quotaMessage());
}
