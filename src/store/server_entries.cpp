#include "store/server_entries.h"

#include <algorithm>
#include <utility>

#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"
#include "store/database_files.h"
#include "store/schema.h"

namespace korvane {
namespace {

Value InKindOf(std::string_view column, const std::string& text) {
    const auto kind = KindOfColumn("Servers", column);
    if (kind == ColumnKind::Int16) return static_cast<int>(Value(text).Int16());
    if (kind == ColumnKind::YesNo) return Value(text).Bool();
    return text;
}

using ColumnValues = std::vector<std::pair<std::string_view, Value>>;

ColumnValues ValuesOf(const ServerEntry& entry, const std::string& retryDuration) {
    ColumnValues values;
    for (const ServerEntryKey& key : ServerEntryKeys()) {
        const std::string& text = entry[key.column];
        const bool leftAsItIs = key.column == "ID" || (key.onlyIfFilled && Trim(text).empty());
        if (!leftAsItIs) values.emplace_back(key.column, InKindOf(key.column, text));
    }
    const std::int64_t seconds = std::int64_t{Value(retryDuration).Int16()} * Value(entry["nListFrequency"]).Int16();
    values.emplace_back("nIntervalSeconds", std::int64_t{CheckedInt16(seconds)});
    return values;
}

// The row is updated together with all other columns, so that there is never a row without an address to check.
void BeginServerRow(Recordset& row, std::int64_t id) {
    row.AddNew();
    row.Fields("ID") = id;
    for (const std::string_view counter : {"nAveResponse", "nAveSession", "nSuccess", "nFail", "nFailScanText"})
        row.Fields(counter) = 0;
    row.Fields("nPercentUp") = 100;
}

bool IsOfContent(const Error& error) {
    return dynamic_cast<const TypeMismatchError*>(&error) != nullptr || dynamic_cast<const OverflowError*>(&error) != nullptr;
}

}  // namespace

void ServerEntries::readURLData(int count) {
    const int last = std::min(count, kMaxOldEntries);
    const IniFile::Batch batch(ports_.file);
    entries_.clear();
    for (int n = 1; n <= last; ++n)
        entries_.push_back(ReadServerEntry(ports_.file, n, [this] { return ports_.ids.NewServerID(); }));
}

// Numbers without an entry in memory are skipped: once everything is in the database, the sections are no longer read, and empty
// entries must not overwrite the only copy from which a lost database can be rebuilt.
std::vector<int> ServerEntries::ChangedNumbers(int count) const {
    std::vector<int> numbers;
    const int last = std::min(count, static_cast<int>(entries_.size()));
    for (int n = 1; n <= last; ++n) {
        if (changedIndex_ == kNoServerEntry) continue;
        if (changedIndex_ < 0 || changedIndex_ == n) numbers.push_back(n);
    }
    return numbers;
}

void ServerEntries::SaveChangedEntries(int count, bool allInDB) {
    const std::vector<int> numbers = ChangedNumbers(count);
    storeRefused_ = false;
    WriteSections(numbers);
    if (!allInDB && !numbers.empty()) WriteTables(numbers);
    if (storeRefused_) return;
    changedIndex_ = kNoServerEntry;
    rulesChanged_ = false;
}

void ServerEntries::WriteSections(const std::vector<int>& numbers) {
    const IniFile::Batch batch(ports_.file);
    for (const int n : numbers) {
        WriteServerEntry(ports_.file, n, Entry(n));
        if (rulesChanged_) WriteOutCommands(ports_.file, n, Entry(n).rules);
    }
}

void ServerEntries::WriteTables(const std::vector<int>& numbers) {
    try {
        const auto connection = OpenDatabase(ports_.store, dir_);
        for (const int n : numbers) {
            ports_.events.DoEvents();
            storeRefused_ = storeRefused_ || leftOff_;
            if (leftOff_) break;
            WriteRows(n, *connection);
        }
    } catch (const Error& error) {
        storeRefused_ = true;
        SayFailure("Save: the old entries were not stored: ", error.what());
    }
}

void ServerEntries::WriteRows(int n, Connection& connection) {
    const ServerEntry& entry = Entry(n);
    try {
        SaveDBServerDATA(entry, connection);
        if (rulesChanged_) SaveDBServerDATAFailCommands(entry, connection);
    } catch (const Error& error) {
        storeRefused_ = storeRefused_ || !IsOfContent(error);
        SayFailure(
            "Save: entry " + std::to_string(n) + " (" + entry["strDesc"] + ", " + entry["strAddress_IP"] + ") was not stored: ",
            error.what());
    }
}

// Writes an entry to `Servers`; an existing row keeps its counters and its next check.
void ServerEntries::SaveDBServerDATA(const ServerEntry& entry, Connection& connection) {
    ports_.status.setStatusMSG("SaveDBServerDATA for " + entry["ID"]);
    const std::int64_t id = Value(entry["ID"]).Int64();
    const ColumnValues values = ValuesOf(entry, ports_.settings.getKvSettingsColVal("GlobalRetryDuration"));

    const auto row = OpenRows(ports_.store, connection, "SELECT * FROM Servers where id = " + std::to_string(id));
    if (row->RecordCount() == 0) BeginServerRow(*row, id);
    for (const auto& [column, value] : values)
        row->Fields(column) = value;
    if (row->Fields("dtNextCheck").Value().IsEmpty()) row->Fields("dtNextCheck") = ports_.clock.Now();
    ports_.status.setStatusMSG("Saving Server " + entry["strDesc"]);
    row->Update();
}

// Writes the rules of an entry over the existing rows and removes surplus rows.
void ServerEntries::SaveDBServerDATAFailCommands(const ServerEntry& entry, Connection& connection) {
    ports_.status.setStatusMSG("SaveDBServerDATAFailCommands for " + entry["ID"]);
    const std::int64_t id = Value(entry["ID"]).Int64();
    const auto rows = OpenRows(ports_.store, connection, "SELECT * FROM ResponseFailText where idparent = " + std::to_string(id));
    const int existing = rows->RecordCount();
    int k = 0;
    for (const ScanRule& rule : entry.rules) {
        if (rule.strFailText.empty()) continue;
        ports_.status.setStatusMSG(rule.strFailText + " --> " + rule.strFailCommand);
        const bool isNew = ++k > existing;
        if (isNew) {
            rows->AddNew();
            rows->Fields("id") = ParseWhole(ports_.ids.NewServerID());
            rows->Fields("idparent") = id;
        }
        rows->Fields("strFailText") = rule.strFailText;
        rows->Fields("strFailCommand") = rule.strFailCommand;
        rows->Update();
        if (!isNew) rows->MoveNext();
    }
    for (; k < existing; ++k) {
        rows->Delete();
        rows->MoveNext();
    }
}

void ServerEntries::SayFailure(const std::string& what, const std::string& description) {
    ports_.log.WriteLog(kLogOrdinary, kLogError, what + description);
    ports_.status.setStatusMSG(what + description);
}

}  // namespace korvane
