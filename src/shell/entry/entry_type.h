// The effect of the server type in the editor: the texts that a type provides, and which of them can be changed.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/server_table.h"
#include "shell/entry/entry_inputs.h"

namespace korvane {

/// The texts that a server type puts into the inputs.
struct EntryTypeTexts {
    std::string port;
    std::string request;
    std::string expected;
};

/// `fields` are the inputs before. `typeChanged`: the operator has just chosen another type, so that HTTP and HTTPS start with their
/// own ports.
EntryTypeTexts TextsOfType(const ServerType& type, const EntryFields& fields, bool typeChanged);

/// Returns the index of the type in the server type table. Old rows have names in any case; an exact match takes precedence. -1 for
/// an unknown name.
int IndexOfType(std::string_view name);

bool IsWebType(std::string_view type);   ///< "HTTP" or "HTTPS"
bool IsPingType(std::string_view type);  ///< "PING"
/// Returns whether the operator can type any expected text, so that it is restored when the type is chosen again.
bool HasFreeExpectedText(std::string_view type);

/// What the window shows and allows to change. The request box is shown for no type.
struct EntryTypeScreen {
    bool portEnabled = false;
    bool requestEnabled = false;
    std::optional<bool> expectedEnabled{};  ///< nothing: stays unchanged
    bool webPages = false;                  ///< the pages for authentication and scan texts
    bool timeoutShown = true;
    std::string_view addressLabel = "Server Name or IP:";
    std::string_view expectedLabel = "Expected Response Text:";
};

const EntryTypeScreen& ScreenOfType(std::string_view type);

}  // namespace korvane
