#include "common/addresses.h"

#include "common/mo_standard.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

bool isPage(const QString &text)
{
    const QUrl url(text, QUrl::StrictMode);
    return url.isValid() && (url.scheme() == "https"_L1 || url.scheme() == "http"_L1)
        && !url.host().isEmpty();
}

bool isMailAddress(const QString &text)
{
    // Nothing that could add headers or further recipients to a mailto address.
    static const QRegularExpression plain(u"\\A[A-Za-z0-9._+-]+@[A-Za-z0-9.-]+\\z"_s);
    return plain.match(text).hasMatch();
}

struct Entry {
    const char16_t *key;
    QString Addresses::*value;
    bool (*accepts)(const QString &);
};

constexpr Entry entries[] = {
    { u"HomePage", &Addresses::homePage, isPage },
    { u"SecondHomePage", &Addresses::secondHomePage, isPage },
    { u"Faq", &Addresses::faq, isPage },
    { u"Update", &Addresses::update, isPage },
    { u"SupportMail", &Addresses::supportMail, isMailAddress },
    { u"OfficeMail", &Addresses::officeMail, isMailAddress },
};

} // namespace

AddressesRead readAddresses(const QStringList &files)
{
    AddressesRead result;
    for (const QString &file : files) {
        if (!QFileInfo::exists(file)) {
            continue;
        }
        const QSettings settings(file, QSettings::IniFormat);
        for (const Entry &entry : entries) {
            const QString key = u"Addresses/"_s + QString::fromUtf16(entry.key);
            // A comma makes the value a list; it belongs to the address.
            const QString value = settings.value(key).toStringList().join(u',').trimmed();
            if (value.isEmpty()) {
                continue;
            }
            if (entry.accepts(value)) {
                result.addresses.*entry.value = value;
            } else {
                result.problems += u"Die Adresse \"%1\" in der Datei %2 ist ungültig: %3"_s.arg(
                    QString::fromUtf16(entry.key), file, value);
            }
        }
    }
    return result;
}

QStringList addressFiles(const QString &programFolder)
{
    return { u"/etc/tarvelo-ftp/addresses.ini"_s, joinPath(programFolder, u"addresses.ini"_s) };
}
