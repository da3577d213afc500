// How the inputs of the settings dialog become the global settings: in which order, what is refused, and the writing to file.
#pragma once

#include <optional>
#include <string>

#include "shell/options/options_fields.h"
#include "shell/run/desk.h"

namespace korvane {

/// What keeps the inputs from being saved.
struct OptionsRefusal {
    std::string OptionsFields::*field;  ///< the text at fault
    std::string message;
};

/// Puts the inputs into the settings collection one after the other and writes the settings file. At a refusal it stops: what
/// came before it is in the collection then and not in the file. Writing may deliver events. Throws nothing; what the file did
/// not take is reported by nothing.
std::optional<OptionsRefusal> SaveOptions(const Desk& desk, const OptionsFields& fields);

}  // namespace korvane
