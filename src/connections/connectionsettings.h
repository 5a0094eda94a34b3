#pragma once

#include "common/globals.h"
#include "common/settingsstore.h"
#include "ftp/ftpconnection.h"

/// The eleven values of a connection that both writers of section "Settings" save, in their order;
/// the password scrambled.
[[nodiscard]] SettingsValues connectionSettings(const ConnectionProfile &connection);

/// The five proxy values of section "Settings" in their order; the password scrambled.
[[nodiscard]] SettingsValues proxySettings(const ConnectionProfile &connection);

/// The five proxy values as the control takes them.
[[nodiscard]] FtpProxy proxyOf(const ConnectionProfile &connection);
