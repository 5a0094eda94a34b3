#include "ftp/login.h"

#include "ftp/run.h"
#include "ftp/scriptedline.h"

using ftp::Credentials;
using ftp::Dialogue;
using ftp::ErrorKind;
using ftp::Milliseconds;
using ftp::Proxy;
using ftp::ProxyKind;
using ftp::Status;

namespace {

Status loginBy(ScriptedLine &line, Credentials credentials)
{
    asio::io_context context;
    Dialogue dialogue(line, Milliseconds(1000), {});
    const std::string user = credentials.user;
    return runOn(context, ftp::loginAs(dialogue, user, std::move(credentials)));
}

Status reach(ScriptedLine &line, const Proxy &proxy, std::uint16_t port = 21,
             const std::string &host = "web.example.org")
{
    asio::io_context context;
    Dialogue dialogue(line, Milliseconds(1000), {});
    return runOn(context, ftp::reachServer(dialogue, proxy, host, port));
}

} // namespace

TEST(Login, SendsNoPasswordWhenNoneIsAsked)
{
    ScriptedLine line;
    line.client("USER web01").server("230 angemeldet");
    EXPECT_TRUE(loginBy(line, { "web01", "geheim", {} }));
    EXPECT_TRUE(line.finished());
}

TEST(Login, SendsPasswordAndAccountWhenAsked)
{
    ScriptedLine line;
    line.client("USER web01")
        .server("331 Passwort")
        .client("PASS geheim")
        .server("332 Konto")
        .client("ACCT k1")
        .server("230 ja");
    EXPECT_TRUE(loginBy(line, { "web01", "geheim", "k1" }));
    EXPECT_TRUE(line.finished());
}

TEST(Login, TreatsASuperfluousPasswordAsLoggedIn)
{
    ScriptedLine line;
    line.client("USER web01").server("331 ?").client("PASS ").server("202 not needed");
    EXPECT_TRUE(loginBy(line, { "web01", "", {} }));
}

TEST(Login, FailsWithTheServersReply)
{
    ScriptedLine line;
    line.client("USER web01").server("331 ?").client("PASS falsch").server("530 Login incorrect.");
    const Status login = loginBy(line, { "web01", "falsch", {} });
    ASSERT_FALSE(login);
    EXPECT_EQ(login.error().replyCode, 530);
    EXPECT_EQ(login.error().text, "530 Login incorrect.");
}

TEST(Login, StopsWhenTheUserIsRefused)
{
    ScriptedLine line;
    line.client("USER web01").server("550 no");
    EXPECT_FALSE(loginBy(line, { "web01", "geheim", {} }));
    EXPECT_TRUE(line.finished());
}

TEST(Login, TellsAnAccountThatIsMissing)
{
    ScriptedLine line;
    line.client("USER web01").server("332 account");
    const Status login = loginBy(line, { "web01", "geheim", {} });
    ASSERT_FALSE(login);
    EXPECT_EQ(login.error().kind, ErrorKind::LoginRefused);
}

TEST(Login, RefusesAPasswordThatWouldCarryACommand)
{
    ScriptedLine line;
    line.client("USER web01").server("331 ?");
    const Status login = loginBy(line, { "web01", "a\r\nDELE x", {} });
    ASSERT_FALSE(login);
    EXPECT_EQ(login.error().kind, ErrorKind::BadArgument);
}

TEST(Login, AGreetingThatComesLateIsNoAnswerToTheUser)
{
    ScriptedLine line;
    line.client("USER web01")
        .server("220 web space ready")
        .server("331 ?")
        .client("PASS geheim")
        .server("530 Login incorrect.");
    EXPECT_FALSE(loginBy(line, { "web01", "geheim", {} }));
    EXPECT_TRUE(line.finished());
}

