// The database rows that an old entry becomes.
#include <utility>

#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"
#include "store/server_entries.h"

namespace korvane {
namespace {

Value InKind(const std::string& text, ColumnKind kind) {
    if (kind == ColumnKind::Int16) return static_cast<int>(Value(text).Int16());
    if (kind == ColumnKind::YesNo) return Value(text).Bool();
    return text;
}

std::int16_t IntervalSeconds(const std::string& retryDuration, const std::string& nListAttempts) {
    return CheckedInt16(std::int64_t{Value(retryDuration).Int16()} * Value(nListAttempts).Int16());
}

using ColumnValues = std::vector<std::pair<std::string_view, Value>>;

ColumnValues ValuesOf(const ServerEntry& entry, const std::string& retryDuration) {
    ColumnValues values;
    for (const ServerEntryKey& key : ServerEntryKeys()) {
        const std::string& text = entry.*key.field;
        const bool leftAsItIs = key.onlyIfFilled && Trim(text).empty();
        if (!leftAsItIs && key.kind != ColumnKind::Id) values.emplace_back(key.column, InKind(text, key.kind));
    }
    values.emplace_back("nIntervalSeconds", static_cast<int>(IntervalSeconds(retryDuration, entry.nListFrequency)));
    return values;
}

// The row is updated together with all other columns, so that there is never a row without an address to check.
void BeginServerRow(Recordset& row, std::int64_t id) {
    row.AddNew();
    row.Fields("ID") = id;
    for (const std::string_view counter : {"nAveResponse", "nAveSession", "nSuccess", "nFail"})
        row.Fields(counter) = 0;
    row.Fields("nPercentUp") = 100;
    row.Fields("nFailScanText") = 0;
}

void PutRule(Recordset& row, const ScanRule& rule) {
    row.Fields("strFailText") = rule.strFailText;
    row.Fields("strFailCommand") = rule.strFailCommand;
    row.Update();
}

}  // namespace

void ServerEntries::SaveDBServerDATA(int n, Connection& connection) {
    const ServerEntry& entry = Entry(n);
    ports_.status.setStatusMSG("SaveDBServerDATA for " + entry.ID);
    const std::int64_t id = Value(entry.ID).Int64();
    const ColumnValues values = ValuesOf(entry, ports_.settings.getKvSettingsColVal("GlobalRetryDuration"));

    const auto row = ports_.store.NewRecordset();
    row->Open("SELECT * FROM Servers where id = " + std::to_string(id), connection, CursorType::Keyset, LockType::Optimistic);
    if (row->RecordCount() == 0) BeginServerRow(*row, id);
    for (const auto& [column, value] : values)
        row->Fields(column) = value;
    if (row->Fields("dtNextCheck").Value().IsEmpty()) row->Fields("dtNextCheck") = ports_.clock.Now();
    ports_.status.setStatusMSG("Saving Server " + entry.strDesc);
    row->Update();
    row->Close();
}

void ServerEntries::SaveDBServerDATAFailCommands(int n, Connection& connection) {
    const ServerEntry& entry = Entry(n);
    ports_.status.setStatusMSG("SaveDBServerDATAFailCommands for " + entry.ID);
    const std::int64_t id = Value(entry.ID).Int64();
    const auto rows = ports_.store.NewRecordset();
    rows->Open("SELECT * FROM ResponseFailText where idparent = " + std::to_string(id), connection, CursorType::Keyset,
               LockType::Optimistic);
    const int existing = rows->RecordCount();
    int k = 0;
    for (const ScanRule& rule : entry.rules) {
        if (rule.strFailText.empty()) continue;
        ++k;
        ports_.status.setStatusMSG(rule.strFailText + " --> " + rule.strFailCommand);
        if (k > existing) {
            rows->AddNew();
            rows->Fields("id") = ParseWhole(ports_.ids.NewServerID());
            rows->Fields("idparent") = id;
            PutRule(*rows, rule);
        } else {
            PutRule(*rows, rule);
            rows->MoveNext();
        }
    }
    for (; k < existing; ++k) {
        rows->Delete();
        rows->MoveNext();
    }
    rows->Close();
}

}  // namespace korvane
