#include "connections/profile.h"
#include "require.h"

#include <algorithm>

namespace {

ProfileFields written(const ProfileFields &fields)
{
    ProfileFields again;
    REQUIRE(decodeProfile(encodeProfile(fields), again) == 11);
    return again;
}

} // namespace

/// The two files of a profile, a NUL between them. Whatever was read can be written, and from then
/// on stays as it is; the password does so at once.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const unsigned char *end = std::find(data, data + size, 0);
    const QByteArray login(reinterpret_cast<const char *>(data), end - data);
    const QByteArray side(reinterpret_cast<const char *>(end), data + size - end);
    ProfileFields fields;
    const int count = decodeProfile({ login, side.mid(1) }, fields);
    REQUIRE(count >= 0 && count <= 11);
    const ProfileFields first = written(fields);
    REQUIRE(first.Password == fields.Password);
    REQUIRE(written(first) == first);
    return 0;
}
