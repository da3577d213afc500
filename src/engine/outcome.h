// The accounts of an entry: what one finished check does to its row. An entry is "UP" after any success, "Failing" for fewer than `nTries`
// failures in a row, "DOWN" from the `nTries`-th on; that failure exactly fires the failure actions, the success after it the recovery
// actions; and the time of the next check is chosen here.
#pragma once

#include <chrono>
#include <cstdint>
#include <random>
#include <string>

#include "engine/collaborators.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "platform/events.h"
#include "platform/operator.h"
#include "platform/sound.h"
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
        const SettingsCollection& settings;
        ServerIds& ids;
        FailureActions& actions;
    };

    explicit OutcomeAccounting(const Ports& ports) : ports_(ports) {}

    /// Both work on the open Recordset, whose current row is the entry that was checked, and update it. An error in one
    /// step of DoSuccess leaves the other steps in force.
    void DoSuccess(Recordset& rs, std::chrono::milliseconds nResponseMs);

    /// Adds a row to `Failures` too. An error ends it with a status line; what was written so far stays pending in `rs`.
    void DoFailure(Recordset& rs, Connection& conn, const std::string& strResponse, const std::string& strReason);

    /// The stagger of the next checks is random; the cycle reseeds it from the clock.
    void Reseed(std::uint32_t seed) { random_.seed(seed); }

private:
    std::chrono::seconds Stagger(int recordCount);
    void CountSuccess(Recordset& rs, std::chrono::milliseconds nResponseMs);
    std::string EnterFailureState(Recordset& rs, Connection& conn, std::int16_t tries, const std::string& strReason);
    void SoundAlert(const char* wantedKey, const char* fileKey);
    DateTime NextCheckAfterFailure(Recordset& rs, std::int16_t tries) const;
    void AddFailureRow(Recordset& rs, Connection& conn, const std::string& strAction, const std::string& strReason);

    Ports ports_;
    std::minstd_rand random_;
};

}  // namespace korvane
