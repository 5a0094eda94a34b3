#include "ftp/truststore.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

namespace fs = std::filesystem;
using ftp::TrustStore;

namespace {

class TrustFile : public testing::Test {
protected:
    TrustFile()
    {
        // mkdtemp fills in the six X.
        std::string name = (fs::temp_directory_path() / "tarvelo-trust-XXXXXX").string();
        m_folder = ::mkdtemp(name.data());
    }
    ~TrustFile() override { fs::remove_all(m_folder); }
    [[nodiscard]] std::string path() const { return (m_folder / "trusted").string(); }

private:
    fs::path m_folder;
};

} // namespace

TEST_F(TrustFile, TwoWindowsKeepEachOthersServers)
{
    TrustStore one(path()), other(path());
    ASSERT_TRUE(one.remember("alt.example", 21));
    ASSERT_TRUE(other.trust("a.example", 21, "AA:BB"));
    ASSERT_TRUE(one.trust("b.example", 2121, "CC:DD"));
    ASSERT_TRUE(other.remember("c.example", 21));
    const TrustStore both(path());
    EXPECT_EQ(both.all().size(), 4U);
    EXPECT_EQ(both.fingerprint("A.example", 21), "AA:BB");
    EXPECT_EQ(both.fingerprint("b.example", 2121), "CC:DD");
    EXPECT_TRUE(both.seen("alt.example", 21) && both.seen("c.example", 21));
}

TEST_F(TrustFile, AServerForgottenInOneWindowDoesNotComeBackFromAnother)
{
    TrustStore window(path());
    ASSERT_TRUE(window.trust("a.example", 21, "AA:BB"));
    ASSERT_TRUE(TrustStore(path()).remove("a.example", 21));
    ASSERT_TRUE(window.remember("b.example", 21));
    EXPECT_FALSE(TrustStore(path()).seen("a.example", 21));
    EXPECT_TRUE(TrustStore(path()).seen("b.example", 21));
}

TEST_F(TrustFile, ChangesAtTheSameTimeAreAllKept)
{
    constexpr int each = 25;
    const auto fill = [this](const std::string &name) {
        TrustStore store(path());
        for (int i = 0; i < each; ++i) {
            EXPECT_TRUE(store.trust(name + std::to_string(i), 21, "AA:BB"));
        }
    };
    std::thread beside(fill, "beside");
    fill("here");
    beside.join();
    EXPECT_EQ(TrustStore(path()).all().size(), 2U * each);
}

TEST_F(TrustFile, WhatOneWindowKnowsHoldsWithoutAFile)
{
    TrustStore memory("");
    EXPECT_TRUE(memory.trust("a.example", 21, "AA:BB"));
    EXPECT_TRUE(memory.remember("b.example", 21));
    EXPECT_TRUE(memory.remove("a.example", 21));
    EXPECT_FALSE(memory.seen("a.example", 21));
    EXPECT_TRUE(memory.seen("b.example", 21));
}

TEST(TrustText, LinesThatCannotBeReadAreLeftOut)
{
    const auto servers = ftp::parseTrust("a.example\t21\t-\nMüll\nb.example\t70000\tAA\n"
                                         "c.example\t2121\tAA:BB\n\t\nd.example\t21\n");
    ASSERT_EQ(servers.size(), 2U);
    EXPECT_EQ(ftp::formatTrust(servers), "a.example\t21\t-\nc.example\t2121\tAA:BB\n");
}
