#pragma once

#include <atomic>
#include <functional>
#include <memory>

/// Runs blocking work on another thread and returns when it is done. The caller's event loop runs
/// meanwhile, so that the window lives. The work may never come back, such as reading from a dead
/// network mount: soon after stop has become true the thread is left alone. So the work must own
/// all that it touches, and touch nothing of the window.
/// @return whether the work is done
[[nodiscard]] bool runAsideUntil(const std::function<void()> &work,
                                 const std::shared_ptr<const std::atomic_bool> &stop);
/// The same with a stop that is asked on the caller's thread. Work that takes no time is waited for
/// without the event loop. @param slow  called once when it takes longer
[[nodiscard]] bool runAsideUntil(const std::function<void()> &work,
                                 const std::function<bool()> &stop,
                                 const std::function<void()> &slow);
