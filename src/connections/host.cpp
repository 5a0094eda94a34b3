#include "connections/host.h"

#include "common/mo_standard.h"

using namespace Qt::StringLiterals;

QString cleanHost(const QString &typed)
{
    QString host = trimBlanks(typed);
    for (const auto scheme : { "ftp://"_L1, "ftpes://"_L1 }) {
        if (host.startsWith(scheme, Qt::CaseInsensitive)) {
            host = host.mid(scheme.size());
        }
    }
    while (host.endsWith(u'/')) {
        host.chop(1);
    }
    return trimBlanks(host);
}

bool isPort(int port) { return port >= 1 && port <= 65535; }
