#include "listing_promises.h"

/// The text of LIST in every dialect.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char *>(data), size);
    requirePromises(ftp::parseList(bytes, { 2026, 11, 20, 12, 0, 0 }), bytes);
    return 0;
}
