#include "shell/list/entry_csv_columns.h"

#include <algorithm>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "engine/http_status.h"
#include "engine/server_table.h"
#include "shell/entry/entry_save.h"
#include "store/database_files.h"

namespace korvane {
namespace {

constexpr std::string_view kAllEntries = "SELECT * from servers order by id";

/// What people look for first; the other columns follow.
constexpr std::string_view kFirstColumns[] = {"strDesc", "strGroup", "strType", "strAddress_IP", "strPort"};

}  // namespace

// The good statuses stand beside the row.
std::string_view CsvNameOf(const EntryInput* column) {
    if (column == nullptr) return kIdColumn;
    return column->key.empty() ? kHttpStatusGood : column->key;
}

CsvColumns AllCsvColumns(const Desk& desk, bool withPasswords) {
    CsvColumns columns{nullptr};
    for (const EntryInput& input : EntryInputs()) {
        const bool isHidden = input.text == &EntryFields::strPassword && !withPasswords;
        const bool isOff = input.key.empty() && !desk.safeguards.IsOn(kHttpStatusFails);
        if (!isHidden && !isOff) columns.push_back(&input);
    }
    std::stable_sort(columns.begin() + 1, columns.end(), [](const EntryInput* a, const EntryInput* b) {
        const auto rank = [](const EntryInput* each) { return std::ranges::find(kFirstColumns, each->key); };
        return rank(a) < rank(b);
    });
    return columns;
}

std::string CsvTextOf(const EntryInput& input, const EntryFields& fields) {
    return input.text != nullptr ? fields.*input.text : Value(fields.*input.mark).Text();
}

EntriesById ReadAllEntries(const Desk& desk) {
    EntriesById entries;
    const auto connection = OpenDatabase(desk.store, desk.dir);
    for (const auto row = OpenRows(desk.store, *connection, kAllEntries, CursorType::Static); !row->Eof(); row->MoveNext()) {
        EntryFields& fields = entries[ColumnText(*row, "id")];
        for (const EntryInput& input : EntryInputs()) {
            if (input.key.empty()) continue;
            if (input.mark != nullptr) fields.*input.mark = true;
            // One invalid value must hide neither its entry nor the others; a mark then counts as set, as it does for the cycle.
            IgnoreErrors([&] { ReadInput(*row, input, fields); });
        }
    }
    if (desk.safeguards.IsOn(kHttpStatusFails))
        for (auto& [id, fields] : entries)
            fields.HTTPStatusGood = desk.ofEntries.Read(ParseWhole(id), kHttpStatusGood);
    return entries;
}

}  // namespace korvane
