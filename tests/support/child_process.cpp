#include "support/child_process.h"

#include <linux/capability.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <string>

namespace korvane {
namespace {

bool WriteLine(const std::string& path, const std::string& text) {
    std::ofstream file(path);
    file << text << std::flush;
    return file.good();
}

}  // namespace

bool PassesInChild(const std::function<bool()>& body) {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        bool passed = false;
        try {
            passed = body();
        } catch (const std::exception& error) {
            std::fprintf(stderr, "child: %s\n", error.what());
        }
        ::_exit(passed ? 0 : 1);
    }
    int status = 0;
    return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void GiveUpPrivileges() {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    const __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3]{};
    if (::syscall(SYS_capset, &header, none) != 0) ::_exit(1);
}

bool EnterEmptyNetwork() {
    const uid_t user = ::geteuid();
    const gid_t group = ::getegid();
    if (user == 0) return ::unshare(CLONE_NEWNET) == 0;
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) return false;
    return WriteLine("/proc/self/setgroups", "deny") && WriteLine("/proc/self/gid_map", "0 " + std::to_string(group) + " 1") &&
           WriteLine("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
}

void RaiseLoopback() {
    const int any = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq loopback{};
    std::strcpy(loopback.ifr_name, "lo");
    loopback.ifr_flags = IFF_UP;
    ::ioctl(any, SIOCSIFFLAGS, &loopback);
    ::close(any);
}

}  // namespace korvane
