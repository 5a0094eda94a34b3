#include "dialogs/trustedservers.h"

#include "ftp/truststore.h"

using namespace Qt::StringLiterals;

namespace {

QString display(const ftp::TrustedServer &server)
{
    constexpr int usualPort = 21;
    QString text = QString::fromStdString(server.host);
    if (server.port != usualPort) {
        text += u':' + QString::number(server.port);
    }
    return text
        + (server.fingerprint.empty() ? u" - nur noch verschlüsselt"_s
                                      : u" - Zertifikat bestätigt"_s);
}

} // namespace

TrustedServers trustedServersIn(const QString &file)
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
    servers.remove = [path](int index) {
        ftp::TrustStore store(path);
        if (index >= 0 && static_cast<std::size_t>(index) < store.all().size()) {
            const ftp::TrustedServer server = store.all().at(static_cast<std::size_t>(index));
            ignoreError(store.remove(server.host, server.port),
                        "the server stays in the list, which is shown anew");
        }
    };
    return servers;
}
