// The proxy in the settings dialog: how the desktop's proxy is taken over, and the hints about a typed name.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvane {

std::string ProxyDetectedText(const std::string& detected);

struct ProxyBoxes {
    std::optional<std::string> name;  ///< nothing: the box stays unchanged
    std::string port;
};

/// Converts the detected text, such as "host:80", for the command that sets the proxy. The name is complete if the port has two
/// digits; it loses one character at its end for every further digit, which the operator corrects by hand.
ProxyBoxes ProxyFromDetected(const std::string& detected);

/// Returns whether the name as typed so far gets the advice below. It is stored anyway.
bool LacksProxyScheme(const std::string& name);
extern const std::string_view kProxySchemeMessage;

/// Shown in the status line after each change of the name.
extern const std::string_view kProxyChangedHint;
/// Shown after a changed name was saved.
extern const std::string_view kProxyChangedMessage;

}  // namespace korvane
