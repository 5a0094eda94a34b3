#include "listing_promises.h"

/// The text of MLSD.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    requirePromises(ftp::parseMlsd(bytes), bytes);
    return 0;
}
