// Runs a piece of a test in a child process: for what changes the whole process (its limits, its user) and must not
// stay so.
#pragma once

#include <linux/capability.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>

#include "base/ignore_errors.h"

namespace korvane {

/// Forks and runs `body` in the child; whether it returned true. An exception is false.
inline bool PassesInChild(const std::function<bool()>& body) {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        bool passed = false;
        IgnoreErrors([&] { passed = body(); });
        ::_exit(passed ? 0 : 1);
    }
    int status = 0;
    return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Takes root's privileges from this process for the rest of its life, so that permissions count for it too.
inline void GiveUpPrivileges() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    const __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3]{};
    if (::syscall(SYS_capset, &header, none) != 0) ::_exit(1);
}

}  // namespace korvane
