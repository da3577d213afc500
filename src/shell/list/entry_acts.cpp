#include "shell/list/entry_acts.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "base/text.h"
#include "engine/http_status.h"
#include "engine/server_table.h"
#include "shell/entry/entry_save.h"
#include "store/database_files.h"
#include "store/schema.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr int kMostInFile = 499;  // messages say 500
constexpr std::int64_t kMostOnServer = 100'000;

constexpr std::string_view kNoEntries = "SELECT * from servers where id < 0";
constexpr std::string_view kNoRules = "SELECT * from ResponseFailText where id < 0";

/// Values that a copy does not take over.
const std::pair<std::string_view, Value> kFreshValues[] = {
    {"strCurStatus", std::string(status::kUp)},
    {"strLastResponse", ""},
    {"nAveResponse", 0},
    {"nAveSession", 0},
    {"nsuccess", 0},
    {"nfail", 0},
    {"nPercentUP", 100},
    {"nTriesCur", 0},
};

void CopyFields(Recordset& from, Recordset& to) {
    for (const TableSchema& table : DatabaseSchema()) {
        if (table.name != "Servers") continue;
        for (const ColumnSchema& column : table.columns)
            IgnoreErrors([&] { to.Fields(column.name) = from.Fields(column.name).Value(); });
    }
}

/// Returns nothing for a value that another tool has left and that cannot be read.
std::optional<bool> IsMonitored(Recordset& row) {
    std::optional<bool> isMonitored;
    IgnoreErrors([&] { isMonitored = row.Fields("bIsMonitoring").Value().Bool(); });
    return isMonitored;
}

std::string Sentence(std::size_t changed, std::string_view what, std::size_t others, std::string_view why) {
    std::string text = CountedEntries(changed) + " " + std::string(what) + ".";
    if (others > 0) text += "  " + CountedEntries(others) + " " + std::string(why) + ".";
    return text;
}

}  // namespace

int MostEntries(const Desk& desk) {
    const std::string* const raised = desk.isShared ? desk.collection.Find("MaxEntries") : nullptr;
    std::int64_t most = 0;
    if (raised != nullptr) IgnoreErrors([&] { most = ParseWhole(Trim(*raised)); });
    return most < 1 ? kMostInFile : static_cast<int>(std::min(most, kMostOnServer));
}

std::string MostEntriesText(const Desk& desk) {
    const int most = MostEntries(desk);
    return std::to_string(most == kMostInFile ? most + 1 : most);
}

std::size_t EntryActs::ForEach(const Ids& ids, const std::function<bool(Recordset& row)>& change) {
    desk_.entries.setServerEntryChangedIndex(kNoServerEntry);
    const auto connection = OpenDatabase(desk_.store, desk_.dir);
    connection->BeginTrans();
    std::size_t changed = 0;
    for (const std::string& id : ids) {
        const auto row = OpenRows(desk_.store, *connection, query::ById(ParseWhole(id)));
        if (row->Eof() || !change(*row)) continue;
        row->Update();
        ++changed;
    }
    connection->CommitTrans();
    return changed;
}

std::vector<EntryFields> EntryActs::Read(const Ids& ids, const std::vector<std::string EntryFields::*>& inputs) {
    std::vector<EntryFields> entries;
    const auto connection = OpenDatabase(desk_.store, desk_.dir);
    for (const std::string& id : ids) {
        const auto row = OpenRows(desk_.store, *connection, query::ById(ParseWhole(id)), CursorType::Static);
        if (row->Eof()) continue;
        entries.emplace_back();
        for (const auto field : inputs)
            ReadInput(*row, InputOf(field), entries.back());
    }
    return entries;
}

DateTime EntryActs::BeforeAllOthers() {
    const DateTime now = desk_.clock.Now();
    const auto connection = OpenDatabase(desk_.store, desk_.dir);
    const auto first = OpenRows(desk_.store, *connection, query::FirstDueBy(now), CursorType::Static);
    return first->Eof() ? now : std::min(now, first->Fields("dtNextCheck").Value().When() + -1s);
}

std::string EntryActs::CheckNow(const Ids& ids) {
    const std::size_t due = ForEach(ids, [at = BeforeAllOthers()](Recordset& row) {
        const bool isMonitored = IsMonitored(row).value_or(true);  // as for the cycle
        if (isMonitored) row.Fields("dtNextCheck") = at;
        return isMonitored;
    });
    return Sentence(due, "checked next", ids.size() - due, "paused: resume first");
}

