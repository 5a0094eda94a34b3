#include "servers/account.h"

#include <pwd.h>
#include <stdexcept>
#include <unistd.h>

namespace servers {

bool isRoot() { return geteuid() == 0; }

Account testAccount()
{
    Account account { "tarvelo-test", "geheim", geteuid(), getegid() }; // as in setup.sh
    if (isRoot()) {
        const passwd *entry = getpwnam(account.name.c_str());
        if (entry == nullptr) {
            throw std::runtime_error("no account " + account.name + "; run tests/servers/setup.sh");
        }
        account.uid = entry->pw_uid;
        account.gid = entry->pw_gid;
    }
    return account;
}

} // namespace servers
