#pragma once

#include <functional>
#include <system_error>
#include <thread>
#include <utility>

/// Runs work in another thread while the window goes on painting, and returns when it is done.
/// Clicks and keys wait meanwhile; timers run. The work must not touch
/// widgets or models.
void runBesideWindow(const std::function<void()> &work);

/// Gives up a value that takes long to free, such as the rows of a big folder; the window does not
/// wait for it. The value must not touch widgets or models when it goes.
template <class Value> void freeBesideWindow(Value value)
{
    try {
        std::thread([gone = std::move(value)]() mutable { gone = Value(); }).detach();
    } catch (const std::system_error &) {
        // no thread to be had: then it is freed here
    }
}
