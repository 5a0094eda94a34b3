#include "servers/network.h"

#include "servers/socket.h"

#include <cstdio>
#include <fstream>
#include <limits>
#include <stdexcept>

namespace servers {

std::uint16_t freePort(const std::string &address)
{
    const Handle listener = listenOn(address);
    const std::uint16_t port = localPort(listener);
    // One finished connection leaves the port in TIME_WAIT: the system does not hand it out to
    // others then, while a server that names it may still listen there.
    const Handle client = connectTo(address, port);
    const Handle accepted = acceptFrom(listener, 5000);
    if (!accepted) {
        throw std::runtime_error("no connection to a port of our own");
    }
    return port; // the accepted end is closed first, so it is the port that waits
}

bool isListening(std::uint16_t port)
{
    char local[8];
    std::snprintf(local, sizeof(local), ":%04X", port);
    for (const char *table : { "/proc/net/tcp", "/proc/net/tcp6" }) {
        std::ifstream file(table);
        std::string number, address, peer, state;
        while (file >> number >> address >> peer >> state) {
            if (state == "0A" && address.ends_with(local)) {
                return true;
            }
            file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
        }
    }
    return false;
}

} // namespace servers
