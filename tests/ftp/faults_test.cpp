// What the user gets when the server does something wrong, and that nothing older is lost.
#include "ftp/impatientcase.h"
#include "ftp/tree.h"

#include <asio/post.hpp>
#include <filesystem>
#include <thread>

namespace fs = std::filesystem;
using Faults = ImpatientCase;
using ftp::ErrorKind;
using ftp::Type;
using servers::Rule;

namespace {
const std::string older = "der alte Inhalt";
}

TEST_F(Faults, GarbageInPlaceOfAGreetingIsAProtocolError)
{
    server.fault.greeting = "SSH-2.0-OpenSSH_9.2\r\n";
    const auto opened = login().open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::Protocol);
    EXPECT_FALSE(m_client->client().usable());
}

TEST_F(Faults, AFullServerIsNoWrongPassword)
{
    server.fault.greeting = "421 Too many connections";
    auto opened = login().open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::TooManyConnections);
    EXPECT_NE(opened.error().text.find("421 Too many"), std::string::npos);
}

TEST_F(Faults, ASilentServerEndsWithinTheTimeOut)
{
    server.on({ .verb = "PASS", .action = Rule::Stall });
    const auto start = std::chrono::steady_clock::now();
    const auto opened = login().open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::Timeout);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
}

TEST_F(Faults, AnEndlessReplyAndAnEndlessLineAreCutOff)
{
    server.on({ .verb = "PASS", .action = Rule::Endless });
    EXPECT_FALSE(login().open());
    server.clearRules();
    server.on({ .verb = "PASS", .text = "230 " + std::string(3000000, 'x') });
    const auto opened = login().open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::Protocol);
}

TEST_F(Faults, EveryShapeOfReplyIsUnderstood)
{
    servers::writeRandomFile(server.root() / "a.bin", 5000);
    for (const auto shape : { servers::ReplyShape::MultiLine, servers::ReplyShape::LineFeedOnly,
                              servers::ReplyShape::OneByteAtATime }) {
        server.fault.replyShape = shape;
        connected();
        const auto got = get("a.bin");
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(servers::difference(local("a.bin"), server.root() / "a.bin"), "");
    }
}

