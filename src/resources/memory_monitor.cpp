#include "resources/memory_monitor.h"

#include <vector>

#include "base/ignore_errors.h"
#include "base/numbers.h"

namespace korvane {
namespace {

constexpr double kMegabyte = 1048576;

constexpr std::size_t kTexts = 100;
constexpr std::size_t kCharacters[] = {500000, 5000000, 50000000};  // by level

// Follows the pattern "#.## MB": no needless zeros, but always the point.
std::string Megabytes(std::uint64_t bytes) {
    std::string text = FormatFixed(static_cast<double>(bytes) / kMegabyte, 2);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.starts_with("0.")) text.erase(0, 1);
    return text + " MB";
}

}  // namespace

MemoryMonitor::MemoryMonitor(const MonitorPorts& ports, Events& events, const SystemInfo& system)
    : AlertMonitor(ports, kMemoryMonitor), events_(events), system_(system) {
    timer_->SetEnabled(true);
    Look();
}

void MemoryMonitor::Look() {
    const bool hasShare = ShowMemory();
    Changed();
    if (hasShare) AlertAtEleventhLook(IsDue(), Body());
}

bool MemoryMonitor::IsDue() const {
    if (!ports_.ofMachineWatch) return !cboAlert.empty();
    double level = 0;
    IgnoreErrors([&] { level = ParseNumber(cboAlert); });
    return level > 0 && 100 - figures_.percent >= level;
}

// Returns whether there is a share: a machine that reports no figures has none, and the check ends before the count.
bool MemoryMonitor::ShowMemory() {
    const PhysicalMemory memory = system_.Memory().value_or(PhysicalMemory{});
    figures_.lblTotal = Megabytes(memory.total);
    figures_.lblUsed = Megabytes(memory.total - memory.available);
    figures_.lblAvailable = Megabytes(memory.available);
    if (memory.total == 0) return false;
    const double share = static_cast<double>(memory.available) / static_cast<double>(memory.total);
    figures_.percent = static_cast<int>(RoundHalfEven(share * 100));
    figures_.lblUsage = "Usage:" + std::to_string(figures_.percent) + "%";
    return true;
}

std::string MemoryMonitor::Body() const {
    return "Your Memory usage has crossed the threshold limit of " + cboAlert + "%";
}

// The window may be closed while events are delivered.
void MemoryMonitor::Recover_Memory(std::int16_t level) {
    if (level < 1 || level > 3) return;
    const std::size_t characters = kCharacters[level - 1];
    bool alive = false;
    const auto look = IfAlive([&alive] { alive = true; });
    const auto isAlive = [&] { return alive = false, look(), alive; };

    timer_->SetEnabled(false);
    std::vector<std::string> texts(kTexts);
    for (std::string& text : texts) {
        // Filling more than is available would end this program instead of moving others out.
        if (system_.Memory().value_or(PhysicalMemory{}).available / 2 > characters) {
            IgnoreErrors([&] { text.assign(characters, ' '); });
        }
        events_.DoEvents();
        if (!isAlive()) return;
    }
    texts = {};
    timer_->SetEnabled(true);
    ShowMemory();
    Changed();
}

}  // namespace korvane
