// The accounting of an entry: what one finished check changes in its row. An entry is "UP" after any success, "Failing" for fewer
// than `nTries` failures in a row, and "DOWN" from the `nTries`-th on. Exactly that failure triggers the failure actions, the
// success after it the recovery actions. The time of the next check is also chosen here, and the operator is notified when the
// store refuses the outcomes.
#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "engine/check_keeper.h"
#include "engine/collaborators.h"
#include "engine/once_an_outage.h"
#include "engine/own_network.h"
#include "engine/witnesses.h"
#include "notify/mail_outbox.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "platform/operator.h"
#include "platform/service_manager.h"
#include "platform/sound.h"
#include "store/log.h"
#include "store/safeguards.h"
#include "store/server_id.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

/// Returns why the store as a whole refused a write; empty if only the entry was removed meanwhile.
std::string RefusalOf(const std::exception& error);

/// What the store still owes a failure: that it was recorded, and its row in `Failures`.
struct OwedFailure {
    /// The content of the row besides the copy of the entry.
    struct Row {
        std::string strAction;
        std::string strReason;
    };
    std::string refusal;             ///< why the store refused to record the failure; empty: it did not
    std::optional<Row> uncommitted;  ///< it was added, but the transaction failed
    std::string error;               ///< why DoFailure ended early; empty: it did not
    std::optional<Row> row;          ///< still to be added once the entry's counters are written
};

/// Returns the longest time from one check of an entry that is watched to the next: its interval, or five of them in a long
/// outage.
std::chrono::seconds LongestInterval(std::int64_t nIntervalSeconds, std::int64_t nTriesCur);

/// Returns the columns of the row of `Failures`, besides its ID, that the current row of `rs` gets.
std::vector<std::pair<std::string, Value>> FailureColumns(Recordset& rs, const OwedFailure::Row& row, DateTime now);

class OutcomeAccounting {
public:
    struct Ports {
        Store& store;
        const Clock& clock;
        Events& events;
        Operator& person;
        Sound& sound;
        StatusLog& status;
        Log& log;
        const SettingsCollection& settings;
        ServerIds& ids;
        FailureActions& actions;
        OwnNetwork& network;
        Safeguards& safeguards;
        MailOutbox& outbox;
        CheckKeeper& keeper;
        Witnesses* witnesses = nullptr;  ///< null: no other instance works on the list
    };

    explicit OutcomeAccounting(const Ports& ports) : ports_(ports) {}

    /// Both work on the open Recordset, whose current row is the entry that was checked, and update it. An error in one step of
    /// DoSuccess does not affect the other steps. Mails that the actions handed to the outbox, and what the check measured, are
    /// written in the transaction of the entry's row; DoSuccess returns why that transaction was refused, empty if it was not.
    std::string DoSuccess(Recordset& rs, Connection& conn, std::chrono::milliseconds nResponseMs);

    /// Also adds a row to `Failures`, in one transaction with the entry's row. An error ends it with a status line; changes so
    /// far stay pending in `rs`. What is returned must be settled after the Update that follows. Nothing of this happens while
    /// the own network is down.
    OwedFailure DoFailure(Recordset& rs, Connection& conn, const std::string& strResponse, const std::string& strReason);

    /// Adds the row of `Failures` that is owed, if any; nothing is owed then. Store errors are passed to the caller.
    void Settle(Recordset& rs, Connection& conn, OwedFailure& owed);

    /// Called when it is known whether the store has the outcome of a check. Where instances share the list, an outcome that it does
    /// not have is as if the check had not been made: any of them makes it again.
    void End(bool stored);

    /// Called before each entry: the stagger of the next checks is random and reseeded from the clock.
    void Reseed(std::uint32_t seed) { random_.seed(seed); }

private:
    std::chrono::seconds Stagger(Recordset& rs);
    void CountSuccess(Recordset& rs, std::chrono::milliseconds nResponseMs);
    bool HasComeBack(Recordset& rs) const;
    std::string EnterFailureState(Recordset& rs, Connection& conn, std::int16_t tries, const std::string& strReason);
    void SoundAlert(const char* wantedKey, const char* fileKey);
    bool HasFailed(Recordset& rs) const;
    void NoteOutage(Recordset& rs, bool isDown, const std::string& strReason);
    bool IsShared() const { return ports_.witnesses != nullptr; }
    bool LacksWitnesses(Recordset& rs, Connection& conn, std::int64_t tries, const std::string& strReason);
    bool Guarded() const { return ports_.safeguards.IsOn("GuardBadEntries"); }
    std::int32_t AddOne(Recordset& rs, std::string_view column);
    std::chrono::seconds RetryDuration();
    DateTime NextCheckAfterFailure(Recordset& rs, std::int16_t tries);
    bool IsExcused(Recordset& rs, const std::string& strReason, OwedFailure& owed);
    void Record(Recordset& rs, Connection& conn, OwedFailure& owed);
    std::string UpdateWithMails(Recordset& rs, Connection& conn);
    void Commit(Connection& conn);
    bool CommitWhatThereIs(Connection& conn);
    void WriteTogether(Recordset& rs, Connection& conn, OwedFailure& owed);
    void AddFailureRow(Recordset& rs, Connection& conn, const OwedFailure::Row& row);

    Ports ports_;
    std::minstd_rand random_;
    OnceAnOutage once_;
    bool lacksWitnesses_ = false;  ///< the entry would be DOWN
    std::string toldRetry_;        ///< the unusable setting that the operator was told of
};

/// Reports once that the store refuses the outcomes of checks, and once that it accepts them again. Otherwise a full disk would
/// only mean successful checks that are forgotten.
class StoreAlarm {
public:
    struct Ports {
        Operator& person;
        StatusLog& status;
        Log& log;
        ServiceManager& manager;
    };

    explicit StoreAlarm(const Ports& ports) : ports_(ports) {}

    /// Called after each entry with the reason why its outcome could not be written; empty when it was. `kept`: it will be.
    void Note(const std::string& refusal, bool kept = false);

    /// While true, the tray shows nothing else.
    bool Raised() const { return raised_; }

private:
    Ports ports_;
    bool raised_ = false;
};

}  // namespace korvane
