// Encryption on a server that offers none, takes it back or does it wrong.
#include "ftp/impatientcase.h"

using EncryptionFaults = ImpatientCase;
using ftp::ErrorKind;

TEST_F(EncryptionFaults, WithoutAnOfferTheAutomaticChoiceGoesOnInClearAndSaysSo)
{
    TestClient &client = connected(ftp::Encryption::Automatic);
    EXPECT_FALSE(client.client().session().encrypted());
    EXPECT_EQ(client.notes().size(), 1U);
    EXPECT_EQ(client.certificateQuestions(), 0);
}

TEST_F(EncryptionFaults, BehindAProxyThatNamesTheServerTheAutomaticChoiceSaysThatItGoesOnInClear)
{
    TestClient &client = login(ftp::Encryption::Automatic);
    client.login().proxy.kind = ftp::ProxyKind::UserNoLogin;
    client.login().proxy.host = "127.0.0.1";
    client.login().proxy.port = server.port();
    client.login().host = "web.example.org";
    client.login().port = 21;
    EXPECT_FALSE(client.open()); // the server knows nobody of that name
    EXPECT_EQ(server.lines("USER"), std::vector<std::string> { "USER web01@web.example.org" });
    ASSERT_EQ(client.notes().size(), 1U);
    EXPECT_TRUE(client.notes().front().starts_with("Über diesen Proxy ist keine Verschlüsselung"));
}

TEST_F(EncryptionFaults, AReplyThatOnlySoundsGoodIsNoOfferOfEncryption)
{
    server.on({ .verb = "AUTH", .text = "200 NOOP ok" });
    EXPECT_FALSE(connected(ftp::Encryption::Automatic).client().session().encrypted());
    const auto opened = login(ftp::Encryption::Always).open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().text, "The server does not offer encryption");
}

TEST_F(EncryptionFaults, WithoutAnOfferTheStrictChoiceSendsNoPassword)
{
    const auto opened = login(ftp::Encryption::Always).open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::TlsFailed);
    EXPECT_TRUE(server.lines("USER").empty());
    EXPECT_TRUE(server.lines("PASS").empty());
}

TEST_F(EncryptionFaults, AServerOnceSeenWithEncryptionMustOfferItAgain)
{
    auto knowledge = std::make_shared<ftp::ServerKnowledge>(local("vertraut"));
    server.fault.tls = true;
    TestClient &first = login(ftp::Encryption::Automatic);
    first.useKnowledge(knowledge);
    first.trust(ftp::Trust::Always);
    ASSERT_TRUE(first.open());
    EXPECT_TRUE(first.client().session().encrypted());
    EXPECT_EQ(first.certificateQuestions(), 1);

    TestClient &again = login(ftp::Encryption::Automatic);
    again.useKnowledge(std::make_shared<ftp::ServerKnowledge>(local("vertraut")));
    ASSERT_TRUE(again.open());
    EXPECT_EQ(again.certificateQuestions(), 0) << "the answer was kept";

    server.fault.tls = false;
    server.clearCommands();
    TestClient &downgraded = login(ftp::Encryption::Automatic);
    downgraded.useKnowledge(std::make_shared<ftp::ServerKnowledge>(local("vertraut")));
    const auto opened = downgraded.open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::TlsFailed);
    EXPECT_TRUE(server.lines("USER").empty());
}

TEST_F(EncryptionFaults, AChangedCertificateIsShownAsChangedAndNothingIsSentBefore)
{
    server.fault.tls = true;
    auto knowledge = std::make_shared<ftp::ServerKnowledge>(local("vertraut"));
    TestClient &first = login(ftp::Encryption::Always);
    first.useKnowledge(knowledge);
    first.trust(ftp::Trust::Always);
    ASSERT_TRUE(first.open());
    server.fault.certificate = servers::makeCertificate();
    server.clearCommands();
    TestClient &second = login(ftp::Encryption::Always);
    second.useKnowledge(std::make_shared<ftp::ServerKnowledge>(local("vertraut")));
    const auto opened = second.open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::CertificateRejected);
    EXPECT_TRUE(second.lastQuestion().changed);
    EXPECT_EQ(second.lastQuestion().certificate.fingerprint.size(), 95U);
    EXPECT_TRUE(server.lines("USER").empty());
}

TEST_F(EncryptionFaults, InjectedRepliesBehindTheAuthReplyNeverCount)
{
    server.fault.tls = true;
    server.fault.injectAfterAuth = "230 Logged in\r\n";
    TestClient &client = login(ftp::Encryption::Always);
    client.trust(ftp::Trust::Once);
    const auto opened = client.open();
    // In the packet of the reply they are thrown away; behind it they spoil the handshake.
    if (!opened) {
        EXPECT_EQ(opened.error().kind, ErrorKind::TlsFailed);
    }
    EXPECT_TRUE(std::none_of(client.replies().begin(), client.replies().end(),
                             [](const std::string &reply) { return reply == "230 Logged in"; }));
    for (const servers::Command &command : server.commands()) {
        EXPECT_TRUE(command.encrypted || command.line == "AUTH TLS") << command.line;
    }
}

TEST_F(EncryptionFaults, ABrokenHandshakeNeverFallsBackToClearText)
{
    server.fault.tls = true;
    server.fault.brokenHandshake = true;
    const auto opened = login(ftp::Encryption::Automatic).open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::TlsFailed);
    EXPECT_TRUE(server.lines("USER").empty());
}

TEST_F(EncryptionFaults, DataConnectionsResumeTheControlConnectionsSession)
{
    server.fault.tls = true;
    server.fault.requireReuse = true;
    servers::writeRandomFile(server.root() / "a.bin", 5000);
    connected(ftp::Encryption::Always);
    for (int i = 0; i < 3; ++i) {
        const auto got = get("a.bin");
        ASSERT_TRUE(got) << got.error().text;
    }
    EXPECT_EQ(server.reusedDataSessions(), 3);
    EXPECT_EQ(server.freshDataSessions(), 0);
}

TEST_F(EncryptionFaults, AnEncryptedDownloadWithoutAProperEndCountsWhenTheSizeFits)
{
    server.fault.tls = true;
    server.fault.noCloseNotify = true;
    servers::writeRandomFile(server.root() / "a.bin", 5000);
    connected(ftp::Encryption::Always);
    EXPECT_TRUE(get("a.bin"));
    server.on({ .verb = "SIZE", .text = "500 unknown" });
    connected(ftp::Encryption::Always);
    const auto got = get("a.bin");
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::Truncated);
}

TEST_F(EncryptionFaults, AnotherCertificateOnTheDataConnectionIsRefused)
{
    server.fault.tls = true;
    server.fault.otherDataCertificate = true;
    servers::writeRandomFile(server.root() / "a.bin", 5000);
    connected(ftp::Encryption::Always);
    const auto got = get("a.bin");
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::TlsFailed);
}
