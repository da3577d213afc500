// The accounting of an entry: what one finished check changes in its row. An entry is "UP" after any success, "Failing" for fewer
// than `nTries` failures in a row, and "DOWN" from the `nTries`-th on. Exactly that failure triggers the failure actions, the
// success after it the recovery actions. The time of the next check is also chosen here.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>

#include "engine/collaborators.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "platform/operator.h"
#include "platform/sound.h"
#include "store/log.h"
#include "store/server_id.h"
#include "store/settings_collection.h"
#include "store/status_log.h"

namespace korvane {

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
    };

    explicit OutcomeAccounting(const Ports& ports) : ports_(ports) {}

    /// Both work on the open Recordset, whose current row is the entry that was checked, and update it. An error in one step of
    /// DoSuccess does not affect the other steps.
    void DoSuccess(Recordset& rs, std::chrono::milliseconds nResponseMs);

    /// Also adds a row to `Failures`, in one transaction with the entry's row. An error ends it with a status line; changes so
    /// far stay pending in `rs`. If the store refused, AddOwedFailureRow must follow the Update that succeeds.
    void DoFailure(Recordset& rs, Connection& conn, const std::string& strResponse, const std::string& strReason);

    /// Adds the `Failures` row of a failure that was counted in `rs` by a later Update than DoFailure's own. Does nothing if no
    /// row is missing. Store errors are passed to the caller.
    void AddOwedFailureRow(Recordset& rs, Connection& conn);

    /// Returns why the store refused to record the failure of this entry; empty when it did not, or has accepted it since.
    const std::string& Refusal() const { return refusal_; }

    /// Called before each entry: the stagger of the next checks is random and reseeded from the clock, and a missing row of an
    /// earlier entry is forgotten.
    void BeginEntry(std::uint32_t seed) {
        random_.seed(seed);
        owed_.reset();
        refusal_.clear();
    }

private:
    /// The content of a `Failures` row besides the copy of the entry.
    struct FailureNote {
        std::string strAction;
        std::string strReason;
    };

    std::chrono::seconds Stagger(int recordCount);
    void CountSuccess(Recordset& rs, std::chrono::milliseconds nResponseMs);
    bool HasComeBack(Recordset& rs) const;
    void ActOnRecovery(Recordset& rs);
    std::string ActOnOutage(Recordset& rs, Connection& conn, const std::string& strReason);
    void ForgetActions(Recordset& rs);
    std::string EnterFailureState(Recordset& rs, Connection& conn, std::int16_t tries, const std::string& strReason);
    void SoundAlert(const char* wantedKey, const char* fileKey);
    DateTime NextCheckAfterFailure(Recordset& rs, std::int16_t tries) const;
    void Record(Recordset& rs, Connection& conn, const FailureNote& note);
    void WriteTogether(Recordset& rs, Connection& conn, const FailureNote& note);
    void AddFailureRow(Recordset& rs, Connection& conn, const FailureNote& note);

    Ports ports_;
    std::minstd_rand random_;
    std::optional<FailureNote> owed_;  ///< refused by the store, or counted without its row
    std::string refusal_;

    // What was done, by `ID`, for an entry whose row could not be written since: the store has no record of it, and it must not
    // be repeated at each check.
    std::map<std::int64_t, std::string> actedOnOutage_;  ///< strAction
    std::set<std::int64_t> actedOnRecovery_;
};

}  // namespace korvane
