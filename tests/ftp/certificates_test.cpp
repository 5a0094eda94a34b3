// Which certificates are trusted without a question, and what is told about the others.
#include "ftp/tree.h"

#include "ftp/faultcase.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <gmock/gmock.h>

namespace fs = std::filesystem;
using ftp::CertificateProblem;
using ftp::Encryption;
using ftp::ErrorKind;
using ftp::Trust;
using servers::CertificateOptions;
using testing::IsEmpty;
using namespace std::string_literals;

namespace {

constexpr long day = 24L * 3600;

CertificateOptions authority(const char *name)
{
    CertificateOptions options;
    options.commonName = name;
    options.names.clear();
    return options;
}

/// What this system trusts. Made before anything else, since the engine reads it once.
class SystemStore : public testing::Environment {
public:
    void SetUp() override
    {
        const std::string file = (m_folder.path() / "trusted.pem").string();
        servers::writeFile(file, issuer.certificate);
        ::setenv("SSL_CERT_FILE", file.c_str(), 1);
    }

    const servers::Certificate issuer = servers::makeCertificate(authority("Trusted here"));

private:
    servers::TemporaryFolder m_folder;
};

auto *const systemStore = new SystemStore; // owned by the test program
testing::Environment *const registered = testing::AddGlobalTestEnvironment(systemStore);

class Certificates : public FaultCase {
protected:
    Certificates() { server.fault.tls = true; }

    /// A certificate that the system's authority has signed.
    static servers::Certificate issued(CertificateOptions options = {})
    {
        options.issuer = systemStore->issuer;
        return servers::makeCertificate(options);
    }
    ftp::Status open(const servers::Certificate &certificate, Trust answer = Trust::Reject,
                     const std::string &host = "127.0.0.1")
    {
        server.fault.certificate = certificate;
        server.clearCommands();
        prepared(Encryption::Always).trust(answer);
        m_client->login().host = host;
        m_client->useKnowledge(std::make_shared<ftp::ServerKnowledge>(local("vertraut")));
        return m_client->open();
    }
    /// Rejects a certificate. @return what the question named as its problem
    CertificateProblem problemOf(const servers::Certificate &certificate,
                                 const std::string &host = "127.0.0.1")
    {
        const ftp::Status opened = open(certificate, Trust::Reject, host);
        EXPECT_FALSE(opened);
        EXPECT_EQ(opened ? ErrorKind::Protocol : opened.error().kind,
                  ErrorKind::CertificateRejected);
        EXPECT_EQ(m_client->certificateQuestions(), 1);
        EXPECT_EQ(m_client->lastQuestion().host, host);
        EXPECT_THAT(server.lines("USER"), IsEmpty()) << "nothing is sent before the answer";
        return m_client->lastQuestion().problem;
    }
};

std::string dateIn(long seconds)
{
    const std::time_t then = std::time(nullptr) + seconds;
    std::string text(10, ' ');
    std::tm parts {};
    std::strftime(text.data(), text.size() + 1, "%Y-%m-%d", ::gmtime_r(&then, &parts));
    return text;
}

} // namespace

TEST_F(Certificates, OneThatTheSystemTrustsIsNotAskedAbout)
{
    servers::writeFile(server.root() / "a.txt", "inhalt");
    for (const char *host : { "127.0.0.1", "localhost" }) {
        const auto opened = open(issued(), Trust::Reject, host);
        ASSERT_TRUE(opened) << opened.error().text;
        EXPECT_EQ(m_client->certificateQuestions(), 0);
        EXPECT_TRUE(m_client->client().session().encrypted());
        const auto got = run(m_client->client().get("a.txt", local("a.txt"), 0, ftp::Type::Binary));
        EXPECT_TRUE(got) << got.error().text;
    }
}

TEST_F(Certificates, AServerThatTheSystemTrustsMustOfferEncryptionAgain)
{
    ASSERT_TRUE(open(issued()));
    server.fault.tls = false;
    server.clearCommands();
    prepared(Encryption::Automatic);
    m_client->useKnowledge(std::make_shared<ftp::ServerKnowledge>(local("vertraut")));
    const auto opened = m_client->open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::TlsFailed);
    EXPECT_THAT(server.lines("USER"), IsEmpty());
}

TEST_F(Certificates, ANewOneOfTheSystemsAuthorityIsNoChange)
{
    ASSERT_TRUE(open(issued()));
    ASSERT_TRUE(open(issued()));
    EXPECT_EQ(m_client->certificateQuestions(), 0);
}

