#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace ftp {

/// The names of one folder that are no UTF-8, and their texts. They are read as Windows-1252; where
/// that is just what another name of the folder says in UTF-8, a text with "%E4" for each byte
/// beyond ASCII keeps the two apart. A folder gets such pairs when programs with different ideas
/// write to it.
class OddNames {
public:
    /// Tells a name of the folder; all of them first.
    void learn(std::string_view raw);
    /// Tells it once more, for all that were learned; not needed when there is none().
    void compare(std::string_view raw);
    [[nodiscard]] bool none() const { return m_raw.empty(); }
    /// UTF-8 form of one of the folder's names.
    [[nodiscard]] std::string text(std::string_view raw) const;

private:
    std::map<std::string, std::string, std::less<>> m_raw; ///< by their usual text
    std::set<std::string, std::less<>> m_alike; ///< raw names whose usual text is another name
    std::set<std::string, std::less<>> m_percents; ///< names that look as if written with "%E4"
};

} // namespace ftp
