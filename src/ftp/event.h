#pragma once

#include "ftp/stream.h"

#include <asio/redirect_error.hpp>
#include <asio/use_awaitable.hpp>

namespace ftp {

/// Something that happens once and that others wait for (a manual-reset event that is never reset).
/// It must outlive those who wait, and is used on its executor's thread alone.
class Event {
public:
    explicit Event(const asio::any_io_executor &executor)
        : m_timer(executor, asio::steady_timer::time_point::max())
    {
    }

    void set()
    {
        m_set = true;
        m_timer.cancel();
    }
    /// Returns at once when it has happened already.
    Awaitable<void> wait()
    {
        while (!m_set) {
            std::error_code ignored; // the timer only ever ends by being cancelled
            co_await m_timer.async_wait(asio::redirect_error(asio::use_awaitable, ignored));
        }
    }

private:
    asio::steady_timer m_timer;
    bool m_set = false;
};

} // namespace ftp
