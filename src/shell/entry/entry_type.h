// What the type of a server entry means to its editor: the texts that a type brings along, and what may be changed of them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvane {

/// A row of the editor's working table.
struct EntryTypeTexts {
    std::string name;
    std::string prefix;
    std::string port;
    std::string request;
    std::string expected;
};

/// The whole table in the order in which types are offered, for an entry with this port, request and expected text.
/// `typeChanged`: the operator has just picked another type, so that HTTP and HTTPS begin with their own ports.
std::vector<EntryTypeTexts> InitServerTypes(const std::string& port, const std::string& request, const std::string& expected,
                                            bool typeChanged);

/// The place of the type's name in that table. Rows of old have names in any case; an exact one goes first. -1 for an unknown
/// name.
int IndexOfType(const std::vector<EntryTypeTexts>& table, std::string_view name);

bool IsWebType(std::string_view type);   ///< "HTTP" or "HTTPS"
bool IsPingType(std::string_view type);  ///< "PING"
/// Whether the operator writes the expected text freely, so that it comes back when the type does.
bool HasFreeExpectedText(std::string_view type);

/// What the window shows and lets change. The box of the request is shown for no type.
struct EntryTypeScreen {
    bool portEnabled = false;
    bool requestEnabled = false;
    std::optional<bool> expectedEnabled;  ///< nothing: stays as it is
    bool webPages = false;                ///< the pages for authentication and scan texts
    bool timeoutShown = true;
    std::string_view addressLabel;
    std::string_view expectedLabel;
};

const EntryTypeScreen& ScreenOfType(std::string_view type);

}  // namespace korvane
