// What an import would change: the lines of the file against what is stored.
#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "engine/ping_checker.h"
#include "engine/server_table.h"
#include "shell/entry/entry_save.h"
#include "shell/entry/entry_type.h"
#include "shell/list/csv_text.h"
#include "shell/list/entry_acts.h"
#include "shell/list/entry_csv.h"
#include "shell/list/entry_csv_columns.h"

namespace korvane {
namespace {

constexpr const char* kFileTooLarge = "The file is too large for a list of entries.";
constexpr std::size_t kShownOfCell = 40;

constexpr std::pair<std::string_view, bool> kMarkWords[] = {{"true", true},   {"yes", true}, {"1", true},
                                                            {"false", false}, {"no", false}, {"0", false}};

EntryFields FreshFields(const Desk& desk) {
    EntryFields fields;
    for (const auto& [column, value] : NewEntryValues(desk))
        for (const EntryInput& input : EntryInputs()) {
            if (input.key != column) continue;
            if (input.text != nullptr) fields.*input.text = value.Text();
            if (input.mark != nullptr) fields.*input.mark = value.Bool();
        }
    return fields;
}

/// Compares the lines of a file with what is stored.
class Planner {
public:
    Planner(const Desk& desk, const CsvRecord& head)
        : desk_(desk), all_(AllCsvColumns(desk, true)), fresh_(FreshFields(desk)), entries_(ReadAllEntries(desk)) {
        for (const std::string& name : head.cells)
            columns_.push_back(ColumnOf(Trim(name), head.line));
    }

    ImportRow PlanRow(const CsvRecord& record) {
        ImportRow row;
        row.line = record.line;
        row.details = Fill(row, record.cells);
        row.name = desk_.hiddenPasswords.Shown(Or(row.fields.strDesc, row.fields.strAddress_IP));
        if (!row.details.empty()) {
            row.step = ImportStep::Refused;
        } else if (row.id.empty()) {
            row.step = ImportStep::Added;
            row.details = row.fields.strType + " " + desk_.hiddenPasswords.Shown(row.fields.strAddress_IP);
        } else if (!row.changes.empty()) {
            row.step = ImportStep::Changed;
            row.details = Difference(row, entries_.at(row.id));
        }
        if (row.step == ImportStep::Added || row.step == ImportStep::Changed) row.details += Warning(row.fields);
        return row;
    }

private:
    const EntryInput* ColumnOf(const std::string& name, int line) {
        const auto isNamed = [&](const EntryInput* each) { return EqualsNoCase(CsvNameOf(each), name); };
        const auto found = std::ranges::find_if(all_, isNamed);
        const std::string where = "Line " + std::to_string(line) + ": ";
        if (found == all_.end()) throw Error(where + "there is no column '" + name + "'.");
        if (std::ranges::find(columns_, *found) != columns_.end())
            throw Error(where + "the column '" + name + "' is there twice.");
        return *found;
    }

    /// Returns why the line is refused.
    std::string Fill(ImportRow& row, const std::vector<std::string>& cells) {
        if (std::string why = Identify(row, cells); !why.empty()) return why;
        const bool isNew = row.id.empty();
        const EntryFields& before = isNew ? fresh_ : entries_.at(row.id);
        row.fields = before;
        for (std::size_t i = 0; i < cells.size(); ++i)
            if (columns_[i] != nullptr)
                if (std::string why = Take(row, *columns_[i], cells[i]); !why.empty()) return why;
        FollowType(row, before);
        // The stored subject depends on the address, which may stand in a later column.
        for (const EntryInput* each : all_)
            if (each != nullptr && (isNew || Changes(*each, before, row.fields))) row.changes.push_back(each);
        const auto refusal = row.changes.empty() ? std::nullopt : CheckInputs(row.fields);
        return refusal ? refusal->message : "";
    }

    std::string Identify(ImportRow& row, const std::vector<std::string>& cells) {
        if (cells.size() != columns_.size())
            return "The line has " + std::to_string(cells.size()) + " of " + std::to_string(columns_.size()) + " cells.";
        const auto ofId = std::ranges::find(columns_, nullptr);
        if (ofId != columns_.end()) row.id = Trim(cells[static_cast<std::size_t>(ofId - columns_.begin())]);
        if (row.id.empty())
            return static_cast<int>(entries_.size()) + ++added_ > MostEntries(desk_)
                       ? MostEntriesText(desk_) + " is the maximum number of Server Entries."
                       : "";
        if (!entries_.contains(row.id)) return "There is no entry with the id '" + row.id + "'.";
        return seen_.insert(row.id).second ? "" : "The id '" + row.id + "' is there twice.";
    }

    /// The type provides the same texts as in the editor.
    void FollowType(ImportRow& row, const EntryFields& before) const {
        EntryFields& fields = row.fields;
        const int type = IndexOfType(fields.strType);
        const bool typeChanged = row.id.empty() || fields.strType != before.strType;
        if (type < 0 || (!typeChanged && fields.strPort == before.strPort)) return;
        const bool namesPort = std::ranges::find(columns_, &InputOf(&EntryFields::strPort)) != columns_.end();
        const EntryTypeTexts texts =
            TextsOfType(ServerTypeTable()[static_cast<std::size_t>(type)], fields, typeChanged && !namesPort);
        fields.strPort = texts.port;
        if (!typeChanged) return;
        fields.strRequestText = texts.request;
        fields.strExpectedText = texts.expected;
    }