TEST(Login, OnlyAnAnswerToTheUserIsALogin)
{
    for (const char *other : { "200 NOOP ok", "250 Okay", "257 \"/\"" }) {
        ScriptedLine line;
        line.client("USER web01").server(other);
        const Status login = loginBy(line, { "web01", "geheim", {} });
        ASSERT_FALSE(login) << other;
        EXPECT_EQ(login.error().kind, ErrorKind::Protocol);
    }
    for (const char *answer : { "230 ja", "231 ja", "232 ja", "202 ja" }) {
        ScriptedLine line;
        line.client("USER web01").server(answer);
        EXPECT_TRUE(loginBy(line, { "web01", "geheim", {} })) << answer;
    }
}

TEST(Login, AServerThatRepeatsThePasswordIsToldWithStars)
{
    ScriptedLine line;
    line.client("USER web01")
        .server("331 ?")
        .client("PASS geheim")
        .server("500 'PASS geheim': command not understood.");
    asio::io_context context;
    std::vector<std::string> heard;
    Dialogue dialogue(line, Milliseconds(1000),
                      [&heard](const ftp::Reply &reply) { heard.push_back(reply.text()); });
    const Credentials credentials { "web01", "geheim", {} };
    const Status login = runOn(context, ftp::loginAs(dialogue, "web01", credentials));
    ASSERT_FALSE(login);
    EXPECT_EQ(login.error().text, "500 'PASS ***': command not understood.");
    EXPECT_EQ(heard.back(), "500 'PASS ***': command not understood.");
}

TEST(LoginError, TellsTheReasonsOfARefusalApart)
{
    const auto kind = [](int code, const char *text, bool encrypted = false) {
        return ftp::loginError({ ErrorKind::Refused, code, text }, encrypted).kind;
    };
    EXPECT_EQ(kind(530, "530 Login incorrect."), ErrorKind::LoginRefused);
    EXPECT_EQ(
        kind(530, "530 Sorry, the maximum number of allowed clients (3) are already connected."),
        ErrorKind::TooManyConnections);
    EXPECT_EQ(kind(421, "421 There are too many connections from your internet address."),
              ErrorKind::TooManyConnections);
    EXPECT_EQ(kind(530, "530 Non-anonymous sessions must use encryption."), ErrorKind::TlsRequired);
    EXPECT_EQ(kind(550, "550 SSL/TLS required on the control channel"), ErrorKind::TlsRequired);
    EXPECT_EQ(kind(421, "421-Sorry, cleartext sessions and weak ciphers are not accepted"),
              ErrorKind::TlsRequired);
    EXPECT_EQ(kind(530, "530 SSL user unknown", true), ErrorKind::LoginRefused);
    EXPECT_EQ(kind(0, "Connection refused"), ErrorKind::Refused);
    // Names of users are no words about encryption.
    EXPECT_EQ(kind(530, "530 User kessler cannot log in."), ErrorKind::LoginRefused);
    EXPECT_EQ(kind(530, "530 kessler: unencrypted logins are off"), ErrorKind::TlsRequired);
}

TEST(ProxyLogin, SiteLogsInAtTheProxyAndNamesTheServer)
{
    ScriptedLine line;
    line.client("USER fu")
        .server("331 ?")
        .client("PASS fp")
        .server("230 ok")
        .client("SITE web.example.org")
        .server("220 server");
    EXPECT_TRUE(reach(line, { ProxyKind::Site, "proxy", 2121, "fu", "fp" }));
    EXPECT_TRUE(line.finished());
}

TEST(ProxyLogin, SiteWithoutProxyUserNamesTheServerAtOnce)
{
    ScriptedLine line;
    line.client("SITE web.example.org:2100").server("220 server");
    EXPECT_TRUE(reach(line, { ProxyKind::Site, "proxy", 2121, {}, {} }, 2100));
    EXPECT_TRUE(line.finished());
}

