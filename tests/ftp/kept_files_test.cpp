// Nothing of the user's is mixed up, left out or called done when it is not.
#include "ftp/crew.h"
#include "ftp/tree.h"

#include "ftp/faultcase.h"

#include <filesystem>

namespace fs = std::filesystem;
using ftp::ErrorKind;
using ftp::Type;
using servers::Rule;

namespace {

class KeptFiles : public FaultCase { };

} // namespace

TEST_F(KeptFiles, AnUploadIsNotContinuedOnAnOlderFile)
{
    servers::writeFile(server.root() / "web" / "f", std::string(10000, 'O'));
    servers::writeFile(folder.path() / "web" / "f", std::string(50000, 'N'));
    // The bytes are on their way already when the server breaks off before it took any.
    server.fault.greeting = "220 (vsFTPd 3.0.3)";
    server.on({ .verb = "STOR", .action = Rule::Drop, .times = 1 });
    ftp::Client &client = connected();
    const auto put = run(ftp::putTree(client, local("web"), "/web", Type::Binary));
    EXPECT_TRUE(put) << put.error().text;
    EXPECT_EQ(servers::readFile(server.root() / "web" / "f"), std::string(50000, 'N'));
}

TEST_F(KeptFiles, AServerThatMayDislikeEarlyBytesGetsThemAfterItsReply)
{
    server.fault.dislikesEarlyData = true;
    servers::writeFile(folder.path() / "web" / "f", "inhalt");
    servers::writeFile(folder.path() / "web" / "leer", "");
    ftp::Client &client = connected();
    const auto put = run(client.put(local("web/f"), "f", 0, Type::Binary));
    EXPECT_TRUE(put) << put.error().text;
    EXPECT_EQ(servers::readFile(server.root() / "f"), "inhalt");
    const auto tree = run(ftp::putTree(client, local("web"), "/web", Type::Binary));
    EXPECT_TRUE(tree) << tree.error().text;
    EXPECT_EQ(servers::readFile(server.root() / "web" / "f"), "inhalt");
    EXPECT_TRUE(fs::exists(server.root() / "web" / "leer"));
}

TEST_F(KeptFiles, AServerKnownToBearEarlyBytesGetsThemAtOnce)
{
    server.fault.dislikesEarlyData = true;
    server.fault.greeting = "220 (vsFTPd 3.0.3)";
    servers::writeFile(folder.path() / "f", "inhalt");
    ftp::Client &client = connected();
    const auto put = run(client.put(local("f"), "f", 0, Type::Binary));
    ASSERT_FALSE(put); // it only says that it is that server
    EXPECT_EQ(put.error().replyCode, 425);
}

TEST_F(KeptFiles, AFolderThatNoCommandMayNameIsLeftOutAlone)
{
    for (const char *name : { "a", "b", "c\nd", "e" }) {
        servers::writeFile(folder.path() / "oben" / name / "f", "inhalt");
    }
    ftp::Client &client = connected();
    const auto put = run(ftp::putTree(client, local("oben"), "/oben", Type::Binary));
    ASSERT_FALSE(put);
    EXPECT_EQ(put.error().kind, ErrorKind::BadArgument);
    for (const char *name : { "a", "b", "e" }) {
        EXPECT_TRUE(fs::exists(server.root() / "oben" / name / "f")) << name;
    }
    EXPECT_FALSE(run(client.removeFile("gibtesnicht"))); // the replies still fit
}

TEST_F(KeptFiles, CommandsAreSentTogetherOrNotAtAll)
{
    ftp::Client &client = connected();
    std::vector<std::string> commands { "MKD gut", "MKD schlecht\r\nDELE alles" };
    const auto replies = run(client.session().askAll(commands));
    ASSERT_FALSE(replies);
    EXPECT_EQ(replies.error().kind, ErrorKind::BadArgument);
    EXPECT_TRUE(run(client.raw("NOOP")));
    EXPECT_TRUE(server.lines("MKD").empty());
}

TEST_F(KeptFiles, AFolderThatCannotBeReadIsNoEmptyFolder)
{
    server.fault.noMlsd = true;
    server.fault.listing = "<html>Wartung</html>\r\nbitte warten\r\n";
    servers::writeFile(server.root() / "web" / "f", "inhalt");
    ftp::Client &client = connected();
    const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::Protocol);
    EXPECT_TRUE(noted("/web"));
}

