#include "shell/entry/entry_type.h"

#include "base/text.h"
#include "engine/server_table.h"

namespace korvane {
namespace {

constexpr std::string_view kHttp = "HTTP";
constexpr std::string_view kHttps = "HTTPS";
constexpr std::string_view kPing = "PING";
constexpr std::string_view kOtherPort = "Other Port";

constexpr std::string_view kResponseLabel = "Expected Response Text:";
constexpr std::string_view kServerLabel = "Server Name or IP:";

constexpr EntryTypeScreen kWebScreen{.portEnabled = true,
                                     .requestEnabled = false,
                                     .expectedEnabled = true,
                                     .webPages = true,
                                     .timeoutShown = true,
                                     .addressLabel = "Web Page URL:",
                                     .expectedLabel = kResponseLabel};
// Here the expected text is the limit in milliseconds, and replaces the time-out.
constexpr EntryTypeScreen kPingScreen{.portEnabled = false,
                                      .requestEnabled = false,
                                      .expectedEnabled = true,
                                      .webPages = false,
                                      .timeoutShown = false,
                                      .addressLabel = "PING (IP Addr Only):",
                                      .expectedLabel = "PING timeout in milliseconds:"};
constexpr EntryTypeScreen kOtherPortScreen{.portEnabled = true,
                                           .requestEnabled = true,
                                           .expectedEnabled = true,
                                           .webPages = false,
                                           .timeoutShown = true,
                                           .addressLabel = kServerLabel,
                                           .expectedLabel = kResponseLabel};
constexpr EntryTypeScreen kPredefinedScreen{.portEnabled = false,
                                            .requestEnabled = false,
                                            .expectedEnabled = std::nullopt,
                                            .webPages = false,
                                            .timeoutShown = true,
                                            .addressLabel = kServerLabel,
                                            .expectedLabel = kResponseLabel};

}  // namespace

std::vector<EntryTypeTexts> InitServerTypes(const std::string& port, const std::string& request, const std::string& expected,
                                            bool typeChanged) {
    std::vector<EntryTypeTexts> table;
    for (const ServerType& type : ServerTypeTable()) {
        EntryTypeTexts row{std::string(type.name), std::string(type.prefix), std::string(type.port), std::string(type.request),
                           std::string(type.expected)};
        if (IsWebType(type.name) && !typeChanged) row.port = port;
        if (type.name == kOtherPort) {
            row.port = port;
            row.request = request;
        }
        if (!expected.empty()) row.expected = expected;
        table.push_back(std::move(row));
    }
    return table;
}

int IndexOfType(const std::vector<EntryTypeTexts>& table, std::string_view name) {
    int alike = -1;
    for (int index = static_cast<int>(table.size()) - 1; index >= 0; --index) {
        const std::string& candidate = table[static_cast<std::size_t>(index)].name;
        if (candidate == name) return index;
        if (EqualsNoCase(candidate, name)) alike = index;
    }
    return alike;
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
