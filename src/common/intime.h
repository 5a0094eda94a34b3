#pragma once

#include <QString>

#include <chrono>
#include <functional>

/// Asks something that may never be answered, such as whether a folder of a dead network mount is
/// there. Blocks the caller for the patience at most; the question goes on without it and must own
/// all that it touches.
/// @return the answer; false when none came
[[nodiscard]] bool yesInTime(const std::function<bool()> &question,
                             std::chrono::milliseconds patience);

/// Whether a folder is there; one on a network mount that does not answer within two seconds is
/// not, or the window would stand still for ever.
[[nodiscard]] bool isFolderInTime(const QString &folder);