TEST_F(KeptFiles, AnOptionTakenForANameIsNoEmptyFolder)
{
    server.fault.noMlsd = true;
    server.fault.optionIsName = true;
    servers::writeFile(server.root() / "web" / "unten" / "f", "inhalt");
    for (const char *answer : { "", "-a: No such file or directory\r\n" }) {
        server.fault.optionAnswer = answer;
        fs::remove_all(local("web"));
        ftp::Client &client = connected();
        const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(servers::difference(local("web"), server.root() / "web"), "");
        EXPECT_TRUE(run(client.changeFolder("/web")));
        const auto listed = run(client.list());
        ASSERT_TRUE(listed) << listed.error().text;
        EXPECT_EQ(listed->entries.size(), 1U);
    }
}

TEST_F(KeptFiles, AFullDiskIsToldAlsoBehindARefusedFile)
{
    ftp::Client &client = connected();
    ftp::Crew crew(client,
                   [](ftp::Session &) -> ftp::Awaitable<ftp::Status> { co_return ftp::Status {}; });
    crew.failed({ ErrorKind::Refused, 550, "550 No" });
    crew.failed({ ErrorKind::LocalDiskFull, 0, "full" });
    crew.failed({ ErrorKind::Refused, 550, "550 No" });
    const auto worked = run(crew.run());
    ASSERT_FALSE(worked);
    EXPECT_EQ(worked.error().kind, ErrorKind::LocalDiskFull);
}

TEST_F(KeptFiles, AFolderUploadShowsThatItRunsBeforeItsFirstFile)
{
    servers::writeFile(folder.path() / "web" / "f", "neu");
    ftp::Client &client = connected();
    server.on({ .verb = "MKD", .action = Rule::Drop }); // the end comes before any file
    EXPECT_FALSE(run(ftp::putTree(client, local("web"), "/neu", Type::Binary)));
    EXPECT_FALSE(m_client->progress().empty());
    EXPECT_TRUE(server.lines("STOR").empty());
}

TEST_F(KeptFiles, ALineLostWhileAFolderIsRemovedLeavesNothingStanding)
{
    for (const int skip : { 0, 1, 2 }) {
        servers::writeFile(server.root() / "weg" / "a" / "b" / "f", "inhalt");
        servers::writeFile(server.root() / "weg" / "c" / "f", "inhalt");
        server.clearRules();
        server.on({ .verb = "RMD", .action = Rule::Drop, .skip = skip, .times = 1 });
        ftp::Client &client = connected();
        const auto removed = run(ftp::removeTree(client, "/weg"));
        EXPECT_TRUE(removed) << removed.error().text;
        EXPECT_FALSE(fs::exists(server.root() / "weg")) << skip;
    }
}

TEST_F(KeptFiles, AShorterFileOnTheServerIsFetchedAnew)
{
    servers::writeFile(server.root() / "f", std::string(500, 'N'));
    servers::writeFile(folder.path() / "f", std::string(1000, 'O'));
    ftp::Client &client = connected();
    const auto got = run(client.get("f", local("f"), 1000, Type::Binary));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(*got, 0);
    EXPECT_EQ(servers::readFile(folder.path() / "f"), std::string(500, 'N'));
}

TEST_F(KeptFiles, AContinuedFileMustHaveTheServersSize)
{
    server.fault.forgetRestart = true; // the whole file comes behind what is there
    servers::writeFile(server.root() / "f", std::string(2000, 'N'));
    servers::writeFile(folder.path() / "f", std::string(1000, 'N'));
    ftp::Client &client = connected();
    const auto got = run(client.get("f", local("f"), 1000, Type::Binary));
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::Truncated);
}

TEST_F(KeptFiles, AVanishedFileIsNotContinuedButSentWhole)
{
    servers::writeFile(folder.path() / "f", std::string(5000, 'N'));
    ftp::Client &client = connected();
    const auto put = run(client.put(local("f"), "f", 2000, Type::Binary));
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(*put, 0);
    EXPECT_EQ(servers::readFile(server.root() / "f"), std::string(5000, 'N'));
}

TEST_F(KeptFiles, ALongerFileOnTheServerIsNotReplacedByContinuing)
{
    servers::writeFile(server.root() / "f", std::string(9000, 'O'));
    servers::writeFile(folder.path() / "f", std::string(5000, 'N'));
    ftp::Client &client = connected();
    EXPECT_FALSE(run(client.put(local("f"), "f", 9000, Type::Binary)));
    EXPECT_EQ(servers::readFile(server.root() / "f"), std::string(9000, 'O'));
    EXPECT_TRUE(noted("ist größer als die lokale"));
}