std::size_t EntryActs::SetMonitoring(const Ids& ids, bool on) {
    const EntryInput& mark = *std::ranges::find(EntryInputs(), &EntryFields::bIsMonitoring, &EntryInput::mark);
    EntryFields fields;
    fields.bIsMonitoring = on;
    return ForEach(ids, [&, now = desk_.clock.Now()](Recordset& row) {
        if (IsMonitored(row) == on) return false;
        WriteInput(row, mark, fields);
        if (on) row.Fields("dtNextCheck") = now;
        return true;
    });
}

std::string EntryActs::Pause(const Ids& ids) {
    const std::size_t paused = SetMonitoring(ids, false);
    return Sentence(paused, "paused: shown as Inactive when the next check is due", ids.size() - paused, "paused before");
}

std::string EntryActs::Resume(const Ids& ids) {
    const std::size_t resumed = SetMonitoring(ids, true);
    return Sentence(resumed, "resumed and due at once", ids.size() - resumed, "monitored before");
}

std::string EntryActs::Set(const Ids& ids, const std::vector<EntryChange>& changes) {
    EntryFields fields;
    for (const auto& [field, text] : changes) {
        fields.*field = text;
        if (const std::string why = NumberRefusal(InputOf(field), text); !why.empty()) throw Error(why);
    }
    const std::size_t changed = ForEach(ids, [&](Recordset& row) {
        for (const auto& [field, text] : changes)
            WriteInput(row, InputOf(field), fields);
        return true;
    });
    return Sentence(changed, "changed", ids.size() - changed, "gone");
}

void EntryActs::Delete(const Ids& ids) {
    ids.size() == 1 ? desk_.maintenance.DeleteServerData(ids.front()) : desk_.maintenance.DeleteServersData(ids);
}

std::string EntryActs::CopyRow(const std::string& id, bool withRules) {
    const std::string newId = desk_.ids.NewServerID();
    const auto connection = OpenDatabase(desk_.store, desk_.dir);
    const auto source = desk_.store.NewRecordset();
    if (!id.empty()) source->Open("SELECT * from servers where id=" + id, *connection, CursorType::Static, LockType::Optimistic);
    if (id.empty() || source->Eof()) return "";
    connection->BeginTrans();
    const auto copy = OpenRows(desk_.store, *connection, kNoEntries);
    copy->AddNew();
    CopyFields(*source, *copy);
    copy->Fields("id") = newId;
    for (const auto& [name, value] : kFreshValues)
        copy->Fields(name) = value;
    if (withRules) {
        copy->Fields("strDesc") = "Copy of " + Or(ColumnText(*source, "strDesc"), ColumnText(*source, "strAddress_IP"));
        CopyRules(*connection, id, newId);
    }
    copy->Update();
    connection->CommitTrans();
    if (desk_.safeguards.IsOn(kHttpStatusFails))
        desk_.ofEntries.Write(ParseWhole(newId), kHttpStatusGood, desk_.ofEntries.Read(ParseWhole(id), kHttpStatusGood));
    return newId;
}

void EntryActs::CopyRules(Connection& connection, const std::string& from, const std::string& to) {
    const auto rule = OpenRows(desk_.store, connection, query::FailTextsOf(from), CursorType::Static);
    const auto copy = OpenRows(desk_.store, connection, kNoRules);
    for (; !rule->Eof(); rule->MoveNext()) {
        copy->AddNew();
        copy->Fields("id") = ParseWhole(desk_.ids.NewServerID());
        copy->Fields("idparent") = to;
        for (const std::string_view text : {"strFailText", "strFailCommand"})
            copy->Fields(text) = rule->Fields(text).Value();
        copy->Update();
    }
}

std::string CountedEntries(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " entry" : " entries");
}

std::string PageOfEntry(const std::string& strType, const std::string& strAddress_IP, const std::string& strPort) {
    const CheckKind kind = CheckKindOf(strType);
    const std::string address = ReplaceAll(WithoutControls(Trim(strAddress_IP)), " ", "%20");
    if ((kind != CheckKind::Http && kind != CheckKind::Https) || address.empty()) return "";
    const bool isSecure = kind == CheckKind::Https;
    const std::string host = address.substr(0, address.find_first_of("/?#"));
    const bool namesPort = host.find(':', host.find(']') == std::string::npos ? 0 : host.find(']')) != std::string::npos;
    const std::int64_t port = WholeOrZero(strPort);
    const bool addsPort = !namesPort && port > 0 && port <= kHighestPort && port != (isSecure ? 443 : 80);
    return (isSecure ? "https://" : "http://") + host + (addsPort ? ":" + std::to_string(port) : "") +
           address.substr(host.size());
}

}  // namespace korvane
