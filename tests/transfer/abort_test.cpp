// Aborts at any moment, files that change while they are sent, and full disks on this side.
#include "servers/everyserver.h"
#include "support/serverbench.h"

#include <atomic>
#include <cerrno>
#include <random>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using servers::FaultServer;

namespace {

std::atomic<off_t> fullAt { -1 };

} // namespace

/// Takes the place of the C library's: a full disk for whoever runs the tests, without one.
extern "C" ssize_t write(int file, const void *bytes, size_t count)
{
    struct stat status { };
    const off_t limit = fullAt;
    if (limit >= 0 && ::fstat(file, &status) == 0 && S_ISREG(status.st_mode)
        && ::lseek(file, 0, SEEK_CUR) + static_cast<off_t>(count) > limit) {
        errno = ENOSPC;
        return -1;
    }
    return ::syscall(SYS_write, file, bytes, count);
}

namespace {

std::int64_t sizeOf(const std::filesystem::path &path)
{
    return static_cast<std::int64_t>(std::filesystem::file_size(path));
}

class ChangingTransfer : public ServerBench {
protected:
    FaultServer server;
};

/// The disk is full for every file that reaches a size, while this lives.
class SizeLimit {
public:
    explicit SizeLimit(off_t bytes) { fullAt = bytes; }
    ~SizeLimit() { fullAt = -1; }
    SizeLimit(const SizeLimit &) = delete;
    SizeLimit &operator=(const SizeLimit &) = delete;
};

class AbortedAtRandom : public ServerBench {
protected:
    static constexpr int Points = 50;

    void fill()
    {
        for (int i = 0; i < 8; ++i) {
            const std::string name = "f" + std::to_string(i);
            const std::size_t size = i % 3 == 0 ? 400000 : 2000;
            servers::writeRandomFile(server.root() / name, size, static_cast<std::uint32_t>(i));
            servers::writeRandomFile(server.root() / "netz" / "tief" / name, size / 2,
                                     static_cast<std::uint32_t>(100 + i));
        }
    }
    /// Every file on the side that received is a piece of the other side's from its beginning, and
    /// what a row calls done is whole.
    void expectHonest(const std::filesystem::path &source, const std::filesystem::path &target,
                      bool outward)
    {
        for (const auto &entry : std::filesystem::recursive_directory_iterator(target)) {
            if (entry.is_regular_file()) {
                const auto name = std::filesystem::relative(entry.path(), target);
                const std::string part = servers::readFile(entry.path());
                const std::string whole = servers::readFile(source / name);
                EXPECT_EQ(part, whole.substr(0, part.size())) << name;
            }
        }
        for (const QueueRow &row : shell.queue) {
            const QString path = outward ? row.local : row.remote;
            const std::string name = path.section(u'/', -1).toStdString();
            if (!row.failed) {
                EXPECT_EQ(servers::difference(source / name, target / name), "") << name;
            } else {
                EXPECT_FALSE(row.detail.isEmpty());
            }
        }
    }

    FaultServer server;
};

} // namespace

TEST_F(AbortedAtRandom, LeavesAnHonestQueueAndAReadyWindow)
{
    const unsigned seed = std::random_device {}();
    RecordProperty("seed", static_cast<int>(seed));
    std::mt19937 random(seed);
    fill();
    server.fault.replyDelay = 1;
    const std::filesystem::path here = root.path().toStdString();
    int aborted = 0;
    for (int point = 0; point < Points && !HasFailure(); ++point) {
        const bool outward = random() % 2 == 0;
        int left = static_cast<int>(random() % 40);
        const auto source = outward ? here : server.root();
        const auto target = outward ? server.root() : here;
        if (outward) { // the other way round, with what the server had
            for (const auto &entry : std::filesystem::directory_iterator(server.root())) {
                std::filesystem::remove_all(here / entry.path().filename());
                std::filesystem::rename(entry.path(), here / entry.path().filename());
            }
        }
        globals.session.ConnectionLost = false;
        shell.queue.clear();
        ASSERT_TRUE(login(server));
        onProgress = [&] {
            if (left-- == 0) {
                abort();
                ++aborted;
            }
        };
        QStringList all { u"netz"_s };
        for (int i = 0; i < 8; ++i) {
            all.append(u"f"_s + QString::number(i));
        }
        outward ? upload(all) : download(all);
        onProgress = nullptr;
        ftp.close();
        ASSERT_TRUE(server.waitForEnd());
        expectReady();
        expectHonest(source, target, outward);
        // Everything back to the server for the next round.
        for (const auto &entry : std::filesystem::directory_iterator(target)) {
            std::filesystem::remove_all(entry.path());
        }
        if (outward) {
            for (const auto &entry : std::filesystem::directory_iterator(here)) {
                std::filesystem::rename(entry.path(), server.root() / entry.path().filename());
            }
        }
        if (HasFailure()) {
            ADD_FAILURE() << "seed " << seed << ", point " << point << '\n'
                          << shell.log.toStdString();
        }
    }
    EXPECT_GT(aborted, Points / 4);
}

