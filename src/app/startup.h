#pragma once

#include "common/settingsstore.h"
#include "common/workingfolders.h"

#include <QString>

/// Reads the program settings, then the current connection, each value in its fixed order.
/// @return the first value that cannot be read; what was read until then has its new value
[[nodiscard]] SettingsResult<void> readSettings(const SettingsStore &store, Globals &globals);

/// The first steps of loading the main window: profile folder, settings, temporary folder, flags.
/// The commands' states and the local pane come after it and are the window's.
[[nodiscard]] SettingsResult<void> loadProgramState(const SettingsStore &store,
                                                    const FolderSources &sources, Globals &globals);

/// Makes an ftp:// or ftpes:// address the current connection, for the connection dialog to show.
/// The proxy stays, and no profile is current. @return false, and nothing is changed, when the
/// address cannot be used
[[nodiscard]] bool takeAddress(const QString &address, Globals &globals);

/// File that keeps the trusted certificates, beside the settings.
[[nodiscard]] QString trustFile(const SettingsStore &store);
