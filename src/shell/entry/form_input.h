// The description of an input of a dialog. One table of these drives how a dialog's inputs are loaded, checked, saved and shown.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/text.h"

namespace korvane {

/// How a control appears in its window. In its label, "&" stands before its key.
struct Control {
    const char* name;
    const char* label;
    const char* help = "";    ///< for the status line
    const char* spoken = "";  ///< the accessible name; empty: the label without its signs
    const char* unit = "";    ///< makes a box short, and follows it
};

struct NumberRange {
    std::int64_t least;
    std::int64_t most;
    const char* refusal;  ///< of any other text, which follows it
};

/// An input whose value is a member of Fields.
template <class Fields>
struct FormInput {
    /// Returns the text in its stored form; nothing: what is stored stays.
    using Stored = std::optional<std::string> (*)(const std::string& text, const Fields& fields);

    std::string_view key;                 ///< the column or the setting in which it is stored; empty: stored elsewhere
    std::string Fields::*text = nullptr;  ///< null for a mark
    Stored stored = nullptr;              ///< null for a mark
    Control control{};
    std::optional<NumberRange> range{};  ///< nothing: any text is accepted
    bool Fields::*mark = nullptr;
    bool on = false;  ///< a mark that is on while it is not stored, and is stored only once it has been changed
};

template <class Fields>
std::optional<std::string> AsTyped(const std::string& text, const Fields& /*fields*/) {
    return text;
}

template <class Fields>
std::optional<std::string> Trimmed(const std::string& text, const Fields& /*fields*/) {
    return Trim(text);
}

}  // namespace korvane
