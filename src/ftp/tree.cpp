#include "ftp/tree.h"

namespace ftp {

Awaitable<Status> getTree(Client &, std::string, std::string, Type)
{
    co_return fail(ErrorKind::Protocol, "Folders cannot be fetched yet");
}

Awaitable<Status> putTree(Client &, std::string, std::string, Type)
{
    co_return fail(ErrorKind::Protocol, "Folders cannot be stored yet");
}

Awaitable<Status> removeTree(Client &, std::string)
{
    co_return fail(ErrorKind::Protocol, "Folders cannot be removed yet");
}

} // namespace ftp
