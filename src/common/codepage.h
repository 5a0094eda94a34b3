#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

/// Windows-1252, the single-byte code page of profiles and logs. Its five undefined codes
/// (81, 8D, 8F, 90, 9D) map to the control characters of the same number, so that all 256 codes
/// survive a round trip.
namespace CodePage {

[[nodiscard]] QString decode(const QByteArray &bytes);

/// The bytes of a text; nothing when a character is not in the code page.
[[nodiscard]] std::optional<QByteArray> encode(const QString &text);

/// Code of one character, -1 when it is not in the code page.
[[nodiscard]] int codeOf(QChar character);
/// Character of a code 0..255.
[[nodiscard]] QChar characterOf(int code);

/// Text file bytes: the code page when it can hold the text, else UTF-8 with a byte order mark.
[[nodiscard]] QByteArray encodeFile(const QString &text);
/// Reverse of encodeFile: the byte order mark tells.
[[nodiscard]] QString decodeFile(const QByteArray &bytes);

} // namespace CodePage
