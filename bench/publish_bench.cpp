// A full publish: 20 groups, and for each entry 26 hourly rows, 400 daily rows and 40 failures, all of whose pages are written.
// Times are those of the wall; the folder lies in memory (/dev/shm) unless KORVANE_BENCH_FOLDER names one on a disk.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_files.h"
#include "platform/qt/sql_store.h"
#include "reports/pipeline.h"
#include "store/ini_file.h"
#include "store/schema.h"
#include "support/qt_application.h"
#include "support/recording_operator.h"
#include "support/virtual_world.h"

namespace korvane {
namespace {

const DateTime kNow = DateTime::Of(2026, 11, 21, 15, 4, 5);

/// Delivers nothing and keeps the longest time between two calls.
class TimedEvents : public Events {
public:
    void DoEvents() override {
        const auto now = std::chrono::steady_clock::now();
        longest = std::max(longest, std::chrono::duration<double, std::milli>(now - last_).count());
        last_ = now;
    }
    void WaitForEvent(std::chrono::milliseconds) override {}
    void Sleep(std::chrono::milliseconds) override {}
    std::unique_ptr<Watch> WatchReadable(int, std::function<void()>) override { return nullptr; }

    void Begin() { last_ = std::chrono::steady_clock::now(); }
    double longest = 0;

private:
    std::chrono::steady_clock::time_point last_;
};

/// The date of the world, and milliseconds that really pass: by them a publish knows when to deliver events.
class RunningClock : public Clock {
public:
    explicit RunningClock(const Clock& dates) : dates_(dates) {}
    DateTime Now() const override { return dates_.Now(); }
    DateTime UtcNow() const override { return dates_.UtcNow(); }
    double Timer() const override { return dates_.Timer(); }
    std::chrono::milliseconds GetTickCount() const override { return running_.GetTickCount(); }

private:
    const Clock& dates_;
    SystemClock running_;
};

/// A database in a folder of its own, with the installation's templates and pictures.
class PublishFolder {
public:
    PublishFolder() {
        const char* parent = std::getenv("KORVANE_BENCH_FOLDER");
        path_ = (parent == nullptr ? "/dev/shm" : std::string(parent)) + "/korvane-bench-" + std::to_string(getpid());
        std::filesystem::copy(KORVANE_DIST_DIR, path_, std::filesystem::copy_options::recursive);
        std::filesystem::rename(path_ + "/kvempty.mdb", path_ + "/kvdata2.mdb");
    }
    ~PublishFolder() { std::filesystem::remove_all(path_); }
    PublishFolder(const PublishFolder&) = delete;
    PublishFolder& operator=(const PublishFolder&) = delete;

    const std::string& Path() const { return path_; }
    void Run(const std::string& sql) const {
        const std::string command = "sqlite3 '" + path_ + "/kvdata2.mdb' \"" + sql + "\"";
        if (std::system(command.c_str()) != 0) throw std::runtime_error(command);
    }

    std::string Database() const { return path_ + "/kvdata2.mdb"; }

    void AddEntries(int entries) const {
        Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(entries) +
            ") INSERT INTO Servers (ID, strGroup, strDesc, strAddress_IP, strCurStatus, nAveResponse, nAveSession, nTotalSession,"
            " nSuccess, nFail, nPercentUp, dtNextCheck, datelastcheck, datelastfail, datelastreset)"
            " SELECT i, 'Group' || (i % 20), 'A web server', 'www.example.org/index.html', 'UP', 120.5 + i % 900, 90.25, 12,"
            " 12345, 67, 99.46, '2026-11-21 15:05:00', '2026-11-21 15:04:00', '2026-11-21 14:04:00', '2026-01-01 00:00:00' FROM "
            "n;");
    }

    void AddHistory(bool hourBegins) const {
        const std::string first = hourBegins ? "1" : "0";  // without a row of this hour
        Run("WITH RECURSIVE n(i) AS (SELECT " + first + " UNION ALL SELECT i + 1 FROM n WHERE i < 25 + " + first +
            ") INSERT INTO Response (id, idParent, txtType, dtCur, nAveResponse) SELECT ID * 1000 + i, ID, 'hour',"
            " datetime('2026-11-21 15:04:00', '-' || (i * 55) || ' minutes'), 80 + (i * 7) % 60 FROM Servers, n;");
        Run("WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 399)"
            " INSERT INTO Response (id, idParent, txtType, dtCur, nAveResponse) SELECT ID * 1000 + 500 + i, ID, 'day',"
            " datetime('2026-11-21 14:04:00', '-' || i || ' days'), 80 + (i * 7) % 1500 / 3.0 FROM Servers, n;");
        Run("WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 39)"
            " INSERT INTO Failures SELECT ID * 1000 + i, ID, strGroup, strDesc, strAddress_IP, 'HTTP', '80', 15, 1 + i % 3, 3,"
            " 'No action taken.', 'The server did not answer within 15 seconds.', datetime('2026-11-21 14:04:00', '-' || i || ' "
            "hours')"
            " FROM Servers, n;");
    }

private:
    std::string path_;
};

/// The room of reports. Templates, pictures and database are in `dir`, the pages go below `dir`/Reports.
struct ReportsRig {
    ReportsRig(Files& theFiles, Store& theStore, Events& events, VirtualWorld& theWorld, const std::string& dir,
               const Clock& clock)
        : world(theWorld),
          files(theFiles),
          store(theStore),
          root(dir + "/Reports"),
          ini(theFiles, dir + "/ids.ini"),
          ids(ini, world.clock),
          status(person, world.clock),
          log(theFiles, world.clock, dir, "1.0.0"),
          safeguards(settings, clock, log, status),
          alertPath({safeguards, settings, theFiles, clock}, dir),
          reports({store, clock, events, person, files, status, settings, ids, safeguards, alertPath}, dir) {
        settings.setKvSettingsColValue("ReportPath", root);
    }

