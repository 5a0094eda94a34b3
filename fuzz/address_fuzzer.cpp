#include "ftp/address.h"
#include "require.h"

/// The texts of 227 and 229.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    if (const auto address = ftp::parsePasv(text)) {
        REQUIRE(address->port != 0);
        REQUIRE(address->host.size() >= 7 && address->host.size() <= 15);
        const auto again = ftp::parsePasv(ftp::formatPort(address->host, address->port));
        REQUIRE(again && again->host == address->host && again->port == address->port);
    }
    if (const auto port = ftp::parseEpsv(text)) {
        REQUIRE(*port != 0);
    }
    return 0;
}
