#pragma once

#include "ftp/ftptypes.h"

#include <QString>

/// One plain German sentence that says what to do about a failure; empty when there is nothing to
/// do, for example after an abort.
[[nodiscard]] QString adviceFor(ftp::ErrorKind kind);

/// The same for a failure that an event tells about; empty when the event's own text says enough.
[[nodiscard]] QString adviceFor(const FtpEvent &event);
