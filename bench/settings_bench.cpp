// The cost of the settings file: a Save of all entries into a new file, over itself and over changed values, reading them back,
// and one id. Files are in /dev/shm, so that no disk is in the figures; entries have all their 27 keys.
#include <benchmark/benchmark.h>

#include "support/world.h"

namespace korvane {
namespace {

struct SettingsBench {
    explicit SettingsBench(std::int64_t entries) : world({.settings = "bAllInDB=True\nNumURLs=" + std::to_string(entries)}) {
        desk.settings.ReadInGlobalSettings();
        desk.entries.readURLData(desk.settings.GetTotalURLs());
        desk.settings.cmdSave();
    }
    World world;
    Desk desk = world.run.TheDesk();
    const std::string file = desk.settingsFile.Path();
};

void SaveNewFile(benchmark::State& state) {
    SettingsBench bench(state.range(0));
    for (auto _ : state) {
        bench.world.disk.Remove(bench.file);
        bench.desk.settings.cmdSave();
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(SaveNewFile)->Arg(50)->Arg(500)->Complexity()->Unit(benchmark::kMillisecond);

void SaveUnchanged(benchmark::State& state) {
    SettingsBench bench(state.range(0));
    for (auto _ : state)
        bench.desk.settings.cmdSave();
    state.SetComplexityN(state.range(0));
}
BENCHMARK(SaveUnchanged)->Arg(50)->Arg(500)->Complexity()->Unit(benchmark::kMillisecond);

void SaveOverChangedFile(benchmark::State& state) {
    SettingsBench bench(state.range(0));
    const std::string changed = ReplaceAll(ReadAll(bench.file), "notepad.exe", "gedit");
    for (auto _ : state) {
        bench.world.disk.Replace(bench.file, changed);
        bench.desk.settings.cmdSave();
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(SaveOverChangedFile)->Arg(50)->Arg(500)->Complexity()->Unit(benchmark::kMillisecond);

void ReadEntries(benchmark::State& state) {
    SettingsBench bench(state.range(0));
    for (auto _ : state)
        bench.desk.entries.readURLData(bench.desk.settings.GetTotalURLs());
    state.SetComplexityN(state.range(0));
}
BENCHMARK(ReadEntries)->Arg(50)->Arg(500)->Complexity()->Unit(benchmark::kMillisecond);

void NewId(benchmark::State& state) {
    SettingsBench bench(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(bench.desk.ids.NewServerID());
}
BENCHMARK(NewId)->Arg(0)->Arg(500)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace korvane

BENCHMARK_MAIN();
