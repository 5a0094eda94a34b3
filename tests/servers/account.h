// The account that test servers work as.
#pragma once

#include <string>
#include <sys/types.h>

namespace servers {

struct Account {
    std::string name;
    std::string password;
    uid_t uid = 0;
    gid_t gid = 0;
};

bool isRoot();

/// As root the account made by setup.sh, else a name for the current user.
/// @throws std::runtime_error when root has not run setup.sh
Account testAccount();

} // namespace servers
