#include "shell/entry/entry_type.h"

#include <algorithm>

#include "base/text.h"

namespace korvane {
namespace {

constexpr std::string_view kHttp = "HTTP";
constexpr std::string_view kHttps = "HTTPS";
constexpr std::string_view kPing = "PING";
constexpr std::string_view kOtherPort = "Other Port";

constexpr EntryTypeScreen kWebScreen{
    .portEnabled = true, .expectedEnabled = true, .webPages = true, .addressLabel = "Web Page URL:"};
// Here the expected text is the limit in milliseconds, and replaces the time-out.
constexpr EntryTypeScreen kPingScreen{.expectedEnabled = true,
                                      .timeoutShown = false,
                                      .addressLabel = "PING (IP Addr Only):",
                                      .expectedLabel = "PING timeout in milliseconds:"};
constexpr EntryTypeScreen kOtherPortScreen{.portEnabled = true, .requestEnabled = true, .expectedEnabled = true};
constexpr EntryTypeScreen kPredefinedScreen{};

}  // namespace

EntryTypeTexts TextsOfType(const ServerType& type, const EntryFields& fields, bool typeChanged) {
    const bool isOther = type.name == kOtherPort;
    const bool keepsPort = isOther || (IsWebType(type.name) && !typeChanged);
    return {.port = keepsPort ? fields.strPort : std::string(type.port),
            .request = isOther ? fields.strRequestText : std::string(type.request),
            .expected = fields.strExpectedText.empty() ? std::string(type.expected) : fields.strExpectedText};
}

int IndexOfType(std::string_view name) {
    const auto types = ServerTypeTable();
    auto found = std::ranges::find(types, name, &ServerType::name);
    if (found == types.end())
        found = std::ranges::find_if(types, [&](const ServerType& each) { return EqualsNoCase(each.name, name); });
    return found == types.end() ? -1 : static_cast<int>(found - types.begin());
}

bool IsWebType(std::string_view type) {
    return type == kHttp || type == kHttps;
}

bool IsPingType(std::string_view type) {
    return type == kPing;
}

bool HasFreeExpectedText(std::string_view type) {
    return IsWebType(type) || type == kOtherPort;
}

const EntryTypeScreen& ScreenOfType(std::string_view type) {
    if (IsWebType(type)) return kWebScreen;
    if (IsPingType(type)) return kPingScreen;
    return type == kOtherPort ? kOtherPortScreen : kPredefinedScreen;
}

}  // namespace korvane
