// The cost of watching this machine: a sample of the processors, memory and disks by the kernel's files, a tick of the CPU
// monitor, and the list of 300 services over a bus of its own.
#include <benchmark/benchmark.h>

#include <chrono>

#include "platform/linux/linux_clock.h"
#include "platform/linux/linux_system_info.h"
#include "platform/linux/systemd_services.h"
#include "platform/qt/qt_events.h"
#include "platform/wait.h"
#include "resources/cpu_monitor.h"
#include "support/qt_application.h"
#include "support/service_bus.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

void CpuSample(benchmark::State& state) {
    const LinuxSystemInfo machine;
    clsCPUUsageNT reader(machine);
    reader.Initialize();
    for (auto _ : state)
        benchmark::DoNotOptimize(reader.Query());
}
BENCHMARK(CpuSample)->Unit(benchmark::kMicrosecond);

void MemoryLook(benchmark::State& state) {
    const LinuxSystemInfo machine;
    for (auto _ : state)
        benchmark::DoNotOptimize(machine.Memory());
}
BENCHMARK(MemoryLook)->Unit(benchmark::kMicrosecond);

void DisksLook(benchmark::State& state) {
    const LinuxSystemInfo machine;
    for (auto _ : state)
        benchmark::DoNotOptimize(machine.FixedDisks());
}
BENCHMARK(DisksLook)->Unit(benchmark::kMicrosecond);

/// The whole question. Its CPU time is all that the window can stand still for.
void ListServices(benchmark::State& state) {
    NeedQtApplication();
    QtEvents events;
    SystemClock clock;
    QStringList units, files;
    for (int i = 0; i < state.range(0); ++i) {
        const QString name = "service" + QString::number(i) + ".service";
        if (i % 2 == 0) units << name + " loaded active";
        files << "/usr/lib/systemd/system/" + name + " enabled";
    }
    const ServiceBus bus(units + files);
    SystemdServices services(events, bus.Address());
    for (auto _ : state) {
        std::size_t count = 0;
        const auto question = services.EnumServices([&](const ServiceList& list) { count = list.services.size(); });
        WaitFor(events, clock, 10s, [&] { return count > 0; });
        if (count != static_cast<std::size_t>(state.range(0))) state.SkipWithError("services are missing");
    }
}
BENCHMARK(ListServices)->Arg(300)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace korvane

BENCHMARK_MAIN();
