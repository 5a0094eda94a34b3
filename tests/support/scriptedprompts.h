#pragma once

#include "common/prompts.h"

#include <QList>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <utility>

/// Answers boxes from a script. An unexpected box, one with another text, title or icon, and an
/// answer that nobody asked for (when the object goes away) fail the test.
///
///     ScriptedPrompts prompts;
///     prompts.expectQuestion(u"Wirklich?"_qs, true).expectMessage(u"Erledigt."_qs);
class ScriptedPrompts : public Prompts {
public:
    ~ScriptedPrompts() override
    {
        EXPECT_TRUE(finished()) << "never asked: " << m_script.value(0).text.toStdString();
    }

    ScriptedPrompts &expectMessage(const QString &text, const QString &title = {},
                                   Icon icon = Icon::None)
    {
        return add({ Kind::Message, text, title, icon, {}, {}, false, {}, {} });
    }
    ScriptedPrompts &expectConfirm(const QString &text, bool ok, const QString &title = {},
                                   const QString &details = {})
    {
        return add({ Kind::Confirm, text, title, Icon::None, details, {}, ok, {}, {} });
    }
    /// Answers the next confirmation whatever it says: for what is not about its text.
    ScriptedPrompts &anyConfirm(bool ok)
    {
        m_anyConfirm = ok;
        return *this;
    }
    /// Lets a message come as often as it likes, for what several sessions meet at a time.
    ScriptedPrompts &allowMessages(const QString &text)
    {
        m_allowed = text;
        return *this;
    }
    [[nodiscard]] int allowedMessages() const { return m_allowedSeen; } ///< how often it came
    ScriptedPrompts &expectQuestion(const QString &text, bool yes, const QString &title = {})
    {
        return add({ Kind::Question, text, title, Icon::None, {}, {}, yes, {}, {} });
    }
    /// @param answer  the line typed; nothing = cancelled
    ScriptedPrompts &expectInput(const QString &text, const QString &proposal,
                                 const std::optional<QString> &answer, const QString &title = {})
    {
        return add({ Kind::Input, text, title, Icon::None, {}, proposal, false, answer, {} });
    }
    /// Runs an action while the box added last stands open: what a user may do meanwhile.
    ScriptedPrompts &meanwhile(std::function<void()> action)
    {
        m_script.last().action = std::move(action);
        return *this;
    }

    /// Whether every scripted box was shown.
    [[nodiscard]] bool finished() const { return m_script.isEmpty() && !m_anyConfirm; }

    void message(const QString &text, const QString &title = {}, Icon icon = Icon::None) override
    {
        if (!text.isEmpty() && text == m_allowed && title.isEmpty() && icon == Icon::None) {
            ++m_allowedSeen;
            return;
        }
        (void)take(Kind::Message, text, title, icon);
    }
    [[nodiscard]] bool confirm(const QString &text, const QString &title = {},
                               const QString &details = {}) override
    {
        if (const auto any = std::exchange(m_anyConfirm, std::nullopt)) {
            return *any;
        }
        const Step step = take(Kind::Confirm, text, title);
        EXPECT_EQ(details.toStdString(), step.details.toStdString());
        return step.yes;
    }
    /// The line counts as any other; it was found before the answer.
    [[nodiscard]] bool confirmLate(const QString &text, const QString &title,
                                   const LateDetails &details) override
    {
        const QString found = details.find();
        *details.stop = true;
        return confirm(text, title, found);
    }
    [[nodiscard]] bool question(const QString &text, const QString &title = {}) override
    {
        return take(Kind::Question, text, title).yes;
    }
    [[nodiscard]] std::optional<QString> input(const QString &text, const QString &proposal,
                                               const QString &title = {}) override
    {
        const Step step = take(Kind::Input, text, title);
        EXPECT_EQ(proposal.toStdString(), step.proposal.toStdString());
        return step.answer;
    }

private:
    enum class Kind { None, Message, Confirm, Question, Input };
    struct Step {
        Kind kind = Kind::None;
        QString text, title;
        Icon icon = Icon::None;
        QString details, proposal;
        bool yes = false;
        std::optional<QString> answer;
        std::function<void()> action;
    };

    ScriptedPrompts &add(Step step)
    {
        m_script.append(std::move(step));
        return *this;
    }
    Step take(Kind kind, const QString &text, const QString &title, Icon icon = Icon::None)
    {
        if (m_script.isEmpty()) {
            ADD_FAILURE() << "unexpected box: " << text.toStdString();
            return {};
        }
        const Step step = m_script.takeFirst();
        EXPECT_EQ(static_cast<int>(kind), static_cast<int>(step.kind)) << text.toStdString();
        EXPECT_EQ(text.toStdString(), step.text.toStdString());
        EXPECT_EQ(title.toStdString(), step.title.toStdString());
        EXPECT_EQ(static_cast<int>(icon), static_cast<int>(step.icon));
        if (step.action) {
            step.action();
        }
        return step;
    }

    QList<Step> m_script;
    std::optional<bool> m_anyConfirm;
    QString m_allowed;
    int m_allowedSeen = 0;
};
