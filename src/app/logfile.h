#pragma once

#include <QString>
#include <functional>
#include <optional>

/// Names and bytes of saved logs; knows no window.
namespace LogFile {

/// The first free name of log.txt, log1.txt, log2.txt, ...; nothing when the 16-bit counter ends.
/// @param exists  whether a file of that name is there
[[nodiscard]] std::optional<QString> nextName(const std::function<bool(const QString &)> &exists);

/// A typed name, completed with ".txt" unless it ends so in any case.
[[nodiscard]] QString completeName(const QString &typed);

/// Writes the text and one line end, replacing what is there. @return whether that worked
bool write(const QString &path, const QString &text);

} // namespace LogFile
