// Rows of the store as the pages use them. A column contains what an operator typed or an old version left, so any may be blank,
// and one blank must not cost a whole group its page.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/ignore_errors.h"
#include "platform/connection.h"

namespace korvane {

/// The rows of a query. Throws Error.
inline std::unique_ptr<Recordset> RowsToRead(Store& store, Connection& connection, std::string_view query) {
    auto rows = store.NewRecordset();
    rows->Open(query, connection, CursorType::Static, LockType::BatchOptimistic);
    return rows;
}

/// The rows of a query, which can be changed one by one. Throws Error.
inline std::unique_ptr<Recordset> RowsToChange(Store& store, Connection& connection, std::string_view query) {
    auto rows = store.NewRecordset();
    rows->Open(query, connection, CursorType::Keyset, LockType::Optimistic);
    return rows;
}

/// A blank is returned as the empty text.
inline std::string TextOf(Recordset& rs, std::string_view column) {
    return rs.Fields(column).Value().Text();
}

/// A blank is returned as 0. Throws Error for a text that is not a number.
inline double NumberOf(Recordset& rs, std::string_view column) {
    const Value value = rs.Fields(column).Value();
    return value.IsEmpty() ? 0 : value.Double();
}

/// Several changes of the store that become durable together, so that a loop waits for the disk once instead of once per row. No
/// event may be delivered while a batch exists: the store is locked for everyone else.
class WriteBatch {
public:
    /// Throws Error when the store cannot be written now.
    explicit WriteBatch(Connection& connection) : connection_(connection) { connection_.BeginTrans(); }
    /// Changes from before a failure stay.
    ~WriteBatch() {
        if (!ended_) IgnoreErrors([&] { connection_.CommitTrans(); });
    }
    WriteBatch(const WriteBatch&) = delete;
    WriteBatch& operator=(const WriteBatch&) = delete;

    /// Throws Error; nothing of the batch is then written.
    void Commit() {
        ended_ = true;
        connection_.CommitTrans();
    }

private:
    Connection& connection_;
    bool ended_ = false;
};

}  // namespace korvane
