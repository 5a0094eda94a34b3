#pragma once

#include "ftp/error.h"

#include <QString>

/// One plain German sentence that says what to do about a failure; empty when there is nothing to
/// do, for example after an abort.
[[nodiscard]] QString adviceFor(ftp::ErrorKind kind);