    /// Puts the cell into the fields of the row. Returns why it is refused.
    std::string Take(ImportRow& row, const EntryInput& input, const std::string& cell) const {
        const std::string name(CsvNameOf(&input)), current = CsvTextOf(input, row.fields);
        if (cell == current || cell == desk_.hiddenPasswords.Shown(current)) return "";
        if (desk_.hiddenPasswords.IsOn() && Holds(cell, kNotShown)) return name + ": the password is not in the file.";
        if (input.mark != nullptr) {
            const auto mark =
                std::ranges::find(kMarkWords, ToLower(Trim(cell)), [](const auto& each) { return std::string(each.first); });
            if (mark == std::end(kMarkWords)) return cell.empty() ? "" : name + ": '" + cell + "' is neither True nor False.";
            row.fields.*input.mark = mark->second;
            return "";
        }
        if (row.id.empty() && Trim(cell).empty() && IsNumber(input)) return "";
        if (!IsOfDownTime(input) || !Trim(cell).empty())
            if (const std::string why = NumberRefusal(input, cell); !why.empty()) return name + ": " + why;
        if (input.text == &EntryFields::strType && !Trim(cell).empty()) {
            const int type = IndexOfType(Trim(cell));
            if (type < 0) return name + ": there is no type '" + cell + "'.";
            row.fields.strType = ServerTypeTable()[static_cast<std::size_t>(type)].name;
            return "";
        }
        for (const EntryDownTime& each : kDownTimes)
            if (each.time == input.text && Trim(cell).empty()) row.fields.*each.removed = !Trim(row.fields.*each.time).empty();
        row.fields.*input.text = input.text == &EntryFields::strAddress_IP ? WithoutSchemes(CleanTypedName(cell)) : cell;
        return "";
    }

    static bool IsNumber(const EntryInput& input) { return !NumberRefusal(input, "-").empty(); }
    // They are checked together with their times.
    static bool IsOfDownTime(const EntryInput& input) {
        return std::ranges::find(kDownTimes, input.text, &EntryDownTime::minutes) != std::end(kDownTimes);
    }

    static bool Changes(const EntryInput& input, const EntryFields& before, const EntryFields& after) {
        if (CsvTextOf(input, before) == CsvTextOf(input, after)) return false;
        if (input.mark != nullptr) return true;
        for (const EntryDownTime& each : kDownTimes)
            if (each.time == input.text && after.*each.removed) return true;
        const auto stored = input.stored(after.*input.text, after);
        if (!stored) return false;
        const auto whole = [&](const std::string& text) { return IsNumber(input) ? std::to_string(WholeOrZero(text)) : text; };
        return whole(*stored) != whole(before.*input.text);
    }

    std::string Difference(const ImportRow& row, const EntryFields& before) const {
        const auto shown = [this](const std::string& text) { return Left(desk_.hiddenPasswords.Shown(text), kShownOfCell); };
        std::string text;
        for (const EntryInput* each : row.changes) {
            text += (text.empty() ? "" : "; ") + std::string(CsvNameOf(each));
            if (each->text == &EntryFields::strPassword) continue;
            text += " '" + shown(CsvTextOf(*each, before)) + "' \u2192 '" + shown(StoredText(*each, row.fields)) + "'";
        }
        return text;
    }

    static std::string StoredText(const EntryInput& input, const EntryFields& fields) {
        const std::string text = CsvTextOf(input, fields);
        return input.mark != nullptr ? text : input.stored(text, fields).value_or(text);
    }

    static std::string Warning(const EntryFields& fields) {
        return IsPingType(fields.strType) && !IsValidIPAddress(fields.strAddress_IP) ? "; PING needs an IP address" : "";
    }

    const Desk& desk_;
    CsvColumns all_;
    CsvColumns columns_;  ///< of the file
    EntryFields fresh_;
    EntriesById entries_;
    std::set<std::string> seen_;
    int added_ = 0;
};

}  // namespace

ImportPlan PlanImport(const Desk& desk, std::string_view text) {
    ImportPlan plan;
    try {
        if (text.size() > kMostCsvBytes) throw Error(kFileTooLarge);
        const std::vector<CsvRecord> records = ReadCsv(text, static_cast<std::size_t>(MostEntries(desk)));
        if (records.empty()) throw Error("The file is empty.");
        Planner planner(desk, records.front());
        for (std::size_t i = 1; i < records.size(); ++i)
            plan.rows.push_back(planner.PlanRow(records[i]));
    } catch (const std::exception& error) {
        plan.rows.clear();
        plan.refusal = error.what();
    }
    return plan;
}

ImportPlan PlanImportOf(const Desk& desk, const std::string& file) {
    try {
        const auto identity = desk.files.Identity(file);
        if (identity && identity->size > static_cast<std::int64_t>(kMostCsvBytes)) throw Error(kFileTooLarge);
        return PlanImport(desk, desk.files.Read(file).value_or(""));
    } catch (const std::exception& error) {
        return {.refusal = error.what(), .rows = {}};
    }
}

}  // namespace korvane
