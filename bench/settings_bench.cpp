// The cost of the settings file: a Save of all entries into a new file, over itself and over changed values, reading them back,
// and one id. Files are in memory, so that no disk is in the figures, but for NewIdOnDisk, whose file is in /dev/shm; entries
// have all their 27 keys.
#include <benchmark/benchmark.h>

#include "platform/linux/linux_files.h"
#include "store/store_rig.h"

namespace korvane {
namespace {

struct SettingsBench : StoreRig {
    explicit SettingsBench(std::int64_t entries) {
        PutSettings("bAllInDB=True\nNumURLs=" + std::to_string(entries) + "\n");
        run = std::make_unique<LoadedRun>(*this);
        run->settings.cmdSave();
    }
    std::unique_ptr<LoadedRun> run;
};

void SaveNewFile(benchmark::State& state) {
    SettingsBench bench(state.range(0));
    for (auto _ : state) {
        bench.disk.Remove(bench.run->file.Path());
        bench.run->settings.cmdSave();
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(SaveNewFile)->Arg(50)->Arg(500)->Complexity()->Unit(benchmark::kMillisecond);

void SaveUnchanged(benchmark::State& state) {
    SettingsBench bench(state.range(0));
    for (auto _ : state)
        bench.run->settings.cmdSave();
    state.SetComplexityN(state.range(0));
}
BENCHMARK(SaveUnchanged)->Arg(50)->Arg(500)->Complexity()->Unit(benchmark::kMillisecond);

void SaveOverChangedFile(benchmark::State& state) {
    SettingsBench bench(state.range(0));
    const std::string changed = ReplaceAll(bench.SettingsText(), "notepad.exe", "gedit");
    for (auto _ : state) {
        bench.disk.Replace(bench.run->file.Path(), changed);
        bench.run->settings.cmdSave();
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(SaveOverChangedFile)->Arg(50)->Arg(500)->Complexity()->Unit(benchmark::kMillisecond);

void ReadEntries(benchmark::State& state) {
    SettingsBench bench(state.range(0));
    for (auto _ : state)
        bench.run->entries.readURLData(bench.run->settings.GetTotalURLs());
    state.SetComplexityN(state.range(0));
}
BENCHMARK(ReadEntries)->Arg(50)->Arg(500)->Complexity()->Unit(benchmark::kMillisecond);

void NewId(benchmark::State& state) {
    SettingsBench bench(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(bench.run->ids.NewServerID());
}
BENCHMARK(NewId)->Arg(0)->Arg(500)->Unit(benchmark::kMicrosecond);

void NewIdOnDisk(benchmark::State& state) {
    const SettingsBench bench(state.range(0));
    const std::string path = SettingsFilePath(bench.dir);
    LinuxFiles files;
    files.Replace(path, bench.SettingsText());
    IniFile file(files, path);
    ServerIds ids(file, bench.run->world.clock);
    for (auto _ : state)
        benchmark::DoNotOptimize(ids.NewServerID());
}
BENCHMARK(NewIdOnDisk)->Arg(0)->Arg(500)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace korvane

BENCHMARK_MAIN();