TEST_F(Faults, AServerThatLosesPipelinedCommandsIsServedOneByOne)
{
    server.fault.noPipelining = true;
    server.fault.replyDelay = 30;
    servers::makeWebSpace(server.root() / "web");
    TestClient &client = login();
    client.login().timeout = std::chrono::milliseconds(2000);
    const auto opened = client.open();
    ASSERT_TRUE(opened) << opened.error().text;
    EXPECT_TRUE(client.knowledge().noPipelining);
    const auto got = run(ftp::getTree(m_client->client(), "/web", local("web"), Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
}

TEST_F(Faults, ABrokenDownloadIsNoSuccessAndSparesTheOlderFile)
{
    servers::writeRandomFile(server.root() / "a.bin", 100000);
    const auto breaks = [&](const char *what) {
        SCOPED_TRACE(what);
        connected();
        servers::writeFile(local("a.bin"), older);
        const auto got = get("a.bin");
        ASSERT_FALSE(got);
        EXPECT_EQ(servers::readFile(local("a.bin")), older);
        EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1)
            << "nothing is left beside it";
    };
    server.fault.dropDataAfter = 1000;
    breaks("data connection reset");
    server.fault.dropDataAfter = -1;
    server.fault.truncateDataAfter = 1000;
    breaks("cut short with 226");
    server.fault.truncateDataAfter = -1;
    server.fault.stallDataAfter = 1000;
    breaks("stalled");
    server.fault.stallDataAfter = -1;
    server.fault.dropAllAfter = 1000;
    breaks("both connections reset");
    server.fault.dropAllAfter = -1;
    server.fault.noFinalReply = true;
    breaks("no 226");
    server.fault.noFinalReply = false;
    server.fault.finalReply = "451 Local error";
    breaks("451 at the end");
    server.fault.finalReply = "";
    server.fault.deadPassivePort = true;
    breaks("nobody at the passive port");
}

TEST_F(Faults, ABrokenDownloadOfANewFileCanBeContinued)
{
    servers::writeRandomFile(server.root() / "neu.bin", 100000);
    server.fault.dropAllAfter = 40000;
    connected();
    ASSERT_FALSE(get("neu.bin"));
    const auto have = static_cast<std::int64_t>(fs::file_size(local("neu.bin")));
    EXPECT_GT(have, 0);
    server.fault.dropAllAfter = -1;
    connected();
    const auto got = get("neu.bin", have);
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(*got, have);
    EXPECT_EQ(servers::difference(local("neu.bin"), server.root() / "neu.bin"), "");
}

TEST_F(Faults, ABrokenUploadIsNoSuccess)
{
    servers::writeRandomFile(local("b.bin"), 3000000);
    server.fault.dropDataAfter = 1000;
    connected();
    EXPECT_FALSE(put("b.bin"));
    server.fault.dropDataAfter = -1;
    server.fault.diskFullAfter = 1000;
    connected();
    const auto full = put("b.bin");
    ASSERT_FALSE(full);
    EXPECT_EQ(full.error().replyCode, 452);
    EXPECT_NE(full.error().text.find("No space"), std::string::npos);
    EXPECT_TRUE(m_client->client().usable()); // the next file may be smaller
}

TEST_F(Faults, ThePassiveAddressOfTheReplyIsNotTrusted)
{
    server.fault.passiveAddress = "10,9,9,9";
    servers::writeRandomFile(server.root() / "a.bin", 5000);
    connected();
    const auto got = get("a.bin");
    ASSERT_TRUE(got) << got.error().text;
}

TEST_F(Faults, TheOtherPassiveCommandIsTriedWhenOneIsRefused)
{
    server.on({ .verb = "PASV", .text = "500 PASV not understood" });
    servers::writeRandomFile(server.root() / "a.bin", 5000);
    connected();
    const auto got = get("a.bin");
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_FALSE(server.lines("EPSV").empty());
}

TEST_F(Faults, ANameWithALineBreakNeverBecomesACommand)
{
    connected();
    server.clearCommands();
    const auto removed = run(m_client->client().removeFile("a\r\nRMD wichtig"));
    ASSERT_FALSE(removed);
    EXPECT_EQ(removed.error().kind, ErrorKind::BadArgument);
    EXPECT_TRUE(server.lines("RMD").empty());
    EXPECT_TRUE(m_client->client().usable());
}

TEST_F(Faults, WhatCannotBeDeletedIsToldInItsTurn)
{
    for (const char *name : { "a", "b", "d" }) {
        servers::writeFile(server.root() / name, "x");
    }
    connected();
    std::vector<std::size_t> told;
    std::vector<bool> gone;
    const auto removed
        = run(ftp::removeFiles(m_client->client(), { "/a", "/b", "/c\rx", "/d", "/e\rx" },
                               [&](std::size_t file, const ftp::Status &outcome) {
                                   told.push_back(file);
                                   gone.push_back(outcome.has_value());
                               }));
    EXPECT_TRUE(removed);
    EXPECT_EQ(told, (std::vector<std::size_t> { 0, 1, 2, 3, 4 }));
    EXPECT_EQ(gone, (std::vector<bool> { true, true, false, true, false }));
}

TEST_F(Faults, ALocalFolderWithoutRightsEndsInAClearMessage)
{
    servers::writeFile(server.root() / "a.txt", "x");
    connected();
    const auto got
        = run(m_client->client().get("a.txt", local("gibt/es/nicht/a.txt"), 0, Type::Binary));
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::LocalFile);
    EXPECT_TRUE(m_client->client().usable());
    EXPECT_TRUE(get("a.txt"));
}

TEST_F(Faults, AbortingEndsTheWaitForAServerThatNeverConnects)
{
    server.on({ .verb = "RETR", .text = "150 Here it comes" });
    TestClient &client = login();
    client.login().passive = false;
    client.login().timeout = std::chrono::seconds(60);
    ASSERT_TRUE(client.open());
    std::thread user([&] {
        EXPECT_TRUE(server.waitForCommand("RETR"));
        asio::post(client.context(), [&] { m_client->client().abort(); });
    });
    const auto start = std::chrono::steady_clock::now();
    const auto got = get("a.txt");
    user.join();
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::Aborted);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(50));
}

TEST_F(Faults, AnAbortEndsTheRunningTransferAtOnce)
{
    servers::writeRandomFile(server.root() / "a.bin", 100000);
    server.fault.stallDataAfter = 1000;
    TestClient &client = connected();
    client.login().timeout = std::chrono::seconds(30);
    asio::steady_timer timer(client.context(), std::chrono::milliseconds(50));
    timer.async_wait([&](const std::error_code &) { client.client().abort(); });
    const auto got = get("a.bin");
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::Aborted);
}

TEST_F(Faults, BehindAProxyItsPasswordIsTheAccountWhereThereIsNone)
{
    server.fault.needAccount = true;
    TestClient &client = login();
    client.login().proxy.kind = ftp::ProxyKind::Pipe;
    client.login().proxy.host = "127.0.0.1";
    client.login().proxy.port = server.port();
    client.login().proxy.password = server.account();
    const auto opened = client.open();
    EXPECT_TRUE(opened) << opened.error().text;
    EXPECT_EQ(server.lines("ACCT"), std::vector<std::string> { "ACCT " + server.account() });
}

TEST_F(Faults, AFolderIsToldByItsOwnReplyOnly)
{
    server.on({ .verb = "PWD", .text = "250 CWD command successful" });
    EXPECT_EQ(connected().client().folder(), "/");
}
