// How fast a virtual day goes by: 500 entries at the pace that one check a second allows (ten minutes), on a real database in
// memory.
#include <benchmark/benchmark.h>

#include "support/world.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

void SimulatedDay(benchmark::State& state) {
    const auto entries = static_cast<int>(state.range(0));
    std::int64_t checks = 0;
    for (auto _ : state) {
        state.PauseTiming();
        World world({.start = DateTime::Of(2026, 11, 21, 0, 0, 1)});
        world.Start();
        world.person.keepOnlyCounts = true;
        std::vector<Entry> rows;
        std::int64_t lastId = 0;
        for (int i = 0; i < entries; ++i) {
            const std::string address = "10.1." + std::to_string(i / 250) + "." + std::to_string(i % 250 + 1);
            rows.push_back({.strDesc = "e" + std::to_string(i),
                            .strAddress_IP = address,
                            .nIntervalSeconds = 600,
                            .strExpectedText = "1000",
                            .dtNextCheck = world.world.clock.Now() + std::chrono::seconds(i)});
            if (i % 3 == 1) {
                rows.back().strType = "SMTP";
                rows.back().strPort = "25";
                rows.back().strExpectedText = "220,QUIT,221";
                world.net.Host(address).Port(25).Speak("220 hello\r\n", 5ms).OnLine("QUIT", "221 bye\r\n", 5ms);
            } else if (i % 3 == 2) {
                rows.back().strType = "HTTP";
                rows.back().strPort = "80";
                rows.back().strExpectedText = "Welcome";
                world.net.Page("http://" + address).Answer("<html>Welcome</html>", 20ms);
            } else {
                world.net.Host(address).Echo(2ms);
            }
            if (i % 50 == 49) world.net.Host(address).Down();  // one in fifty is down all day
        }
        for (const Entry& entry : rows) {
            Row row = entry.AsRow();
            row["idCustomer"] = Value();  // whose pages are not made
            row["ID"] = ++lastId;
            world.rows.AddRow("Servers", row);
        }
        state.ResumeTiming();
        world.RunFor(24h);
        state.PauseTiming();
        for (const Row& row : world.rows.Rows("Servers"))
            checks += row.at("nSuccess").Int64() + row.at("nFail").Int64();
        state.ResumeTiming();
    }
    state.counters["checks"] = benchmark::Counter(static_cast<double>(checks), benchmark::Counter::kAvgIterations);
    state.counters["checks/s"] = benchmark::Counter(static_cast<double>(checks), benchmark::Counter::kIsRate);
}
BENCHMARK(SimulatedDay)->Arg(50)->Arg(500)->Unit(benchmark::kSecond)->Iterations(1);

}  // namespace
}  // namespace korvane

BENCHMARK_MAIN();
