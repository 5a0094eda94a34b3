// Transfers that change the files on their way: ASCII and EBCDIC.
#include "ftp/tree.h"

#include "ftp/faultcase.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace fs = std::filesystem;
using ftp::ErrorKind;
using ftp::Type;
using testing::IsEmpty;

namespace {

class TextTransfers : public FaultCase {
protected:
    ftp::Result<std::int64_t> get(const std::string &name, Type type, std::int64_t offset = 0)
    {
        return run(m_client->client().get(name, local(name), offset, type));
    }
    ftp::Result<std::int64_t> put(const std::string &name, Type type, std::int64_t offset = 0)
    {
        return run(m_client->client().put(local(name), name, offset, type));
    }
    void encrypt()
    {
        server.fault.tls = true;
        server.fault.noCloseNotify = true;
    }
};

/// Many short lines, more than one block of any transfer; on the wire each is a byte longer.
std::string manyLines()
{
    std::string text;
    for (int i = 0; i < 60000; ++i) {
        text += "Zeile " + std::to_string(i) + "\n";
    }
    return text;
}

const std::string text = manyLines(); // not for EXPECT_EQ, which would compare line by line
const std::string greeting = "Gr\xfc\xdf"
                             "e\naus K\xf6ln\n"; // Latin-1
const std::string greetingInEbcdic
    = "\xc7\x99\xdc\x59\x85\x15\x81\xa4\xa2\x40\xd2\xcc\x93\x95\x15"; // code page 1047

} // namespace

TEST_F(TextTransfers, MoveFilesBothWays)
{
    servers::writeFile(server.root() / "a.txt", text);
    connected();
    const auto got = get("a.txt", Type::Ascii);
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_TRUE(servers::readFile(local("a.txt")) == text);
    fs::remove(server.root() / "a.txt");
    const auto put = this->put("a.txt", Type::Ascii);
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_TRUE(stored("a.txt") == text);
    EXPECT_EQ(server.lines("TYPE").back(), "TYPE A");
}

TEST_F(TextTransfers, SendLineEndsAsTheNetworkWantsThem)
{
    servers::writeFile(local("a.txt"), "eins\nzwei\r\ndrei");
    connected();
    server.on({ .verb = "TYPE", .text = "200 as it comes" }); // the server stores what it gets
    const auto put = this->put("a.txt", Type::Ascii);
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(stored("a.txt"), "eins\r\nzwei\r\ndrei");
}

TEST_F(TextTransfers, ReceiveLineEndsAsThisSystemWantsThem)
{
    servers::writeFile(server.root() / "a.txt", "eins\r\nzwei\rdrei\r\n");
    connected();
    server.on({ .verb = "TYPE", .text = "200 as it comes" });
    const auto got = get("a.txt", Type::Ascii);
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::readFile(local("a.txt")), "eins\nzwei\rdrei\n");
}

TEST_F(TextTransfers, TranslateForHostsWithAnotherAlphabet)
{
    servers::writeFile(server.root() / "host", greetingInEbcdic);
    connected();
    const auto got = get("host", Type::Ebcdic);
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::readFile(local("host")), greeting);
    fs::rename(local("host"), local("zurueck"));
    const auto put = this->put("zurueck", Type::Ebcdic);
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(stored("zurueck"), greetingInEbcdic);
    EXPECT_EQ(server.lines("TYPE").back(), "TYPE E");
}

TEST_F(TextTransfers, AreNotJudgedBySizesWhichDiffer)
{
    servers::writeFile(server.root() / "a.txt", text);
    connected();
    server.clearCommands();
    ASSERT_TRUE(get("a.txt", Type::Ascii));
    ASSERT_TRUE(put("a.txt", Type::Ascii));
    EXPECT_THAT(server.lines("SIZE"), IsEmpty());
}

TEST_F(TextTransfers, NeverContinueADownloadButStartAnewAndSaySo)
{
    for (const Type type : { Type::Ascii, Type::Ebcdic }) {
        const std::string content = type == Type::Ascii ? text : greetingInEbcdic;
        servers::writeFile(server.root() / "a.txt", content);
        servers::writeFile(local("a.txt"), "halb");
        connected();
        const auto got = get("a.txt", type, 4);
        ASSERT_TRUE(got) << got.error().text;
        EXPECT_EQ(*got, 0);
        EXPECT_TRUE(servers::readFile(local("a.txt")) == (type == Type::Ascii ? text : greeting));
        EXPECT_THAT(server.lines("REST"), IsEmpty());
        EXPECT_TRUE(noted("nur im Binärmodus"));
    }
}

