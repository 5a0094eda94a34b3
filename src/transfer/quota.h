#pragma once

#include "common/prompts.h"
#include "common/shell.h"
#include "ftp/ftptypes.h"

/// The explanation of a used-up quota, letter for letter.
[[nodiscard]] QString quotaMessage();

/// Explains replies about missing space; to be called for every event, whatever its status. 451
/// goes to the log and into a box, 452 and 552 to the log only.
void explainSpaceReply(const FtpEvent &event, Prompts &prompts, Shell &shell);
