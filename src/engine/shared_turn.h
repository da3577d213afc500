// Which entry this instance checks next while others work on the same list: the first that is due and that nobody else is checking.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "engine/list_clock.h"
#include "engine/witnesses.h"
#include "platform/connection.h"

namespace korvane {

class SharedTurn {
public:
    struct Ports {
        Store& store;
        ListClock& clock;
        std::string connectionString;  ///< of the database
        const SettingsCollection& settings;
        Witnesses* witnesses;  ///< null: no other instance works on the list, and nothing in here asks the store
    };

    explicit SharedTurn(const Ports& ports) : ports_(ports) {}

    bool IsShared() const { return ports_.witnesses != nullptr; }

    /// Called with the open store before it is asked for due rows.
    void Begin(Connection& conn);

    /// `rs`: the rows that are due soon, in that order. Goes to the first that can be locked, and is still due when it was read
    /// again; it stays locked until the cursor leaves it. If nothing is due, goes to the first row that will be. Returns false
    /// when others check all that is due, or are to see for themselves whether an entry fails: this instance looks again soon, because any of them may end in the middle of it.
    bool Take(Recordset& rs) const;

    /// Returns whether an entry is due: others may have changed the list during a sleep. Throws nothing.
    bool IsAnyDue() const;

private:
    bool IsDue(Recordset& rs) const;
    bool IsForOthers(Recordset& rs) const;

    Ports ports_;
    std::map<std::int64_t, DateTime> seen_;  ///< entries that this instance saw fail
};

}  // namespace korvane