TEST_F(ChangingTransfer, AFileThatGrowsWhileItIsSentArrivesAsItWas)
{
    constexpr qint64 size = 200000000;
    QFile file(disk(u"log"_s));
    ASSERT_TRUE(file.open(QIODevice::Append) && file.resize(size)); // a hole
    ASSERT_TRUE(login(server));
    onProgress = [&file, grown = false]() mutable {
        if (!std::exchange(grown, true)) {
            ASSERT_TRUE(file.write("noch mehr") > 0 && file.flush());
        }
    };
    upload({ u"log"_s });
    ASSERT_EQ(shell.queue.size(), 1);
    EXPECT_FALSE(shell.queue[0].failed) << shell.queue[0].detail.toStdString();
    EXPECT_EQ(sizeOf(server.root() / "log"), size);
    EXPECT_GT(QFileInfo(disk(u"log"_s)).size(), size);
    expectReady();
}

TEST_F(ChangingTransfer, AFileThatShrinksWhileItIsSentIsNoSuccess)
{
    QFile file(disk(u"log"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(2000000000)); // a hole
    ASSERT_TRUE(login(server));
    onProgress = [&, done = false]() mutable {
        if (!std::exchange(done, true)) {
            ASSERT_TRUE(file.resize(1000));
        }
    };
    upload({ u"log"_s });
    EXPECT_EQ(statuses(), QStringList { u"Upload verweigert"_s });
    EXPECT_TRUE(shell.log.contains(u"became shorter"_s)) << shell.log.toStdString();
    expectReady();
}

TEST_F(ChangingTransfer, AFileThatVanishesBeforeItsTurnIsNoOthersFault)
{
    for (const char *name : { "a", "b", "c", "d" }) {
        writeLocal(QString::fromLatin1(name), QByteArray(50000, 'x'));
    }
    ASSERT_TRUE(login(server));
    showBoth();
    local.selectAll();
    QFile::remove(disk(u"c"_s));
    commands.cmd_upload_Click();
    EXPECT_EQ(statuses(),
              (QStringList { u"Upload"_s, u"Upload"_s, u"Upload verweigert"_s, u"Upload"_s }));
    EXPECT_TRUE(shell.log.contains(shell.queue[2].detail));
    EXPECT_EQ(servers::readFile(server.root() / "d"), std::string(50000, 'x'));
    expectReady();
}

TEST_F(ChangingTransfer, AFullLocalDiskStopsTheBatchAndSparesTheOlderFile)
{
    for (const char *name : { "a", "b", "c" }) {
        servers::writeRandomFile(server.root() / name, 300000);
    }
    writeLocal(u"b"_s, "alt");
    ASSERT_TRUE(login(server));
    dialogs.answer = [](const ConflictQuestion &) {
        return ConflictReply { ConflictAnswer::Overwrite, false };
    };
    {
        const SizeLimit limit(100000);
        download({ u"b"_s, u"c"_s });
    }
    ASSERT_EQ(shell.queue.size(), 1);
    EXPECT_TRUE(shell.queue[0].failed);
    EXPECT_TRUE(shell.log.contains(u"Auf dem lokalen Datenträger ist kein Platz mehr frei."_s));
    if (shell.queue[0].local.endsWith(u'b')) {
        EXPECT_FALSE(onDisk(u"c"_s)) << "the batch went on";
    }
    EXPECT_EQ(readLocal(u"b"_s), "alt");
    expectReady();
}

TEST_F(ChangingTransfer, AFullLocalDiskStopsARunAndAFolder)
{
    for (int i = 0; i < 12; ++i) {
        servers::writeRandomFile(server.root() / ("f" + std::to_string(i)), 300000);
        servers::writeRandomFile(server.root() / "netz" / ("f" + std::to_string(i)), 300000);
    }
    ASSERT_TRUE(login(server));
    const SizeLimit limit(100000);
    download({ u"f0"_s, u"f1"_s, u"f2"_s, u"f3"_s, u"f4"_s, u"f5"_s, u"f6"_s, u"f7"_s });
    EXPECT_LT(shell.queue.size(), 8) << "the batch went on";
    EXPECT_EQ(shell.log.count(u"Die Übertragung wurde angehalten."_s), 1);
    expectReady();
    shell.queue.clear();
    download({ u"netz"_s, u"f9"_s });
    EXPECT_TRUE(shell.log.contains(u"kein Platz mehr frei"_s));
    EXPECT_LT(shell.queue.size(), 2) << "the batch went on";
    expectReady();
}

TEST_F(ChangingTransfer, AFolderThatCannotFitIsNotBegun)
{
    servers::writeFile(server.root() / "netz" / "klein", "x");
    ASSERT_TRUE(login(server));
    showBoth();
    // Twice as much as the disk could hold if it were empty.
    const auto all = std::filesystem::space(disk().toStdString()).capacity;
    const std::string big = "type=file;size=" + std::to_string(all) + ";modify=20260101000000; ";
    server.fault.machineListing = big + "riesig\r\n" + big + "riesig2\r\n"
        + "type=file;size=1;modify=20260101000000; klein\r\n";
    remote.select({ u"netz"_s });
    commands.cmd_download_Click();
    ASSERT_EQ(shell.queue.size(), 1);
    EXPECT_TRUE(shell.queue[0].failed);
    EXPECT_TRUE(shell.log.contains(u"Der Platz auf dem lokalen Datenträger reicht nicht"_s))
        << shell.log.toStdString();
    EXPECT_TRUE(server.lines("RETR").empty());
    expectReady();
}

TEST_F(ChangingTransfer, BothDisksFullAreToldApart)
{
    writeLocal(u"a"_s, QByteArray(50000, 'x'));
    servers::writeRandomFile(server.root() / "b", 300000);
    server.fault.diskFullAfter = 10000;
    ASSERT_TRUE(login(server));
    upload({ u"a"_s });
    EXPECT_TRUE(shell.log.contains(u"Auf dem Server ist kein Platz mehr frei."_s));
    const SizeLimit limit(100000);
    server.fault.diskFullAfter = -1;
    download({ u"b"_s });
    EXPECT_TRUE(shell.log.contains(u"Auf dem lokalen Datenträger ist kein Platz"_s));
    EXPECT_FALSE(shell.log.contains(u"Auf dem Server"_s));
    expectReady();
}

namespace {

constexpr std::int64_t Whole = 5LL << 30;
constexpr std::int64_t Part = 9LL << 29; // 4.5 GiB

/// A file of holes with a mark at the given places.
void writeHoles(const std::filesystem::path &path, std::int64_t size,
                const std::vector<std::int64_t> &marks)
{
    QFile file(QString::fromStdString(path.string()));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(size));
    for (const std::int64_t at : marks) {
        ASSERT_TRUE(file.seek(at) && file.write("Marke") == 5);
    }
}

std::string markAt(const std::filesystem::path &path, std::int64_t at)
{
    QFile file(QString::fromStdString(path.string()));
    return file.open(QIODevice::ReadOnly) && file.seek(at) ? file.read(5).toStdString() : "";
}

class HugeFile : public servers::EveryServerWith<ServerBench> { };

} // namespace

