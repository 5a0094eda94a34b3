// Lists of files over several sessions: what is told comes in the list's order, and one file's
// fault is no other's.
#include "ftp/file_list.h"

#include "ftp/run.h"
#include "servers/faultserver.h"
#include "servers/fixture.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

using ftp::ErrorKind;
using ftp::Type;
using servers::Rule;

namespace {

class FileList : public testing::Test {
protected:
    static constexpr int Count = 30;

    FileList()
    {
        for (int i = 0; i < Count; ++i) {
            // Big and small ones in turn, so that a later one is often the first to be done.
            servers::writeRandomFile(server.root() / "www" / name(i), i % 5 == 0 ? 200000 : 300,
                                     static_cast<std::uint32_t>(i));
        }
    }

    static std::string name(int i)
    {
        return std::string(i < 10 ? "f0" : "f") + std::to_string(i) + " ü.bin";
    }
    std::string local(int i) const { return (folder.path() / name(i)).string(); }
    std::string remote(int i) const { return (server.root() / "www" / name(i)).string(); }
    bool same(int i) const { return servers::difference(local(i), remote(i)).empty(); }

    void connect(int sessions, int timeout = 10000)
    {
        client = std::make_unique<TestClient>(server.port(), server.user(), server.password(),
                                              ftp::Encryption::Never, sessions);
        client->login().timeout = std::chrono::milliseconds(timeout);
        const ftp::Status opened = client->open();
        ASSERT_TRUE(opened) << opened.error().text;
        client->replies().clear();
        server.clearCommands();
    }
    using Move
        = ftp::Awaitable<void>(ftp::Client &, std::vector<ftp::FilePair>, Type, ftp::FileReports);
    void move(Move *work)
    {
        std::vector<ftp::FilePair> files;
        for (int i = 0; i < Count; ++i) {
            files.push_back({ "/www/" + name(i), local(i) });
        }
        move(work, files);
    }
    void move(Move *work, const std::vector<ftp::FilePair> &files, Type type = Type::Binary)
    {
        ftp::FileReports reports;
        reports.reply = [this](const ftp::Reply &reply) {
            told.push_back(std::to_string(reply.code));
            if (onReply) {
                onReply();
            }
        };
        reports.progress = [this](std::size_t file, std::int64_t) {
            EXPECT_EQ(file, outcomes.size()) << "not the first open one";
        };
        reports.done = [this](std::size_t file, const ftp::Status &outcome) {
            places.push_back(file);
            outcomes.push_back(outcome);
            told.push_back("done");
        };
        const ftp::Status ended
            = client->run([](ftp::Awaitable<void> step) -> ftp::Awaitable<ftp::Status> {
                  co_await std::move(step);
                  co_return ftp::Status {};
              }(work(client->client(), files, type, reports)));
        EXPECT_TRUE(ended);
    }
    int failures() const
    {
        return static_cast<int>(
            std::count_if(outcomes.begin(), outcomes.end(),
                          [](const ftp::Status &outcome) { return !outcome.has_value(); }));
    }
    /// Places ascend; with all they are 0, 1, 2 ..
    void expectInOrder(bool all = true) const
    {
        EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
        if (all) {
            EXPECT_EQ(places.size(), static_cast<std::size_t>(Count));
            EXPECT_EQ(places.back(), static_cast<std::size_t>(Count - 1));
        }
    }

    servers::FaultServer server;
    servers::TemporaryFolder folder;
    std::unique_ptr<TestClient> client;
    std::vector<std::string> told; ///< codes of replies, and "done"
    std::vector<std::size_t> places;
    std::vector<ftp::Status> outcomes;
    std::function<void()> onReply;
};

} // namespace

TEST_F(FileList, FilesArriveOverSeveralSessionsAndAreToldInOrder)
{
    server.fault.replyDelay = 2;
    connect(4);
    move(ftp::getFiles);
    expectInOrder();
    EXPECT_EQ(failures(), 0);
    for (int i = 0; i < Count; ++i) {
        EXPECT_TRUE(same(i)) << i;
    }
    EXPECT_GT(server.sessions(), 1);
    EXPECT_EQ(server.lines("RETR").size(), static_cast<std::size_t>(Count));
    // Every file's own replies and no other's stand before its end.
    std::vector<std::string> one { "213", "213", "227", "150", "226", "done" };
    std::vector<std::string> all;
    for (int i = 0; i < Count; ++i) {
        all.insert(all.end(), one.begin(), one.end());
    }
    EXPECT_EQ(told, all);
    EXPECT_TRUE(client->replies().empty()) << "told twice";
}

TEST_F(FileList, FilesGoOverSeveralSessionsAndAreProvenBySize)
{
    for (int i = 0; i < Count; ++i) {
        std::filesystem::rename(remote(i), local(i));
    }
    server.fault.replyDelay = 2;
    connect(4);
    move(ftp::putFiles);
    expectInOrder();
    EXPECT_EQ(failures(), 0);
    for (int i = 0; i < Count; ++i) {
        EXPECT_TRUE(same(i)) << i;
    }
    EXPECT_GT(server.sessions(), 1);
    EXPECT_EQ(server.lines("SIZE").size(), static_cast<std::size_t>(Count));
    EXPECT_EQ(server.lines("MFMT").size(), static_cast<std::size_t>(Count));
}

TEST_F(FileList, TheTimesOfTheServerAreKept)
{
    std::filesystem::last_write_time(
        remote(3), std::filesystem::file_time_type::clock::now() - std::chrono::hours(5000));
    const auto time = [](const std::string &path) {
        return std::chrono::floor<std::chrono::seconds>(std::filesystem::last_write_time(path));
    };
    connect(2);
    move(ftp::getFiles);
    EXPECT_EQ(time(local(3)), time(remote(3)));
}

