#pragma once

#include <map>
#include <string>
#include <string_view>

namespace ftp {

/// Names of one server between its raw bytes and UTF-8. Names that are no UTF-8 are shown as
/// Windows-1252 and sent back byte for byte.
class NameBook {
public:
    /// The server announced UTF-8 (RFC 2640).
    void setUtf8Announced(bool announced) { m_announced = announced; }

    /// Keeps the raw bytes of a name under the text that it is shown with. @param folder  its
    /// folder, UTF-8, with or without a "/" at the end
    void keep(std::string_view folder, std::string_view name, std::string_view raw);
    /// UTF-8 form of a path that the server told.
    std::string decodePath(std::string_view raw);
    /// Raw bytes of a path. @param folder  current folder (UTF-8), which relative paths start from
    [[nodiscard]] std::string encode(std::string_view path, std::string_view folder) const;
    /// Raw bytes of one name. @param folder  absolute, UTF-8
    [[nodiscard]] std::string encodeName(std::string_view folder, std::string_view name) const;

private:
    void learn(std::string_view raw);
    std::string decode(std::string_view folder, std::string_view raw);

    /// UTF-8 path -> raw name, odd names only.
    std::map<std::string, std::string, std::less<>> m_raw;
    bool m_announced = false;
    bool m_sawUtf8 = false, m_sawOther = false;
};

} // namespace ftp