TEST_P(HugeFile, IsResumedBeyondFourGigabytesBothWays)
{
    servers::Server server(GetParam());
    const std::vector<std::int64_t> marks { 0, Part - 5, Part, Whole - 5 };
    const std::vector<std::int64_t> keptMarks { 0, Part - 5 };
    const std::filesystem::path here = disk(u"h"_s).toStdString();
    writeHoles(server.root() / "h", Whole, marks);
    writeHoles(here, Part, keptMarks);
    server.adoptFiles();
    ASSERT_TRUE(login(server));
    dialogs.answer = [](const ConflictQuestion &question) {
        EXPECT_TRUE(question.mayResume);
        return ConflictReply { ConflictAnswer::Resume, false };
    };
    qint64 most = 0;
    onProgress = [&] { most = std::max(most, progress.value()); };
    download({ u"h"_s });
    ASSERT_FALSE(shell.queue.value(0).failed) << shell.queue[0].detail.toStdString();
    EXPECT_EQ(most, Whole);
    EXPECT_EQ(progress.maximum(), Whole);
    EXPECT_EQ(sizeOf(here), Whole);
    for (const std::int64_t at : marks) {
        EXPECT_EQ(markAt(here, at), "Marke") << at;
    }

    std::filesystem::remove(server.root() / "h");
    writeHoles(server.root() / "h", Part, keptMarks);
    server.adoptFiles();
    most = 0;
    upload({ u"h"_s });
    ASSERT_FALSE(shell.queue.value(1).failed) << shell.queue[1].detail.toStdString();
    EXPECT_EQ(most, Whole);
    EXPECT_EQ(sizeOf(server.root() / "h"), Whole);
    for (const std::int64_t at : marks) {
        EXPECT_EQ(markAt(server.root() / "h", at), "Marke") << at;
    }
    expectReady();
}

INSTANTIATE_TEST_SUITE_P(Servers, HugeFile,
                         ::testing::Values(servers::Kind::Vsftpd, servers::Kind::PyFtpd),
                         servers::parameterName);
