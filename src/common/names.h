#pragma once

#include <QString>

/// Whether a name that came from a server may become the name of a local file: one path component
/// without NUL or line breaks, neither empty nor "." nor "..".
[[nodiscard]] bool isSafeName(const QString &name);
