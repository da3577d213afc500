// What the environment of this process defines: variables, the XDG base directories of freedesktop.org (version 0.8), and the
// web proxy of the session.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace korvane {

/// Returns the value of an environment variable, empty when it is not set.
using Environment = std::function<std::string(const std::string& name)>;
std::string EnvironmentVariable(const std::string& name);

/// Return the user's own folder for settings and for data.
std::string ConfigHome(const Environment& environment);
std::string DataHome(const Environment& environment);

/// Return that folder followed by those of the system, in the order in which they are searched.
std::vector<std::string> ConfigFolders(const Environment& environment);
std::vector<std::string> DataFolders(const Environment& environment);

/// Returns "host:port" from the variable http_proxy, else from HTTP_PROXY; empty when neither names a proxy. Other parts of the
/// value (scheme, user and password, path) are left out; the default port is that of HTTP.
std::string DesktopProxyServer(const Environment& environment);

}  // namespace korvane
