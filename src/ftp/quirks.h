#pragma once

#include <string_view>

namespace ftp {

/// What is known of a server by its greeting; it need not be found out the hard way.
struct Quirks {
    /// Loses commands that arrive in one packet.
    bool losesPipelined = false;
    /// Takes no command before the transfer at hand has ended, so that any may be sent ahead.
    bool keepsOrder = false;
    /// Carries out commands while a transfer still runs, so that none may be sent ahead.
    bool noLookAhead = false;
    /// Wants the byte FF once, where RFC 959 has it doubled.
    bool singleTelnetIac = false;
    /// Dies of commands that it does not know.
    bool diesOfUnknown = false;
};

/// What all names that stand in a greeting tell together.
[[nodiscard]] Quirks quirksOf(std::string_view greeting);

} // namespace ftp
