// The store over Qt Sql: in an SQLite file, or on a PostgreSQL server.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/connection.h"

namespace korvane {

struct SqlStoreState;

/// Returns the kind of a column, both names case-insensitive; nothing for an unknown column.
using ColumnKindOf = std::function<std::optional<ColumnKind>(std::string_view table, std::string_view column)>;

/// A database on a PostgreSQL server in place of a file: the same rows for several instances of the program.
struct SharedDatabase {
    std::string file;     ///< a connection text that names it opens the server's database; no such file is touched
    std::string address;  ///< "postgresql://user@host1,host2/database?..."; blank: there is none
    std::string schema;   ///< SQLite statements that create the tables and indexes
    /// A connection is given up when the server has not answered a statement for so long. The server itself cancels a statement
    /// after two thirds of it, and the wait for a lock after a third.
    std::chrono::milliseconds patience = std::chrono::seconds(15);

    /// Returns whether `path` stands for the server's database.
    bool Is(const std::string& path) const;
};

/// Makes connections and recordsets for one thread. They may outlive the store. The database file may be replaced whenever no
/// Connection is open: each Connection checks whether it is still the file that was kept open.
class QtSqlStore : public Store {
public:
    /// Each operation waits up to `busyTimeout` while another process holds the file, and then throws.
    explicit QtSqlStore(ColumnKindOf kindOf, std::chrono::milliseconds busyTimeout = std::chrono::seconds(1),
                        SharedDatabase shared = {});

    std::unique_ptr<Connection> NewConnection() override;
    std::unique_ptr<Recordset> NewRecordset() override;
    /// A server's database is left alone: it needs no compaction. Works in a thread of its own, which also calls `copied`. This object must not be used until the call has returned.
    void Compact(const std::string& file, const std::string& copy, const std::function<void()>& copied) override;
    /// From now on, the thread that waits for Compact calls `glance` several times a second. It may end the process, which has
    /// the effect of a crash on the file; it must not open the file or deliver events.
    void WhileCompacting(std::function<void()> glance) { glance_ = std::move(glance); }
    void Rest() override;
    bool InUse() const override;

private:
    std::shared_ptr<SqlStoreState> state_;
    std::function<void()> glance_ = [] {};
};

}  // namespace korvane