    std::string Publish(bool bQuiet = false) {
        std::string strErr = "";
        reports.PublishReports(bQuiet, strErr);
        return strErr;
    }

    VirtualWorld& world;
    Files& files;
    Store& store;
    std::string root;
    RecordingOperator person;
    SettingsCollection settings;
    IniFile ini;
    ServerIds ids;
    StatusLog status;
    Log log;
    Safeguards safeguards;
    AlertPath alertPath;
    Reports reports;
};

void FullPublish(benchmark::State& state, bool hourBegins) {
    NeedQtApplication();
    const int entries = static_cast<int>(state.range(0));
    const PublishFolder folder;
    folder.AddEntries(entries);
    folder.AddHistory(hourBegins);
    QtSqlStore store(KindOfColumn);
    LinuxFiles files;
    TimedEvents events;
    for (auto _ : state) {
        state.PauseTiming();
        if (hourBegins) {
            folder.Run(
                "DELETE FROM Response WHERE txtType = 'hour' AND dtCur > '2026-11-21 15:00:00';"
                " UPDATE Servers SET nAveSession = 90.25;");
        }
        VirtualWorld world(kNow);
        const RunningClock clock(world.clock);
        ReportsRig rig(files, store, events, world, folder.Path(), clock);  // a new run: all failure pages are written
        rig.person.keepOnlyCounts = true;
        events.Begin();
        state.ResumeTiming();
        const std::string strErr = rig.Publish();
        if (!strErr.empty()) throw std::runtime_error(strErr);
    }
    state.counters["longest ms between pumps"] = events.longest;
    state.counters["an entry"] = benchmark::Counter(static_cast<double>(entries) * static_cast<double>(state.iterations()),
                                                    benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK_CAPTURE(FullPublish, WithinTheHour, false)->Arg(50)->Arg(500)->Arg(5000)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FullPublish, AsTheHourBegins, true)->Arg(500)->UseRealTime()->Unit(benchmark::kMillisecond);

/// A year of 500 entries that begins with none of their rows: a publish each evening and, on the last day, each hour; a failure
/// of each entry in nine days. What is timed is the compaction at its end.
void CompactionAfterAYear(benchmark::State& state) {
    NeedQtApplication();
    const PublishFolder folder;
    folder.AddEntries(500);
    folder.Run("DELETE FROM Failures; UPDATE Servers SET datelastfail = NULL;");
    QtSqlStore store(KindOfColumn);
    LinuxFiles files;
    TimedEvents events;
    VirtualWorld world(kNow - std::chrono::days(365));
    const RunningClock clock(world.clock);
    ReportsRig rig(files, store, events, world, folder.Path(), clock);
    rig.person.keepOnlyCounts = true;
    const auto publishAfter = [&](std::chrono::seconds time) {
        world.RunFor(time);
        const std::string now = world.clock.Now().Stored();
        folder.Run("UPDATE Servers SET nAveSession = 50 + (ID * 37 + julianday('" + now + "') * 11) % 400;");
        std::string strErr;
        rig.reports.PublishReports(true, strErr);
        if (!strErr.empty()) throw std::runtime_error(strErr);
    };
    for (int day = 0; day < 364; ++day) {
        const std::string now = world.clock.Now().Stored();
        const std::string failing = " WHERE ID % 9 = " + std::to_string(day % 9);
        folder.Run(
            "INSERT INTO Failures SELECT ID * 1000 + " + std::to_string(day) +
            ", ID, strGroup, strDesc, strAddress_IP, 'HTTP', '80', 15, 1, 3, 'None.', 'The server did not answer within 15 "
            "seconds.', '" +
            now + "' FROM Servers" + failing + "; UPDATE Servers SET datelastfail = '" + now + "'" + failing + ";");
        publishAfter(std::chrono::hours(24));
    }
    for (int hour = 0; hour < 24; ++hour)
        publishAfter(std::chrono::hours(1));
    store.Rest();
    state.counters["MB before"] = static_cast<double>(std::filesystem::file_size(folder.Database())) / 1e6;
    for (auto _ : state)
        store.Compact(folder.Database(), folder.Path() + "/copy", [] {});
    state.counters["MB after"] = static_cast<double>(std::filesystem::file_size(folder.Database())) / 1e6;
}
BENCHMARK(CompactionAfterAYear)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace korvane

BENCHMARK_MAIN();
