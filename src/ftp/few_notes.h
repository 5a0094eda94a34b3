#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>

namespace ftp {

/// Lines of one kind for the log, of which a server can cause any number: the first ones, and then
/// how many more there are.
class FewNotes {
public:
    using Note = std::function<void(const std::string &)>;
    static constexpr std::size_t most = 100;

    explicit FewNotes(Note note)
        : m_note(std::move(note))
    {
    }
    void add(const std::string &text)
    {
        if (m_count++ < most) {
            m_note(text);
        }
    }
    /// Tells how many were left out.
    void finish()
    {
        if (m_count > most) {
            m_note("... und " + std::to_string(m_count - most) + " weitere");
        }
        m_count = 0;
    }

private:
    Note m_note;
    std::size_t m_count = 0;
};

} // namespace ftp