TEST_F(KeptFiles, ARefusedUploadDoesNotTouchTheTimeOfTheOlderFile)
{
    server.fault.greeting = "220 (vsFTPd 3.0.3)"; // gets commands ahead
    for (int i = 0; i < 3; ++i) {
        servers::writeFile(folder.path() / "web" / ("f" + std::to_string(i)), "neu");
    }
    server.on({ .verb = "STOR", .argument = "*f1", .text = "550 Overwrite permission denied" });
    ftp::Client &client = connected();
    EXPECT_FALSE(run(ftp::putTree(client, local("web"), "/web", Type::Binary)));
    const auto times = server.lines("MFMT");
    EXPECT_EQ(times.size(), 2U); // also the last one, which no other upload follows
    EXPECT_TRUE(std::none_of(times.begin(), times.end(),
                             [](const std::string &line) { return line.ends_with("/f1"); }));
    EXPECT_TRUE(run(client.raw("NOOP")));
}

TEST_F(KeptFiles, AServerWithoutEncryptionIsNoWrongPassword)
{
    server.on({ .verb = "AUTH", .text = "530 Please login with USER and PASS." });
    const ftp::Status opened = prepared(ftp::Encryption::Always).open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, ErrorKind::TlsFailed);
    EXPECT_EQ(opened.error().text.find("530"), std::string::npos);
    EXPECT_FALSE(m_client->replies().empty()); // but the log has it
}

TEST_F(KeptFiles, AServerThatDoesNotTellItsFolderIsInTheOneItWasSentTo)
{
    fs::create_directories(server.root() / "web" / "unten");
    ftp::Client &client = connected();
    server.on({ .verb = "PWD", .text = "550 No" });
    EXPECT_TRUE(run(client.changeFolder("/web")));
    EXPECT_EQ(client.folder(), "/web");
    EXPECT_TRUE(run(client.changeFolder("unten")));
    EXPECT_EQ(client.folder(), "/web/unten");
}

TEST_F(KeptFiles, RepliesInsideAFolderAreNoNewsButAFullWebSpaceIs)
{
    for (int i = 0; i < 10; ++i) {
        servers::writeFile(folder.path() / "web" / ("f" + std::to_string(i)), "neu");
    }
    server.on({ .verb = "STOR", .argument = "*f5", .text = "451 Quota exceeded", .times = 1 });
    ftp::Client &client = connected();
    m_client->replies().clear();
    EXPECT_FALSE(run(ftp::putTree(client, local("web"), "/web", Type::Binary)));
    const auto &told = m_client->replies();
    EXPECT_EQ(std::count_if(told.begin(), told.end(),
                            [](const std::string &line) { return line.starts_with("451"); }),
              1);
    EXPECT_EQ(std::count_if(told.begin(), told.end(),
                            [](const std::string &line) { return line.starts_with("226"); }),
              0);
}

TEST_F(KeptFiles, PermissionsGoToTheNameInTheServersBytes)
{
    server.fault.noUtf8 = true;
    servers::writeFile(server.root() / "K\xE4se.html", "inhalt");
    ftp::Client &client = connected();
    ASSERT_TRUE(run(client.list()));
    EXPECT_TRUE(run(client.raw("SITE chmod 644 Käse.html")));
    EXPECT_EQ(server.lines("SITE").back(), "SITE chmod 644 K\xE4se.html");
}

TEST_F(KeptFiles, HiddenFilesAreFetchedAlthoughAListingWasRefusedOnce)
{
    servers::writeFile(server.root() / "web" / ".htaccess", "deny");
    servers::writeFile(server.root() / "web" / "unten" / ".htaccess", "allow");
    server.fault.noMlsd = true;
    server.on({ .verb = "LIST", .argument = "-a", .text = "425 No data connection.", .times = 1 });
    ftp::Client &client = connected();
    const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
    EXPECT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::readFile(folder.path() / "web" / ".htaccess"), "deny");
    EXPECT_EQ(servers::readFile(folder.path() / "web" / "unten" / ".htaccess"), "allow");
}

