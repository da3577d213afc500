// The settings of the memory monitor.
#pragma once

#include "resources/alert_settings.h"

namespace korvane {

class clsMemoryMon : public LevelSettings {
public:
    /// The file is `<dir>/MemoryMon.dat`. `files` must outlive this.
    clsMemoryMon(Files& files, const std::string& dir) : LevelSettings(files, dir, "MemoryMon.dat", {kAlert, kEmail, kDisable}) {}
};

}  // namespace korvane
