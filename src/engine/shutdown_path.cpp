#include "engine/shutdown_path.h"

#include "base/ignore_errors.h"

namespace korvane {

std::string getShudownEXEPath(Files& files) {
    static constexpr const char* kPlaces[] = {"/usr/sbin/shutdown", "/sbin/shutdown", "/usr/bin/shutdown", "/bin/shutdown"};
    for (const char* place : kPlaces) {
        bool exists = false;
        IgnoreErrors([&] { exists = files.Exists(place); });
        if (exists) return place;
    }
    return kPlaces[0];
}

}  // namespace korvane
