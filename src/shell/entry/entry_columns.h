// Maps the inputs of the editor to the columns of `Servers`: their order, and how each text is converted.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "shell/entry/entry_fields.h"

namespace korvane {

struct EntryColumn {
    std::string_view column;
    std::string EntryFields::*text = nullptr;
    bool EntryFields::*mark = nullptr;  ///< if there is no text
    /// Returns the stored form of the text; null: the text as typed.
    std::string (*stored)(const EntryFields& fields) = nullptr;
    /// Returns whether the text is stored at all; null: always.
    bool (*wanted)(const std::string& text) = nullptr;
};

/// All columns, in the order in which they are stored.
std::span<const EntryColumn> EntryColumns();

/// How many of them come before the server name is checked and stored.
constexpr std::size_t kColumnsBeforeName = 5;

}  // namespace korvane
