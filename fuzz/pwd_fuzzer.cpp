#include "ftp/path.h"
#include "require.h"

/// The last line of 257, and the routines that take paths and names from a server.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    constexpr std::string_view never("\0\r\n", 3);
    if (const auto path = ftp::parsePwd(text)) {
        REQUIRE(!path->empty() && path->find_first_of(never) == std::string::npos);
        REQUIRE(path->size() + 4 <= text.size());
    }
    if (ftp::isSafeName(text)) {
        REQUIRE(text.find('/') == std::string_view::npos);
        REQUIRE(text.find_first_of(never) == std::string_view::npos);
        REQUIRE(ftp::parentOf(ftp::joinPath("/a", text)) == "/a");
    }
    const std::string parent = ftp::parentOf(text);
    REQUIRE(text.starts_with(parent));
    REQUIRE(ftp::parentOf(parent).size() <= parent.size());
    return 0;
}
