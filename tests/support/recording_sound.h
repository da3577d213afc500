// The loudspeaker that writes down what it was given.
#pragma once

#include <string>
#include <vector>

#include "platform/sound.h"

namespace korvane {

class RecordingSound : public Sound {
public:
    std::vector<std::string> played;
    bool keep = true;  ///< off for long runs

    void PlaySound(const std::string& path) override {
        if (keep) played.push_back(path);
    }
};

}  // namespace korvane
