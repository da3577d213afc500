// The settings of the CPU monitor.
#pragma once

#include "resources/alert_settings.h"

namespace korvane {

class clsCPUMon : public LevelSettings {
public:
    /// The file is `<dir>/CPUMon.dat`. `files` must outlive this.
    clsCPUMon(Files& files, const std::string& dir)
        : LevelSettings(files, dir, "CPUMon.dat", {kAlert, kEmail, kDisable, kDuration}) {}

    /// In minutes; empty: no alert.
    const std::string& getDuration() const { return Get(kDuration); }
    void setDuration(std::string_view text) { Set(kDuration, text); }

private:
    static constexpr std::string_view kDuration = "DURATION=";
};

}  // namespace korvane
