// The web proxy of this session, as its environment defines it.
#pragma once

#include <string>

#include "platform/linux/default_program.h"

namespace korvane {

/// Returns "host:port" from the variable http_proxy, else from HTTP_PROXY; empty when neither names a proxy. Other parts of the
/// value (scheme, user and password, path) are left out; the default port is that of HTTP.
std::string DesktopProxyServer(const Environment& environment);

}  // namespace korvane
