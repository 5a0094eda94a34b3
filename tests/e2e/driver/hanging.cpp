// A folder on a file system that no longer answers: whoever asks for the folder named by
// TARVELO_HANGING, or for something in it, never comes back. Works because the driver is loaded
// before the C library.
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void wait(const char *name)
{
    const char *hanging = std::getenv("TARVELO_HANGING");
    while (hanging != nullptr && std::strstr(name, hanging) == name) {
        ::pause();
    }
}

} // namespace

extern "C" DIR *opendir(const char *name)
{
    wait(name);
    using Opendir = DIR *(*)(const char *);
    static const auto real = reinterpret_cast<Opendir>(::dlsym(RTLD_NEXT, "opendir"));
    return real(name);
}

extern "C" int statx(int folder, const char *name, int flags, unsigned int mask,
                     struct statx *result)
{
    wait(name);
    using Statx = int (*)(int, const char *, int, unsigned int, struct statx *);
    static const auto real = reinterpret_cast<Statx>(::dlsym(RTLD_NEXT, "statx"));
    return real(folder, name, flags, mask, result);
}
