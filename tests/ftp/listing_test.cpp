#include "ftp/listing.h"

#include "ftp/text.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

const std::filesystem::path corpus = std::filesystem::path(TEST_DATA_DIR) / "ftp" / "listings";

std::string readFile(const std::filesystem::path &path)
{
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream.is_open()) << path;
    return { std::istreambuf_iterator<char>(stream), {} };
}

ftp::CivilTime timeOf(const std::string &iso)
{
    ftp::CivilTime t;
    EXPECT_EQ(std::sscanf(iso.c_str(), "%d-%d-%dT%d:%d:%d", &t.year, &t.month, &t.day, &t.hour,
                          &t.minute, &t.second),
              6);
    return t;
}

std::string isoOf(const ftp::CivilTime &t)
{
    const std::string digits = ftp::formatTimeVal(t);
    return digits.substr(0, 4) + "-" + digits.substr(4, 2) + "-" + digits.substr(6, 2) + "T"
        + digits.substr(8, 2) + ":" + digits.substr(10, 2) + ":" + digits.substr(12, 2);
}

std::string hexOf(const std::string &bytes)
{
    std::string hex;
    for (const char byte : bytes) {
        constexpr const char *digits = "0123456789abcdef";
        hex += digits[static_cast<unsigned char>(byte) >> 4U];
        hex += digits[static_cast<unsigned char>(byte) & 15U];
    }
    return hex;
}

json precisionOf(const ftp::Entry &entry)
{
    if (!entry.time) {
        return nullptr;
    }
    switch (entry.precision) {
    case ftp::Entry::Precision::Second:
        return "second";
    case ftp::Entry::Precision::Minute:
        return "minute";
    case ftp::Entry::Precision::Day:
        break;
    }
    return "day";
}

json permissionsOf(const ftp::Entry &entry)
{
    if (entry.permissions < 0) {
        return nullptr;
    }
    std::string octal(4, '0');
    for (std::size_t i = 0; i < 4; ++i) {
        octal[3 - i] = static_cast<char>('0' + (entry.permissions >> (3 * i)) % 8);
    }
    return octal;
}

/// An entry in the form of expected.json.
json described(const ftp::Entry &entry)
{
    json result = {
        { "line", entry.line },
        { "name", ftp::toUtf8(entry.name) },
        { "type", std::string(1, entry.type) },
        { "size", entry.size },
        { "date", entry.time ? json(isoOf(*entry.time)) : json(nullptr) },
        { "precision", precisionOf(entry) },
        { "year", entry.time ? json(entry.yearInferred ? "inferred" : "given") : json(nullptr) },
        { "permissions", permissionsOf(entry) },
        { "target", entry.target.empty() ? json(nullptr) : json(ftp::toUtf8(entry.target)) },
    };
    if (!ftp::isUtf8(entry.name)) {
        result["encoding"] = "cp1252";
        result["nameHex"] = hexOf(entry.name);
    }
    return result;
}

std::vector<std::string> corpusNames()
{
    std::vector<std::string> names;
    for (const auto &file : std::filesystem::directory_iterator(corpus)) {
        if (file.path().extension() == ".txt") {
            names.push_back(file.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// Everything that was read of a listing, as it is when its text arrives in blocks of some length.
json readInBlocks(const std::string &bytes, std::size_t length, bool machine,
                  const ftp::CivilTime &now)
{
    json read = json::array();
    const auto take = [&read](ftp::Entry &&entry) { read.push_back(described(entry)); };
    ftp::ListingParser parser = machine ? ftp::mlsdParser(take) : ftp::listParser(now, take);
    for (std::size_t at = 0; at < bytes.size(); at += length) {
        parser.read(std::string_view(bytes).substr(at, length));
    }
    parser.finish();
    read.push_back(parser.understood());
    return read;
}

class ListingCorpus : public testing::TestWithParam<std::string> { };

} // namespace

TEST_P(ListingCorpus, GivesEveryFieldAsExpected)
{
    const std::string &name = GetParam();
    const std::string bytes = readFile(corpus / (name + ".txt"));
    const json expected = json::parse(readFile(corpus / (name + ".expected.json")));
    const bool machine = name.ends_with("mlsd");
    const ftp::Listing listing
        = machine ? ftp::parseMlsd(bytes) : ftp::parseList(bytes, timeOf(expected["reference"]));

    EXPECT_EQ(listing.understood, expected["format"] == "listed");
    const json entries = expected.value("entries", json::array());
    ASSERT_EQ(listing.entries.size(), entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const ftp::Entry &entry = listing.entries[i];
        json wanted = entries[i];
        wanted.erase("note");
        if (const auto letter = wanted.find("letter"); letter != wanted.end()) {
            EXPECT_EQ(std::string(1, entry.letter), *letter) << wanted;
            wanted.erase(letter);
        } else {
            EXPECT_TRUE(entry.letter == entry.type || entry.letter == '?') << wanted;
        }
        EXPECT_EQ(described(entry), wanted);
        EXPECT_EQ(entry.utc, machine || expected.value("zone", "") == "UTC") << wanted;
    }
    for (const json &skipped : expected.value("skipped", json::array())) {
        for (const ftp::Entry &entry : listing.entries) {
            EXPECT_NE(entry.line, skipped["line"].get<std::size_t>()) << skipped;
        }
    }
}

TEST_P(ListingCorpus, ReadsTheSameHoweverTheTextIsCut)
{
    const std::string &name = GetParam();
    const std::string bytes = readFile(corpus / (name + ".txt"));
    const json expected = json::parse(readFile(corpus / (name + ".expected.json")));
    const bool machine = name.ends_with("mlsd");
    const ftp::CivilTime now = timeOf(expected["reference"]);
    const json whole = readInBlocks(bytes, bytes.size() + 1, machine, now);
    for (const std::size_t length : { 1U, 2U, 7U, 64U, 1000U }) {
        EXPECT_EQ(readInBlocks(bytes, length, machine, now), whole) << length;
    }
}

TEST(ListingFolder, IsComplete) { EXPECT_GE(corpusNames().size(), 36U); }

INSTANTIATE_TEST_SUITE_P(Files, ListingCorpus, testing::ValuesIn(corpusNames()),
                         [](const auto &test) {
                             std::string name = test.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });
