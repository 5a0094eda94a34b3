#pragma once

#include <functional>

/// Runs blocking work on another thread and returns when it is done. The caller's event loop runs
/// meanwhile, so that the window lives; the work must not touch anything of it.
void runAside(const std::function<void()> &work);
