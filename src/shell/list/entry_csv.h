// Export and import of entries as comma-separated values: a first line with the columns' names, and a line for each entry. There is
// a column for `id` and for everything that the editor sets. The import first says what it would change, by the editor's own rules,
// and then changes everything or nothing.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shell/entry/entry_inputs.h"
#include "shell/run/desk.h"

namespace korvane {

/// What is larger is no list of entries.
inline constexpr std::size_t kMostCsvBytes = 8'000'000;

/// Returns all entries as a text. Without passwords their column is missing, and a safeguard hides those in other columns, which an
/// import then leaves as they are. Throws Error.
std::string ExportEntries(const Desk& desk, bool withPasswords);

enum class ImportStep { Refused, Added, Changed, Unchanged };

struct ImportRow {
    ImportStep step = ImportStep::Unchanged;
    int line = 0;
    std::string id;       ///< empty for a new entry
    std::string name;     ///< its short name, or its address
    std::string details;  ///< why it is refused, or what changes from what to what
    EntryFields fields;
    std::vector<const EntryInput*> changes;
};

struct ImportPlan {
    std::string refusal;  ///< why nothing in the file can be used; empty if that is not so
    std::vector<ImportRow> rows;

    std::size_t Count(ImportStep step) const;
    /// "2 added, 1 changed, 497 unchanged, 0 refused."
    std::string Summary() const;
    /// There is something to import, and nothing is refused.
    bool CanImport() const;
};

/// A row with an id changes that entry, one without adds an entry; a column that is missing stays as it is, or gets the value of a
/// new entry. In a down time, blank means none. Nothing is changed yet. Throws nothing.
ImportPlan PlanImport(const Desk& desk, std::string_view text);
ImportPlan PlanImportOf(const Desk& desk, const std::string& file);

/// Carries the plan out in one transaction. Returns the ids of what was added or changed, in the order of the rows. Throws Error, and
/// has then changed nothing.
std::vector<std::string> ImportEntries(const Desk& desk, const ImportPlan& plan);

}  // namespace korvane
