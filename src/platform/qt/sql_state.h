// State shared by the objects of one store, which keep it alive: the kinds of the columns, the open file, and the row locks.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <tuple>

#include "base/error.h"
#include "platform/qt/sql_session.h"

namespace korvane {

/// Identifies a row of a file within this program: path, table in lower case, ID.
using SqlRowName = std::tuple<std::string, std::string, std::int64_t>;

struct SqlStoreState {
    ColumnKindOf kindOf;
    std::chrono::milliseconds busyTimeout;

    /// The file of the latest piece of work, still open for the next one; nothing after Rest.
    std::shared_ptr<SqlSession> kept;

    std::set<SqlRowName> lockedRows;
};

/// Locks one row as long as it lives.
class SqlRowLock {
public:
    /// Throws Error when another object has locked the row.
    SqlRowLock(std::shared_ptr<SqlStoreState> state, SqlRowName row) : state_(std::move(state)), row_(std::move(row)) {
        if (!state_->lockedRows.insert(row_).second) throw Error("Could not update; currently locked.");
    }
    ~SqlRowLock() { state_->lockedRows.erase(row_); }
    SqlRowLock(const SqlRowLock&) = delete;
    SqlRowLock& operator=(const SqlRowLock&) = delete;

private:
    std::shared_ptr<SqlStoreState> state_;
    SqlRowName row_;
};

}  // namespace korvane
