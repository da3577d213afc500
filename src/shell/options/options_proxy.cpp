#include "shell/options/options_proxy.h"

#include <cstdint>

#include "base/text.h"

namespace korvane {
namespace {

constexpr const char* kScheme = "http://";

/// Returns the position, counted from 1; 0 when there is none.
std::int64_t Position(const std::string& text, char character) {
    return static_cast<std::int64_t>(text.find(character) + 1);
}

}  // namespace

constexpr std::string_view kProxySchemeMessage = "Proxy server must begin with http:// if you use any value for the proxy server";
constexpr std::string_view kProxyChangedHint =
    "If you change the proxy server / proxy port, you must click OK, shut down Korvane, and restart it for the changes to take "
    "effect!";
constexpr std::string_view kProxyChangedMessage =
    "You must shutdown and restart Korvane for any proxy server settings changes to take effect.";

std::string ProxyDetectedText(const std::string& detected) {
    return "Korvane has detected your Internet Explorer Proxy server is '" + detected +
           "'.  Click the 'Set Proxy' button to the left to fill in the proxy server string above.";
}

ProxyBoxes ProxyFromDetected(const std::string& detected) {
    const std::int64_t colon = Position(detected, ':');
    const std::int64_t equals = Position(detected, '=');
    const std::int64_t behindColon = static_cast<std::int64_t>(detected.size()) - colon;
    const std::int64_t length = (colon - 1) - behindColon - 1 + 3;
    ProxyBoxes boxes{.name = std::nullopt, .port = detected.substr(static_cast<std::size_t>(colon))};
    if (length >= 0) boxes.name = kScheme + detected.substr(static_cast<std::size_t>(equals), static_cast<std::size_t>(length));
    return boxes;
}

bool LacksProxyScheme(const std::string& name) {
    return !Trim(name).empty() && !EqualsNoCase(name.substr(0, 1), "H");
}

}  // namespace korvane
