// The cost of the store: what a check does to its row, step by step, and the walks of the list and of the reports. All times
// are processor time of this process on a file in memory (/dev/shm), so that no disk is in them.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "base/datetime.h"
#include "platform/connection.h"
#include "store/schema.h"
#include "support/test_database.h"

namespace korvane {
namespace {

constexpr const char* kDue = "SELECT  * from servers where dtNextCheck <= #11/21/2026 3:04:05 PM# order by dtNextCheck ";
constexpr const char* kNone = "SELECT * FROM Failures where id < 0";
const DateTime kThen = DateTime::Of(2026, 11, 21, 15, 0, 0);

// The columns that an HTTP check reads, or as many.
constexpr const char* kRead[] = {"dtNextCheck",
                                 "strDownTime1",
                                 "strDownTime2",
                                 "nDownDuration1",
                                 "nDownDuration2",
                                 "strCurStatus",
                                 "bIsMonitoring",
                                 "nAveResponse",
                                 "strType",
                                 "strAddress_IP",
                                 "strUserName",
                                 "strPassword",
                                 "nTimeout",
                                 "strPort",
                                 "nFailScanText",
                                 "strExpectedText",
                                 "id",
                                 "nIntervalSeconds",
                                 "nTriesCur",
                                 "nTries",
                                 "nSuccess",
                                 "nFail",
                                 "nTotalSession",
                                 "nPercentUp",
                                 "nAveSession",
                                 "strLastResponse",
                                 "strDesc",
                                 "strGroup",
                                 "bSendUpNotify",
                                 "strCMD"};

struct Bench {
    explicit Bench(int servers, int failures = 0) {
        database.AddMany(std::vector<Entry>(static_cast<std::size_t>(servers), {.strDesc = "A web server",
                                                                                .strAddress_IP = "www.example.org/index.html",
                                                                                .strType = "HTTP",
                                                                                .strPort = "80",
                                                                                .strExpectedText = "Welcome",
                                                                                .dtNextCheck = kThen}));
        if (failures > 0) AddFailures(failures);
        connection->SetConnectionString(database.DriverString());
    }

    void AddFailures(int count);

    void Query(const char* source, CursorType cursor = CursorType::Keyset, LockType lock = LockType::Optimistic) {
        rs = database.TheStore().NewRecordset();
        rs->Open(source, *connection, cursor, lock);
    }

    void End() {
        rs.reset();
        connection->Close();
    }

    void ReadRow() {
        for (const char* column : kRead)
            benchmark::DoNotOptimize(rs->Fields(column).Value());
    }

    void WriteRow() {
        ++round;
        const DateTime now = kThen + std::chrono::seconds(round % 240);
        const Value values[] = {
            now, now, "UP", 0, round, round, round, 99.5 - round, 12.25 + round, 13.5 + round, "HTTP/1.1 200 OK", "80"};
        const char* columns[] = {"dtNextCheck",   "datelastcheck", "strCurStatus", "nTriesCur",   "nIntervalSeconds", "nSuccess",
                                 "nTotalSession", "nPercentUp",    "nAveResponse", "nAveSession", "strLastResponse",  "strPort"};
        for (std::size_t i = 0; i < std::size(columns); ++i)
            rs->Fields(columns[i]) = values[i];
        rs->Update();
    }

