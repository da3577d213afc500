// The proxy in the settings dialog: what the desktop's own is made into, and what is said of a name that is typed.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvane {

std::string ProxyDetectedText(const std::string& detected);

struct ProxyBoxes {
    std::optional<std::string> name;  ///< nothing: the box stays as it is
    std::string port;
};

/// What the command to set the proxy makes of the detected text, such as "host:80". The name comes out whole with a port of two
/// digits; it loses a character at its end for every digit beyond, which the operator corrects by hand.
ProxyBoxes ProxyFromDetected(const std::string& detected);

/// Whether the name as typed so far gets the advice below. It is stored all the same.
bool LacksProxyScheme(const std::string& name);
extern const std::string_view kProxySchemeMessage;

/// On the status line after each change of the name.
extern const std::string_view kProxyChangedHint;
/// After saving a changed name.
extern const std::string_view kProxyChangedMessage;

}  // namespace korvane