TEST_F(TextTransfers, NeverContinueAnUploadButStartAnewAndSaySo)
{
    for (const Type type : { Type::Ascii, Type::Ebcdic }) {
        servers::writeFile(local("a.txt"), greeting);
        servers::writeFile(server.root() / "a.txt", greeting.substr(0, 4));
        connected();
        const auto put = this->put("a.txt", type, 4);
        ASSERT_TRUE(put) << put.error().text;
        EXPECT_EQ(*put, 0);
        EXPECT_EQ(stored("a.txt"), type == Type::Ascii ? greeting : greetingInEbcdic);
        EXPECT_THAT(server.lines("REST"), IsEmpty());
        EXPECT_THAT(server.lines("APPE"), IsEmpty());
        EXPECT_TRUE(noted("nur im Binärmodus"));
    }
}

TEST_F(TextTransfers, AreAskedForByNameAfterAListing)
{
    servers::writeRandomFile(server.root() / "bild.png", 70000);
    connected();
    ASSERT_TRUE(run(m_client->client().list())); // leaves the session in text mode
    const auto got = get("bild.png", Type::Binary);
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::difference(local("bild.png"), server.root() / "bild.png"), "");
}

TEST_F(TextTransfers, MoveWholeFolders)
{
    servers::writeFile(server.root() / "web" / "a.txt", text);
    servers::writeFile(server.root() / "web" / "unter" / "b.txt", "eins\nzwei\n");
    servers::writeFile(server.root() / "web" / "leer.txt", "");
    for (const int sessions : { 1, 3 }) {
        for (const bool machine : { true, false }) {
            server.fault.noMlsd = !machine;
            ftp::Client &client = connected(ftp::Encryption::Never, sessions);
            const std::string name = std::to_string(sessions) + (machine ? "m" : "l");
            const auto got = run(ftp::getTree(client, "/web", local(name), Type::Ascii));
            ASSERT_TRUE(got) << got.error().text;
            EXPECT_EQ(servers::difference(local(name), server.root() / "web"), "");
            const auto put = run(ftp::putTree(client, local(name), "/" + name, Type::Ascii));
            ASSERT_TRUE(put) << put.error().text;
            EXPECT_EQ(servers::difference(server.root() / name, local(name)), "");
        }
    }
}

TEST_F(TextTransfers, MoveWholeFoldersForHostsWithAnotherAlphabet)
{
    servers::writeFile(server.root() / "host" / "a", greetingInEbcdic);
    ftp::Client &client = connected();
    const auto got = run(ftp::getTree(client, "/host", local("host"), Type::Ebcdic));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_EQ(servers::readFile(local("host/a")), greeting);
    const auto put = run(ftp::putTree(client, local("host"), "/zurueck", Type::Ebcdic));
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_EQ(stored("zurueck/a"), greetingInEbcdic);
}

TEST_F(TextTransfers, ABrokenFileOfAFolderIsFetchedAnew)
{
    servers::writeFile(server.root() / "web" / "a.txt", text);
    server.fault.dropAllAfter = 30000;
    server.fault.faultyTransfers = 1;
    ftp::Client &client = connected();
    const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Ascii));
    ASSERT_TRUE(got) << got.error().text;
    EXPECT_TRUE(servers::readFile(local("web/a.txt")) == text);
    EXPECT_THAT(server.lines("REST"), IsEmpty());
    server.fault.faultyTransfers = 1;
    const auto put = run(ftp::putTree(client, local("web"), "/oben", Type::Ascii));
    ASSERT_TRUE(put) << put.error().text;
    EXPECT_TRUE(stored("oben/a.txt") == text);
    EXPECT_THAT(server.lines("REST"), IsEmpty());
}

TEST_F(TextTransfers, EncryptedNeedAProperEndSinceNoSizeProvesThem)
{
    encrypt();
    servers::writeFile(server.root() / "a.txt", text);
    servers::writeFile(local("a.txt"), "der alte Inhalt");
    connected(ftp::Encryption::Always);
    const auto got = get("a.txt", Type::Ascii);
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::Truncated);
    EXPECT_EQ(servers::readFile(local("a.txt")), "der alte Inhalt");
    server.fault.noCloseNotify = false;
    const auto again = get("a.txt", Type::Ascii);
    ASSERT_TRUE(again) << again.error().text;
    EXPECT_TRUE(servers::readFile(local("a.txt")) == text);
}

TEST_F(TextTransfers, EncryptedFoldersNeedAProperEndToo)
{
    encrypt();
    server.fault.noMlsd = true;
    servers::writeFile(server.root() / "web" / "a.txt", text);
    ftp::Client &client = connected(ftp::Encryption::Always);
    const auto got = run(ftp::getTree(client, "/web", local("web"), Type::Ascii));
    ASSERT_FALSE(got);
    EXPECT_EQ(got.error().kind, ErrorKind::Truncated);
    server.fault.noCloseNotify = false;
    const auto again = run(ftp::getTree(client, "/web", local("web"), Type::Ascii));
    ASSERT_TRUE(again) << again.error().text;
    EXPECT_TRUE(servers::readFile(local("web/a.txt")) == text);
}
