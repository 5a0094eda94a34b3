#include "servers/fixture.h"

#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <stdexcept>
#include <stdlib.h>

namespace servers {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder()
{
    // mkdtemp fills in the six X.
    std::string name = fs::temp_directory_path() / "tarvelo-files-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot make a folder like " + name);
    }
    m_path = name;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored; // nothing to do about a folder that cannot be removed
    fs::remove_all(m_path, ignored);
}

namespace {

void fill(std::string &bytes, std::mt19937 &random)
{
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        const std::uint32_t value = static_cast<std::uint32_t>(random());
        for (std::size_t j = i; j < std::min(i + 4, bytes.size()); ++j) {
            bytes[j] = static_cast<char>(value >> (8 * (j - i)));
        }
    }
}

std::ofstream create(const fs::path &path)
{
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
    return file;
}

void finish(std::ofstream &file, const fs::path &path)
{
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

std::string differentBytes(const fs::path &left, const fs::path &right)
{
    if (fs::file_size(left) != fs::file_size(right)) {
        return left.string() + " has " + std::to_string(fs::file_size(left)) + " bytes, "
            + right.string() + " has " + std::to_string(fs::file_size(right)) + "\n";
    }
    std::ifstream a(left, std::ios::binary);
    std::ifstream b(right, std::ios::binary);
    std::string blockA(1 << 20, '\0');
    std::string blockB(1 << 20, '\0');
    for (std::uint64_t offset = 0; a && b; offset += blockA.size()) {
        a.read(blockA.data(), static_cast<std::streamsize>(blockA.size()));
        b.read(blockB.data(), static_cast<std::streamsize>(blockB.size()));
        if (a.gcount() != b.gcount()
            || blockA.compare(0, static_cast<std::size_t>(a.gcount()), blockB, 0,
                              static_cast<std::size_t>(b.gcount()))
                != 0) {
            return left.string() + " and " + right.string() + " differ after byte "
                + std::to_string(offset) + "\n";
        }
    }
    return {};
}

std::map<std::string, fs::path> entries(const fs::path &folder)
{
    std::map<std::string, fs::path> result;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        result[entry.path().lexically_relative(folder).string()] = entry.path();
    }
    return result;
}

} // namespace

std::string randomBytes(std::size_t size, std::uint32_t seed)
{
    std::mt19937 random(seed);
    std::string bytes(size, '\0');
    fill(bytes, random);
    return bytes;
}

void writeRandomFile(const fs::path &path, std::uint64_t size, std::uint32_t seed)
{
    std::mt19937 random(seed);
    std::ofstream file = create(path);
    std::string block(1 << 20, '\0');
    for (std::uint64_t left = size; left > 0; left -= block.size()) {
        block.resize(std::min<std::uint64_t>(left, block.size()));
        fill(block, random);
        file.write(block.data(), static_cast<std::streamsize>(block.size()));
    }
    finish(file, path);
}

void writeFile(const fs::path &path, const std::string &text)
{
    std::ofstream file = create(path);
    file << text;
    finish(file, path);
}

std::string readFile(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return { std::istreambuf_iterator<char>(file), {} };
}

std::string difference(const fs::path &left, const fs::path &right)
{
    if (!fs::exists(left) || !fs::exists(right)) {
        return (fs::exists(left) ? right : left).string() + " does not exist\n";
    }
    if (fs::is_directory(left) != fs::is_directory(right)) {
        return left.string() + " and " + right.string() + ": only one of them is a folder\n";
    }
    if (!fs::is_directory(left)) {
        return differentBytes(left, right);
    }
    std::string result;
    std::map<std::string, fs::path> others = entries(right);
    for (const auto &[relative, path] : entries(left)) {
        const auto other = others.find(relative);
        if (other == others.end()) {
            result += relative + " is missing in " + right.string() + "\n";
            continue;
        }
        if (fs::is_directory(path) != fs::is_directory(other->second)) {
            result += relative + ": only one of them is a folder\n";
        } else if (!fs::is_directory(path)) {
            result += differentBytes(path, other->second);
        }
        others.erase(other);
    }
    for (const auto &[relative, path] : others) {
        result += relative + " is missing in " + left.string() + "\n";
    }
    return result;
}

void makeWebSpace(const fs::path &folder)
{
    writeFile(folder / "index.html",
              "<!DOCTYPE html>\n<title>Verein der Gartenfreunde</title>\n<h1>Willkommen</h1>\n");
    writeFile(folder / "Über uns.html", "<!DOCTYPE html>\n<h1>Über uns</h1>\n");
    writeFile(folder / ".htaccess", "Options -Indexes\nErrorDocument 404 /fehler.html\n");
    writeFile(folder / "leer.txt", "");
    writeFile(folder / "cgi-bin/zähler.cgi", "#!/bin/sh\necho 'Content-Type: text/plain'\necho\n");
    fs::permissions(folder / "cgi-bin/zähler.cgi", fs::perms(0755));
    writeRandomFile(folder / "bilder/logo.png", 4321, 2);
    writeRandomFile(folder / "bilder/Straßenfest 2024/Bild 1.jpg", 150'000, 3);
    writeRandomFile(folder / "bilder/Straßenfest 2024/Bild 2 (groß).jpg", 260'001, 4);
    writeRandomFile(folder / "downloads/satzung.pdf", 65'536, 5);
    writeFile(folder / "downloads/alt/1998/protokoll.txt", "Protokoll\r\nzweite Zeile\r\n");
    fs::create_directories(folder / "leerer Ordner");
}

} // namespace servers
