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

/// The marks of setServerEntryChangedIndex beside the entry numbers.
constexpr int kEveryServerEntry = -1;
constexpr int kNoServerEntry = -999;

/// More old entries than this are not kept.
constexpr int kMaxOldEntries = 500;

class ServerEntries {
public:
    /// All are borrowed and must outlive this. `file` is the settings file.
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

    /// Reads the entries 1 to `count` anew, at most kMaxOldEntries; a number without a section becomes a sample entry.
    void readURLData(int count);

    /// The nine rules of entry `n` (from 1), from and to section "Commands<n>".
    void ReadInCommands(int n);
    void WriteOutCommands(int n);

    /// Writes entry `n` to `Servers`; the counters and the next check of a row that is there already are kept. Throws
    /// TypeMismatchError for texts that are no number, OverflowError for numbers that are too large, and Error for the store's
    /// failures.
    void SaveDBServerDATA(int n, Connection& connection);

    /// Writes the rules of entry `n` to `ResponseFailText`, over the rows that are there, and removes rows left over. Throws
    /// Error.
    void SaveDBServerDATAFailCommands(int n, Connection& connection);

    /// Which entries Save is to write: a negative number all, a positive one that entry, kNoServerEntry none (as at the start).
    int getServerEntryChangedIndex() const { return changedIndex_; }
    void setServerEntryChangedIndex(int n) { changedIndex_ = n; }

    /// Save is to write the rules of the entries that it writes.
    void setFailCommandsOKDirty() { rulesChanged_ = true; }

    /// Save's second half: writes the marked entries among the first `count`, to their sections in one step and then, unless
    /// `allInDB`, each to the tables, delivering events between them. An entry that cannot be stored is logged with the reason,
    /// its section stays, and the next one follows. Clears the marks unless StoreRefused. Raises nothing.
    void SaveChangedEntries(int count, bool allInDB);

    /// Whether the database refused something in the latest SaveChangedEntries that it may take another time: it was locked, or
    /// its disk full. An entry that makes no sense in itself does not count.
    bool StoreRefused() const { return storeRefused_; }

    /// Somebody cannot wait for the rest of a SaveChangedEntries: from now on the tables get nothing, as if they had refused it.
    void LeaveOff() { leftOff_ = true; }

    /// The entries in memory; number n stands at n - 1.
    const std::vector<ServerEntry>& Entries() const { return entries_; }

private:
    std::vector<int> ChangedNumbers(int count) const;
    void WriteSections(const std::vector<int>& numbers, bool withRules);
    void WriteTables(const std::vector<int>& numbers, bool withRules);
    void SayFailure(const std::string& what, const std::string& description);
    const ServerEntry& Entry(int n) const;

    Ports ports_;
    std::string dir_;
    std::vector<ServerEntry> entries_;
    int changedIndex_ = kNoServerEntry;
    bool rulesChanged_ = false;
    bool storeRefused_ = false;
    bool leftOff_ = false;
};

}  // namespace korvane
