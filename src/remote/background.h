#pragma once

#include <functional>

/// Runs work in another thread while the window goes on painting, and returns when it is done.
/// Clicks and keys wait meanwhile, so no command can begin in between. The work must not touch
/// widgets or models.
void runBesideWindow(const std::function<void()> &work);
