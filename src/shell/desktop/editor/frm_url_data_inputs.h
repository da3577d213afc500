// The boxes and marks of the entry editor as one set: filled from the texts of an entry and read into them. The type is not a
// box.
#pragma once

#include "shell/desktop/toolkit/form_inputs.h"
#include "shell/entry/entry_fields.h"

namespace korvane {

using EntryInputs = FormInputs<EntryFields>;

}  // namespace korvane
