#include "dialogs/supportmail.h"

#include <QUrl>

using namespace Qt::StringLiterals;

QString supportHint()
{
    return u"Es ist oft hilfreich, wenn Sie uns den Inhalt des LogFensters zusammen mit Ihrer "
           u"Anfrage "
           "senden. Kopieren Sie dazu den Inhalt des LogFensters in die Zwischenablage und fügen "
           "Sie "
           "den Text dann in die e-Mail ein."_s;
}

QString supportMailUrl(const Addresses &addresses, const Globals &globals)
{
    // Intended: the version is the bare number without a point.
    return u"mailto:"_s + addresses.supportMail + u"?subject="_s + u"Tarvelo FTP V"_s
        + QString::number(globals.ProgramVersion) + u"&body="_s
        + u"Hallo,%0A%0Aich habe folgende Probleme/Fragen:"_s;
}

QString officeMailUrl(const Addresses &addresses, const Globals &globals)
{
    const QString user
        = globals.connection.UserName.isEmpty() ? u"Benutzername"_s : globals.connection.UserName;
    return u"mailto:"_s + addresses.officeMail + u"?subject="_s + u"Tarvelo FTP"_s + u"&body="_s
        + u"Hallo,%0A%0Aich ("_s + QString::fromLatin1(QUrl::toPercentEncoding(user))
        + u") habe folgende Probleme/Fragen:"_s;
}
