#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ftp {

struct HostPort {
    std::string host; ///< IPv4 address in dotted form
    std::uint16_t port = 0;
};

/// Reads the address of a reply 227: the first run of exactly six numbers separated by commas, in
/// brackets or not (RFC 959 fixes no text; RFC 1123, section 4.1.2.6).
/// @param replyText  with or without the code in front
/// @return nothing when there is none, a number is above 255, or the port is 0.
[[nodiscard]] std::optional<HostPort> parsePasv(std::string_view replyText);

/// Reads the port of a reply 229, "(|||port|)" with any delimiter from 33 to 126 (RFC 2428,
/// section 3).
[[nodiscard]] std::optional<std::uint16_t> parseEpsv(std::string_view replyText);

/// The argument of PORT, "h1,h2,h3,h4,p1,p2".
/// @param ipv4  address in dotted form
[[nodiscard]] std::string formatPort(std::string_view ipv4, std::uint16_t port);

/// The argument of EPRT, "|1|address|port|" (IPv4) or "|2|address|port|" (IPv6).
[[nodiscard]] std::string formatEprt(std::string_view address, std::uint16_t port);

} // namespace ftp
