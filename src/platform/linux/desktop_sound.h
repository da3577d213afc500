// The loudspeaker of the desktop, through the player that comes with it: that of PipeWire, of PulseAudio, or of ALSA.
#pragma once

#include <string>

#include "platform/linux/linux_processes.h"
#include "platform/sound.h"

namespace korvane {

class DesktopSound : public Sound {
public:
    /// `processes` must outlive this.
    explicit DesktopSound(LinuxProcesses& processes) : processes_(processes) {}

    /// Starts the first of the players that is installed (the folders of PATH), which goes on by itself, and returns. Nothing is
    /// started for a blank path or one that names no file; what the player makes of the file is not known.
    void PlaySound(const std::string& path) override;

private:
    LinuxProcesses& processes_;
};

}  // namespace korvane
