// Plays sounds on the desktop through an installed player: that of PipeWire, of PulseAudio, or of ALSA.
#pragma once

#include <string>

#include "platform/linux/linux_processes.h"
#include "platform/sound.h"

namespace korvane {

class DesktopSound : public Sound {
public:
    /// `processes` must outlive this.
    explicit DesktopSound(LinuxProcesses& processes) : processes_(processes) {}

    /// Starts the first player that is installed (in the folders of PATH) and returns without waiting for it. Does nothing if the
    /// path is empty or is not a file; whether the player can play the file is not known.
    void PlaySound(const std::string& path) override;

private:
    LinuxProcesses& processes_;
};

}  // namespace korvane
