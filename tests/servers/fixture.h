// Files and folders for tests of transfers.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace servers {

/// A temporary folder that goes away with its object.
class TemporaryFolder {
public:
    TemporaryFolder(); ///< @throws std::runtime_error
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;
    [[nodiscard]] const std::filesystem::path &path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

/// Bytes that look random and are the same for the same seed.
std::string randomBytes(std::size_t size, std::uint32_t seed = 1);

/// Writes a file of such bytes, missing parent folders included; works for sizes beyond memory.
void writeRandomFile(const std::filesystem::path &path, std::uint64_t size, std::uint32_t seed = 1);

/// Writes a text as a file, missing parent folders included.
void writeFile(const std::filesystem::path &path, const std::string &text);
std::string readFile(const std::filesystem::path &path); ///< @throws when it cannot be read

/// Compares two files, or two folders with everything in them, byte by byte. Links, times and
/// permissions do not matter.
/// @return an empty text when they are equal, else what is different
std::string difference(const std::filesystem::path &left, const std::filesystem::path &right);

/// Makes a small web space in a folder: pages, pictures, a script, names with umlauts and blanks,
/// a hidden file, an empty file and an empty folder, folders in folders.
void makeWebSpace(const std::filesystem::path &folder);

} // namespace servers
