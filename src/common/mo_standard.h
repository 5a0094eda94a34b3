#pragma once

#include <QString>

/// Separator of local paths on this platform.
inline constexpr QChar LocalSeparator = u'/';

/// The text without leading and trailing blanks (U+0020 only; tabs stay).
[[nodiscard]] QString trimBlanks(const QString &text);

/// Lenient number: skips leading blanks, reads as far as it is a number, 0 when it is none.
[[nodiscard]] double lenientNumber(const QString &text);
/// Lenient whole number: rounds half to even, saturates at the limits of 64 bits.
[[nodiscard]] qint64 lenientInteger(const QString &text);
/// The same, saturating at the limits of int.
[[nodiscard]] int lenientInt(const QString &text);

/// Shifts every character code by the text's length: down to scramble, up to unscramble
/// (modulo 256 over Windows-1252; other characters are left alone).
[[nodiscard]] QString ScramblePassword(const QString &text, bool scramble);

/// create false: whether path is an existing directory. create true: makes every missing directory
/// to the left of each separator from character position 3 on, and returns true.
/// Intended: the last component is made only when path ends in the separator.
bool EnsureFolder(const QString &path, bool create, QChar separator = LocalSeparator);

/// Folder and name joined with exactly one separator added when the folder does not end in one.
[[nodiscard]] QString joinPath(const QString &folder, const QString &name,
                               QChar separator = LocalSeparator);

/// The path with a separator at its end; nothing else is changed. Empty becomes the separator.
[[nodiscard]] QString withSeparator(const QString &path, QChar separator);

/// The path without one separator at its end; "/" stays as it is, "D:\" becomes "D:".
[[nodiscard]] QString withoutSeparator(const QString &path, QChar separator = LocalSeparator);

/// Folder path of a folder box: drops a "[...]" annotation, trims blanks, adds the separator.
/// Only for text from a folder box; derived paths are joined with withSeparator.
QString NormalizeFolderPath(QString &path, QChar separator);

/// Parent of a folder path that ends in the separator; a root stays as it is.
[[nodiscard]] QString LocalUpPath(const QString &folder, QChar separator = LocalSeparator);

/// Short size text in B, KB or MB with the locale's decimal sign; empty for 0 and less.
[[nodiscard]] QString FormatSize(qint64 bytes);
