#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/io_context.hpp>

namespace ftp {

/// The one thread on which all sessions of the program run. It starts with the first use and ends
/// with the process, which nothing that it still does can hold up.
class EngineThread {
public:
    [[nodiscard]] static asio::any_io_executor executor();
};

} // namespace ftp
