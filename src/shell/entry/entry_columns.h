// Which input of the editor goes to which column of `Servers`, in which order, and what becomes of its text on the way.
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
    bool EntryFields::*mark = nullptr;  ///< where there is no text
    /// What is stored of the text; null: the text as typed.
    std::string (*stored)(const EntryFields& fields) = nullptr;
    /// Whether it is stored at all; null: always.
    bool (*wanted)(const std::string& text) = nullptr;
};

/// All, in the order in which they are stored.
std::span<const EntryColumn> EntryColumns();

/// How many of them come before the server name is looked at and stored.
constexpr std::size_t kColumnsBeforeName = 5;

}  // namespace korvane