TEST_F(KeptFiles, APassingRefusalDoesNotHideFilesForGood)
{
    servers::writeFile(server.root() / ".htaccess", "deny");
    server.fault.noMlsd = true;
    server.on({ .verb = "LIST", .argument = "-a", .text = "425 No data connection.", .times = 1 });
    ftp::Client &client = connected();
    EXPECT_TRUE(run(client.list()));
    const auto listed = run(client.list());
    ASSERT_TRUE(listed);
    EXPECT_TRUE(std::any_of(listed->entries.begin(), listed->entries.end(),
                            [](const auto &entry) { return entry.name == ".htaccess"; }));
}

TEST_F(KeptFiles, AFolderThatMayNotBeListedDoesNotHideFilesInOthers)
{
    servers::writeFile(server.root() / ".htaccess", "deny");
    servers::writeFile(server.root() / "web" / ".htaccess", "deny");
    server.fault.noMlsd = true;
    server.on({ .verb = "LIST", .text = "550 Permission denied.", .times = 2 });
    ftp::Client &client = connected();
    EXPECT_FALSE(run(client.list()));
    const auto listed = run(client.list());
    ASSERT_TRUE(listed);
    EXPECT_TRUE(std::any_of(listed->entries.begin(), listed->entries.end(),
                            [](const auto &entry) { return entry.name == ".htaccess"; }));
    server.on({ .verb = "LIST", .text = "550 Permission denied.", .times = 2 });
    EXPECT_FALSE(run(ftp::getTree(client, "/web", local("web"), Type::Binary)));
    EXPECT_TRUE(run(ftp::getTree(client, "/web", local("web"), Type::Binary)));
    EXPECT_EQ(servers::readFile(folder.path() / "web" / ".htaccess"), "deny");
}

TEST_F(KeptFiles, ANameThatNoCommandMayCarryIsRefusedBeforeAnythingIsSent)
{
    server.on({ .verb = "MDTM", .text = "500 Unknown" });
    ftp::Client &client = connected();
    ASSERT_FALSE(run(client.get("f", local("f"), 0, Type::Ascii))); // no MDTM from now on
    const auto got = run(client.get("a\rb", local("f"), 0, Type::Ascii));
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::BadArgument);
    EXPECT_TRUE(client.usable());
}

TEST_F(KeptFiles, AListingThatBreaksOffIsNotToldTwice)
{
    servers::writeFile(server.root() / "eins", "1");
    servers::writeFile(server.root() / "zwei", "2");
    server.fault.noMlsd = true;
    server.fault.faultyListings = true;
    server.fault.dropDataAfter = 100;
    server.fault.faultyTransfers = 1;
    ftp::Client &client = connected();
    EXPECT_FALSE(run(client.list()));
    EXPECT_EQ(server.lines("LIST").size(), 1U);
}

TEST_F(KeptFiles, AFolderIsFetchedWhereMachineListingsAreForbidden)
{
    servers::writeFile(server.root() / "web" / "unten" / "f", "inhalt");
    server.on({ .verb = "MLSD", .text = "500 Forbidden." });
    ftp::Client &client = connected();
    const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
    EXPECT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::readFile(folder.path() / "web" / "unten" / "f"), "inhalt");
}

