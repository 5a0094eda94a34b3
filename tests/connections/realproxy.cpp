#include "connections/realproxy.h"

#include "servers/account.h"
#include "servers/launch.h"
#include "servers/network.h"

#include <QElapsedTimer>
#include <QFile>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

const QString danteConfiguration = QStringLiteral("logoutput: stderr\n"
                                                  "internal: 127.0.0.1 port = %1\n"
                                                  "external: 127.0.0.1\n"
                                                  "clientmethod: none\n"
                                                  "socksmethod: none\n"
                                                  "%2"
                                                  "client pass { from: 0.0.0.0/0 to: 0.0.0.0/0 }\n"
                                                  "socks pass { from: 0.0.0.0/0 to: 0.0.0.0/0 }\n");

const QString ftpProxyConfiguration = QStringLiteral("[-Global-]\n"
                                                     "ServerType standalone\n"
                                                     "Listen 127.0.0.1\n"
                                                     "Port %1\n"
                                                     "User nobody\n"
                                                     "Group nogroup\n"
                                                     "AllowMagicUser yes\n"
                                                     "UseMagicChar @\n"
                                                     "DestinationAddress 127.0.0.1\n"
                                                     "DestinationTransferMode passive\n"
                                                     "UserNameRule ^[[:alnum:]@:%20/._-]+$\n");

} // namespace

RealProxy::RealProxy(Kind kind)
    : m_port(servers::freePort("127.0.0.1"))
{
    m_process.start(command(kind), {}, m_folder.filePath(u"log"_s).toStdString());
    constexpr int patience = 20000; // milliseconds
    QElapsedTimer clock;
    clock.start();
    while (!servers::isListening(m_port)) {
        if (m_process.waitForEnd(20) || clock.elapsed() > patience) {
            QFile log(m_folder.filePath(u"log"_s));
            const QByteArray text = log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
            throw std::runtime_error("the proxy did not come up:\n" + text.toStdString());
        }
    }
}

bool RealProxy::canRun(Kind kind, std::string *why)
{
    if (kind == Kind::FtpProxy && !servers::isRoot()) {
        *why = "NOT RUN: ftp-proxy needs root";
        return false;
    }
    return true;
}

std::vector<std::string> RealProxy::command(Kind kind)
{
    const std::string port = std::to_string(m_port);
    std::vector<std::string> words;
    switch (kind) {
    case Kind::Microsocks:
        words = { servers::unpackedProgram("proxies/usr/bin/microsocks"), "-i", "127.0.0.1", "-p",
                  port };
        break;
    case Kind::MicrosocksLogin:
        words = command(Kind::Microsocks);
        words.insert(words.end(), { "-u", "proxyuser", "-P", "proxypass" });
        break;
    case Kind::Dante: {
        const QString users = servers::isRoot()
            ? u"user.privileged: root\nuser.unprivileged: nobody\n"_s
            : QString();
        words = { servers::unpackedProgram("proxies/usr/sbin/danted"),
                  "-N",
                  "1",
                  "-f",
                  write(u"danted.conf"_s, danteConfiguration.arg(m_port).arg(users)),
                  "-p",
                  m_folder.filePath(u"danted.pid"_s).toStdString() };
        break;
    }
    case Kind::FtpProxy:
        words = { servers::unpackedProgram("proxies/usr/sbin/ftp-proxy"), "-d", "-n", "-f",
                  write(u"ftp-proxy.conf"_s, ftpProxyConfiguration.arg(m_port)) };
        break;
    }
    return words;
}

std::string RealProxy::write(const QString &name, const QString &text)
{
    QFile file(m_folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0) {
        throw std::runtime_error("cannot write " + file.fileName().toStdString());
    }
    return file.fileName().toStdString();
}
