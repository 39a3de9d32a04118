// Runs a check as an ordinary user: permission failures cannot be seen as root, and CI runs
// as root.
#pragma once
#if !defined(_WIN32)

#include <functional>
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmor_test {

/// Runs `check` in a forked child that has dropped to the user and group `nobody` (65534) when
/// it runs as root, and returns what it returned; -1 when the child could not be started or
/// could not drop its privileges.
inline int run_unprivileged(const std::function<int()>& check) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 &&
            (::setgroups(0, nullptr) != 0 || ::setresgid(65534, 65534, 65534) != 0 ||
             ::setresuid(65534, 65534, 65534) != 0)) {
            ::_exit(255);
        }
        ::_exit(check());
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) == 255) {
        return -1;
    }
    return WEXITSTATUS(status);
}

} // namespace velmor_test

#endif
