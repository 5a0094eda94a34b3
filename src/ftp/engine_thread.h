#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/io_context.hpp>
#include <memory>

namespace ftp {

/// The one thread on which all sessions of the program run. It starts with the first use and is
/// never joined: a name look-up that still hangs must not keep the program from ending.
class EngineThread {
public:
    [[nodiscard]] static asio::any_io_executor executor();
};

} // namespace ftp
