// A machine without a loudspeaker, or a program without a desktop.
#pragma once

#include "platform/sound.h"

namespace korvane {

class NoSound : public Sound {
public:
    void PlaySound(const std::string&) override {}
};

}  // namespace korvane
