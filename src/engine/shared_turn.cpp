#include "engine/shared_turn.h"

#include "base/ignore_errors.h"
#include "engine/server_table.h"

namespace korvane {

void SharedTurn::Begin(Connection& conn) {
    if (ports_.isShared) ports_.clock.Follow(conn);
}

bool SharedTurn::Take(Recordset& rs) const {
    if (!ports_.isShared) return true;
    bool passed = rs.Eof();
    for (; !rs.Eof(); rs.MoveNext()) {
        if (!IsDue(rs)) return !passed;
        if (rs.TryLock() && IsDue(rs)) return true;
        passed = true;
    }
    return !passed;
}

// A time that cannot be read is due; a row that was removed is not.
bool SharedTurn::IsDue(Recordset& rs) const {
    Value next;
    if (!IgnoreErrors([&] { next = rs.Fields("dtNextCheck").Value(); })) return false;
    bool due = true;
    IgnoreErrors([&] { due = next.When() <= ports_.clock.Now(); });
    return due;
}

bool SharedTurn::IsAnyDue() const {
    if (!ports_.isShared) return false;
    bool due = false;
    IgnoreErrors([&] {
        const auto conn = ports_.store.NewConnection();
        conn->SetConnectionString(ports_.connectionString);
        conn->Open();
        const auto rs = ports_.store.NewRecordset();
        rs->Open(query::IsAnyDueBy(ports_.clock.Now()), *conn, CursorType::Static, LockType::Optimistic);
        due = !rs->Eof();
    });
    return due;
}

}  // namespace korvane
