#include "engine/shared_turn.h"

#include <algorithm>

#include "base/ignore_errors.h"
#include "base/numbers.h"
#include "engine/server_table.h"

namespace korvane {
namespace {

using std::chrono::seconds;

constexpr seconds kPauseWithoutOne(60);

}  // namespace

void SharedTurn::Begin(Connection& conn) {
    if (!IsShared()) return;
    ports_.clock.Follow(conn);
    seen_ = ports_.witnesses->SeenHere(conn);
}

bool SharedTurn::Take(Recordset& rs) const {
    if (!IsShared()) return true;
    bool passed = rs.Eof();
    for (; !rs.Eof(); rs.MoveNext()) {
        if (!IsDue(rs)) return !passed;
        if (!IsForOthers(rs) && rs.TryLock() && IsDue(rs) && !IsForOthers(rs)) return true;
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

// At its last try an entry waits for witnesses, and only after the usual pause for this one again.
bool SharedTurn::IsForOthers(Recordset& rs) const {
    bool isFor = false;
    IgnoreErrors([&] {
        const auto seen = seen_.find(rs.Fields("ID").Value().Int64());
        if (seen == seen_.end() || ColumnText(rs, "strCurStatus") != status::kFailing) return;
        seconds pause = kPauseWithoutOne;
        IgnoreErrors([&] { pause = seconds(ParseWhole(ports_.settings.getKvSettingsColVal("GlobalRetryDuration"))); });
        const Value interval = rs.Fields("nIntervalSeconds").Value();
        if (!interval.IsBlank()) pause = std::min(pause, seconds(interval.Int64()));
        const bool isLastTry = rs.Fields("nTriesCur").Value().Int64() >= TriesOf(rs).Int64() - 1;
        isFor = isLastTry && ports_.clock.Now() < seen->second + pause;
    });
    return isFor;
}

bool SharedTurn::IsAnyDue() const {
    if (!IsShared()) return false;
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
