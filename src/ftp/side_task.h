#pragma once

#include "ftp/stream.h"

#include <asio/co_spawn.hpp>
#include <asio/redirect_error.hpp>
#include <asio/use_awaitable.hpp>
#include <exception>
#include <memory>
#include <optional>

namespace ftp {

/// A step that runs beside its owner, who must join it before anything the step uses goes away.
class SideTask {
public:
    SideTask(const asio::any_io_executor &executor, Awaitable<Status> work)
        : m_state(std::make_shared<State>(executor))
    {
        m_state->timer.expires_at(asio::steady_timer::time_point::max());
        asio::co_spawn(
            executor,
            [](std::shared_ptr<State> state, Awaitable<Status> step) -> Awaitable<void> {
                state->result = co_await std::move(step);
                state->timer.cancel();
            }(m_state, std::move(work)),
            [state = m_state](const std::exception_ptr &thrown) {
                if (thrown) { // out of memory, say; the owner must not wait for ever
                    state->result = fail(ErrorKind::Protocol, "Internal error");
                    state->timer.cancel();
                }
            });
    }

    /// Waits for the step's end; may be asked again afterwards.
    Awaitable<Status> join()
    {
        while (!m_state->result) {
            std::error_code ignored; // the timer only ever ends by being cancelled
            co_await m_state->timer.async_wait(asio::redirect_error(asio::use_awaitable, ignored));
        }
        co_return *m_state->result;
    }

private:
    struct State {
        explicit State(const asio::any_io_executor &executor)
            : timer(executor)
        {
        }
        asio::steady_timer timer;
        std::optional<Status> result;
    };
    std::shared_ptr<State> m_state;
};

} // namespace ftp
