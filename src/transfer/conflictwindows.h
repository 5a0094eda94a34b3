#pragma once

#include "transfer/conflict.h"

class QWidget;

/// The real dialogs over a window.
class WindowConflictDialogs : public ConflictDialogs {
public:
    WindowConflictDialogs(Prompts &prompts, QWidget *window)
        : m_prompts(prompts)
        , m_window(window)
    {
    }

    [[nodiscard]] ConflictReply askTransfer(const ConflictQuestion &question) override;
    [[nodiscard]] std::optional<QString> askNewName(const QString &existing) override;

private:
    Prompts &m_prompts;
    QWidget *m_window;
};
