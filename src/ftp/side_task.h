#pragma once

#include "ftp/event.h"

#include <asio/co_spawn.hpp>
#include <exception>
#include <memory>

namespace ftp {

/// A step that runs beside its owner, who must join it before anything the step uses goes away.
class SideTask {
public:
    SideTask(const asio::any_io_executor &executor, Awaitable<Status> work)
        : m_state(std::make_shared<State>(executor))
    {
        asio::co_spawn(
            executor,
            [](std::shared_ptr<State> state, Awaitable<Status> step) -> Awaitable<void> {
                state->result = co_await std::move(step);
                state->over.set();
            }(m_state, std::move(work)),
            [state = m_state](const std::exception_ptr &thrown) {
                if (thrown) { // out of memory, say; the owner must not wait for ever
                    state->result = fail(ErrorKind::Protocol, "Internal error");
                    state->over.set();
                }
            });
    }

    /// Waits for the step's end; may be asked again afterwards.
    Awaitable<Status> join()
    {
        co_await m_state->over.wait();
        co_return m_state->result;
    }

private:
    struct State {
        explicit State(const asio::any_io_executor &executor)
            : over(executor)
        {
        }
        Event over;
        Status result;
    };
    std::shared_ptr<State> m_state;
};

} // namespace ftp
