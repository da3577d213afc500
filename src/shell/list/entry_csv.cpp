#include "shell/list/entry_csv.h"

#include <algorithm>
#include <utility>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/http_status.h"
#include "engine/server_table.h"
#include "shell/entry/entry_save.h"
#include "shell/list/csv_text.h"
#include "shell/list/entry_csv_columns.h"
#include "store/database_files.h"

namespace korvane {
namespace {

void WriteRow(Recordset& row, const ImportRow& from) {
    for (const EntryInput& input : EntryInputs())
        if (!input.key.empty() && std::ranges::find(from.changes, &input) != from.changes.end())
            WriteInput(row, input, from.fields);
    for (const EntryDownTime& each : kDownTimes)
        if (from.fields.*each.removed && !from.id.empty()) RemoveDownTime(row, each);
    row.Update();
}

}  // namespace

std::string ExportEntries(const Desk& desk, bool withPasswords) {
    const CsvColumns columns = AllCsvColumns(desk, withPasswords);
    std::vector<std::string> cells;
    for (const EntryInput* each : columns)
        cells.emplace_back(CsvNameOf(each));
    std::string text = CsvLine(cells);
    for (const auto& [id, fields] : ReadAllEntries(desk)) {
        cells.clear();
        for (const EntryInput* each : columns)
            cells.push_back(each == nullptr ? id : ExportedText(desk, *each, fields, withPasswords));
        text += CsvLine(cells);
    }
    return text;
}

std::size_t ImportPlan::Count(ImportStep step) const {
    return static_cast<std::size_t>(std::ranges::count(rows, step, &ImportRow::step));
}

std::string ImportPlan::Summary() const {
    std::string text;
    for (const auto& [step, word] : {std::pair{ImportStep::Added, " added, "},
                                     {ImportStep::Changed, " changed, "},
                                     {ImportStep::Unchanged, " unchanged, "},
                                     {ImportStep::Refused, " refused."}})
        text += std::to_string(Count(step)) + word;
    return text;
}

bool ImportPlan::CanImport() const {
    return refusal.empty() && Count(ImportStep::Refused) == 0 && Count(ImportStep::Unchanged) < rows.size();
}

std::vector<std::string> ImportEntries(const Desk& desk, const ImportPlan& plan) {
    std::vector<std::string> ids;
    desk.entries.setServerEntryChangedIndex(kNoServerEntry);
    const ColumnValues values = NewEntryValues(desk);
    const IniFile::Batch batch(desk.settingsFile);
    const auto connection = OpenDatabase(desk.store, desk.dir);
    connection->BeginTrans();
    for (const ImportRow& each : plan.rows) {
        if (each.step == ImportStep::Unchanged || each.step == ImportStep::Refused) continue;
        std::int64_t id = ParseWhole(each.id.empty() ? desk.ids.NewServerID() : each.id);
        auto row = OpenRows(desk.store, *connection, query::ById(id));
        for (; each.id.empty() && !row->Eof(); row = OpenRows(desk.store, *connection, query::ById(id)))
            id = ParseWhole(desk.ids.NewServerID());  // another process has just given that one away
        if (each.id.empty()) {
            row->AddNew();
            row->Fields("id") = id;
            for (const auto& [column, value] : values)
                row->Fields(column) = value;
        } else if (row->Eof()) {
            throw Error("The entry " + each.id + " has been deleted meanwhile.");
        }
        WriteRow(*row, each);
        ids.push_back(std::to_string(id));
        for (const EntryInput* change : each.changes)
            if (change->key.empty()) desk.ofEntries.Write(*connection, id, kHttpStatusGood, TrimAll(each.fields.HTTPStatusGood));
    }
    connection->CommitTrans();
    return ids;
}

}  // namespace korvane
