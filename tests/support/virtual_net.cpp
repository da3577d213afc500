#include "support/virtual_net.h"

namespace korvane {

using std::chrono::milliseconds;

VirtualHost& VirtualHost::ResolveAfter(milliseconds after) {
    lookup_ = {Lookup::Outcome::Found, after};
    return *this;
}

VirtualHost& VirtualHost::NeverResolves() {
    lookup_ = {Lookup::Outcome::Never, {}};
    return *this;
}

VirtualHost& VirtualHost::Unknown(milliseconds after) {
    lookup_ = {Lookup::Outcome::Unknown, after};
    return *this;
}

VirtualHost& VirtualHost::Echo(milliseconds after) {
    echo_ = {true, 0, after};
    return *this;
}

VirtualHost& VirtualHost::EchoSilent() {
    echo_ = {false, 0, {}};
    return *this;
}

VirtualHost& VirtualHost::EchoStatus(int status, milliseconds after) {
    echo_ = {true, status, after};
    return *this;
}

VirtualHost& VirtualHost::Down() {
    down_ = true;
    return *this;
}

VirtualHost& VirtualHost::Up() {
    down_ = false;
    return *this;
}

VirtualServer* VirtualHost::FindPort(int port) {
    const auto found = ports_.find(port);
    return found == ports_.end() ? nullptr : &found->second;
}

VirtualHost& VirtualNet::Host(std::string_view name) {
    return hosts_[std::string(name)];
}

VirtualPage& VirtualNet::Page(std::string_view url) {
    return pages_[std::string(url)];
}

VirtualHost* VirtualNet::FindHost(std::string_view name) {
    const auto found = hosts_.find(name);
    return found == hosts_.end() ? nullptr : &found->second;
}

VirtualPage* VirtualNet::FindPage(const std::string& url) {
    const auto found = pages_.find(url);
    return found == pages_.end() ? nullptr : &found->second;
}

std::string HostOfUrl(std::string_view url) {
    const auto scheme = url.find("://");
    const auto begin = scheme == std::string_view::npos ? 0 : scheme + 3;
    const auto end = url.find_first_of(":/?#", begin);
    return std::string(url.substr(begin, end == std::string_view::npos ? end : end - begin));
}

bool IsDottedAddress(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789.") == std::string_view::npos;
}

}  // namespace korvane
