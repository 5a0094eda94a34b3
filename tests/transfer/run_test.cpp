// Many marked files at a time, over the real engine.
#include "servers/everyserver.h"
#include "support/serverbench.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;
using servers::FaultServer;

namespace {

constexpr int Count = 40;

std::string name(int i) { return std::string(i < 10 ? "f0" : "f") + std::to_string(i); }

QStringList names(int count)
{
    QStringList result;
    for (int i = 0; i < count; ++i) {
        result.append(QString::fromStdString(name(i)));
    }
    return result;
}

class MarkedFiles : public servers::EveryServerWith<ServerBench> {
protected:
    void SetUp() override
    {
        EveryServerWith::SetUp();
        if (IsSkipped()) {
            return;
        }
        server = std::make_unique<servers::Server>(GetParam());
    }
    void expectAllRowsInOrder(const QStringList &shown) const
    {
        ASSERT_EQ(shell.queue.size(), Count);
        for (int i = 0; i < Count; ++i) {
            EXPECT_EQ(shell.queue[i].local, disk(shown.value(i)));
            EXPECT_FALSE(shell.queue[i].failed) << shell.queue[i].detail.toStdString();
        }
    }
    [[nodiscard]] std::string difference(int i) const
    {
        return servers::difference(server->root() / name(i),
                                   disk(QString::fromStdString(name(i))).toStdString());
    }
    std::unique_ptr<servers::Server> server;
};

class ManyFiles : public ServerBench {
protected:
    FaultServer server;
};

} // namespace

TEST_P(MarkedFiles, ArriveWholeAndHaveTheirRowsInOrder)
{
    for (int i = 0; i < Count; ++i) {
        servers::writeRandomFile(server->root() / name(i), i % 7 == 0 ? 300000 : 4096,
                                 static_cast<std::uint32_t>(i));
    }
    server->adoptFiles();
    ASSERT_TRUE(login(*server));
    download(names(Count));
    expectAllRowsInOrder(remote.names().filter(u"f"_s)); // without "." and ".."
    for (int i = 0; i < Count; ++i) {
        EXPECT_EQ(difference(i), "");
    }
    expectReady();
}

TEST_P(MarkedFiles, AreStoredWholeAndHaveTheirRowsInOrder)
{
    for (int i = 0; i < Count; ++i) {
        writeLocal(QString::fromStdString(name(i)),
                   QByteArray(i % 7 == 0 ? 300000 : i, static_cast<char>('a' + i % 20)));
    }
    ASSERT_TRUE(login(*server));
    upload(names(Count));
    expectAllRowsInOrder(names(Count));
    for (int i = 0; i < Count; ++i) {
        EXPECT_EQ(difference(i), "");
    }
    expectReady();
}

INSTANTIATE_TEST_SUITE_P(Servers, MarkedFiles, ::testing::ValuesIn(servers::allKinds()),
                         servers::parameterName);

TEST_F(ManyFiles, QuotaBoxesComeOneAfterTheOther)
{
    for (int i = 0; i < 6; ++i) {
        writeLocal(QString::fromStdString(name(i)), "x");
    }
    server.on({ .verb = "STOR", .text = "451 Quota" });
    ASSERT_TRUE(login(server));
    int open = 0;
    int most = 0;
    for (int i = 0; i < 6; ++i) {
        prompts.expectMessage(quotaMessage()).meanwhile([&] {
            most = std::max(most, ++open);
            QCoreApplication::processEvents(); // what came meanwhile must wait
            --open;
        });
    }
    upload(names(6));
    EXPECT_EQ(most, 1);
    EXPECT_EQ(statuses(), QStringList(6, u"Upload verweigert"_s));
    EXPECT_EQ(shell.log.count(quotaMessage()), 6);
    expectReady();
}

TEST_F(ManyFiles, TheLogTellsFileByFile)
{
    for (int i = 0; i < 12; ++i) {
        servers::writeRandomFile(server.root() / name(i), i % 3 == 0 ? 100000 : 10);
    }
    server.on({ .verb = "RETR", .argument = "*f04*", .text = "550 Verboten f04" });
    server.on({ .verb = "RETR", .argument = "*f09*", .text = "550 Verboten f09" });
    server.fault.replyDelay = 2;
    ASSERT_TRUE(login(server));
    download(names(12));
    EXPECT_GT(server.sessions(), 1);
    ASSERT_EQ(shell.queue.size(), 12);
    int good = 0;
    int bad = 0;
    for (const QueueRow &row : shell.queue) {
        if (row.failed) {
            ++bad;
            const qsizetype at = shell.log.indexOf(row.detail);
            EXPECT_TRUE(row.detail.endsWith(row.local.right(3)));
            EXPECT_EQ(shell.log.left(at).count(u"226 "_s), good) << row.detail.toStdString();
        } else {
            ++good;
        }
    }
    EXPECT_EQ(good, 10);
    EXPECT_EQ(bad, 2);
    EXPECT_EQ(shell.log.count(u"226 "_s), good);
    expectReady();
}
