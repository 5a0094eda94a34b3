#include "ftp/truststore.h"
#include "require.h"

/// The list of servers known to encrypt. Whatever was read can be written and read again.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const auto read = ftp::parseTrust({ reinterpret_cast<const char *>(data), size });
    for (const ftp::TrustedServer &server : read) {
        REQUIRE(server.host.find_first_of("\t\n") == std::string::npos);
        REQUIRE(server.fingerprint.find_first_of(" \t\n") == std::string::npos);
    }
    const std::string text = ftp::formatTrust(read);
    const auto again = ftp::parseTrust(text);
    REQUIRE(again.size() == read.size());
    REQUIRE(ftp::formatTrust(again) == text);
    return 0;
}
