// Which rows of the list are shown and in which order: by the state of their entries, and by words that are searched in what the
// operator knows of them.
#pragma once

#include <array>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "shell/list/server_list.h"

namespace korvane {

/// The states by which rows are counted and filtered, in the order in which they are offered, the worst first.
inline constexpr std::array kRowStates{RowIcon::Bad, RowIcon::Warn, RowIcon::Good, RowIcon::DownTime, RowIcon::Inactive};

/// "Down", "Failing", "Up", "Down-Time" or "Inactive".
std::string_view StateWord(RowIcon state);

/// Rows as several owners keep them.
using SharedRows = std::vector<std::shared_ptr<const ServerRow>>;

/// In the order of kRowStates.
using StateCounts = std::array<int, kRowStates.size()>;
StateCounts CountStates(const SharedRows& rows);

struct ListFilter {
    std::set<RowIcon> states;  ///< any of them; empty: all
    /// Each word between blanks must be found, without regard to case, somewhere in name, address, group, type, status and reason.
    std::string text;

    bool IsOn() const;
};

/// Returns the rows that the filter shows, in their order.
SharedRows Filtered(const SharedRows& rows, const ListFilter& filter);

/// Puts the rows that are DOWN first, then those that fail, each of both with the longest first, by `since`; all others, and those
/// of which that is not known, stay in their order after them.
void PutProblemsFirst(SharedRows& rows);

/// Returns the text with small letters, for comparing: of the Latin, Greek, Cyrillic and Armenian alphabets.
std::string FoldCase(std::string_view text);

}  // namespace korvane
