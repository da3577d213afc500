// The status line's texts about the inputs and pages of a dialog, by their names.
#pragma once

#include <cstddef>
#include <string_view>

namespace korvane {

struct Help {
    std::string_view of;
    std::string_view text;
};

/// Returns an empty text for an unknown name.
template <std::size_t size>
std::string_view FindHelp(const Help (&table)[size], std::string_view of) {
    for (const Help& help : table) {
        if (help.of == of) return help.text;
    }
    return {};
}

}  // namespace korvane
