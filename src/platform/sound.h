// Port: the loudspeaker.
#pragma once

#include <string>

namespace korvane {

class Sound {
public:
    virtual ~Sound() = default;

    /// Starts playing the file and returns at once. An empty path, a missing file or a machine without sound is not an error.
    virtual void PlaySound(const std::string& path) = 0;
};

}  // namespace korvane
