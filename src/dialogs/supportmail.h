#pragma once

#include "common/addresses.h"
#include "common/globals.h"

#include <QString>

/// Hint shown before a mail to the support is opened.
[[nodiscard]] QString supportHint();

/// Address of the help menu's support mail, ready for the opener. The body is URL-encoded as it
/// stands and must not be encoded again.
[[nodiscard]] QString supportMailUrl(const Addresses &addresses, const Globals &globals);

/// Address of the info screen's mail. The brackets name the login of the current connection, so
/// that the support knows which customer is writing.
[[nodiscard]] QString officeMailUrl(const Addresses &addresses, const Globals &globals);
