#include "ftp/ftpbridge.h"

#include "ftp/engine_thread.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/post.hpp>
#include <future>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

class Bridge : public testing::Test {
protected:
    FtpControl control;
    std::shared_ptr<FtpBridge> bridge = std::make_shared<FtpBridge>(&control);
};

/// Keeps the thread busy, as adding to a log does.
void work(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds) { }
}

} // namespace

TEST_F(Bridge, WhatIsPostedArrivesInOrder)
{
    std::vector<int> arrived;
    std::thread engine([&] {
        for (int i = 0; i < 1000; ++i) {
            bridge->post([&arrived, i] { arrived.push_back(i); });
        }
    });
    engine.join();
    ASSERT_TRUE(QTest::qWaitFor([&] { return arrived.size() == 1000; }));
    EXPECT_TRUE(std::is_sorted(arrived.begin(), arrived.end()));
}

TEST_F(Bridge, ABusyEngineLeavesTimeForTimersAndPainting)
{
    int arrived = 0, ticks = 0;
    QTimer clock;
    QObject::connect(&clock, &QTimer::timeout, &clock, [&] { ++ticks; });
    clock.start(1);
    for (int i = 0; i < 100; ++i) {
        bridge->post([&] {
            work(1);
            ++arrived;
        });
    }
    QEventLoop loop;
    bridge->post([&] { loop.quit(); });
    loop.exec();
    EXPECT_EQ(arrived, 100);
    EXPECT_GE(ticks, 5);
}

TEST_F(Bridge, TheRestArrivesWhileOneOfThemStays)
{
    bool rest = false;
    bridge->post([&] { EXPECT_TRUE(QTest::qWaitFor([&] { return rest; })); });
    bridge->post([&] { rest = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return rest; }));
}

TEST_F(Bridge, NothingArrivesAfterTheControlHasGone)
{
    bool arrived = false;
    bridge->post([&] { bridge->detach(); });
    bridge->post([&] { arrived = true; });
    bool later = false;
    QTimer::singleShot(20, &control, [&] { later = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return later; }));
    EXPECT_FALSE(arrived);
}

TEST_F(Bridge, AQuestionThatNobodyCanBeAskedAnyMoreIsAnsweredWithNo)
{
    for (const bool before : { true, false }) {
        bridge = std::make_shared<FtpBridge>(&control);
        bridge->question = [](const FtpCertificate &) { return FtpTrust::Always; };
        if (before) {
            bridge->detach();
        }
        std::promise<ftp::Trust> answer;
        auto answered = answer.get_future();
        asio::co_spawn(
            ftp::EngineThread::executor(),
            [](std::shared_ptr<FtpBridge> asked,
               std::promise<ftp::Trust> &out) -> ftp::Awaitable<void> {
                ftp::CertificateQuestion question;
                out.set_value(co_await asked->hooks().certificate(question));
            }(bridge, answer),
            asio::detached);
        std::promise<void> put; // behind the question, on the one thread of the engine
        asio::post(ftp::EngineThread::executor(), [&put] { put.set_value(); });
        put.get_future().wait();
        bridge->detach();
        ASSERT_EQ(answered.wait_for(std::chrono::seconds(10)), std::future_status::ready);
        EXPECT_EQ(answered.get(), ftp::Trust::Reject);
    }
}