TEST_F(KeptFiles, AnUploadIsNotContinuedOnAFileThatTheServerKeepsMeanwhile)
{
    const std::string wanted(3'000'000, 'N');
    servers::writeFile(server.root() / "web" / "f", std::string(10'000, 'O'));
    servers::writeFile(folder.path() / "web" / "f", wanted);
    server.fault.storesAside = true;
    server.fault.dropAllAfter = 1'000'000;
    server.fault.faultyTransfers = 1;
    ftp::Client &client = connected();
    const auto put = run(ftp::putTree(client, local("web"), "/web", Type::Binary));
    EXPECT_TRUE(put) << put.error().text;
    EXPECT_TRUE(servers::readFile(server.root() / "web" / "f") == wanted);
}

TEST_F(KeptFiles, AnUploadThatBrokeOffGoesOnWhereNothingStoodBefore)
{
    const std::string wanted(3'000'000, 'N');
    servers::writeFile(folder.path() / "web" / "f", wanted);
    server.fault.dropAllAfter = 1'000'000;
    server.fault.faultyTransfers = 1;
    ftp::Client &client = connected();
    const auto put = run(ftp::putTree(client, local("web"), "/web", Type::Binary));
    EXPECT_TRUE(put) << put.error().text;
    EXPECT_TRUE(servers::readFile(server.root() / "web" / "f") == wanted);
    EXPECT_EQ(server.lines("REST").size(), 1U);
}

TEST_F(KeptFiles, AServerThatRefusesCommandsDuringTransfersGetsEveryFile)
{
    for (const char *name : { "a", "b", "c", "d", "e" }) {
        servers::writeFile(folder.path() / "web" / name, name);
    }
    server.fault.refusesDuringTransfers = true;
    ftp::Client &client = connected();
    const auto put = run(ftp::putTree(client, local("web"), "/web", Type::Binary));
    EXPECT_TRUE(put) << put.error().text;
    for (const char *name : { "a", "b", "c", "d", "e" }) {
        EXPECT_EQ(servers::readFile(server.root() / "web" / name), name);
    }
    EXPECT_LE(server.sessions(), 2); // it was learned once
}

TEST_F(KeptFiles, WhatOnlyAnotherSessionMayNotDoTheFirstOneDoes)
{
    for (int i = 0; i < 20; ++i) {
        servers::writeFile(server.root() / "web" / std::to_string(i), std::to_string(i));
    }
    server.fault.replyDelay = 5; // so that there is time for others to join
    server.on({ .verb = "RETR", .text = "450 One transfer at a time.", .fromSession = 2 });
    ftp::Client &client = connected(ftp::Encryption::Never, 3);
    const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
    EXPECT_TRUE(got) << got.error().text;
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(servers::readFile(folder.path() / "web" / std::to_string(i)), std::to_string(i));
    }
    EXPECT_GT(server.sessions(), 1);
}

TEST_F(KeptFiles, ALinkThatMayNotBeReadIsTold)
{
    servers::writeFile(server.root() / "web" / "f", "inhalt");
    server.fault.noMlsd = true;
    server.fault.listing = "lrwxrwxrwx 1 u g 4 Jan 01 2026 geheim -> /weg\r\n"
                           "lrwxrwxrwx 1 u g 4 Jan 01 2026 ordner -> /web\r\n"
                           "-rw-r--r-- 1 u g 6 Jan 01 2026 f\r\n";
    server.on({ .verb = "RETR", .argument = "/web/geheim", .text = "550 Permission denied." });
    server.on({ .verb = "RETR", .argument = "/web/ordner", .text = "550 Not a file." });
    server.on({ .verb = "CWD", .argument = "/web/ordner", .text = "250 Okay." });
    ftp::Client &client = connected();
    const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
    EXPECT_TRUE(got) << got.error().text;
    EXPECT_TRUE(noted("Verknüpfung ohne Ziel oder ohne Leserecht, nicht übertragen: /web/geheim"));
    EXPECT_FALSE(noted("/web/ordner"));
}

TEST_F(KeptFiles, ASizeOfZeroIsNoProofThatAnEncryptedFileIsWhole)
{
    server.fault.tls = true;
    server.fault.noMlsd = true;
    servers::writeFile(server.root() / "web" / "f", std::string(5000, 'x'));
    server.fault.listing = "-rw-r--r-- 1 u g 0 Jan 01 2026 f\r\n";
    server.fault.noCloseNotify = true;
    server.fault.truncateDataAfter = 1000;
    server.fault.faultyTransfers = 1;
    ftp::Client &client = connected(ftp::Encryption::Always);
    const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
    EXPECT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::readFile(folder.path() / "web" / "f"), std::string(5000, 'x'));
}

TEST_F(KeptFiles, AFirstSessionThatMayNotComeBackDoesNotStopTheOthers)
{
    for (int i = 0; i < 30; ++i) {
        servers::writeFile(server.root() / "web" / std::to_string(i), std::to_string(i));
    }
    server.fault.replyDelay = 5; // so that there is time for others to join
    server.on({ .verb = "RETR", .action = Rule::Drop, .toSession = 1, .skip = 4, .times = 1 });
    // As long as the work lasts the server counts the lost connection, too.
    server.on({ .verb = "USER", .text = "421 Too many", .fromSession = 4, .times = 3 });
    ftp::Client &client = connected(ftp::Encryption::Never, 3);
    const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Binary));
    EXPECT_TRUE(got) << got.error().text;
    for (int i = 0; i < 30; ++i) {
        EXPECT_EQ(servers::readFile(folder.path() / "web" / std::to_string(i)), std::to_string(i));
    }
    EXPECT_TRUE(client.usable());
}
