#include "platform/linux/linux_system_info.h"

#include <sys/utsname.h>

#include <algorithm>

namespace korvane {

SystemVersion LinuxSystemInfo::Version() const {
    utsname names{};
    if (::uname(&names) != 0) return {};
    return VersionOfRelease(names.sysname, names.release);
}

SystemVersion VersionOfRelease(std::string_view platform, std::string_view release) {
    constexpr std::string_view kDigits = "0123456789";
    std::size_t end = std::min(release.find_first_not_of(kDigits), release.size());
    if (end < release.size() && release[end] == '.') end = std::min(release.find_first_not_of(kDigits, end + 1), release.size());
    return {std::string(platform), std::string(release.substr(0, end)),
            std::string(release.substr(std::min(end + 1, release.size())))};
}

}  // namespace korvane
