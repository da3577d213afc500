// The Connection: one piece of work with the database file. The file itself stays open between pieces of work while the program
// is busy.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>

#include "platform/qt/sql_session.h"

namespace korvane {

/// Identifies a row of a file within this program: path, table in lower case, ID.
using SqlRowName = std::tuple<std::string, std::string, std::int64_t>;

/// Shared by the objects of one store, which keep it alive.
struct SqlStoreState {
    ColumnKindOf kindOf;
    std::chrono::milliseconds busyTimeout;

    /// The file of the latest piece of work, still open for the next one; nothing after Rest.
    std::shared_ptr<SqlSession> kept = nullptr;

    std::set<SqlRowName> lockedRows = {};

    int inUse = 0;  ///< how many connections are open
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

class QtSqlConnection : public Connection {
public:
    explicit QtSqlConnection(std::shared_ptr<SqlStoreState> state) : state_(std::move(state)) {}
    ~QtSqlConnection() override { QtSqlConnection::Close(); }

    void Open() override;
    void Close() override;
    void BeginTrans() override { Opened().Begin(); }
    void CommitTrans() override { Opened().Commit(); }
    void Execute(std::string_view statement) override;
    void TryWriting() override { Opened().TryWriting(); }
    bool HasTable(std::string_view name) override { return Opened().HasTable(std::string(name)); }
    bool TryTakeDuty(std::string_view name) override;
    void ReleaseDuty(std::string_view name) override;
    std::optional<DateTime> Now() override;

    /// Returns null while it is closed.
    const std::shared_ptr<SqlSession>& Session() const { return session_; }

private:
    SqlSession& Opened() const;
    std::shared_ptr<SqlSession> TakeKept(const std::string& path);

    std::shared_ptr<SqlStoreState> state_;
    std::shared_ptr<SqlSession> session_;
};

}  // namespace korvane
