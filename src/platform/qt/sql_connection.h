// The Connection: one piece of work with the database. The file itself stays open between pieces of work while the program is
// busy, a connection to a server always.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/qt/sql_session.h"
#include "platform/qt/sql_store.h"

namespace korvane {

/// Identifies a row of a file within this program: path, table in lower case, ID.
using SqlRowName = std::tuple<std::string, std::string, std::int64_t>;

/// Shared by the objects of one store, which keep it alive.
struct SqlStoreState {
    ColumnKindOf kindOf;
    std::chrono::milliseconds busyTimeout;

    SharedDatabase shared = {};

    /// The file of the latest piece of work, still open for the next one; nothing after Rest.
    std::shared_ptr<SqlSession> kept = nullptr;

    /// Connections to the server that are unused now. They stay: to connect again costs more than to keep them.
    std::vector<std::shared_ptr<SqlSession>> idle = {};
    std::string listId = {};  ///< of the server's list, empty before it is opened

    std::set<SqlRowName> lockedRows = {};

    int inUse = 0;  ///< how many connections are open
};

/// Locks one row as long as it lives.
class SqlRowLock {
public:
    /// Returns null when another object, or another program on a server, has locked the row. `table` is in lower case. Throws
    /// Error.
    static std::unique_ptr<SqlRowLock> Try(std::shared_ptr<SqlStoreState> state, std::shared_ptr<SqlSession> session,
                                           const std::string& table, std::int64_t id);
    ~SqlRowLock();
    SqlRowLock(const SqlRowLock&) = delete;
    SqlRowLock& operator=(const SqlRowLock&) = delete;

private:
    SqlRowLock(std::shared_ptr<SqlStoreState> state, std::shared_ptr<SqlSession> session, SqlRowName row)
        : state_(std::move(state)), session_(std::move(session)), row_(std::move(row)) {}

    std::shared_ptr<SqlStoreState> state_;
    std::shared_ptr<SqlSession> session_;
    SqlRowName row_;
    bool onServer_ = false;
};

class QtSqlConnection : public Connection {
public:
    explicit QtSqlConnection(std::shared_ptr<SqlStoreState> state) : state_(std::move(state)) {}
    ~QtSqlConnection() override { QtSqlConnection::Close(); }

    void Open() override;
    void Close() override;
    void BeginTrans() override { Opened().Begin(); }
    void CommitTrans() override { Opened().Commit(); }
    void Execute(std::string_view statement, const std::vector<Value>& values) override;
    void TryWriting() override { Opened().TryWriting(); }
    bool HasTable(std::string_view name) override { return Opened().HasTable(std::string(name)); }
    bool TryTakeDuty(std::string_view name) override;
    void ReleaseDuty(std::string_view name) override;
    std::optional<DateTime> Now() override { return Opened().Now(); }
    std::string Server() override { return Opened().Server(); }
    void FollowIds(std::string_view table) override { Opened().FollowIds(std::string(table)); }

    /// Returns null while it is closed.
    const std::shared_ptr<SqlSession>& Session() const { return session_; }

private:
    SqlSession& Opened() const;
    std::shared_ptr<SqlSession> TakeKept(const std::string& path);
    std::shared_ptr<SqlSession> TakeIdle();
    std::shared_ptr<SqlSession> Connected();
    void Keep();

    std::shared_ptr<SqlStoreState> state_;
    std::shared_ptr<SqlSession> session_;
    std::set<std::string, std::less<>> duties_;
};

}  // namespace korvane
