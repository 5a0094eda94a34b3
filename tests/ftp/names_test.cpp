// Names that are no UTF-8, on either side.
#include "ftp/oddnames.h"
#include "ftp/tree.h"

#include "ftp/faultcase.h"

#include <gmock/gmock.h>

using ftp::Type;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

const std::string latin = "gr\xFC\xDF.txt"; // Windows-1252
const std::string utf8 = "gr\xC3\xBC\xC3\x9F.txt"; // the same text

class OddNames : public FaultCase {
protected:
    void store(const std::string &name, const std::string &content)
    {
        servers::writeFile(server.root() / name, content);
    }
    std::string source(const std::string &name, const std::string &content)
    {
        servers::writeFile(folder.path() / "seite" / name, content);
        return local("seite");
    }
    std::vector<std::string> listed(ftp::Client &client)
    {
        const auto shown = run(client.list());
        EXPECT_TRUE(shown);
        std::vector<std::string> names;
        for (const ftp::FolderEntry &entry : shown->entries) {
            names.push_back(entry.name);
        }
        return names;
    }
};

} // namespace

TEST_F(OddNames, TwoNamesWithOneTextAreKeptApartInTheListing)
{
    store(latin, "alt");
    store(utf8, "neu");
    ftp::Client &client = connected();
    EXPECT_THAT(listed(client), UnorderedElementsAre("gr%FC%DF.txt", utf8));
    ASSERT_TRUE(run(client.removeFile("gr%FC%DF.txt")));
    EXPECT_FALSE(std::filesystem::exists(server.root() / latin));
    EXPECT_EQ(stored(utf8), "neu");
    ASSERT_TRUE(run(client.get(utf8, local("x"), 0, Type::Binary)));
    EXPECT_EQ(servers::readFile(local("x")), "neu");
}

TEST_F(OddNames, AFileThatIsReallyCalledSoKeepsItsName)
{
    store(latin, "alt");
    store(utf8, "neu");
    store("gr%FC%DF.txt", "so genannt");
    ftp::Client &client = connected();
    EXPECT_THAT(listed(client), UnorderedElementsAre("gr%FC%DF.txt%", "gr%FC%DF.txt", utf8));
    ASSERT_TRUE(run(client.removeFile("gr%FC%DF.txt")));
    EXPECT_EQ(stored(latin), "alt");
    ASSERT_TRUE(run(client.removeFile("gr%FC%DF.txt%")));
    EXPECT_EQ(stored(utf8), "neu");
    EXPECT_THAT(listed(client), ElementsAre(utf8));
}

TEST_F(OddNames, ATextThatBelongsToAnotherFileByNowMeansThatOne)
{
    store(latin, "alt");
    ftp::Client &client = connected();
    EXPECT_THAT(listed(client), ElementsAre(utf8));
    std::filesystem::rename(server.root() / latin, server.root() / utf8);
    EXPECT_THAT(listed(client), ElementsAre(utf8));
    ASSERT_TRUE(run(client.removeFile(utf8)));
    EXPECT_FALSE(std::filesystem::exists(server.root() / utf8));
}

TEST_F(OddNames, TwoNamesWithOneTextBecomeTwoLocalFiles)
{
    store("web/" + latin, "alt");
    store("web/" + utf8, "neu");
    ftp::Client &client = connected();
    ASSERT_TRUE(run(ftp::getTree(client, "/web", local("ziel"), Type::Binary)));
    EXPECT_EQ(servers::readFile(local("ziel/gr%FC%DF.txt")), "alt");
    EXPECT_EQ(servers::readFile(local("ziel/" + utf8)), "neu");
}

TEST_F(OddNames, AFolderIsSentInTheBytesThatItsServerUses)
{
    server.fault.noUtf8 = true;
    store("stra\xDF"
          "e.txt",
          "x"); // so this server writes Windows-1252
    const std::string seite = source(utf8, "neu");
    source("\xC3\xB6l/" + utf8, "auch");
    ftp::Client &client = connected();
    EXPECT_THAT(listed(client),
                ElementsAre("stra\xC3\x9F"
                            "e.txt"));
    ASSERT_TRUE(run(ftp::putTree(client, seite, "/web", Type::Binary)));
    EXPECT_EQ(stored("web/" + latin), "neu");
    EXPECT_EQ(stored("web/\xF6l/" + latin), "auch");
}

TEST_F(OddNames, LocalNamesThatAreNoUtf8AreSentAsUtf8LikeSingleFiles)
{
    const std::string seite = source(latin, "alt");
    source("\xF6l/a.txt", "darin");
    ftp::Client &client = connected();
    ASSERT_TRUE(run(ftp::putTree(client, seite, "/web", Type::Binary)));
    EXPECT_EQ(stored("web/" + utf8), "alt");
    EXPECT_EQ(stored("web/\xC3\xB6l/a.txt"), "darin");
}

TEST_F(OddNames, TwoLocalNamesWithOneTextBecomeTwoFilesOnTheServer)
{
    const std::string seite = source(latin, "alt");
    source(utf8, "neu");
    ftp::Client &client = connected();
    ASSERT_TRUE(run(ftp::putTree(client, seite, "/web", Type::Binary)));
    EXPECT_EQ(stored("web/" + utf8), "neu");
    EXPECT_EQ(stored("web/gr%FC%DF.txt"), "alt");
}

TEST(OddNameTexts, AreDifferentForDifferentNames)
{
    // Each of the odd ones reads like one in UTF-8.
    const std::vector<std::string> raw { "\xE4%E4", "%E4\xE4", "\xC3\xA4%E4", "%E4\xC3\xA4" };
    ftp::OddNames odd;
    for (const std::string &name : raw) {
        odd.learn(name);
    }
    for (const std::string &name : raw) {
        odd.compare(name);
    }
    EXPECT_THAT(std::vector<std::string>(
                    { odd.text(raw[0]), odd.text(raw[1]), odd.text(raw[2]), odd.text(raw[3]) }),
                ElementsAre("%E4%25E4", "%25E4%E4", raw[2], raw[3]));
}
