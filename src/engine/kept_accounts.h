// A part of the safeguard GuardBadEntries: while the store refuses to write, what checks change in the rows of entries and the
// rows that they add to `Failures` are kept in memory, and written when the store takes them. What is kept ends with the program.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "engine/outcome.h"
#include "platform/clock.h"
#include "platform/connection.h"
#include "store/log.h"
#include "store/server_id.h"

namespace korvane {

class KeptAccounts {
public:
    struct Ports {
        Store& store;
        const Clock& clock;
        Log& log;
        ServerIds& ids;
        Safeguards& safeguards;
        std::string connectionString;  ///< of the database
    };

    explicit KeptAccounts(const Ports& ports) : ports_(ports) {}

    bool Empty() const { return kept_.empty(); }

    /// Keeps the current row as it is with its pending changes, and the failure that is owed.
    void Keep(Recordset& rs, const OwedFailure& owed);

    /// Returns the entry of `rs` that is due first, if what is kept counts. Goes to the end of `rs`; `rs` has rows.
    std::int64_t FirstDue(Recordset& rs) const;

    /// Makes what is kept of the current row its pending changes.
    void PutInto(Recordset& rs) const;

    /// Tries to write everything, at most once in ten seconds. Returns whether it did now. Throws nothing.
    bool Write();

    /// Called when the row of the entry was written with all that was kept; adds its failures. Throws store errors.
    void Written(std::int64_t id, Connection& conn);

private:
    using Columns = std::vector<std::pair<std::string, Value>>;
    struct Account {
        Columns columns;  ///< of the row
        DateTime dtNextCheck;
        std::vector<Columns> failures;
    };

    void WriteFirst();
    void AddFailures(const Account& account, Connection& conn);

    Ports ports_;
    std::map<std::int64_t, Account> kept_;
    std::size_t failures_ = 0;  ///< in all accounts
    std::size_t lost_ = 0;      ///< failures that there was no room for
    std::chrono::milliseconds nextTry_{0};
};

}  // namespace korvane
