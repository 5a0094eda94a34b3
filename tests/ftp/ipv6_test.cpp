// Sessions with addresses of version 6.
#include "ftp/tree.h"

#include "ftp/faultcase.h"
#include "servers/everyserver.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace fs = std::filesystem;
using ftp::Encryption;
using ftp::ErrorKind;
using ftp::Type;
using testing::Each;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

class Ipv6 : public FaultCase {
protected:
    Ipv6()
        : FaultCase("::1")
    {
        servers::makeWebSpace(server.root() / "web");
    }
    void moveFolders()
    {
        ftp::Client &client = m_client->client();
        const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
        const auto put = run(ftp::putTree(client, local("web"), "/oben", Type::Binary));
        ASSERT_TRUE(put) << put.error().text;
        EXPECT_EQ(servers::difference(server.root() / "oben", local("web")), "");
        EXPECT_TRUE(run(client.list()));
    }
};

class Ipv6Servers : public servers::EveryServer { };

} // namespace

TEST_F(Ipv6, AsksForExtendedPassiveConnectionsOnly)
{
    for (const int sessions : { 1, 3 }) {
        connected(Encryption::Never, sessions);
        moveFolders();
    }
    EXPECT_THAT(server.lines("PASV"), IsEmpty());
    EXPECT_THAT(server.lines("EPSV"), Not(IsEmpty()));
}

TEST_F(Ipv6, TellsItsOwnAddressInTheExtendedForm)
{
    prepared().login().passive = false;
    ASSERT_TRUE(m_client->open());
    moveFolders();
    EXPECT_THAT(server.lines("PORT"), IsEmpty());
    EXPECT_THAT(server.lines("EPRT"), Not(IsEmpty()));
    EXPECT_THAT(server.lines("EPRT"), Each(StartsWith("EPRT |2|::1|")));
}

TEST_F(Ipv6, TakesTheAddressInBrackets)
{
    prepared().login().host = "[::1]";
    const auto opened = m_client->open();
    ASSERT_TRUE(opened) << opened.error().text;
    moveFolders();
}

TEST_F(Ipv6, ChecksTheAddressInTheCertificate)
{
    server.fault.tls = true;
    server.fault.requireReuse = true;
    connected(Encryption::Always);
    EXPECT_EQ(m_client->lastQuestion().problem, ftp::CertificateProblem::SelfSigned);
    moveFolders();
    EXPECT_GT(server.reusedDataSessions(), 0);
}

TEST_F(Ipv6, ARefusedPassiveConnectionIsTheServersAnswer)
{
    server.on({ .verb = "EPSV", .text = "500 EPSV not understood" });
    ftp::Client &client = connected();
    const auto got = run(client.get("/web/index.html", local("a"), 0, Type::Binary));
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::Refused);
    EXPECT_TRUE(client.usable());
    EXPECT_THAT(server.lines("PASV"), IsEmpty()); // it could tell no address
}

TEST_P(Ipv6Servers, MoveFoldersInBothWays)
{
    for (const bool passive : { true, false }) {
        SCOPED_TRACE(passive);
        servers::Options options;
        options.address = "::1";
        servers::Server server(GetParam(), options);
        servers::makeWebSpace(server.root() / "web");
        server.adoptFiles();
        servers::TemporaryFolder folder;
        const std::string down = (folder.path() / "web").string();
        // pyftpdlib in active mode forgets connections when it serves several sessions.
        TestClient client(server.port(), server.user(), server.password(), Encryption::Never,
                          passive ? 3 : 1);
        client.login().host = "::1";
        client.login().passive = passive;
        const auto opened = client.open();
        ASSERT_TRUE(opened) << opened.error().text;
        const auto got = client.run(ftp::getTree(client.client(), "/web", down, Type::Binary));
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(servers::difference(down, server.root() / "web"), "");
        const auto put = client.run(ftp::putTree(client.client(), down, "/oben", Type::Binary));
        ASSERT_TRUE(put) << put.error().text;
        EXPECT_EQ(servers::difference(server.root() / "oben", down), "");
        EXPECT_TRUE(client.run(client.client().list()));
    }
}

INSTANTIATE_TEST_SUITE_P(Servers, Ipv6Servers, testing::ValuesIn(servers::allKinds()),
                         servers::parameterName);
