// Watches the physical memory, every half minute. If a level is chosen, it sends a mail on every eleventh check, whatever the
// level and the free memory are; the disable mark is stored and shown, but stops nothing. The monitor of MachineWatch sends it when
// the used share was at or above the level eleven times in a row, and obeys the mark.
#pragma once

#include <cstdint>
#include <string>

#include "platform/events.h"
#include "platform/system_info.h"
#include "resources/alert_monitor.h"

namespace korvane {

/// Lives as long as its window; its count ends with it.
class MemoryMonitor : public AlertMonitor {
public:
    struct Figures {
        std::string lblTotal;  ///< "24105.55 MB"
        std::string lblUsed;
        std::string lblAvailable;
        std::string lblUsage;  ///< "Usage:98%", although it is the available share; empty until the machine reports it
        int percent = 0;       ///< of the bar
    };

    /// Called when the window is loaded: the first check is made at once. `events` and `system` must outlive this.
    MemoryMonitor(const MonitorPorts& ports, Events& events, const SystemInfo& system);

    const Figures& Shows() const { return figures_; }

    /// Makes the system page other programs out: fills memory with 100 texts of 500,000, 5,000,000 or 50,000,000 characters at
    /// level 1, 2 or 3 and releases them. Stops short of the available memory. Events are delivered meanwhile.
    void Recover_Memory(std::int16_t level);

private:
    void Look() override;
    bool ShowMemory();
    bool IsDue() const;
    std::string TestBody() const override { return Body() + " for approx. 5 minutes consistently"; }
    std::string Body() const;

    Events& events_;
    const SystemInfo& system_;
    Figures figures_;
};

}  // namespace korvane