TEST_F(Certificates, AnExpiredOneIsNamedSo)
{
    CertificateOptions expired;
    expired.validFromSeconds = -60 * day;
    expired.validUntilSeconds = -30 * day;
    EXPECT_EQ(problemOf(issued(expired)), CertificateProblem::Expired);
    const ftp::Certificate &shown = m_client->lastQuestion().certificate;
    EXPECT_EQ(shown.validUntil, dateIn(-30 * day));
    EXPECT_EQ(shown.validFrom, dateIn(-60 * day));
    EXPECT_NE(shown.issuer.find("Trusted here"), std::string::npos);
}

TEST_F(Certificates, OneThatIsNotYetValidIsNamedSo)
{
    CertificateOptions early;
    early.validFromSeconds = 5 * day;
    EXPECT_EQ(problemOf(issued(early)), CertificateProblem::NotYetValid);
}

TEST_F(Certificates, OneOfAnotherHostIsNamedSo)
{
    CertificateOptions other;
    other.commonName = "other.example";
    other.names = { "DNS:other.example", "IP:127.0.0.2" };
    EXPECT_EQ(problemOf(issued(other)), CertificateProblem::WrongHost);
    EXPECT_EQ(problemOf(issued(other), "localhost"), CertificateProblem::WrongHost);
    EXPECT_NE(m_client->lastQuestion().certificate.subject.find("other.example"),
              std::string::npos);
}

TEST_F(Certificates, AHostThatNoneCanBeCheckedForIsNotTrusted)
{
    CertificateOptions other;
    other.names = { "DNS:other.example" };
    const auto opened = open(issued(other), Trust::Always, "localhost\0.example"s);
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::TlsFailed);
    EXPECT_EQ(m_client->certificateQuestions(), 0);
    EXPECT_THAT(server.lines("USER"), IsEmpty());
}

TEST_F(Certificates, OneThatTheServerMadeItselfIsNamedSo)
{
    EXPECT_EQ(problemOf(servers::makeCertificate()), CertificateProblem::SelfSigned);
}

TEST_F(Certificates, OneOfAnUnknownAuthorityIsNamedSo)
{
    CertificateOptions options;
    options.issuer = servers::makeCertificate(authority("Unknown here"));
    EXPECT_EQ(problemOf(servers::makeCertificate(options)), CertificateProblem::UnknownIssuer);
}

TEST_F(Certificates, AnExpiredOneCanBeTrustedForThisServer)
{
    CertificateOptions expired;
    expired.validUntilSeconds = -60;
    const servers::Certificate certificate = issued(expired);
    const auto first = open(certificate, Trust::Always);
    ASSERT_TRUE(first) << first.error().text;
    EXPECT_EQ(m_client->certificateQuestions(), 1);
    const auto second = open(certificate);
    ASSERT_TRUE(second) << second.error().text;
    EXPECT_EQ(m_client->certificateQuestions(), 0);
    EXPECT_EQ(problemOf(issued(expired)), CertificateProblem::Expired);
    EXPECT_TRUE(m_client->lastQuestion().changed);
}

TEST_F(Certificates, TheAnswerHoldsForAllSessionsOfAFolderTransfer)
{
    for (int i = 0; i < 30; ++i) {
        servers::writeRandomFile(server.root() / "web" / ("f" + std::to_string(i)), 2000);
    }
    server.fault.replyDelay = 20; // time for others to join
    ftp::Client &client = connected(Encryption::Always, 3);
    const auto got = run(ftp::getTree(client, "/web", local("web"), ftp::Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
    EXPECT_GT(server.sessions(), 1);
    EXPECT_EQ(m_client->certificateQuestions(), 1);
}

TEST_F(Certificates, OnlyTheFirstSessionOfAFolderTransferAsks)
{
    for (int i = 0; i < 30; ++i) {
        servers::writeRandomFile(server.root() / "web" / ("f" + std::to_string(i)), 2000);
    }
    server.fault.replyDelay = 20; // time for others to join
    ftp::Client &client = connected(Encryption::Always, 3);
    server.fault.certificate = servers::makeCertificate(); // of all later sessions
    const auto got = run(ftp::getTree(client, "/web", local("web"), ftp::Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
    EXPECT_GT(server.sessions(), 1);
    EXPECT_EQ(m_client->certificateQuestions(), 1);
}
