// The web proxy that this session goes through, as its environment names it.
#pragma once

#include <string>

#include "platform/linux/default_program.h"

namespace korvane {

/// "host:port" from the variable http_proxy, or else HTTP_PROXY; blank when neither says anything. What else stands there
/// (scheme, user and password, path) is left out; without a port it is that of HTTP.
std::string DesktopProxyServer(const Environment& environment);

}  // namespace korvane
