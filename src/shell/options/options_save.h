// Saving the inputs of the settings dialog as global settings: their order, what is refused, and writing the file.
#pragma once

#include <optional>
#include <string>

#include "shell/options/options_fields.h"
#include "shell/run/desk.h"

namespace korvane {

/// An input that cannot be saved.
struct OptionsRefusal {
    std::string OptionsFields::*field;  ///< the invalid text
    std::string message;
};

/// Puts the inputs into the settings collection one after the other and writes the settings file. Stops at a refusal: earlier
/// inputs are then in the collection but not in the file. Writing may deliver events. Throws nothing; an error while writing the
/// file is not reported.
std::optional<OptionsRefusal> SaveOptions(const Desk& desk, const OptionsFields& fields);

}  // namespace korvane
