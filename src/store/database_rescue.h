// With the safeguard RestoreDatabase on, a database that is missing or damaged is brought back from its last good copy. Copies are the
// backup of the last compaction and one of each of the last seven days, in the folder Copies of the home.
//
// Nothing that may still be needed is ever deleted: a damaged database and its journal are set aside under a name with the date, and
// a copy takes their place in one step after it was checked as a whole. A program that is killed in between finds the same state
// again, or no database, and brings it back at its next start.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "platform/files.h"
#include "store/log.h"
#include "store/safeguards.h"
#include "store/status_log.h"

namespace korvane {

class DatabaseRescue {
public:
    /// Holds references; everything must outlive this.
    struct Ports {
        Store& store;
        Files& files;
        const Clock& clock;
        Events& events;
        Log& log;
        StatusLog& status;
        Safeguards& safeguards;
        /// Notifies the operator by mail, later and if that is possible, that the database was brought back.
        std::function<void(const std::string& text)> mail;
    };

    DatabaseRescue(Ports ports, std::string dir) : ports_(std::move(ports)), dir_(std::move(dir)) {}

    bool IsOn() const;

    /// Called at the start, before the database is used. Waits up to 10 seconds, with events delivered, while another program has
    /// it locked, and brings it back if it is missing or damaged. Throws Error if there is a good copy that cannot be put in its
    /// place: an empty database must not stand there then.
    void BeforeTheStart();

    /// Returns whether a compaction may replace the backup: not when the database has fewer entries now.
    bool MayReplaceBackup();

    /// Called when a compaction has failed. A damaged database is brought back by the next KeepDailyCopy.
    void AfterFailedCompaction(const std::exception& error);

    /// Called every few seconds. While nobody uses the store, makes the copy of today if there is none yet, which also checks the
    /// database as a whole, and brings it back if it is missing or damaged. Blocks like Store::Compact. Throws nothing.
    void KeepDailyCopy();

private:
    enum class State { Missing, Damaged, Locked, Usable, Unknown };

    bool IsMissing();
    State Look();
    std::optional<int> EntriesIn(const std::string& file);
    void CopyToday();
    void CopyWhole(const std::string& file, const std::string& to);
    std::vector<std::string> Copies();
    bool BringBack(const std::string& why);
    bool TakeCopy(const std::string& copy);
    std::string SetAside();
    void RemoveOldCopies(const std::string& today);
    void Tell(const std::string& text);
    void TellProblem(const std::string& text);

    Ports ports_;
    std::string dir_;
    bool missing_ = false;  ///< when it was last looked for: it may be on its way from another place
    bool damaged_ = false;
    std::string lastProblem_;
    std::chrono::milliseconds nextTry_{0};  ///< after a problem
};

}  // namespace korvane
