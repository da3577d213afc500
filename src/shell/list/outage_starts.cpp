#include "shell/list/outage_starts.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include "base/ignore_errors.h"
#include "engine/server_table.h"
#include "store/database_files.h"

namespace korvane {
namespace {

bool IsProblem(const ServerRow& row) {
    return row.strCurStatus == status::kDown || row.strCurStatus == status::kFailing;
}

// By the index on entry and date; a page of failures keeps no more than fifty.
EntryDetail FailuresOf(Store& store, Connection& conn, const ServerRow& row) {
    EntryDetail detail;
    detail.strCurStatus = row.strCurStatus;
    const std::string query = "SELECT ID, nFailCount, nFailMax, dateFail FROM Failures WHERE IDParent = " + row.Id() +
                              " ORDER BY dateFail DESC, ID DESC LIMIT 60";
    const auto rs = OpenRows(store, conn, query, CursorType::Static);
    for (; !rs->Eof(); rs->MoveNext()) {
        EntryDetail::Failure& failure = detail.failures.emplace_back();
        IgnoreErrors([&] { failure.nFailCount = rs->Fields("nFailCount").Value().Int64(); });
        IgnoreErrors([&] { failure.nFailMax = rs->Fields("nFailMax").Value().Int64(); });
        IgnoreErrors([&] { failure.dateFail = rs->Fields("dateFail").Value().When(); });
    }
    return detail;
}

// The first failures of a long outage are gone: they are taken to have come at the pace of those that are left.
std::optional<DateTime> StartOf(EntryDetail detail) {
    FindStart(detail);
    const EntryDetail::Failure newest = detail.failures.empty() ? EntryDetail::Failure() : detail.failures.front();
    const auto oldest = std::ranges::find(detail.failures, detail.since, &EntryDetail::Failure::dateFail);
    if (!detail.sinceEarlier || !newest.dateFail || *newest.nFailCount <= *oldest->nFailCount) return detail.since;
    const auto pace = (*newest.dateFail - *detail.since) / (*newest.nFailCount - *oldest->nFailCount);
    return *detail.since - pace * (*oldest->nFailCount - 1);
}

}  // namespace

// The failures in a row are counted: going back, the count falls until the outage, or the failing before it, begins.
void FindStart(EntryDetail& detail) {
    const bool down = detail.strCurStatus == status::kDown;
    if (!down && detail.strCurStatus != status::kFailing) return;
    std::int64_t last = std::numeric_limits<std::int64_t>::max();
    for (const EntryDetail::Failure& failure : detail.failures) {
        if (!failure.nFailCount || *failure.nFailCount > last || (down && !failure.IsDown())) {
            if (failure.nFailCount == last - 1) detail.sinceEarlier = false;  // the tries were changed in between
            break;
        }
        last = *failure.nFailCount;
        detail.since = failure.dateFail;
        detail.sinceEarlier = last > (down ? std::max<std::int64_t>(1, *failure.nFailMax) : 1);
        if (last <= 1) break;
    }
    detail.sinceEarlier = detail.sinceEarlier && detail.since;
}

// Failures in a row that are fewer than before belong to another outage.
void OutageStarts::AddTo(const Desk& desk, std::vector<ServerRow>& rows) {
    std::map<std::string, Known> now;
    std::unique_ptr<Connection> conn;
    for (ServerRow& row : rows) {
        if (!IsProblem(row)) continue;
        const auto before = known_.find(row.Id());
        const bool isSame = before != known_.end() && before->second.strCurStatus == row.strCurStatus &&
                            before->second.nTriesCur <= row.nTriesCur;
        const auto read = [&] {
            if (conn == nullptr) conn = OpenDatabase(desk.store, desk.dir);
            row.since = StartOf(FailuresOf(desk.store, *conn, row));
        };
        if (isSame) row.since = before->second.since;
        if (isSame || IgnoreErrors(read)) now[row.Id()] = {row.strCurStatus, row.nTriesCur, row.since};
    }
    known_ = std::move(now);
}

}  // namespace korvane
