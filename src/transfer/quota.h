#pragma once

#include "common/prompts.h"
#include "common/shell.h"
#include "ftp/ftptypes.h"

/// The explanation of a used-up quota, letter for letter.
[[nodiscard]] QString quotaMessage();

/// Explains replies about missing space; one object for a window.
class SpaceReplies {
public:
    SpaceReplies(Prompts &prompts, Shell &shell)
        : m_prompts(prompts)
        , m_shell(shell)
    {
    }

    /// To be called for every event, whatever its status. 451 goes to the log and into a box, 452
    /// and 552 to the log only. While the box stands open a folder transfer goes on below it, and
    /// further refusals open no second one.
    void explain(const FtpEvent &event);

private:
    void showBox();

    Prompts &m_prompts;
    Shell &m_shell;
    bool m_boxStandsOpen = false;
};
