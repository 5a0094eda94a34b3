#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ftp {

/// A date and time of the proleptic Gregorian calendar without a zone.
struct CivilTime {
    int year = 1970, month = 1, day = 1; ///< month and day count from 1
    int hour = 0, minute = 0, second = 0;
    auto operator<=>(const CivilTime &) const = default;
};

/// Whether all fields lie in their ranges (years 1 to 9999, leap years regarded). A second of 60 is
/// valid: leap seconds are legal in time values (RFC 3659, section 2.3).
[[nodiscard]] bool isValid(const CivilTime &time);

/// Seconds since 1970-01-01 00:00:00 of a time read as UTC. Valid input expected.
[[nodiscard]] std::int64_t toEpoch(const CivilTime &time);

/// The UTC time of seconds since 1970-01-01 00:00:00; clamped to the years 1 to 9999.
[[nodiscard]] CivilTime fromEpoch(std::int64_t seconds);

/// Completes a date whose year is missing: the newest year for which it lies not more than 24 hours
/// after now (for 29 February: the newest leap year for which that holds).
/// @param partial  its year is ignored
/// @return nothing when no year makes the date valid.
[[nodiscard]] std::optional<CivilTime> inferYear(CivilTime partial, const CivilTime &now);

/// Reads a time value YYYYMMDDHHMMSS[.fff] (RFC 3659, section 2.3), UTC; the fraction is dropped.
[[nodiscard]] std::optional<CivilTime> parseTimeVal(std::string_view text);

/// Writes YYYYMMDDHHMMSS as MFMT wants it. Valid input expected.
[[nodiscard]] std::string formatTimeVal(const CivilTime &time);

} // namespace ftp
