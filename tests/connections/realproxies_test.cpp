#include "connections/realproxy.h"
#include "ftp/ftpcontrol.h"
#include "servers/fixture.h"
#include "servers/servers.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct Way {
    const char *name;
    RealProxy::Kind proxy;
    int type; ///< of the program's proxy settings
    bool login; ///< with the proxy's user and password
};

const Way microsocksLogin { "microsocksLogin", RealProxy::Kind::MicrosocksLogin, 2, true };

void PrintTo(const Way &way, std::ostream *out) { *out << way.name; }

/// Logging in, listing and transfers through proxy programs that others have written.
class RealProxies : public ::testing::TestWithParam<Way> {
protected:
    void SetUp() override
    {
        std::string why;
        if (!RealProxy::canRun(GetParam().proxy, &why)) {
            // The one reason allowed: this account cannot run that proxy, which is reported.
            GTEST_SKIP() << why;
        }
        proxy = std::make_unique<RealProxy>(GetParam().proxy);
        ftp.setTimeout(20000);
        ftp.setEncryption(FtpEncryption::Never);
    }
    FtpStatus connect(const QString &proxyPassword = u"proxypass"_s)
    {
        ftp.setProxy({ GetParam().type, u"127.0.0.1"_s,
                       GetParam().login ? u"proxyuser"_s : QString(),
                       GetParam().login ? proxyPassword : QString(), proxy->port() });
        return ftp.connectAndLogin(u"127.0.0.1"_s, QString::fromStdString(server.user()),
                                   QString::fromStdString(server.password()), {}, server.port());
    }

    servers::Server server { servers::Kind::PyFtpd };
    std::unique_ptr<RealProxy> proxy;
    QTemporaryDir folder;
    FtpControl ftp;
};

/// Those that ask who calls.
class ProxiesWithALogin : public RealProxies { };

} // namespace

TEST_P(RealProxies, LeadToTheServerAndCarryFilesBothWays)
{
    servers::writeRandomFile(server.root() / "her", 300000);
    servers::writeRandomFile(folder.filePath(u"hin"_s).toStdString(), 300000);
    server.adoptFiles();
    for (const bool passive : { true, false }) {
        SCOPED_TRACE(passive ? "passive" : "active");
        ftp.setPassiveMode(passive);
        const FtpStatus connected = connect();
        ASSERT_TRUE(connected) << connected.error().text.toStdString();
        const FtpStatus listed = ftp.list();
        ASSERT_TRUE(listed) << listed.error().text.toStdString();
        EXPECT_FALSE(ftp.listing().entries.isEmpty());
        qint64 offset = 0;
        const FtpStatus fetched = ftp.getFile(u"her"_s, folder.filePath(u"her"_s), offset);
        ASSERT_TRUE(fetched) << fetched.error().text.toStdString();
        EXPECT_EQ(servers::readFile(folder.filePath(u"her"_s).toStdString()),
                  servers::readFile(server.root() / "her"));
        const FtpStatus sent = ftp.putFile(folder.filePath(u"hin"_s), u"hin"_s, offset);
        ASSERT_TRUE(sent) << sent.error().text.toStdString();
        EXPECT_EQ(servers::readFile(server.root() / "hin"),
                  servers::readFile(folder.filePath(u"hin"_s).toStdString()));
        ASSERT_TRUE(ftp.logout());
        std::filesystem::remove(server.root() / "hin");
        QFile::remove(folder.filePath(u"her"_s));
    }
}

TEST_P(ProxiesWithALogin, TellOfAWrongPassword)
{
    const FtpStatus connected = connect(u"falsch"_s);
    ASSERT_FALSE(connected);
    EXPECT_EQ(connected.error().kind, ftp::ErrorKind::Proxy);
}

INSTANTIATE_TEST_SUITE_P(
    Programs, RealProxies,
    ::testing::Values(Way { "microsocks", RealProxy::Kind::Microsocks, 2, false }, microsocksLogin,
                      Way { "danteSocks4", RealProxy::Kind::Dante, 1, false },
                      Way { "danteSocks5", RealProxy::Kind::Dante, 2, false },
                      Way { "ftpProxy", RealProxy::Kind::FtpProxy, 5, false }),
    [](const auto &row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(Programs, ProxiesWithALogin, ::testing::Values(microsocksLogin),
                         [](const auto &row) { return row.param.name; });
