// Port: the loudspeaker.
#pragma once

#include <string>

namespace korvane {

class Sound {
public:
    virtual ~Sound() = default;

    /// Starts the sound file and goes on without waiting. A blank path, a missing file or a machine without sound is no error.
    virtual void PlaySound(const std::string& path) = 0;
};

}  // namespace korvane
