// The four windows on this machine's own resources: a redraw of the chart, and a day of looking at this very machine with all of
// them open, in virtual time. On the platform without a screen, where painting goes to memory.
#include <benchmark/benchmark.h>

#include <QImage>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "desktop/desktop_test.h"
#include "platform/linux/linux_system_info.h"
#include "resources/cpu_monitor.h"
#include "shell/desktop/monitors/load_chart.h"
#include "shell/desktop/monitors/resource_form.h"
#include "shell/desktop/monitors/resource_windows.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;

constexpr int kServices = 300;
constexpr QSize kChart(600, 200);

void ChartRedraw(benchmark::State& state) {
    NeedDesktop();
    LoadChart chart("5 minutes ago", nullptr);
    chart.resize(kChart);
    std::vector<std::int32_t> samples(CpuMonitor::kSamples);
    QImage image(kChart, QImage::Format_ARGB32_Premultiplied);
    int shift = 0;
    for (auto _ : state) {
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = static_cast<std::int32_t>((i * 37 + static_cast<std::size_t>(++shift)) % 101);
        chart.SetSamples(samples);
        chart.render(&image);
    }
}

double PrivateKilobytes() {
    std::ifstream file("/proc/self/smaps_rollup");
    double sum = 0;
    for (std::string word; file >> word;) {
        double kilobytes = 0;
        if (word.starts_with("Private_") && file >> kilobytes) sum += kilobytes;
    }
    return sum;
}

/// All four windows on the screen, over the real figures of this machine and a manager with many services.
struct Windows {
    Windows() {
        program.run.StartUp();
        for (int i = 0; i < kServices; ++i)
            program.services.Set("service-number-" + std::to_string(i) + ".service", ServiceRecord::kRunning);
        for (const ResourceMonitor monitor : kResourceMonitors) {
            windows.push_back(NewResourceForm(monitor, ports, program.world.events, machine, program.services));
            windows.back()->show();
            windows.back()->Monitor().LoadData();
        }
    }

    /// Paints what has changed as often as a sample can come.
    void RunFor(std::chrono::seconds duration) {
        for (auto passed = 0s; passed < duration; passed += 3s) {
            program.world.RunFor(3s);
            QApplication::processEvents();
        }
    }

    World program{[] {
        NeedDesktop();
        return World::Setup{};
    }()};
    LinuxSystemInfo machine;
    MonitorPorts ports = MonitorPortsOf(program.run.TheDesk());
    std::vector<std::unique_ptr<ResourceForm>> windows;
};

void ADayOfSampling(benchmark::State& state) {
    Windows windows;
    windows.program.person.keepOnlyCounts = true;
    windows.RunFor(1h);  // what is kept from the first hour on is no growth
    const double before = PrivateKilobytes();
    for (auto _ : state)
        windows.RunFor(24h);
    state.counters["growth_kB_a_day"] = (PrivateKilobytes() - before) / static_cast<double>(state.iterations());
}

BENCHMARK(ChartRedraw)->Unit(benchmark::kMillisecond);
BENCHMARK(ADayOfSampling)->Unit(benchmark::kSecond)->Iterations(3);

}  // namespace
}  // namespace korvane

BENCHMARK_MAIN();
