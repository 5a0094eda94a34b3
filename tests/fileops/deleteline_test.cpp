#include "fileops/linebench.h"

#include <QElapsedTimer>
#include <thread>

using namespace Qt::StringLiterals;

// Deleting over the line: which commands, and what is told when it breaks.

TEST_F(CommandsOnTheLine, FilesAreDeletedByFullPathsAndTreesFromInside)
{
    servers::writeFile(server.root() / "x", "x");
    makeTree("baum");
    ASSERT_TRUE(start());
    remote.select({ u"x"_s, u"baum"_s });
    expectDelete(2, u"In den Ordnern: 2 Dateien und 2 Ordner."_s);
    DeleteCommand(work).DeleteRemoteItems();
    EXPECT_EQ(server.lines("DELE").size(), 3U);
    const Lines removed = server.lines("RMD");
    ASSERT_EQ(removed.size(), 3U);
    EXPECT_NE(removed[0].find("tiefer"), std::string::npos);
    EXPECT_TRUE(std::filesystem::is_empty(server.root()));
    EXPECT_EQ(statuses(), (QStringList { u"Löschen"_s, u"Löschen"_s }));
}

TEST_F(CommandsOnTheLine, ARefusalInsideATreeIsReported)
{
    makeTree("baum");
    server.on({ .verb = "DELE", .argument = "*b", .text = "550 In use." });
    deleteTree(u"In den Ordnern: 2 Dateien und 2 Ordner."_s);
    EXPECT_EQ(statuses(), QStringList { u"Löschen verweigert"_s });
    EXPECT_TRUE(shell.queue[0].detail.contains(u"550 In use."_s));
    EXPECT_TRUE(shell.log.contains(u"550 In use."_s));
    EXPECT_TRUE(std::filesystem::exists(server.root() / "baum/tief/tiefer/b"));
    EXPECT_GE(remote.model().findRow(u"baum"_s), 0);
}

TEST_F(CommandsOnTheLine, ALineThatDropsInTheMiddleIsHonest)
{
    for (const char *name : { "a", "b", "c" }) {
        servers::writeFile(server.root() / name, "x");
    }
    server.on({ .verb = "DELE", .action = servers::Rule::Drop, .skip = 1 });
    ASSERT_TRUE(start());
    remote.select({ u"a"_s, u"b"_s, u"c"_s });
    expectDelete(3);
    DeleteCommand(work).DeleteRemoteItems();
    for (const QueueRow &row : shell.queue) {
        const bool there
            = std::filesystem::exists(server.root().string() + row.remote.toStdString());
        EXPECT_EQ(row.status, there ? u"Löschen verweigert"_s : u"Löschen"_s);
    }
    // The third was on its way already, and nobody can tell what became of it.
    EXPECT_EQ(statuses(),
              (QStringList { u"Löschen"_s, u"Löschen verweigert"_s, u"Löschen verweigert"_s }));
    EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s).last(), u"SetFolderBoxesEnabled 1"_s);
}

TEST_F(CommandsOnTheLine, ManyFilesShareTheirRoundTrips)
{
    constexpr int files = 200;
    QStringList names;
    for (int number = 0; number < files; ++number) {
        const std::string name = "datei" + std::to_string(number);
        servers::writeFile(server.root() / name, "x");
        names.append(QString::fromStdString(name));
    }
    server.on({ .verb = "DELE", .argument = "*datei77", .text = "550 In use." });
    ASSERT_TRUE(start());
    remote.select(names);
    expectDelete(files);
    constexpr int roundTrip = 100; // milliseconds; one by one would take 20 seconds
    server.fault.replyDelay = roundTrip;
    QElapsedTimer clock;
    clock.start();
    DeleteCommand(work).DeleteRemoteItems();
    server.fault.replyDelay = 0;
    EXPECT_LT(clock.elapsed(), files * roundTrip / 2);
    EXPECT_EQ(statuses().count(u"Löschen"_s), files - 1);
    EXPECT_EQ(shell.queue.size(), files);
    const std::vector<std::string> sent = server.lines("DELE");
    ASSERT_EQ(sent.size(), static_cast<std::size_t>(files));
    for (int number = 0; number < files; ++number) {
        const QueueRow &row = shell.queue.at(number);
        EXPECT_EQ("DELE " + row.remote.toStdString(), sent[static_cast<std::size_t>(number)]);
        EXPECT_EQ(row.failed, row.remote.endsWith(u"datei77"_s));
    }
    EXPECT_EQ(remote.names(), QStringList { u"datei77"_s });
    EXPECT_TRUE(remote.markedNames().isEmpty());
    EXPECT_TRUE(shell.log.contains(u"\r\n550 In use."_s));
    EXPECT_EQ(shell.log.count(u"250 "_s), files - 1); // every reply has its line
}

