#pragma once

#include <QStringList>

class QMimeData;
struct MarkedItemList;

/// What is dragged between the panes and into the window.
namespace PaneDrag {

/// Data of a drag that begins in a pane. @param paths  local files that other programs may take
[[nodiscard]] QMimeData *rowsOf(const QString &pane, const QStringList &paths = {});
/// Whether a drag began in that pane of this very program.
[[nodiscard]] bool isFrom(const QMimeData &data, const QString &pane);

/// Local files and folders of a drag from another program, such as the file manager; without
/// those of this program's own panes.
[[nodiscard]] QStringList localFiles(const QMimeData &data);
/// Local files and folders as marked items, for the upload.
[[nodiscard]] MarkedItemList markedFiles(const QStringList &paths);

} // namespace PaneDrag
