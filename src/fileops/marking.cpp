#include "fileops/marking.h"

#include "common/mo_standard.h"
#include "remote/pane.h"
#include "remote/panemodel.h"

namespace {

/// Folder of a row, with its separator. The tag tells it exactly; the text of the folder box may
/// have been edited since the folder was listed.
QString folderOf(const PaneRow &row, const QString &boxText, QChar separator)
{
    if (!row.tag.isEmpty() && row.tag.endsWith(row.name)) {
        return row.tag.chopped(row.name.size());
    }
    return withSeparator(boxText, separator);
}

/// Whether a row is the marked item; another folder may hold the same name.
bool isItem(const PaneRow &row, const MarkedItem &item)
{
    return row.name == item.name && (row.tag.isEmpty() || row.tag == item.folder + item.name);
}

int markSelected(Pane &pane, Globals &globals, bool singleOnly, QChar separator)
{
    globals.marked = {};
    QList<int> rows = singleOnly ? QList<int> { pane.currentRow() } : pane.selectedRows();
    for (const int row : std::as_const(rows)) {
        if (row < 0 || pane.model().row(row).name.isEmpty()) {
            continue;
        }
        const PaneRow &entry = pane.model().row(row);
        globals.marked.MarkedItems.append(
            { entry.name, folderOf(entry, pane.folder(), separator), entry.kind, entry.size, row });
        ++globals.marked.MarkedCount;
        pane.model().setMarked(row, true);
    }
    return globals.marked.count();
}

} // namespace

int MarkSelectedRemote(Pane &remote, Globals &globals, bool singleOnly)
{
    return markSelected(remote, globals, singleOnly, u'/');
}

int MarkSelectedLocal(Pane &local, Globals &globals, bool singleOnly)
{
    return markSelected(local, globals, singleOnly, LocalSeparator);
}

void UnmarkAll(Pane &pane, const Globals &globals)
{
    for (int slot = 1; slot < globals.marked.MarkedCount; ++slot) {
        unmark(pane, globals.marked.MarkedItems.at(slot));
    }
}

void unmark(Pane &pane, const MarkedItem &item)
{
    if (const int row = rowOf(pane, item); row >= 0) {
        pane.model().setMarked(row, false);
    }
}

int rowOf(Pane &pane, const MarkedItem &item)
{
    const PaneModel &model = pane.model();
    const auto hit = [&](int row) {
        return row >= 0 && row < model.rowCount() && isItem(model.row(row), item);
    };
    if (hit(item.rowIndex)) {
        return item.rowIndex;
    }
    const int found = model.findRow(item.name);
    return hit(found) ? found : -1;
}

QString pathOf(const MarkedItem &item, QChar separator)
{
    return withSeparator(item.folder, separator) + item.name;
}
