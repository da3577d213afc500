#include "platform/linux/environment.h"

#include <cstdlib>

#include "base/text.h"

namespace korvane {
namespace {

constexpr const char* kProxyVariables[] = {"http_proxy", "HTTP_PROXY"};
constexpr const char* kPortOfHttp = ":80";

std::vector<std::string> Folders(const std::string& own, const std::string& system) {
    std::vector<std::string> folders = Split(system, ':');
    folders.insert(folders.begin(), own);
    std::erase(folders, "");
    return folders;
}

// The form is "//" authority "/" ..., and the authority may have a user before an "@" (RFC 3986, section 3.2).
std::string AuthorityOf(const std::string& address) {
    const std::size_t scheme = address.find("://");
    std::string authority = scheme == std::string::npos ? address : address.substr(scheme + 3);
    authority = authority.substr(0, authority.find('/'));
    return authority.substr(authority.rfind('@') + 1);
}

}  // namespace

std::string EnvironmentVariable(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value == nullptr ? "" : value;
}

std::string ConfigHome(const Environment& environment) {
    return Or(environment("XDG_CONFIG_HOME"), environment("HOME") + "/.config");
}

std::string DataHome(const Environment& environment) {
    return Or(environment("XDG_DATA_HOME"), environment("HOME") + "/.local/share");
}

std::vector<std::string> ConfigFolders(const Environment& environment) {
    return Folders(ConfigHome(environment), Or(environment("XDG_CONFIG_DIRS"), "/etc/xdg"));
}

std::vector<std::string> DataFolders(const Environment& environment) {
    return Folders(DataHome(environment), Or(environment("XDG_DATA_DIRS"), "/usr/local/share:/usr/share"));
}

std::string DesktopProxyServer(const Environment& environment) {
    for (const char* variable : kProxyVariables) {
        const std::string server = AuthorityOf(TrimAll(environment(variable)));
        if (!server.empty()) return Holds(server, ":") ? server : server + kPortOfHttp;
    }
    return "";
}

}  // namespace korvane
