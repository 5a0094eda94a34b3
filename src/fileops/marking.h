#pragma once

#include "common/globals.h"

class Pane;

/// Fills Globals::marked afresh from a pane's selection and ghosts the rows. Rows without text
/// (the up row) are passed over.
/// @param singleOnly  only the current row instead of every selected one
/// @return the number of marked rows
int MarkSelectedRemote(Pane &remote, Globals &globals, bool singleOnly);
int MarkSelectedLocal(Pane &local, Globals &globals, bool singleOnly);

/// Gives every marked row of the pane its normal look again. The list itself stays.
void UnmarkAll(Pane &pane, const Globals &globals);
/// Gives one marked row its normal look again.
void unmark(Pane &pane, const MarkedItem &item);

/// The row of a marked item as the pane stands now, -1 when it is gone. The row index at marking
/// time is only a hint, since rows come and go meanwhile.
[[nodiscard]] int rowOf(Pane &pane, const MarkedItem &item);

/// Full path of a marked item.
[[nodiscard]] QString pathOf(const MarkedItem &item, QChar separator);
