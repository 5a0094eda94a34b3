// Servers list by their own clocks; what the user sees is the files' times.
#include "ftp/tree.h"

#include "ftp/civiltime.h"
#include "ftp/faultcase.h"
#include "servers/everyserver.h"

#include <array>
#include <ctime>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::int64_t minute = 60, hour = 60 * minute, day = 24 * hour;

void setTime(const fs::path &path, std::int64_t time)
{
    const std::array<timespec, 2> times { timespec { time, 0 }, timespec { time, 0 } };
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times.data(), 0), 0) << path;
}

std::int64_t timeOf(const fs::path &path)
{
    struct stat status { };
    return ::stat(path.c_str(), &status) == 0 ? status.st_mtime : -1;
}

/// A line of "ls -l". @param shown  by the server's clock
std::string line(const std::string &name, std::int64_t shown, const char *format = "%b %e %H:%M",
                 const std::string &mode = "-rw-r--r--")
{
    std::array<char, 32> text {};
    std::tm parts {};
    const std::time_t time = shown;
    std::strftime(text.data(), text.size(), format, ::gmtime_r(&time, &parts));
    return mode + " 1 u g 6 " + text.data() + " " + name + "\r\n";
}

class TimeZone : public FaultCase {
protected:
    TimeZone()
    {
        server.fault.noMlsd = true;
        servers::writeFile(server.root() / "seite.html", "inhalt");
        setTime(server.root() / "seite.html", changed);
    }
    /// The time of an entry of the current folder. @return -1 when there is none
    std::int64_t shownTime(const std::string &name = "seite.html")
    {
        const auto listed = run(m_client->client().list());
        EXPECT_TRUE(listed) << listed.error().text;
        for (const auto &entry : listed ? listed->entries : std::vector<ftp::FolderEntry> {}) {
            if (entry.name == name) {
                EXPECT_FALSE(entry.serverClock);
                return entry.time.value_or(-1);
            }
        }
        return -1;
    }

    /// Some time of a day of last month, which listings show to the minute.
    const std::int64_t changed
        = std::time(nullptr) / day * day - 30 * day + 10 * hour + 23 * minute;
};

} // namespace

TEST_F(TimeZone, IsTakenOutOfListedTimes)
{
    for (const std::int64_t ahead : { -5 * hour, -9 * hour - 30 * minute, hour, 13 * hour,
                                      5 * hour + 45 * minute, std::int64_t { 0 } }) {
        SCOPED_TRACE(ahead);
        server.fault.listing = line("seite.html", changed + ahead);
        connected();
        EXPECT_EQ(shownTime(), changed);
        EXPECT_EQ(m_client->knowledge().zoneOffset, ahead);
    }
}

TEST_F(TimeZone, IsMeasuredOnceWithAFileWhoseClockTimeIsShown)
{
    server.fault.listing = line("ordner", changed, "%b %e %H:%M", "drwxr-xr-x")
        + line("verweis", changed, "%b %e %H:%M", "lrwxrwxrwx")
        + line("alt.html", changed - 700 * day, "%b %e  %Y") + line("seite.html", changed + hour)
        + line("weitere.html", changed + 3 * hour);
    connected();
    EXPECT_EQ(shownTime(), changed);
    EXPECT_EQ(shownTime("weitere.html"), changed + 2 * hour);
    EXPECT_EQ(shownTime("ordner"), changed - hour);
    EXPECT_THAT(server.lines("MDTM"), ElementsAre("MDTM seite.html"));
}

TEST_F(TimeZone, DoesNotMoveTheDateOfAnOldFile)
{
    server.fault.listing = line("alt.html", changed - 700 * day, "%b %e  %Y")
        + line("seite.html", changed - 12 * hour);
    connected();
    EXPECT_EQ(shownTime("alt.html"), (changed - 700 * day) / day * day);
}

TEST_F(TimeZone, StaysUnknownWhereNoFileTellsIt)
{
    server.fault.listing = line("ordner", changed, "%b %e %H:%M", "drwxr-xr-x")
        + line("alt.html", changed - 700 * day, "%b %e  %Y");
    connected();
    EXPECT_EQ(shownTime("ordner"), changed);
    EXPECT_THAT(server.lines("MDTM"), IsEmpty());
    EXPECT_FALSE(m_client->knowledge().zoneOffset);
}

TEST_F(TimeZone, IsNoTimeThatNoClockOnEarthShows)
{
    for (const std::int64_t wrong : { 7 * minute, 15 * hour, -3 * day }) {
        SCOPED_TRACE(wrong);
        server.fault.listing = line("seite.html", changed + wrong);
        connected();
        EXPECT_EQ(shownTime(), changed + wrong); // changed meanwhile, perhaps: shown as it is told
        EXPECT_FALSE(m_client->knowledge().zoneOffset);
        server.fault.listing = line("seite.html", changed + hour);
        EXPECT_EQ(shownTime(), changed); // and measured the next time
    }
}

