#pragma once

#include <QString>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>

/// Every question and message to the user goes through this interface, so that tests can answer.
/// An empty title means the program's default title "Tarvelo FTP".
class Prompts {
public:
    enum class Icon { None, Exclamation };

    virtual ~Prompts() = default;

    /// Plain box with OK.
    virtual void message(const QString &text, const QString &title = {}, Icon icon = Icon::None)
        = 0;
    /// OK and Abbrechen; Escape is Abbrechen. @param details  additional line below, may be empty
    [[nodiscard]] virtual bool confirm(const QString &text, const QString &title = {},
                                       const QString &details = {})
        = 0;
    /// An additional line that is found out while the box stands open already.
    struct LateDetails {
        QString placeholder; ///< stands there meanwhile
        /// Finds the line; may run an event loop. Comes back soon once stop is true.
        std::function<QString()> find;
        std::shared_ptr<std::atomic_bool> stop; ///< set by the box when it was answered
    };
    /// As confirm. The user never waits for the line with the answer, but the call comes back only
    /// behind details.find.
    [[nodiscard]] virtual bool confirmLate(const QString &text, const QString &title,
                                           const LateDetails &details)
        = 0;
    /// Ja and Nein; Escape is Nein.
    [[nodiscard]] virtual bool question(const QString &text, const QString &title = {}) = 0;
    /// One line of text; nothing when cancelled.
    [[nodiscard]] virtual std::optional<QString> input(const QString &text, const QString &proposal,
                                                       const QString &title = {})
        = 0;
};