TEST_F(FileList, ARefusedFileLeavesTheOthersAlone)
{
    server.on({ .verb = "RETR", .argument = "*f07*", .text = "550 Verboten" });
    connect(4);
    move(ftp::getFiles);
    expectInOrder();
    EXPECT_EQ(failures(), 1);
    EXPECT_EQ(outcomes[7].error().text, "550 Verboten");
    EXPECT_FALSE(std::filesystem::exists(local(7)));
    EXPECT_TRUE(same(8));
    EXPECT_EQ(std::count(told.begin(), told.end(), "550"), 1) << "told once, also if tried twice";
}

TEST_F(FileList, WhatFailsOverAnotherSessionIsTriedAgainByTheFirst)
{
    server.on({ .verb = "RETR", .text = "450 Nur eine Verbindung", .fromSession = 2, .times = 3 });
    server.on({ .verb = "RETR", .action = Rule::Drop, .fromSession = 2 });
    server.fault.replyDelay = 2;
    connect(4);
    move(ftp::getFiles);
    expectInOrder();
    EXPECT_EQ(failures(), 0);
    for (int i = 0; i < Count; ++i) {
        EXPECT_TRUE(same(i)) << i;
    }
    EXPECT_GT(server.sessions(), 1);
    EXPECT_EQ(std::count(told.begin(), told.end(), "450"), 0);
}

TEST_F(FileList, WhatStallsOverAnotherSessionIsTriedByTheFirstWhenNothingElseIsLeft)
{
    server.on({ .verb = "RETR", .action = Rule::Stall, .fromSession = 2 });
    server.fault.replyDelay = 20; // the first has work for longer than the time-out
    connect(3, 700);
    move(ftp::getFiles);
    expectInOrder();
    EXPECT_EQ(failures(), 0);
    for (int i = 0; i < Count; ++i) {
        EXPECT_TRUE(same(i)) << i;
    }
    std::vector<std::string> stalled, first;
    for (const servers::Command &command : server.commands()) {
        if (command.line.starts_with("RETR")) {
            (command.session == 1 ? first : stalled).push_back(command.line);
        }
    }
    ASSERT_FALSE(stalled.empty());
    first.erase(first.begin(), first.end() - static_cast<std::ptrdiff_t>(stalled.size()));
    EXPECT_TRUE(std::is_permutation(first.begin(), first.end(), stalled.begin(), stalled.end()));
}

TEST_F(FileList, ALostConnectionEndsTheListAndIsNotMadeAgain)
{
    server.on({ .verb = "RETR", .argument = "*f05*", .action = Rule::Drop });
    connect(1);
    move(ftp::getFiles);
    expectInOrder(false);
    ASSERT_EQ(outcomes.size(), 6U);
    EXPECT_EQ(failures(), 1);
    EXPECT_FALSE(client->client().usable());
    EXPECT_EQ(server.sessions(), 1);
}

TEST_F(FileList, AStalledServerEndsTheListAfterOneTimeOut)
{
    server.fault.stallDataAfter = 1000;
    connect(4, 700);
    const auto start = std::chrono::steady_clock::now();
    move(ftp::getFiles);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(3700));
    ASSERT_FALSE(outcomes.empty());
    EXPECT_EQ(outcomes.front().error().kind, ErrorKind::Timeout);
    EXPECT_LT(outcomes.size(), static_cast<std::size_t>(Count));
}

TEST_F(FileList, AnAbortEndsItAndOnlyBegunFilesAreTold)
{
    server.fault.replyDelay = 1;
    connect(4);
    onReply = [this, left = 40]() mutable {
        if (--left == 0) {
            client->client().abort();
        }
    };
    move(ftp::getFiles);
    expectInOrder(false);
    EXPECT_GT(failures(), 0);
    EXPECT_LT(outcomes.size(), static_cast<std::size_t>(Count));
    for (std::size_t at = 0; at < places.size(); ++at) {
        EXPECT_TRUE(!outcomes[at] || same(static_cast<int>(places[at])));
    }
}

TEST_F(FileList, ANameThatNoCommandMayCarryFailsAlone)
{
    connect(1);
    move(ftp::getFiles,
         { { "/www/" + name(0), local(0) },
           { "/www/x\r\nDELE f", local(1) },
           { "/www/" + name(2), local(2) } });
    ASSERT_EQ(outcomes.size(), 3U);
    EXPECT_TRUE(outcomes[0] && outcomes[2]);
    EXPECT_EQ(outcomes[1].error().kind, ErrorKind::BadArgument);
    EXPECT_TRUE(server.lines("DELE").empty());
}

TEST_F(FileList, AnUnknownServerGetsNoCommandsDuringATransfer)
{
    server.fault.answersDuringTransfers = true;
    server.fault.replyDelay = 2;
    connect(3, 3000);
    move(ftp::getFiles);
    EXPECT_EQ(failures(), 0);
    expectInOrder();
}

TEST_F(FileList, ARefusedTypeFailsEveryFile)
{
    server.on({ .verb = "TYPE", .argument = "E", .text = "504 Nein" });
    connect(1);
    move(ftp::getFiles, { { "/www/" + name(0), local(0) }, { "/www/" + name(1), local(1) } },
         Type::Ebcdic);
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_EQ(outcomes[0].error().text, "504 Nein");
    EXPECT_EQ(outcomes[1].error().text, "504 Nein");
}
