// The settings of the disk monitor.
#pragma once

#include "resources/alert_settings.h"

namespace korvane {

class clsDiskMon : public LevelSettings {
public:
    /// The file is `<dir>/DiskMon.dat`. `files` must outlive this.
    clsDiskMon(Files& files, const std::string& dir) : LevelSettings(files, dir, "DiskMon.dat", {kAlert, kEmail, kDisable}) {}
};

}  // namespace korvane