TEST_F(TimeZone, IsMeasuredLaterWhenAFileIsRefused)
{
    server.on({ .verb = "MDTM", .text = "550 Permission denied", .times = 1 });
    server.fault.listing = line("seite.html", changed + hour);
    connected();
    EXPECT_EQ(shownTime(), changed + hour);
    EXPECT_EQ(shownTime(), changed);
}

TEST_F(TimeZone, IsNotAskedAgainWhereTheCommandIsUnknown)
{
    server.on({ .verb = "MDTM", .text = "500 MDTM not understood" });
    server.fault.listing = line("seite.html", changed + hour);
    connected();
    EXPECT_EQ(shownTime(), changed + hour);
    EXPECT_EQ(shownTime(), changed + hour);
    EXPECT_EQ(server.lines("MDTM").size(), 1U);
}

TEST_F(TimeZone, IsNoQuestionWhereListingsTellUniversalTime)
{
    server.fault.noMlsd = false;
    connected();
    EXPECT_EQ(shownTime(), changed);
    EXPECT_THAT(server.lines("MDTM"), IsEmpty());
}

TEST_F(TimeZone, TellsTheYearOfAFileThatIsNewerThanOurClock)
{
    // Stored this minute, by a clock that is half a day ahead of ours: not a year old.
    const std::int64_t now = std::time(nullptr) / minute * minute;
    setTime(server.root() / "seite.html", now);
    server.fault.listing = line("seite.html", now + 12 * hour);
    connected();
    EXPECT_EQ(shownTime(), now);
    EXPECT_EQ(shownTime(), now);
}

TEST_F(TimeZone, IsTakenOutOfTheFilesOfAFolderDownload)
{
    fs::create_directory(server.root() / "web");
    fs::copy_file(server.root() / "seite.html", server.root() / "web" / "seite.html");
    server.fault.listing = line("seite.html", changed - 4 * hour);
    connected();
    ASSERT_EQ(shownTime(), changed);
    const auto got = run(ftp::getTree(m_client->client(), "/web", local("web"), ftp::Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(timeOf(local("web/seite.html")), changed);
}

namespace {

/// Real servers that list by a clock on the other side of the ocean.
class ElsewhereServers : public servers::EveryServer { };

servers::Options elsewhere(servers::Kind kind)
{
    servers::Options options;
    options.timeZone = "America/New_York";
    if (kind == servers::Kind::ProFtpd) {
        options.extra = { "TimesGMT off", "FactsAdvertise off" };
    }
    return options;
}

} // namespace

TEST_P(ElsewhereServers, ShowTheTimesOfTheFiles)
{
    servers::Server server(GetParam(), elsewhere(GetParam()));
    const std::int64_t changed = (std::time(nullptr) - 3 * day) / minute * minute;
    servers::writeFile(server.root() / "seite.html", "inhalt");
    setTime(server.root() / "seite.html", changed);
    server.adoptFiles();
    TestClient client(server.port(), server.user(), server.password());
    const auto opened = client.open();
    ASSERT_TRUE(opened) << opened.error().text;
    const auto listed = client.run(client.client().list());
    ASSERT_TRUE(listed) << listed.error().text;
    const auto found = std::find_if(listed->entries.begin(), listed->entries.end(),
                                    [](const auto &entry) { return entry.name == "seite.html"; });
    ASSERT_NE(found, listed->entries.end());
    EXPECT_EQ(found->time, changed);
    if (GetParam() == servers::Kind::ProFtpd) {
        EXPECT_NE(client.knowledge().zoneOffset.value_or(0), 0) << "the server lists in UTC";
    }
}

INSTANTIATE_TEST_SUITE_P(Servers, ElsewhereServers, testing::ValuesIn(servers::allKinds()),
                         servers::parameterName);

TEST_F(TimeZone, IsMeasuredByAFolderDownloadThatFindsNoneKnown)
{
    for (const char *name : { "a.html", "b.html", "c.html" }) {
        servers::writeFile(server.root() / "web" / name, "inhalt");
        setTime(server.root() / "web" / name, changed);
    }
    connected(); // to a folder that tells nothing about it
    server.fault.listing = line("a.html", changed - 4 * hour) + line("b.html", changed - 4 * hour)
        + line("c.html", changed - 4 * hour);
    const auto got = run(ftp::getTree(m_client->client(), "/web", local("web"), ftp::Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    for (const char *name : { "a.html", "b.html", "c.html" }) {
        EXPECT_EQ(timeOf(local("web/" + std::string(name))), changed) << name;
    }
    EXPECT_LT(server.lines("MDTM").size(), 3U); // then it is known
}
