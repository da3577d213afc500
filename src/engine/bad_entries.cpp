#include "engine/bad_entries.h"

#include <algorithm>

#include "base/error.h"
#include "base/ignore_errors.h"
#include "base/text.h"
#include "engine/server_table.h"
#include "store/schema.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using std::chrono::seconds;

constexpr std::int64_t kShortestWait = 60;  // seconds
constexpr auto kLogAgain = 1h;
constexpr int kMostInARow = 3;
constexpr std::size_t kMostTold = 10'000;
constexpr std::size_t kMostOfAValue = 40;  // characters

bool Reads(const Value& value, ColumnKind kind) {
    if (value.IsBlank()) return true;
    return IgnoreErrors([&] {
        switch (kind) {
            case ColumnKind::Int16:
                static_cast<void>(value.Int16());
                break;
            case ColumnKind::Int32:
                static_cast<void>(value.Int32());
                break;
            case ColumnKind::Whole:
                static_cast<void>(value.Int64());
                break;
            case ColumnKind::Double:
                static_cast<void>(value.Double());
                break;
            case ColumnKind::YesNo:
                static_cast<void>(value.Bool());
                break;
            case ColumnKind::DateTime:
                static_cast<void>(value.When());
                break;
            case ColumnKind::Text:
                break;
        }
    });
}

// A text column that the check reads as a number.
ColumnKind KindIn(CheckKind check, const ColumnSchema& column) {
    const bool page = check == CheckKind::Http || check == CheckKind::Https;
    if (page && column.name == "strPort") return ColumnKind::Int32;
    if (check == CheckKind::Ping && column.name == "strExpectedText") return ColumnKind::Int16;
    return column.kind;
}

bool IsUsable(CheckKind check, const ColumnSchema& column, const Value& value) {
    const ColumnKind kind = KindIn(check, column);
    if (kind != column.kind && value.IsEmpty()) return true;
    if (!Reads(value, kind)) return false;
    return column.name != "strPort" || kind == ColumnKind::Text || value.Int32() <= kHighestPort;
}

// Returns the columns of the current row whose values cannot be used, with the values; empty if there are none.
std::string Unusable(Recordset& rs) {
    CheckKind check = CheckKind::Tcp;
    IgnoreErrors([&] { check = CheckKindOf(ColumnText(rs, "strType")); });
    std::string unusable;
    for (const ColumnSchema& column : DatabaseSchema().front().columns) {
        const Value value = rs.Fields(column.name).Value();
        if (IsUsable(check, column, value)) continue;
        unusable += (unusable.empty() ? "" : ", ") + std::string(column.name) + " '" +
                    Left(WithoutControls(value.Text()), kMostOfAValue) + "'";
    }
    return unusable;
}

// Another instance may have checked the entry.
bool IsAhead(Recordset& rs, DateTime now) {
    bool ahead = false;
    IgnoreErrors([&] { ahead = rs.Fields("dtNextCheck").Value().When() > now; });
    return ahead;
}

DateTime Later(DateTime now, std::int64_t wait) {
    DateTime later = DateTime::Last();
    IgnoreErrors([&] { later = now + seconds(wait); });
    return later;
}

}  // namespace

bool BadEntries::SetAside(std::int64_t id, const std::string& error) {
    inARow_ = id == last_ ? inARow_ + 1 : 1;
    last_ = id;
    bool isSetAside = false;
    IgnoreErrors([&] {
        const auto conn = ports_.store.NewConnection();
        conn->SetConnectionString(ports_.connectionString);
        conn->Open();
        const auto rs = ports_.store.NewRecordset();
        rs->Open(query::ById(id), *conn, CursorType::Keyset, LockType::Pessimistic);
        if (ports_.isShared && !rs->Eof() && (!rs->TryLock() || IsAhead(*rs, ports_.clock.Now()))) return;
        const std::string unusable = rs->Eof() ? "" : Unusable(*rs);
        if (!rs->Eof() && unusable.empty() && inARow_ < kMostInARow) return;
        if (!rs->Eof()) SetAside(*rs, unusable.empty() ? error : unusable + " can't be used");
        isSetAside = true;
    });
    if (isSetAside) inARow_ = 0;
    return isSetAside;
}

void BadEntries::SetAside(Recordset& rs, const std::string& reason) {
    std::int64_t interval = 0;
    IgnoreErrors([&] { interval = rs.Fields("nIntervalSeconds").Value().Int64(); });
    const DateTime next = Later(ports_.clock.Now(), std::max(interval, kShortestWait));
    const std::string response = std::string(status::kNotChecked) + ": " + reason + ".";
    rs.Fields("dtNextCheck") = next;
    rs.Fields("strCurStatus") = status::kNotChecked;
    rs.Fields("strLastResponse") = Left(response, kMostStoredCharacters);
    if (!IgnoreErrors([&] { rs.Update(); }) && !ports_.isShared) ports_.kept.Keep(rs, {});
    ports_.safeguards.Acted("GuardBadEntries", "An entry that can't be checked is set aside.");
    const std::string name = "'" + ColumnText(rs, "strDesc") + "' (" + ColumnText(rs, "strAddress_IP") + ")";
    ports_.status.setStatusMSG(name + " is set aside until " + next.Text() + ". " + response);
    Tell(rs.Fields("ID").Value().Int64(), name + " is set aside. " + response);
}

void BadEntries::Tell(std::int64_t id, const std::string& text) {
    const auto now = ports_.clock.GetTickCount();
    const auto told = told_.find(id);
    if (told != told_.end() && told->second.text == text && now - told->second.at < kLogAgain) return;
    if (told_.size() >= kMostTold) told_.clear();
    told_[id] = {text, now};
    ports_.log.WriteLog(kLogOrdinary, kLogError, "frmMonitor:TimerMonitorDB: " + text);
}

}  // namespace korvane
