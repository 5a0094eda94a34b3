#include "dialogs/networkinfo.h"

#include <QRegularExpression>
#include <QScopeGuard>
#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/utsname.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// Text of an IPv4 or IPv6 address; empty for other families.
QString addressText(const sockaddr *address)
{
    char text[INET6_ADDRSTRLEN] = {};
    const void *bytes = nullptr;
    if (address->sa_family == AF_INET) {
        bytes = &reinterpret_cast<const sockaddr_in *>(address)->sin_addr;
    } else if (address->sa_family == AF_INET6) {
        bytes = &reinterpret_cast<const sockaddr_in6 *>(address)->sin6_addr;
    }
    if (!bytes || !inet_ntop(address->sa_family, bytes, text, sizeof text)) {
        return {};
    }
    return QString::fromLatin1(text);
}

QStringList localAddresses()
{
    ifaddrs *first = nullptr;
    if (getifaddrs(&first) != 0) {
        return {};
    }
    const auto release = qScopeGuard([first] { freeifaddrs(first); });
    QStringList outer, loopback;
    for (const ifaddrs *entry = first; entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || (entry->ifa_flags & IFF_UP) == 0) {
            continue;
        }
        const QString text = addressText(entry->ifa_addr);
        if (!text.isEmpty()) {
            ((entry->ifa_flags & IFF_LOOPBACK) != 0 ? loopback : outer) += text;
        }
    }
    QStringList all = outer + loopback;
    all.removeDuplicates();
    return all;
}

} // namespace

NetworkInfo readNetworkInfo()
{
    NetworkInfo info;
    char name[256] = {};
    if (gethostname(name, sizeof name - 1) == 0) {
        info.hostName = QString::fromLocal8Bit(name);
    }
    info.addresses = localAddresses();
    utsname system = {};
    if (uname(&system) == 0) {
        const QString release = QString::fromLatin1(system.release);
        info.version = kernelVersion(release);
        info.description = u"POSIX-Sockets, Linux "_s + release;
    }
    info.status = u"Running"_s;
    return info;
}

QString kernelVersion(const QString &release)
{
    static const QRegularExpression numbers(u"\\A(\\d+)\\.(\\d+)"_s);
    const QRegularExpressionMatch match = numbers.match(release);
    return match.hasMatch() ? match.captured(0) : release;
}
