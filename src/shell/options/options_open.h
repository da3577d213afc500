// The initial content of the settings dialog: the global settings as texts and marks, with hints about them.
#pragma once

#include <string>
#include <string_view>

#include "shell/options/options_fields.h"
#include "store/settings_collection.h"

namespace korvane {

/// Reads the settings collection; a missing setting is empty.
OptionsFields OptionsFromSettings(const SettingsCollection& settings);

/// The status if there is no service manager.
extern const std::string_view kNoServiceHint;

/// The initial text of the mail server box if none is set. The name is reserved for examples (RFC 2606).
std::string NoMailServerHint();
std::string NoMailServerMessage();

}  // namespace korvane
