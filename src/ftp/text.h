#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ftp {

/// Whether bytes are well-formed UTF-8: shortest forms only, no surrogates, up to U+10FFFF.
[[nodiscard]] bool isUtf8(std::string_view bytes);

/// UTF-8 stays as it is; anything else is read as Windows-1252, whose five undefined codes stand
/// for the control characters of the same number. Never fails.
[[nodiscard]] std::string toUtf8(std::string_view raw);

/// The same text in Windows-1252; nothing when it holds other characters or is no UTF-8.
[[nodiscard]] std::optional<std::string> toWindows1252(std::string_view utf8);

} // namespace ftp
