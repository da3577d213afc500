#include "platform/linux/desktop_proxy.h"

#include "base/text.h"

namespace korvane {
namespace {

constexpr const char* kVariables[] = {"http_proxy", "HTTP_PROXY"};
constexpr const char* kPortOfHttp = ":80";

// The form is "//" authority "/" ..., and the authority may have a user before an "@" (RFC 3986, section 3.2).
std::string AuthorityOf(const std::string& address) {
    const std::size_t scheme = address.find("://");
    std::string authority = scheme == std::string::npos ? address : address.substr(scheme + 3);
    authority = authority.substr(0, authority.find('/'));
    return authority.substr(authority.rfind('@') + 1);
}

}  // namespace

std::string DesktopProxyServer(const Environment& environment) {
    for (const char* variable : kVariables) {
        const std::string server = AuthorityOf(TrimAll(environment(variable)));
        if (server.empty()) continue;
        return Holds(server, ":") ? server : server + kPortOfHttp;
    }
    return "";
}

}  // namespace korvane