    TestDatabase database;
    std::unique_ptr<Connection> connection = database.TheStore().NewConnection();
    std::unique_ptr<Recordset> rs;
    int round = 0;
};

// Through a recordset of its own, row by row, a large history would take minutes.
void Bench::AddFailures(int count) {
    const std::string command =
        "sqlite3 '" + database.Path() + "' \"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
        std::to_string(count) +
        ") INSERT INTO Failures SELECT i, i % 100, 'Group1', 'A web server', 'www.example.org', 'HTTP', '80', 15, 1, 3,"
        " 'None.', 'The server did not answer within 15 seconds.', '2026-11-21 15:00:00' FROM n\"";
    if (std::system(command.c_str()) != 0) throw std::runtime_error(command);
}

void Open(benchmark::State& state) {
    Bench bench(100);
    for (auto _ : state) {
        bench.connection->Open();
        bench.connection->Close();
    }
}
BENCHMARK(Open)->Unit(benchmark::kMicrosecond);

void OpenAndDueQuery(benchmark::State& state) {
    Bench bench(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        bench.connection->Open();
        bench.Query(kDue, CursorType::Keyset, LockType::Pessimistic);
        bench.End();
    }
}
BENCHMARK(OpenAndDueQuery)->Arg(1)->Arg(100)->Arg(500)->Unit(benchmark::kMicrosecond);

void OpenAndDueQueryAndReadRow(benchmark::State& state) {
    Bench bench(100);
    for (auto _ : state) {
        bench.connection->Open();
        bench.Query(kDue, CursorType::Keyset, LockType::Pessimistic);
        bench.ReadRow();
        bench.End();
    }
}
BENCHMARK(OpenAndDueQueryAndReadRow)->Unit(benchmark::kMicrosecond);

/// All that a check does to the store when it succeeds.
void CheckedRow(benchmark::State& state) {
    Bench bench(100);
    for (auto _ : state) {
        bench.connection->Open();
        bench.Query(kDue, CursorType::Keyset, LockType::Pessimistic);
        bench.ReadRow();
        bench.WriteRow();
        bench.End();
    }
}
BENCHMARK(CheckedRow)->Unit(benchmark::kMicrosecond);

void UpdateAlone(benchmark::State& state) {
    Bench bench(100);
    bench.connection->Open();
    bench.Query(kDue, CursorType::Keyset, LockType::Pessimistic);
    for (auto _ : state)
        bench.WriteRow();
}
BENCHMARK(UpdateAlone)->Unit(benchmark::kMicrosecond);

/// What a failed check adds, on an open connection; the history must not matter.
void AddFailure(benchmark::State& state) {
    Bench bench(1, static_cast<int>(state.range(0)));
    bench.connection->Open();
    std::int64_t id = 1'000'000'000;
    for (auto _ : state) {
        bench.Query(kNone);
        bench.rs->AddNew();
        bench.rs->Fields("ID") = ++id;
        for (const char* column : {"strGroup", "strDesc", "strAddress_IP", "strType", "strPort", "strAction", "strReason"})
            bench.rs->Fields(column) = "some text";
        for (const char* column : {"IDParent", "nTimeout", "nFailCount", "nFailMax"})
            bench.rs->Fields(column) = 3;
        bench.rs->Fields("dateFail") = kThen;
        bench.rs->Update();
    }
}
BENCHMARK(AddFailure)->Arg(0)->Arg(200'000)->Unit(benchmark::kMicrosecond);

/// The tray summary: one column of each row that is due.
void WalkOneColumn(benchmark::State& state) {
    Bench bench(100);
    bench.connection->Open();
    for (auto _ : state) {
        bench.Query(kDue, CursorType::Keyset, LockType::Pessimistic);
        for (; !bench.rs->Eof(); bench.rs->MoveNext())
            benchmark::DoNotOptimize(bench.rs->Fields("strCurStatus").Value());
    }
}
BENCHMARK(WalkOneColumn)->Unit(benchmark::kMicrosecond);

/// The list: ten columns of each row.
void WalkStaticList(benchmark::State& state) {
    Bench bench(500);
    bench.connection->Open();
    for (auto _ : state) {
        bench.Query("SELECT * from servers order by dtNextCheck ", CursorType::Static);
        for (; !bench.rs->Eof(); bench.rs->MoveNext()) {
            for (std::size_t i = 0; i < 10; ++i)
                benchmark::DoNotOptimize(bench.rs->Fields(kRead[i]).Value());
        }
    }
}
BENCHMARK(WalkStaticList)->Unit(benchmark::kMicrosecond);

void WalkStaticHistory(benchmark::State& state) {
    Bench bench(1, 200'000);
    bench.connection->Open();
    for (auto _ : state) {
        bench.Query("SELECT * FROM Failures", CursorType::Static);
        for (; !bench.rs->Eof(); bench.rs->MoveNext()) {
            for (const char* column : {"nFailCount", "dateFail", "strDesc", "strReason"})
                benchmark::DoNotOptimize(bench.rs->Fields(column).Value());
        }
    }
}
BENCHMARK(WalkStaticHistory)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace korvane

BENCHMARK_MAIN();
