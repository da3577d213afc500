// The load of the processors between two looks at their counters.
#pragma once

#include "platform/system_info.h"

namespace korvane {

class clsCPUUsageNT {
public:
    /// `system` must outlive this.
    explicit clsCPUUsageNT(const SystemInfo& system) : system_(system) {}

    /// Where the first Query counts from.
    void Initialize();

    /// In whole percent since the last call, 0 to 100, all processors together; -1 when the counters can't be read.
    int Query();

private:
    void Keep(const ProcessorTimes& now);

    const SystemInfo& system_;
    double lastIdle_ = 0;  ///< of all processors
    double lastTime_ = 0;  ///< the time that has passed for each of them
};

}  // namespace korvane
