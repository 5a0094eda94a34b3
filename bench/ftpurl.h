#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// A server and a path on the command line of tarvelo-bench (RFC 1738, section 3.2).
struct BenchUrl {
    std::string user = "anonymous", password = "anonymous@", host, path;
    std::uint16_t port = 21;
    bool encrypted = false; ///< ftpes://
};

namespace bench_detail {

inline std::string decodePercent(std::string_view text)
{
    const auto digit = [](char c) {
        return c >= '0' && c <= '9' ? c - '0'
            : c >= 'a' && c <= 'f'  ? c - 'a' + 10
            : c >= 'A' && c <= 'F'  ? c - 'A' + 10
                                    : -1;
    };
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && digit(text[i + 1]) >= 0
            && digit(text[i + 2]) >= 0) {
            bytes += static_cast<char>(digit(text[i + 1]) * 16 + digit(text[i + 2]));
            i += 2;
        } else {
            bytes += text[i];
        }
    }
    return bytes;
}

} // namespace bench_detail

/// @return nothing when it is no ftp:// or ftpes:// address or the port is none.
inline std::optional<BenchUrl> parseBenchUrl(std::string_view text)
{
    BenchUrl url;
    if (text.starts_with("ftpes://")) {
        url.encrypted = true;
        text.remove_prefix(8);
    } else if (text.starts_with("ftp://")) {
        text.remove_prefix(6);
    } else {
        return std::nullopt;
    }
    const std::size_t slash = std::min(text.find('/'), text.size());
    std::string_view server = text.substr(0, slash);
    url.path = slash < text.size() ? bench_detail::decodePercent(text.substr(slash + 1)) : "";
    if (const std::size_t at = server.rfind('@'); at != std::string_view::npos) {
        const std::string_view login = server.substr(0, at);
        const std::size_t colon = std::min(login.find(':'), login.size());
        url.user = bench_detail::decodePercent(login.substr(0, colon));
        url.password
            = colon < login.size() ? bench_detail::decodePercent(login.substr(colon + 1)) : "";
        server.remove_prefix(at + 1);
    }
    if (const std::size_t colon = server.rfind(':');
        colon != std::string_view::npos && server.find(']', colon) == std::string_view::npos) {
        unsigned long port = 0;
        for (const char c : server.substr(colon + 1)) {
            if (c < '0' || c > '9' || port > 65535) {
                return std::nullopt;
            }
            port = port * 10 + static_cast<unsigned long>(c - '0');
        }
        if (port == 0 || port > 65535) {
            return std::nullopt;
        }
        url.port = static_cast<std::uint16_t>(port);
        server.remove_suffix(server.size() - colon);
    }
    if (server.starts_with('[') && server.ends_with(']')) {
        server = server.substr(1, server.size() - 2);
    }
    url.host = std::string(server);
    return url.host.empty() ? std::nullopt : std::optional(url);
}
