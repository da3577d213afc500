// Runs a piece of a test in a child process: for what changes the whole process (its limits, its user, its network) and must not
// stay so.
#pragma once

#include <linux/capability.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <string>

#include "base/ignore_errors.h"
#include "platform/linux/descriptor.h"

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

/// A network without anything but a loopback interface that is down, for the rest of this process, which may have one thread
/// only. False where the system does not allow it.
inline bool EnterEmptyNetwork() {
    const std::string user = std::to_string(::geteuid()), group = std::to_string(::getegid());
    if (user == "0") return ::unshare(CLONE_NEWNET) == 0;
    const auto write = [](const char* file, const std::string& text) {
        return (std::ofstream(std::string("/proc/self/") + file) << text << std::flush).good();
    };
    return ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0 && write("setgroups", "deny") && write("gid_map", "0 " + group + " 1") &&
           write("uid_map", "0 " + user + " 1");
}

/// In an empty network.
inline void RaiseLoopback() {
    const Descriptor any(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq loopback{.ifr_ifrn = {"lo"}, .ifr_ifru = {}};
    loopback.ifr_flags = IFF_UP;
    ::ioctl(any.Number(), SIOCSIFFLAGS, &loopback);
}

}  // namespace korvane