TEST_F(CommandsOnTheLine, ATreeOf64LevelsGoesWhole)
{
    makeDeepTree(64);
    deleteTree(u"In den Ordnern: 1 Datei und 64 Ordner."_s);
    EXPECT_EQ(statuses(), QStringList { u"Löschen"_s }) << shell.log.toStdString();
    EXPECT_TRUE(std::filesystem::is_empty(server.root()));
}

TEST_F(CommandsOnTheLine, WhatLiesDeeperStandsAndSaysSo)
{
    const std::filesystem::path file = makeDeepTree(66);
    deleteTree(u"In den Ordnern: mehr als 0 Dateien und 65 Ordner."_s);
    EXPECT_EQ(statuses(), QStringList { u"Löschen verweigert"_s });
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_TRUE(shell.queue[0].detail.contains(u"nested too deeply"_s));
}

TEST_F(CommandsOnTheLine, AFolderThatFillsWhileItIsDeletedStandsAndSaysSo)
{
    servers::writeFile(server.root() / "baum/a", "x");
    ASSERT_TRUE(start());
    remote.select({ u"baum"_s });
    expectDelete(1, u"In den Ordnern: 1 Datei und 0 Ordner."_s);
    // Between the arrival of the delete and that of the folder's removal lies its reply.
    server.fault.replyDelay = 100;
    std::thread writer([this] {
        if (server.waitForCommand("DELE")) {
            servers::writeFile(server.root() / "baum/neu", "y");
        }
    });
    DeleteCommand(work).DeleteRemoteItems();
    writer.join();
    EXPECT_EQ(statuses(), QStringList { u"Löschen verweigert"_s });
    EXPECT_FALSE(std::filesystem::exists(server.root() / "baum/a"));
    EXPECT_EQ(servers::readFile(server.root() / "baum/neu"), "y");
    EXPECT_GE(remote.model().findRow(u"baum"_s), 0);
}

TEST_F(CommandsOnTheLine, ATreeIsGoneOnWithAfterALineDropped)
{
    for (int number = 0; number < 20; ++number) {
        servers::writeFile(server.root() / ("baum/datei" + std::to_string(number)), "x");
    }
    server.on({ .verb = "DELE", .action = servers::Rule::Drop, .skip = 7, .times = 1 });
    deleteTree(u"In den Ordnern: 20 Dateien und 0 Ordner."_s);
    EXPECT_EQ(statuses(), QStringList { u"Löschen"_s }) << shell.log.toStdString();
    EXPECT_TRUE(std::filesystem::is_empty(server.root()));
}

TEST_F(CommandsOnTheLine, ATreeWhoseLineDropsForGoodStandsAndSaysSo)
{
    for (int number = 0; number < 20; ++number) {
        servers::writeFile(server.root() / ("baum/datei" + std::to_string(number)), "x");
    }
    server.on({ .verb = "DELE", .action = servers::Rule::Drop, .skip = 7 });
    deleteTree(u"In den Ordnern: 20 Dateien und 0 Ordner."_s);
    EXPECT_EQ(statuses(), QStringList { u"Löschen verweigert"_s });
    EXPECT_FALSE(shell.queue[0].detail.isEmpty());
    EXPECT_TRUE(std::filesystem::exists(server.root() / "baum"));
    EXPECT_EQ(shellCalls(u"SetFolderBoxesEnabled"_s).last(), u"SetFolderBoxesEnabled 1"_s);
}
