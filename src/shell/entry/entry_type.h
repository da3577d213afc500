// The effect of the server type in the editor: the texts that a type provides, and which of them can be changed.
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

/// Returns the whole table in the order of the list, for an entry with this port, request and expected text. `typeChanged`: the
/// operator has just chosen another type, so that HTTP and HTTPS start with their own ports.
std::vector<EntryTypeTexts> InitServerTypes(const std::string& port, const std::string& request, const std::string& expected,
                                            bool typeChanged);

/// Returns the index of the type's name in that table. Old rows have names in any case; an exact match takes precedence. -1 for
/// an unknown name.
int IndexOfType(const std::vector<EntryTypeTexts>& table, std::string_view name);

bool IsWebType(std::string_view type);   ///< "HTTP" or "HTTPS"
bool IsPingType(std::string_view type);  ///< "PING"
/// Returns whether the operator can type any expected text, so that it is restored when the type is chosen again.
bool HasFreeExpectedText(std::string_view type);

/// What the window shows and allows to change. The request box is shown for no type.
struct EntryTypeScreen {
    bool portEnabled = false;
    bool requestEnabled = false;
    std::optional<bool> expectedEnabled;  ///< nothing: stays unchanged
    bool webPages = false;                ///< the pages for authentication and scan texts
    bool timeoutShown = true;
    std::string_view addressLabel;
    std::string_view expectedLabel;
};

const EntryTypeScreen& ScreenOfType(std::string_view type);

}  // namespace korvane
