// The load of the processors between two readings of their counters.
#pragma once

#include "platform/system_info.h"

namespace korvane {

class clsCPUUsageNT {
public:
    /// `system` must outlive this.
    explicit clsCPUUsageNT(const SystemInfo& system) : system_(system) {}

    /// Sets the start for the first Query.
    void Initialize();

    /// Returns the load of all processors together since the last call, in whole percent, 0 to 100; -1 when the counters cannot
    /// be read.
    int Query();

private:
    void Keep(const ProcessorTimes& now);

    const SystemInfo& system_;
    double lastIdle_ = 0;  ///< of all processors
    double lastTime_ = 0;  ///< the time that has passed for each processor
};

}  // namespace korvane
