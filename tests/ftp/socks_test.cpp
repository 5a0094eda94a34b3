// What SOCKS proxies are asked, and what becomes of their answers, good and bad.
#include "ftp/proxy.h"

#include "ftp/run.h"

#include <asio/ip/tcp.hpp>
#include <asio/read.hpp>
#include <asio/write.hpp>
#include <gtest/gtest.h>
#include <string>

using asio::ip::tcp;
using ftp::ErrorKind;
using ftp::Milliseconds;
using ftp::Proxy;
using ftp::ProxyKind;
using ftp::Status;
using namespace std::string_literals;

namespace {

struct Outcome {
    Status status;
    std::string asked; ///< all bytes that the proxy got
};

/// @param answers  all that the proxy ever says; then it hangs up
Outcome connectBy(const Proxy &proxy, const std::string &host, const std::string &answers)
{
    asio::io_context context;
    tcp::acceptor acceptor(context, { asio::ip::address_v4::loopback(), 0 });
    tcp::socket ours(context);
    ours.connect(acceptor.local_endpoint());
    tcp::socket theirs = acceptor.accept();
    asio::write(theirs, asio::buffer(answers));
    theirs.shutdown(tcp::socket::shutdown_send);
    Outcome outcome;
    {
        ftp::Stream stream(context.get_executor());
        EXPECT_TRUE(stream.adopt(std::move(ours)));
        outcome.status
            = runOn(context, ftp::socksConnect(stream, proxy, host, 2121, Milliseconds(5000)));
        stream.close();
    }
    std::error_code end;
    asio::read(theirs, asio::dynamic_buffer(outcome.asked), end);
    return outcome;
}

const Proxy socks5 { ProxyKind::Socks5, "proxy", 1080, {}, {} };
const Proxy socks5WithUser { ProxyKind::Socks5, "proxy", 1080, "fu", "fp" };
const Proxy socks4 { ProxyKind::Socks4, "proxy", 1080, "fu", {} };
const std::string ipv4Bound = "\x05\0\0\x01\x7f\0\0\x01\x08\x49"s;

void expectRefused(const Proxy &proxy, const std::string &answers, const std::string &words)
{
    const Status status = connectBy(proxy, "127.0.0.1", answers).status;
    ASSERT_FALSE(status) << words;
    EXPECT_EQ(status.error().kind, ErrorKind::Proxy) << words;
    EXPECT_NE(status.error().text.find(words), std::string::npos) << status.error().text;
}

} // namespace

TEST(Socks5, NamesAndBothKindsOfAddressesGoInTheirOwnForm)
{
    const std::string greeting = "\x05\x01\0"s;
    const Outcome named = connectBy(socks5, "web.example", "\x05\0"s + ipv4Bound);
    EXPECT_TRUE(named.status);
    EXPECT_EQ(named.asked, greeting + "\x05\x01\0\x03\x0bweb.example\x08\x49"s);
    EXPECT_EQ(connectBy(socks5, "127.0.0.1", "\x05\0"s + ipv4Bound).asked,
              greeting + "\x05\x01\0\x01\x7f\0\0\x01\x08\x49"s);
    EXPECT_EQ(connectBy(socks5, "::1", "\x05\0"s + ipv4Bound).asked,
              greeting + "\x05\x01\0\x04"s + std::string(15, '\0') + "\x01\x08\x49"s);
}

TEST(Socks5, EveryFormOfTheBoundAddressIsSkippedWhole)
{
    EXPECT_TRUE(connectBy(socks5, "127.0.0.1", "\x05\0\x05\0\0\x03\x05proxy\x08\x49"s).status);
    EXPECT_TRUE(
        connectBy(socks5, "127.0.0.1", "\x05\0\x05\0\0\x04"s + std::string(18, 'x')).status);
    expectRefused(socks5, "\x05\0\x05\0\0\x03\x05prox"s, "connection closed");
    expectRefused(socks5, "\x05\0\x05\0\0\x03"s, "connection closed");
}

TEST(Socks5, UserAndPasswordGoOnlyToAProxyThatWantsThem)
{
    const Outcome wanted = connectBy(socks5WithUser, "127.0.0.1", "\x05\x02\x01\0"s + ipv4Bound);
    EXPECT_TRUE(wanted.status);
    EXPECT_TRUE(wanted.asked.starts_with("\x05\x02\0\x02\x01\x02"
                                         "fu\x02"
                                         "fp\x05"s));
    EXPECT_EQ(connectBy(socks5WithUser, "127.0.0.1", "\x05\0"s + ipv4Bound).asked.find("fp"),
              std::string::npos);
}

TEST(Socks5, BadAnswersAreErrorsOfTheProxy)
{
    expectRefused(socks5, "\x05\xff"s, "no acceptable login method");
    expectRefused(socks5, "\x04\0"s, "no acceptable login method");
    expectRefused(socks5, "\x05"s, "connection closed");
    expectRefused(socks5, ""s, "connection closed");
    expectRefused(socks5, "\x05\0\x05\x05\0\x01"s, "rejected (5)");
    expectRefused(socks5, "\x05\0\x05\0"s, "connection closed");
    expectRefused(socks5WithUser, "\x05\x02\x01\x01"s, "user or password refused");
    expectRefused(socks5WithUser, "\x05\x02\x01"s, "connection closed");
}

TEST(Socks5, WhatDoesNotFitIntoARequestIsNotSent)
{
    const std::string tooLong(256, 'x');
    const Outcome host = connectBy(socks5, tooLong, {});
    ASSERT_FALSE(host.status);
    EXPECT_EQ(host.status.error().kind, ErrorKind::BadArgument);
    EXPECT_TRUE(host.asked.empty());
    EXPECT_FALSE(connectBy({ ProxyKind::Socks5, "p", 1080, tooLong, {} }, "h", {}).status);
    EXPECT_FALSE(connectBy({ ProxyKind::Socks5, "p", 1080, "fu", tooLong }, "h", {}).status);
}

TEST(Socks4, AsksForTheAddressAndTakesOnlyAGrant)
{
    const Outcome granted = connectBy(socks4, "127.0.0.1", "\0\x5a\0\0\0\0\0\0"s);
    EXPECT_TRUE(granted.status);
    EXPECT_EQ(granted.asked,
              "\x04\x01\x08\x49\x7f\0\0\x01"
              "fu\0"s);
    expectRefused(socks4, "\0\x5b\0\0\0\0\0\0"s, "rejected (91)");
    expectRefused(socks4, "\0\x5a\0"s, "connection closed");
}

TEST(Socks4, ANameGoesAsItsAddress)
{
    EXPECT_EQ(connectBy(socks4, "localhost", "\0\x5a\0\0\0\0\0\0"s).asked,
              "\x04\x01\x08\x49\x7f\0\0\x01"
              "fu\0"s);
}

TEST(Socks4, ANameThatWeCannotResolveIsLeftToTheProxy)
{
    const Outcome named = connectBy(socks4, "web.invalid", "\0\x5a\0\0\0\0\0\0"s);
    EXPECT_TRUE(named.status);
    EXPECT_EQ(named.asked,
              "\x04\x01\x08\x49\0\0\0\x01"
              "fu\0"
              "web.invalid\0"s);
}
