#pragma once

#include <QIcon>
#include <QString>

/// The program's icons, compiled in; all of one hand, drawn on a 16-unit grid.
namespace Icons {

/// Icon of a key of the image list (ItemKind::imageKeys()) or of one of the program's own names
/// ("cmd_download", "merken", ..); an empty icon when there is none.
[[nodiscard]] QIcon icon(const QString &name);

/// The same, faded: for rows that an operation works on.
[[nodiscard]] QIcon ghosted(const QString &name);

} // namespace Icons
