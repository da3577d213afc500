// Watches the physical memory, every half minute. With a level chosen it mails on every eleventh look, whatever the level is and
// however much memory is free; the disable mark is kept and shown, and stops nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/events.h"
#include "platform/system_info.h"
#include "resources/alert_monitor.h"

namespace korvane {

/// Lives as long as its window: with the window it goes, and its count with it.
class MemoryMonitor : public AlertMonitor {
public:
    struct Figures {
        std::string lblTotal;  ///< "24105.55 MB"
        std::string lblUsed;
        std::string lblAvailable;
        std::string lblUsage;  ///< "Usage:98%", the available share in spite of the word; blank until the machine tells
        int percent = 0;       ///< of the bar
    };

    /// The window is loaded: the first look is taken at once. `events` and `system` must outlive this.
    MemoryMonitor(const MonitorPorts& ports, Events& events, const SystemInfo& system);

    std::string cboAlert;  ///< in percent; blank: no alert

    void LoadData() override;
    const Figures& Shows() const { return figures_; }

    /// Has the system page other programs out: fills memory with 100 texts of 500,000, 5,000,000 or 50,000,000 characters at
    /// level 1, 2 or 3 and lets go of them. Stops short of what the machine has available. Events are delivered meanwhile.
    void Recover_Memory(std::int16_t level);

private:
    void Timer1_Timer();
    bool ShowMemory();

    void Switch(bool on) override { tim_ = on; }
    void UpdateFile() override;
    std::string TestBody() const override { return Body() + " for approx. 5 minutes consistently"; }
    std::string Body() const;

    Events& events_;
    const SystemInfo& system_;
    Figures figures_;
    std::int32_t nMemAlertCount_ = 0;
    bool tim_ = false;  ///< a timer that does nothing: all that the disable mark switches
    std::unique_ptr<Timer> Timer1_;
};

}  // namespace korvane
