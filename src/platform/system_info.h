// Port: what this machine says of itself.
#pragma once

#include <string>

namespace korvane {

/// "Linux", "6.1" and "0-13-amd64" of a kernel 6.1.0-13-amd64; any of them may be blank.
struct SystemVersion {
    std::string platform;
    std::string version;
    std::string build;
};

class SystemInfo {
public:
    virtual ~SystemInfo() = default;
    virtual SystemVersion Version() const = 0;
};

}  // namespace korvane
