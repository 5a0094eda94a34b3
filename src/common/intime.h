#pragma once

#include <chrono>
#include <functional>

/// Asks something that may never be answered, such as whether a folder of a dead network mount is
/// there. Blocks the caller for the patience at most; the question goes on without it and must own
/// all that it touches.
/// @return the answer; false when none came
[[nodiscard]] bool yesInTime(const std::function<bool()> &question,
                             std::chrono::milliseconds patience);
