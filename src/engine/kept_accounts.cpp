#include "engine/kept_accounts.h"

#include "base/ignore_errors.h"
#include "engine/server_table.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr auto kTryEvery = 10s;
constexpr std::size_t kMostFailures = 20'000;  // five a second for an hour, some 10 MB

/// What a check changes.
constexpr const char* kColumns[] = {"strCurStatus", "strLastResponse", "nTriesCur",    "nSuccess",
                                    "nFail",        "nTotalSession",   "nPercentUp",   "nAveResponse",
                                    "nAveSession",  "datelastcheck",   "datelastfail", "dtNextCheck"};

}  // namespace

void KeptAccounts::Keep(Recordset& rs, const OwedFailure& owed) {
    const std::int64_t id = rs.Fields("ID").Value().Int64();
    Account& account = kept_[id];
    account.columns.clear();
    for (const char* column : kColumns)
        IgnoreErrors([&] { account.columns.emplace_back(column, rs.Fields(column).Value()); });
    account.dtNextCheck = rs.Fields("dtNextCheck").Value().When();
    nextTry_ = ports_.clock.GetTickCount() + kTryEvery;
    ports_.safeguards.Acted("GuardBadEntries", "Outcomes of checks that can't be stored are kept in memory.");
    const auto& row = owed.row ? owed.row : owed.uncommitted;
    if (!row) return;
    if (failures_ >= kMostFailures) {
        ++lost_;
        return;
    }
    account.failures.push_back(FailureColumns(rs, *row, ports_.clock.Now()));
    ++failures_;
}

std::int64_t KeptAccounts::FirstDue(Recordset& rs) const {
    std::int64_t first = 0;
    DateTime due = DateTime::Last();
    for (; !rs.Eof(); rs.MoveNext()) {
        const std::int64_t id = rs.Fields("ID").Value().Int64();
        const auto kept = kept_.find(id);
        DateTime when;  // one that cannot be read is due
        IgnoreErrors([&] { when = kept == kept_.end() ? rs.Fields("dtNextCheck").Value().When() : kept->second.dtNextCheck; });
        if (first != 0 && when >= due) continue;
        first = id;
        due = when;
    }
    return first;
}

void KeptAccounts::PutInto(Recordset& rs) const {
    const auto kept = kept_.find(rs.Fields("ID").Value().Int64());
    if (kept == kept_.end()) return;
    for (const auto& [column, value] : kept->second.columns)
        IgnoreErrors([&] { rs.Fields(column) = value; });
}

bool KeptAccounts::Write() {
    if (kept_.empty() || ports_.clock.GetTickCount() < nextTry_) return false;
    nextTry_ = ports_.clock.GetTickCount() + kTryEvery;
    IgnoreErrors([&] {
        while (!kept_.empty())
            WriteFirst();
    });
    if (!kept_.empty()) return false;
    const std::size_t lost = std::exchange(lost_, 0);
    if (lost > 0) ports_.log.WriteLog(kLogOrdinary, kLogError, std::to_string(lost) + " failures were not kept.");
    return true;
}

void KeptAccounts::WriteFirst() {
    const auto conn = ports_.store.NewConnection();
    conn->SetConnectionString(ports_.connectionString);
    conn->Open();
    const auto rs = ports_.store.NewRecordset();
    const std::int64_t id = kept_.begin()->first;
    rs->Open(query::ById(id), *conn, CursorType::Keyset, LockType::Optimistic);
    const bool removed = rs->Eof();
    conn->BeginTrans();
    if (!removed) {
        PutInto(*rs);
        rs->Update();
        AddFailures(kept_.begin()->second, *conn);
    }
    conn->CommitTrans();
    failures_ -= kept_.begin()->second.failures.size();
    kept_.erase(id);
}

void KeptAccounts::Written(std::int64_t id, Connection& conn) {
    const auto kept = kept_.find(id);
    if (kept == kept_.end()) return;
    if (!kept->second.failures.empty()) {
        conn.BeginTrans();
        AddFailures(kept->second, conn);
        conn.CommitTrans();
    }
    failures_ -= kept->second.failures.size();
    kept_.erase(kept);
    nextTry_ = 0ms;  // the others can be written too
}

void KeptAccounts::AddFailures(const Account& account, Connection& conn) {
    const auto failures = ports_.store.NewRecordset();
    failures->Open(query::kNoFailures, conn, CursorType::Keyset, LockType::Optimistic);
    for (const Columns& row : account.failures) {
        failures->AddNew();
        failures->Fields("ID") = ports_.ids.NewServerID();
        for (const auto& [column, value] : row)
            failures->Fields(column) = value;
        failures->Update();
    }
}

}  // namespace korvane