TEST(ProxyLogin, OpenNamesTheServer)
{
    ScriptedLine patient;
    patient.client("USER fu")
        .server("331 ?")
        .client("PASS fp")
        .server("230 ok")
        .client("OPEN web.example.org")
        .server("120 wait")
        .server("220 server");
    EXPECT_TRUE(reach(patient, { ProxyKind::Open, "proxy", 2121, "fu", "fp" }));
    EXPECT_TRUE(patient.finished());
}

TEST(ProxyLogin, UserLoginOnlyLogsInAtTheProxy)
{
    ScriptedLine line;
    line.client("USER fu").server("331 ?").client("PASS fp").server("230 ok");
    EXPECT_TRUE(reach(line, { ProxyKind::UserLogin, "proxy", 2121, "fu", "fp" }));
    EXPECT_TRUE(line.finished());
    EXPECT_EQ(ftp::proxyUserName({ ProxyKind::UserLogin, "proxy", 2121, "fu", "fp" }, "u",
                                 "web.example.org", 21),
              "u@web.example.org");
}

TEST(ProxyLogin, UserNoLoginSendsNothingToTheProxy)
{
    ScriptedLine line;
    EXPECT_TRUE(reach(line, { ProxyKind::UserNoLogin, "proxy", 2121, "fu", "fp" }));
    EXPECT_EQ(ftp::proxyUserName({ ProxyKind::UserNoLogin, "proxy", 2121, {}, {} }, "u@firma",
                                 "web.example.org", 2100),
              "u@firma@web.example.org:2100");
}

TEST(ProxyLogin, PipeNamesNoServer)
{
    ScriptedLine line;
    EXPECT_TRUE(reach(line, { ProxyKind::Pipe, "proxy", 2121, {}, {} }));
    EXPECT_EQ(ftp::proxyUserName({ ProxyKind::Pipe, "proxy", 2121, {}, {} }, "u", "web.example.org",
                                 2100),
              "u");
}

TEST(ProxyLogin, AnAddressThatCannotBeNamedIsNotSent)
{
    for (const ProxyKind kind :
         { ProxyKind::Site, ProxyKind::UserLogin, ProxyKind::UserNoLogin, ProxyKind::Open }) {
        ScriptedLine line;
        const Status reached = reach(line, { kind, "proxy", 2121, "fu", "fp" }, 21, "2001:db8::1");
        ASSERT_FALSE(reached);
        EXPECT_EQ(reached.error().kind, ErrorKind::Proxy);
    }
    ScriptedLine line;
    EXPECT_TRUE(reach(line, { ProxyKind::Pipe, "proxy", 2121, {}, {} }, 21, "2001:db8::1"));
}

TEST(ProxyLogin, EndsWithTheProxysRefusal)
{
    ScriptedLine line;
    line.client("USER fu")
        .server("331 ?")
        .client("PASS fp")
        .server("230 ok")
        .client("SITE web.example.org")
        .server("550 not allowed");
    const Status reached = reach(line, { ProxyKind::Site, "proxy", 2121, "fu", "fp" });
    ASSERT_FALSE(reached);
    EXPECT_EQ(reached.error().text, "550 not allowed");
}

TEST(EncodeCommand, RefusesLineBreaksNulAndEndlessNames)
{
    EXPECT_EQ(ftp::encodeCommand("NOOP").value(), "NOOP\r\n");
    for (const std::string &bad : { std::string("DELE a\rb"), std::string("DELE a\nb"),
                                    std::string("DELE a\0b", 8), std::string(5000, 'x') }) {
        const auto encoded = ftp::encodeCommand(bad);
        ASSERT_FALSE(encoded);
        EXPECT_EQ(encoded.error().kind, ErrorKind::BadArgument);
    }
    EXPECT_EQ(ftp::encodeCommand("CWD \xFF", true).value(), "CWD \xFF\xFF\r\n");
    EXPECT_EQ(ftp::encodeCommand("CWD \xFF", false).value(), "CWD \xFF\r\n");
}
