// The entries of an older settings file while they move into the database: held in memory, numbered from 1, written back to their
// sections by Save and, as long as `bAllInDB` is not true, to the tables `Servers` and `ResponseFailText`.
#pragma once

#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "store/ini_file.h"
#include "store/log.h"
#include "store/server_entry.h"
#include "store/server_id.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

/// Special values of setServerEntryChangedIndex besides the entry numbers.
constexpr int kEveryServerEntry = -1;
constexpr int kNoServerEntry = -999;

/// Further old entries are ignored.
constexpr int kMaxOldEntries = 500;

class ServerEntries {
public:
    /// Holds references; everything must outlive this. `file` is the settings file.
    struct Ports {
        Store& store;
        const Clock& clock;
        Events& events;
        Log& log;
        StatusLog& status;
        IniFile& file;
        ServerIds& ids;
        const SettingsCollection& settings;
    };

    ServerEntries(const Ports& ports, std::string dir) : ports_(ports), dir_(std::move(dir)) {}

    /// Reads the entries 1 to `count` again, at most kMaxOldEntries; a number without a section becomes a sample entry.
    void readURLData(int count);

    /// The entries that Save must write: a negative number means all, a positive one that entry, kNoServerEntry none (the initial
    /// value).
    int getServerEntryChangedIndex() const { return changedIndex_; }
    void setServerEntryChangedIndex(int n) { changedIndex_ = n; }

    /// Makes Save also write the rules of the entries that it writes.
    void setFailCommandsOKDirty() { rulesChanged_ = true; }

    /// The second half of Save: writes the marked entries among the first `count`, to their sections in one step and then, unless
    /// `allInDB`, each to the tables, delivering events between them. An entry that cannot be stored is logged with the reason,
    /// its section stays, and the next entry follows. Clears the marks unless StoreRefused. Throws nothing.
    void SaveChangedEntries(int count, bool allInDB);

    /// Returns whether, in the latest SaveChangedEntries, the database refused something that it may accept later: it was locked,
    /// or its disk was full. An entry with invalid content does not count.
    bool StoreRefused() const { return storeRefused_; }

    /// For a caller that cannot wait for the rest of a SaveChangedEntries: from now on the tables receive nothing, as if they had
    /// refused it.
    void LeaveOff() { leftOff_ = true; }

    /// The entries in memory; number n is at index n - 1.
    const std::vector<ServerEntry>& Entries() const { return entries_; }

private:
    std::vector<int> ChangedNumbers(int count) const;
    void WriteSections(const std::vector<int>& numbers);
    void WriteTables(const std::vector<int>& numbers);
    void WriteRows(int n, Connection& connection);
    void SaveDBServerDATA(const ServerEntry& entry, Connection& connection);
    void SaveDBServerDATAFailCommands(const ServerEntry& entry, Connection& connection);
    void SayFailure(const std::string& what, const std::string& description);
    const ServerEntry& Entry(int n) const { return entries_.at(static_cast<std::size_t>(n - 1)); }

    Ports ports_;
    std::string dir_;
    std::vector<ServerEntry> entries_;
    int changedIndex_ = kNoServerEntry;
    bool rulesChanged_ = false;
    bool storeRefused_ = false;
    bool leftOff_ = false;
};

}  // namespace korvane
