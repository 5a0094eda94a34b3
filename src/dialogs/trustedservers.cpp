#include "dialogs/trustedservers.h"

#include "ftp/truststore.h"

using namespace Qt::StringLiterals;

namespace {

QString nameOf(const ftp::TrustedServer &server)
{
    constexpr int usualPort = 21;
    const QString host = QString::fromStdString(server.host);
    return server.port == usualPort ? host : host + u':' + QString::number(server.port);
}

QString display(const ftp::TrustedServer &server)
{
    return nameOf(server)
        + (server.fingerprint.empty() ? u" - nur noch verschlüsselt"_s
                                      : u" - Zertifikat bestätigt"_s);
}

} // namespace

TrustedServers trustedServersIn(const QString &file,
                                const std::function<void(const QString &)> &tell)
{
    // Opened anew for each call: a login may have added a server meanwhile.
    const std::string path = file.toStdString();
    TrustedServers servers;
    servers.list = [path] {
        QStringList texts;
        const ftp::TrustStore store(path);
        for (const ftp::TrustedServer &server : store.all()) {
            texts << display(server);
        }
        return texts;
    };
    servers.remove = [path, tell](const QString &text) {
        ftp::TrustStore store(path);
        const std::vector<ftp::TrustedServer> all = store.all();
        for (const ftp::TrustedServer &server : all) {
            if (!text.startsWith(nameOf(server) + u" - "_s)) {
                continue;
            }
            if (const ftp::Status removed = store.remove(server.host, server.port); !removed) {
                tell(nameOf(server)
                     + u": Der Server bleibt vertraut, denn die Datei ließ sich nicht "
                       "ändern. "_s
                     + QString::fromStdString(removed.error().text));
            }
        }
    };
    return servers;
}
