// What the settings dialog opens with: the global settings as texts and marks, and what there is to say about them.
#pragma once

#include <string>
#include <string_view>

#include "shell/options/options_fields.h"
#include "store/settings_collection.h"

namespace korvane {

/// From the settings collection; a setting that is not there is blank.
OptionsFields OptionsFromSettings(const SettingsCollection& settings);

/// The status where no service manager is there.
extern const std::string_view kNoServiceHint;

/// What the box of the mail server is filled with where none is set. The name is one that is reserved for examples (RFC 2606).
std::string NoMailServerHint();
std::string NoMailServerMessage();

}  // namespace korvane
