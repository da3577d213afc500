// Safeguard GuardBadEntries: an entry that cannot be checked because of its own values is set aside, and the others are checked.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

#include "engine/kept_accounts.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "store/log.h"
#include "store/safeguards.h"
#include "store/status_log.h"

namespace korvane {

class BadEntries {
public:
    struct Ports {
        Store& store;
        const Clock& clock;
        StatusLog& status;
        Log& log;
        Safeguards& safeguards;
        KeptAccounts& kept;
        std::string connectionString;  ///< of the database
        bool isShared = false;         ///< other instances may check the entry meanwhile
    };

    explicit BadEntries(const Ports& ports) : ports_(ports) {}

    bool On() const { return ports_.safeguards.IsOn("GuardBadEntries"); }

    /// Called when a check of this entry ended with the error and left it due. If one of its values cannot be used, or this is
    /// its third such check in a row, its next check is set to after its interval, at least a minute, its status to "Not
    /// checked" and its last response to the reason. The reason is in the status log each time, and in the log once an hour.
    /// Returns whether the entry is no longer due, by the store or by what is kept. Throws nothing.
    bool SetAside(std::int64_t id, const std::string& error);

    /// Called when an entry was checked.
    void Passed() { inARow_ = 0; }

private:
    void SetAside(Recordset& rs, const std::string& reason);
    void Tell(std::int64_t id, const std::string& text);

    struct Told {
        std::string text;
        std::chrono::milliseconds at;  ///< tick count
    };
    Ports ports_;
    std::map<std::int64_t, Told> told_;
    std::int64_t last_ = 0;  ///< the entry of the last call
    int inARow_ = 0;         ///< its calls
};

}  // namespace korvane
