#include "ftp/engine_thread.h"

#include <asio/executor_work_guard.hpp>
#include <thread>

namespace ftp {

asio::any_io_executor EngineThread::executor()
{
    static asio::io_context *const context = [] {
        auto *created = new asio::io_context(1); // lives as long as the process
        std::thread([created] {
            const auto work = asio::make_work_guard(*created);
            created->run();
        }).detach();
        return created;
    }();
    return context->get_executor();
}

} // namespace ftp
