#include "store/server_entries.h"

#include <algorithm>
#include <optional>

#include "base/error.h"
#include "store/database_files.h"

namespace korvane {

void ServerEntries::readURLData(int count) {
    const int last = std::min(count, kMaxOldEntries);
    const IniFile::Batch batch(ports_.file);
    entries_.clear();
    for (int n = 1; n <= last; ++n) {
        entries_.push_back(ReadServerEntry(ports_.file, n, [this] { return ports_.ids.NewServerID(); }));
    }
}

void ServerEntries::ReadInCommands(int n) {
    entries_.at(static_cast<std::size_t>(n - 1)).rules = ReadScanRules(ports_.file, n);
}

void ServerEntries::WriteOutCommands(int n) {
    WriteScanRules(ports_.file, n, Entry(n).rules);
}

const ServerEntry& ServerEntries::Entry(int n) const {
    return entries_.at(static_cast<std::size_t>(n - 1));
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
    WriteSections(numbers, rulesChanged_);
    if (!allInDB) WriteTables(numbers, rulesChanged_);
    if (storeRefused_) return;
    changedIndex_ = kNoServerEntry;
    rulesChanged_ = false;
}

void ServerEntries::WriteSections(const std::vector<int>& numbers, bool withRules) {
    const IniFile::Batch batch(ports_.file);
    for (const int n : numbers) {
        WriteServerEntry(ports_.file, n, Entry(n));
        if (withRules) WriteOutCommands(n);
    }
}

void ServerEntries::WriteTables(const std::vector<int>& numbers, bool withRules) {
    if (numbers.empty()) return;
    const auto connection = ports_.store.NewConnection();
    try {
        connection->SetConnectionString(OleDbConnectionText(dir_));
        connection->Open();
    } catch (const Error& error) {
        storeRefused_ = true;
        SayFailure("Save: the old entries were not stored: ", error.what());
        return;
    }
    for (const int n : numbers) {
        ports_.events.DoEvents();
        if (leftOff_) {
            storeRefused_ = true;
            break;
        }
        try {
            SaveDBServerDATA(n, *connection);
            if (withRules) SaveDBServerDATAFailCommands(n, *connection);
        } catch (const Error& error) {
            const bool entryIsBad = dynamic_cast<const TypeMismatchError*>(&error) != nullptr ||
                                    dynamic_cast<const OverflowError*>(&error) != nullptr;
            storeRefused_ = storeRefused_ || !entryIsBad;
            SayFailure("Save: entry " + std::to_string(n) + " (" + Entry(n).strDesc + ", " + Entry(n).strAddress_IP +
                           ") was not stored: ",
                       error.what());
        }
    }
    connection->Close();
}

void ServerEntries::SayFailure(const std::string& what, const std::string& description) {
    ports_.log.WriteLog(kLogOrdinary, kLogError, what + description);
    ports_.status.setStatusMSG(what + description);
}

}  // namespace korvane
